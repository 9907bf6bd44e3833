// The legacy NAL scanner and writer once more, in the slowest way: a byte at a time, step after step, on indices. They
// share no code with the libraries; the tests and the fuzz entry points hold the real ones against them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace literal {

/// The scanner. Places in the input are indices into `stream`, places in the output numbers that its caller gives.
struct legacy_nal_scanner {
    using bytes = std::vector<unsigned char>;
    static constexpr std::size_t null_place = SIZE_MAX;

    bytes stream;
    bytes output; ///< what the latest scan wrote

    unsigned int found = 0;
    unsigned int overflow = 0;
    unsigned int nal_ref_idc = 0;
    unsigned int nal_unit_type = 0;
    std::size_t nal = null_place;
    std::size_t nal_fence = null_place;
    std::size_t raw_nal = null_place;
    std::size_t raw_nal_fence = null_place;

    /// Scans [`s`, `sf`) with `room` bytes of output at `out`; where the next scan should begin.
    std::size_t scan(std::size_t out, std::size_t room, std::size_t s, std::size_t sf, std::size_t k)
    {
        found = 0;
        overflow = 0;
        output.clear();
        output_room = room;
        return k == 0 ? scan_annexb(out, s, sf) : scan_prefixed(out, s, sf, k);
    }

private:
    std::size_t output_room = 0;

    std::size_t scan_prefixed(std::size_t out, std::size_t s, std::size_t sf, std::size_t k)
    {
        if (s + k > sf)
            return s;
        raw_nal = s;
        raw_nal_fence = null_place;
        std::uint64_t length = 0;
        for (std::size_t i = 0; i < k; ++i)
            length = length * 256 + stream[s + i];
        if (length == 0)
            return sf;
        if (length > 16777214)
            return sf;
        const std::size_t header = s + k;
        if (header + length > sf)
            return sf;
        if (stream[header] >= 128)
            return header + length;
        return take(out, header, header + length);
    }

    std::size_t scan_annexb(std::size_t out, std::size_t s, std::size_t sf)
    {
        std::size_t p = s;
        while (p + 3 <= sf) {
            if (stream[p] == 0 && stream[p + 1] == 0 && stream[p + 2] == 1) {
                raw_nal = p;
                raw_nal_fence = null_place;
                if (p + 3 == sf)
                    return sf;
                if (stream[p + 3] < 128)
                    return take(out, p + 3, sf);
            }
            ++p;
        }
        return p;
    }

    std::size_t take(std::size_t out, std::size_t header, std::size_t unit_end)
    {
        nal_unit_type = stream[header] % 32;
        nal_ref_idc = stream[header] / 32;
        nal = out;
        const std::size_t q = copy(header + 1, unit_end);
        raw_nal_fence = q;
        nal_fence = out + output.size();
        found = 1;
        return q;
    }

    std::size_t copy(std::size_t q, std::size_t unit_end)
    {
        while (q + 3 <= unit_end) {
            const unsigned int b0 = stream[q];
            const unsigned int b1 = stream[q + 1];
            const unsigned int b2 = stream[q + 2];
            if (b2 >= 4) {
                put_two(stream[q], stream[q + 1]);
                put(stream[q + 2]);
                q += 3;
            } else if (b0 + b1 == 0 && b2 == 3) {
                put_two(0, 0);
                q += 3;
            } else if (b0 + b1 == 0) {
                return q;
            } else {
                put(stream[q]);
                q += 1;
            }
        }
        for (; q < unit_end; ++q)
            put(stream[q]);
        return q;
    }

    void put(unsigned char byte)
    {
        if (output.size() + 1 <= output_room)
            output.push_back(byte);
        else
            overflow = 1;
    }

    void put_two(unsigned char b0, unsigned char b1)
    {
        if (output.size() + 2 <= output_room) {
            output.push_back(b0);
            output.push_back(b1);
        } else {
            overflow = 1;
        }
    }
};

/// What h264_nal_write() leaves: its result, and what it wrote, which may be something on a failure, too.
struct legacy_written {
    int result = -1;
    std::vector<unsigned char> output;
};

/// One unit of `k` bytes of prefix, 0 for Annex B and 4 at most, into a buffer of `out_size` bytes.
inline legacy_written legacy_write(std::size_t out_size, const std::vector<unsigned char>& payload, std::size_t k,
                                   unsigned char header)
{
    legacy_written w;
    if (out_size < 16)
        return w;
    if (k == 0)
        w.output = {0, 0, 1};
    if (header >= 128)
        return w;
    w.output.resize(k == 0 ? 3 : k);
    w.output.push_back(header);
    std::size_t at = 0;
    while (at < payload.size() && w.output.size() + 4 <= out_size) {
        if (at + 3 <= payload.size() && payload[at] == 0 && payload[at + 1] == 0 && payload[at + 2] < 4) {
            w.output.insert(w.output.end(), {0, 0, 3});
            at += 2;
        } else {
            w.output.push_back(payload[at]);
            at += 1;
        }
    }
    std::size_t length = w.output.size() - k;
    for (std::size_t i = 0; i < k; ++i, length /= 256)
        w.output[k - 1 - i] = static_cast<unsigned char>(length % 256);
    w.result = static_cast<int>(w.output.size());
    return w;
}

} // namespace literal
