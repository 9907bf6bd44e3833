// NAL framing once more, in the slowest way: a byte at a time, step after step, on indices. It shares no code with the
// libraries; the tests and the fuzz entry points hold the real reader and writer against it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace literal {

using bytes = std::vector<unsigned char>;

/// The index that stands for a null pointer.
constexpr std::size_t null = SIZE_MAX;

/// Framings, as the libraries number them.
constexpr unsigned int none = 0;
constexpr unsigned int annexb = 5;

/// The NAL unit header byte.
struct header {
    unsigned int nal_ref_idc = 0;
    unsigned int nal_unit_type = 0;
    bool valid = false;

    void decode(unsigned int byte)
    {
        valid = byte < 128;
        if (!valid)
            return;
        nal_ref_idc = byte / 32;
        nal_unit_type = byte % 32;
    }

    unsigned char encode() const
    {
        return valid ? static_cast<unsigned char>(nal_ref_idc % 4 * 32 + nal_unit_type % 32) : 0xFF;
    }
};

/// The reader; pointers are indices into `stream`.
struct nal_reader {
    bytes stream;
    unsigned int nalfmt = none;

    std::size_t next = null;
    std::size_t data = null;
    std::size_t data_fence = null;
    std::size_t nal_header = null;
    std::size_t nal_start = null;
    std::size_t payload = null;
    std::uint32_t nal_length = 0;
    std::uint32_t payload_length = 0;
    std::uint32_t zero_count = 0;
    bool found = false;
    bool gave_up = false;
    bool incomplete = false;
    bool length_known = false;
    std::size_t decode_ptr = null;
    std::size_t decode_fence = null;
    header nal;

    void scan(std::size_t start, std::size_t end)
    {
        found = gave_up = length_known = nal.valid = false;
        decode_ptr = decode_fence = payload = null;
        zero_count = 0;
        data = start;
        data_fence = end;
        if (nalfmt == none) {
            nal_start = null;
            next = end;
            incomplete = false;
            nal_length = 0;
            payload_length = 0;
            return;
        }
        if (nalfmt == annexb) {
            nal_start = null;
            next = end;
            incomplete = false;
            scan_annex_b(start, end);
        } else {
            scan_prefixed(start, end, nalfmt);
        }
        rewind();
        if (found && next > end) {
            next = nal_start;
            incomplete = true;
        }
    }

    void scan_annex_b(std::size_t start, std::size_t end)
    {
        for (std::size_t probe = start;; ++probe) {
            if (probe + 3 >= end) {
                if (!nal.valid)
                    incomplete = true;
                return;
            }
            next = probe;
            if (stream[probe] != 0 || stream[probe + 1] != 0) {
                zero_count = 0;
            } else if (stream[probe + 2] == 1) {
                nal.decode(stream[probe + 3]);
                if (nal.valid) {
                    take_annexb_unit(probe);
                    return;
                }
            } else if (stream[probe + 2] == 0) {
                ++zero_count;
            } else {
                zero_count = 0;
            }
        }
    }

    void rewind()
    {
        decode_ptr = decode_fence = null;
        if (!found)
            return;
        decode_ptr = payload;
        decode_fence = data_fence;
        if (length_known && payload + payload_length < data_fence)
            decode_fence = payload + payload_length;
    }

    bytes block_decode(std::size_t size)
    {
        bytes out;
        std::size_t room = size;
        const auto copy = [&](std::size_t count) {
            for (; count > 0; --count, --room)
                out.push_back(stream[decode_ptr++]);
        };
        while (room >= 3 && decode_ptr != null && decode_ptr + 3 <= decode_fence) {
            const unsigned char b0 = stream[decode_ptr];
            const unsigned char b1 = stream[decode_ptr + 1];
            const unsigned char b2 = stream[decode_ptr + 2];
            if (b2 > 3) {
                copy(3);
            } else if (b0 == 0 && b1 == 0 && b2 == 3) {
                copy(2);
                ++decode_ptr;
            } else if (b0 == 0 && b1 == 0) {
                decode_ptr = decode_fence;
                return out;
            } else {
                copy(1);
            }
        }
        while (room > 0 && decode_ptr < decode_fence)
            copy(1);
        return out;
    }

    /// Where block_decode would stop if its blocks were large.
    std::size_t find_unit_end() const
    {
        for (std::size_t at = decode_ptr; at != null && at + 3 <= decode_fence; ++at)
            if (stream[at] == 0 && stream[at + 1] == 0 && stream[at + 2] < 3)
                return at;
        return decode_fence;
    }

private:
    void scan_prefixed(std::size_t start, std::size_t end, std::size_t k)
    {
        if (end < start + k + 1) {
            nal_start = null;
            next = start;
            incomplete = true;
            return;
        }
        incomplete = false;
        nal_start = start;
        std::uint32_t length = 0;
        for (std::size_t i = 0; i < k; ++i)
            length = length * 256 + stream[start + i];
        nal_length = length;
        if (length == 0) {
            next = end;
            gave_up = true;
            return;
        }
        payload_length = length - 1;
        nal_header = start + k;
        next = start + k + length;
        nal.decode(stream[start + k]);
        length_known = true;
        payload = start + k + 1;
        if (nal.valid)
            found = true;
        else
            gave_up = true;
    }

    void take_annexb_unit(std::size_t probe)
    {
        length_known = false;
        found = true;
        nal_start = probe;
        nal_header = probe + 3;
        payload = probe + 4;
        nal_length = 0;
        payload_length = 0;
        next = payload;
    }
};

/// The writer, into a buffer of `buffer.size()` bytes.
struct nal_writer {
    unsigned int nalfmt = none;
    bytes buffer;
    std::size_t write = 0;

    std::size_t block_encode(const bytes& data, const header& nal, unsigned int zero_bytes)
    {
        const std::size_t unit = write;
        if (write >= buffer.size() || nalfmt == none)
            return 0;
        if (!put_unit(data, nal, zero_bytes)) {
            write = unit;
            return 0;
        }
        return write - unit;
    }

private:
    std::size_t room() const { return buffer.size() - write; }

    bool put(unsigned char byte)
    {
        if (room() == 0)
            return false;
        buffer[write++] = byte;
        return true;
    }

    bool put_three(unsigned char b0, unsigned char b1, unsigned char b2)
    {
        return room() >= 3 && put(b0) && put(b1) && put(b2);
    }

    bool put_unit(const bytes& data, const header& nal, unsigned int zero_bytes)
    {
        const std::size_t prefix = write;
        const std::size_t k = nalfmt >= 1 && nalfmt <= 4 ? nalfmt : 0;
        if (nalfmt == annexb) {
            for (unsigned int i = 0; i < zero_bytes; ++i)
                if (!put(0))
                    return false;
            if (!put_three(0, 0, 1))
                return false;
        }
        if (room() < k)
            return false;
        write += k;
        const std::size_t body = write;
        return put(nal.encode()) && put_payload(data) && put_prefix(prefix, k, write - body);
    }

    bool put_payload(const bytes& data)
    {
        std::size_t p = 0;
        while (data.size() - p >= 3) {
            if (data[p] == 0 && data[p + 1] == 0 && data[p + 2] <= 3) {
                if (!put_three(0, 0, 3))
                    return false;
                p += 2;
            } else if (!put(data[p++])) {
                return false;
            }
        }
        if (nalfmt == annexb && data.size() - p == 2 && data[p] == 0 && data[p + 1] == 0) {
            if (!put_three(0, 0, 3))
                return false;
            p += 2;
        }
        while (p < data.size())
            if (!put(data[p++]))
                return false;
        return true;
    }

    bool put_prefix(std::size_t at, std::size_t k, std::size_t length)
    {
        static constexpr std::size_t largest[] = {0, 255, 65535, 16777215, 4294967295};
        if (k == 0)
            return true;
        if (length > largest[k])
            return false;
        for (std::size_t i = k; i > 0; --i, length /= 256)
            buffer[at + i - 1] = static_cast<unsigned char>(length % 256);
        return true;
    }
};

} // namespace literal
