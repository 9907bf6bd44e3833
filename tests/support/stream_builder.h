// A small notation for streams: units, start codes, length prefixes, junk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

namespace support {

using bytes = std::vector<unsigned char>;

/// A header byte from its fields.
constexpr unsigned char header_byte(unsigned int nal_ref_idc, unsigned int nal_unit_type)
{
    return static_cast<unsigned char>(nal_ref_idc * 32 + nal_unit_type);
}

constexpr unsigned char sps = header_byte(3, 7);
constexpr unsigned char pps = header_byte(3, 8);
constexpr unsigned char aud = header_byte(0, 9);
constexpr unsigned char idr_slice = header_byte(3, 5);
/// An SPS header but for the forbidden bit.
constexpr unsigned char forbidden = 0x80 | sps;

constexpr unsigned char sei = header_byte(0, 6);

/// Bytes of a stream, appended left to right.
class stream_builder {
public:
    stream_builder& raw(const bytes& more)
    {
        stream.insert(stream.end(), more.begin(), more.end());
        return *this;
    }

    stream_builder& fill(std::size_t count, unsigned char value)
    {
        stream.insert(stream.end(), count, value);
        return *this;
    }

    stream_builder& zeros(std::size_t count) { return fill(count, 0); }
    /// Bytes that are part of no start code.
    stream_builder& junk(std::size_t count) { return fill(count, 0xEE); }
    stream_builder& start_code() { return raw({0, 0, 1}); }

    /// A big-endian length of `size` bytes.
    stream_builder& prefix(std::size_t size, std::uint32_t length)
    {
        for (std::size_t i = size; i-- > 0;)
            stream.push_back(static_cast<unsigned char>(length >> 8 * i & 0xFF));
        return *this;
    }

    /// A header byte and a payload, taken as they are.
    stream_builder& unit(unsigned char header, const bytes& payload) { return fill(1, header).raw(payload); }
    stream_builder& annexb_unit(unsigned char header, const bytes& payload)
    {
        return start_code().unit(header, payload);
    }
    stream_builder& prefixed_unit(std::size_t size, unsigned char header, const bytes& payload)
    {
        return prefix(size, static_cast<std::uint32_t>(payload.size() + 1)).unit(header, payload);
    }

    /// Where the next byte goes.
    std::size_t here() const { return stream.size(); }

    const bytes& made() const { return stream; }
    operator const bytes&() const { return stream; }

private:
    bytes stream;
};

/// The SEI RBSP that holds these messages, a type and a payload each, both below 255; `end` follows them.
inline bytes sei_rbsp(std::initializer_list<std::pair<unsigned char, bytes>> messages, const bytes& end = {0x80})
{
    stream_builder rbsp;
    for (const auto& [type, payload] : messages)
        rbsp.raw({type, static_cast<unsigned char>(payload.size())}).raw(payload);
    return rbsp.raw(end);
}

} // namespace support
