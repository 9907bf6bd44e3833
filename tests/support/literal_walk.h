// The real NAL reader and the literal one side by side over the same bytes: every call is made on both, and every
// member compared after it.
#pragma once

#include "support/literal_nal.h"

#include <orv-utils-v4/h264/nal_reader.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace support {

/// The names of the members that differ, "" when none does.
class member_difference {
public:
    explicit member_difference(const unsigned char* base) : origin(reinterpret_cast<std::uintptr_t>(base)) {}

    /// A number or a flag.
    template <typename T, typename U>
    void value(const char* name, T expected, U actual)
    {
        if (static_cast<std::uint64_t>(expected) != static_cast<std::uint64_t>(actual))
            note(name, static_cast<std::uint64_t>(expected), static_cast<std::uint64_t>(actual));
    }

    /// An index and a pointer, which may lie past the bytes it points into.
    void pointer(const char* name, std::size_t expected, const unsigned char* actual)
    {
        const auto address = reinterpret_cast<std::uintptr_t>(actual);
        value(name, expected, actual == nullptr ? literal::null : address - origin);
    }

    const std::string& text() const { return noted; }

private:
    void note(const char* name, std::uint64_t expected, std::uint64_t actual)
    {
        noted += std::string(name) + " is " + std::to_string(actual) + ", not " + std::to_string(expected) + "; ";
    }

    std::uintptr_t origin;
    std::string noted;
};

/// The members of `actual`, whose stream begins at `base`, that are not as in `expected`.
inline std::string difference(const literal::nal_reader& expected, const brenik::h264_nal_reader& actual,
                              const unsigned char* base)
{
    member_difference members(base);
    members.value("nalfmt", expected.nalfmt, actual.nalfmt);
    members.pointer("next", expected.next, actual.next);
    members.pointer("data", expected.data, actual.data);
    members.pointer("data_fence", expected.data_fence, actual.data_fence);
    members.pointer("nal_header", expected.nal_header, actual.nal_header);
    members.pointer("nal_start", expected.nal_start, actual.nal_start);
    members.pointer("payload", expected.payload, actual.payload);
    members.value("nal_length", expected.nal_length, actual.nal_length);
    members.value("payload_length", expected.payload_length, actual.payload_length);
    members.value("zero_count", expected.zero_count, actual.zero_count);
    members.value("found", expected.found, actual.found);
    members.value("gave_up", expected.gave_up, actual.gave_up);
    members.value("incomplete", expected.incomplete, actual.incomplete);
    members.value("length_known", expected.length_known, actual.length_known);
    members.pointer("decode_ptr", expected.decode_ptr, actual.decode_ptr);
    members.pointer("decode_fence", expected.decode_fence, actual.decode_fence);
    members.value("nal_ref_idc", expected.nal.nal_ref_idc, actual.nal.nal_ref_idc);
    members.value("nal_unit_type", expected.nal.nal_unit_type, actual.nal.nal_unit_type);
    members.value("valid", expected.nal.valid, actual.nal.valid);
    return members.text();
}

/// Both readers over the `size` bytes at `base`. Each operation returns what differed, "" when nothing did.
class literal_walk {
public:
    literal_walk(unsigned int nalfmt, unsigned char* start, std::size_t size)
        : real(static_cast<brenik::h2645_common_nalfmt>(nalfmt)), base(start)
    {
        model.nalfmt = nalfmt;
        model.stream.assign(start, start + size);
    }

    brenik::h264_nal_reader real;
    literal::nal_reader model;

    std::string scan(std::size_t start, std::size_t end)
    {
        real.scan(base + start, base + end);
        model.scan(start, end);
        return difference(model, real, base);
    }

    /// The Annex B search by itself, on the state that the calls before left.
    std::string scan_annex_b(std::size_t start, std::size_t end)
    {
        real.scan_annex_b(base + start, base + end);
        model.scan_annex_b(start, end);
        return difference(model, real, base);
    }

    std::string rewind()
    {
        real.rewind();
        model.rewind();
        return difference(model, real, base);
    }

    /// Decodes a block of `size` bytes at `out`, and looks for the unit's end before.
    std::string decode(unsigned char* out, std::size_t size)
    {
        member_difference found_end(base);
        found_end.pointer("find_unit_end()", model.find_unit_end(), real.find_unit_end());
        const literal::bytes expected = model.block_decode(size);
        last_count = real.block_decode(out, size);
        if (last_count != expected.size())
            return "block_decode gave " + std::to_string(last_count) + " bytes, not " + std::to_string(expected.size());
        if (!std::equal(expected.begin(), expected.end(), out))
            return "block_decode wrote other bytes";
        return found_end.text() + difference(model, real, base);
    }

    /// How many bytes the latest block held.
    std::size_t decoded() const { return last_count; }

    bool input_unchanged() const { return std::equal(model.stream.begin(), model.stream.end(), base); }

private:
    unsigned char* base;
    std::size_t last_count = 0;
};

} // namespace support
