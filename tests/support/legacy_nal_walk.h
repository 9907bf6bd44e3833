// The real legacy NAL scanner and the literal one side by side over the same bytes: every scan is made by both, and
// every member and every byte of the output compared after it.
#pragma once

#include "support/literal_legacy_nal.h"
#include "support/literal_walk.h"

#include <orv-utils-v4/h264_legacy/nal_parser.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace support {

/// Both scanners over the `size` bytes at `start`. A scan returns what differed, "" when nothing did.
class legacy_nal_walk {
public:
    legacy_nal_walk(const unsigned char* start, std::size_t size) : base(start)
    {
        model.stream.assign(start, start + size);
        fill_with_other_values();
    }

    h264_nal_parser_state real;
    literal::legacy_nal_scanner model;
    std::size_t next = 0; ///< where the next scan should begin

    /// Scans [`start`, `end`) into the `room` bytes at `out`, which are filled before, so that a stray write shows.
    std::string scan(std::size_t start, std::size_t end, unsigned int nal_length_size, unsigned char* out,
                     std::size_t room)
    {
        std::fill(out, out + room, unwritten);
        const unsigned char* const real_next =
            h264_nal_parser_scan(&real, out, room, base + start, base + end, nal_length_size);
        next = model.scan(reinterpret_cast<std::uintptr_t>(out), room, start, end, nal_length_size);
        member_difference members(base);
        members.pointer("the result", next, real_next);
        compare(members);
        if (!std::equal(model.output.begin(), model.output.end(), out))
            return members.text() + "other bytes were written";
        if (!std::all_of(out + model.output.size(), out + room, [](unsigned char byte) { return byte == unwritten; }))
            return members.text() + "bytes behind the payload were written";
        return members.text();
    }

    bool input_unchanged() const { return std::equal(model.stream.begin(), model.stream.end(), base); }

private:
    const unsigned char* base;
    static constexpr unsigned char unwritten = 0xA5;

    /// What no scan writes there: a member that is to stay, stays visibly.
    void fill_with_other_values()
    {
        static unsigned char elsewhere = 0;
        real = {9, 9, 9, 99, &elsewhere, &elsewhere, base, base};
        model.nal_ref_idc = 9;
        model.nal_unit_type = 99;
        model.nal = model.nal_fence = reinterpret_cast<std::uintptr_t>(&elsewhere);
        model.raw_nal = model.raw_nal_fence = 0;
    }

    void compare(member_difference& members) const
    {
        members.value("found", model.found, real.found);
        members.value("overflow", model.overflow, real.overflow);
        members.value("nal_ref_idc", model.nal_ref_idc, real.nal_ref_idc);
        members.value("nal_unit_type", model.nal_unit_type, real.nal_unit_type);
        members.value("nal", model.nal, reinterpret_cast<std::uintptr_t>(real.nal));
        members.value("nal_fence", model.nal_fence, reinterpret_cast<std::uintptr_t>(real.nal_fence));
        members.pointer("raw_nal", model.raw_nal, real.raw_nal);
        members.pointer("raw_nal_fence", model.raw_nal_fence, real.raw_nal_fence);
    }
};

} // namespace support
