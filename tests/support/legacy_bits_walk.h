// The real legacy bit reader and the literal one side by side: every read is made on both, and every member compared
// after it.
#pragma once

#include "support/literal_bits.h"

#include <orv-utils-v4/h264_legacy/golomb.h>

#include "legacy/legacy_bits.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace support {

/// Both readers over the `size` bytes at `start`, up to a fence behind them or open-ended. Each operation returns what
/// differed, "" when nothing did.
class legacy_bits_walk {
public:
    enum class end { fenced, open };

    legacy_bits_walk(const unsigned char* start, std::size_t size, end kind = end::fenced)
        : base(start), fence(kind == end::fenced ? start + size : nullptr)
    {
        model.bytes.assign(start, start + size);
        be_bitfield_open_until(&real, start, fence);
    }

    be_bitfield real;
    literal::legacy_bit_reader model;

    std::string opened() const { return difference("opening"); }

    std::string read(unsigned char n)
    {
        const std::uint32_t expected = model.u(n);
        return compared("read", expected, be_bitfield_read_until(&real, n, fence));
    }

    /// The exported codes, open-ended.
    std::string ue() { return compared("ue", model.ue(), h264_ue_golomb_read(&real)); }
    std::string se() { return compared("se", model.se(), h264_se_golomb_read(&real)); }

    /// The codes of the libraries' own use, which are not exported.
    std::string fenced_ue() { return compared("ue", model.ue(), bits().ue()); }
    std::string fenced_se() { return compared("se", model.se(), bits().se()); }

    std::string u32()
    {
        const std::uint32_t high = model.u(16);
        const std::uint32_t expected = high * 65536 + model.u(16);
        return compared("u32", expected, bits().u32());
    }

    std::string at_end() { return compared("at_end", fence != nullptr && model.at_end(), bits().at_end()); }

private:
    const unsigned char* base;
    const unsigned char* fence;

    orv_utils_v4::legacy::legacy_bits bits() { return {real, fence}; }

    template <typename T>
    std::string compared(const std::string& what, T expected, T actual) const
    {
        if (expected != actual)
            return what + " gave " + std::to_string(actual) + ", not " + std::to_string(expected);
        return difference(what);
    }

    std::string difference(const std::string& what) const
    {
        const std::pair<const char*, bool> members[] = {
            {"ptr", real.ptr == base + (fence == nullptr ? model.loaded : model.next_byte())},
            {"word", real.word == model.word()},
            {"bits", real.bits == model.bits()},
            {"open", real.open == 1},
        };
        for (const auto& [name, same] : members)
            if (!same)
                return what + " left another " + name;
        return "";
    }
};

} // namespace support
