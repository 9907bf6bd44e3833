#include "literal_loops.h"

#include <cstring>

namespace bench::literal {

using brenik::h264_nal;
using brenik::h264_nal_reader;
using brenik::h264_nal_writer;

namespace {

std::size_t left(const unsigned char* p, const unsigned char* fence)
{
    return static_cast<std::size_t>(fence - p);
}

/// Up to a start code and a header byte without the forbidden bit (H.264 B.3).
void scan_annex_b(h264_nal_reader& r, unsigned char* p, const unsigned char* end)
{
    for (; left(p, end) >= 4; ++p) {
        r.next = p;
        if (p[0] != 0 || p[1] != 0 || p[2] > 1) {
            r.zero_count = 0;
            continue;
        }
        if (p[2] == 0) {
            ++r.zero_count;
            continue;
        }
        r.nal.decode_header(p[3]);
        if (!r.nal.valid)
            continue;
        r.found = true;
        r.nal_start = p;
        r.nal_header = p + 3;
        r.payload = r.next = p + 4;
        r.nal_length = r.payload_length = 0;
        return;
    }
    r.incomplete = true;
}

void scan_length4(h264_nal_reader& r, unsigned char* p, unsigned char* end)
{
    r.incomplete = left(p, end) < 5;
    if (r.incomplete) {
        r.next = p;
        return;
    }
    r.nal_start = p;
    r.nal_length = 0;
    for (int i = 0; i < 4; ++i)
        r.nal_length = r.nal_length << 8 | p[i];
    r.payload_length = r.nal_length - 1;
    r.nal_header = p + 4;
    r.payload = p + 5;
    r.incomplete = r.nal_length > left(r.nal_header, end);
    r.next = r.incomplete ? p : r.nal_header + r.nal_length;
    r.nal.decode_header(*r.nal_header);
    r.length_known = true;
    r.found = r.nal.valid;
}

/// 00 00 03 for each pair of zeros before a byte of at most 3 (H.264 7.4.1); null when it does not fit.
unsigned char* escape(unsigned char* w, const unsigned char* w_fence, const unsigned char* p,
                      const unsigned char* fence)
{
    while (left(p, fence) >= 3) {
        if (p[0] == 0 && p[1] == 0 && p[2] <= 3) {
            if (left(w, w_fence) < 3)
                return nullptr;
            *w++ = 0;
            *w++ = 0;
            *w++ = 3;
            p += 2;
        } else {
            if (w == w_fence)
                return nullptr;
            *w++ = *p++;
        }
    }
    if (left(w, w_fence) < left(p, fence))
        return nullptr;
    while (p != fence)
        *w++ = *p++;
    return w;
}

} // namespace

void scan(h264_nal_reader& reader, unsigned char* start, unsigned char* end)
{
    reader.found = reader.gave_up = reader.length_known = reader.nal.valid = reader.incomplete = false;
    reader.decode_ptr = reader.decode_fence = reader.payload = reader.nal_start = nullptr;
    reader.zero_count = 0;
    reader.data = start;
    reader.data_fence = end;
    reader.next = end;
    if (reader.nalfmt == brenik::nalfmt_annexb)
        scan_annex_b(reader, start, end);
    else
        scan_length4(reader, start, end);
    reader.rewind();
}

std::size_t block_decode(h264_nal_reader& reader, unsigned char* out, std::size_t size)
{
    unsigned char* p = reader.decode_ptr;
    unsigned char* w = out;
    unsigned char* const w_fence = out + size;
    while (left(w, w_fence) >= 3 && left(p, reader.decode_fence) >= 3) {
        if (p[2] > 3) {
            *w++ = *p++;
            *w++ = *p++;
            *w++ = *p++;
        } else if (p[0] != 0 || p[1] != 0) {
            *w++ = *p++;
        } else if (p[2] == 3) {
            *w++ = 0;
            *w++ = 0;
            p += 3;
        } else {
            reader.decode_ptr = reader.decode_fence;
            return left(out, w);
        }
    }
    while (w != w_fence && p != reader.decode_fence)
        *w++ = *p++;
    reader.decode_ptr = p;
    return left(out, w);
}

std::size_t block_encode(h264_nal_writer& writer, const unsigned char* data, std::size_t length, const h264_nal& nal,
                         unsigned int zero_bytes)
{
    if (left(writer.write, writer.fence) < std::size_t{zero_bytes} + 5)
        return 0;
    const bool is_annex_b = writer.nalfmt == brenik::nalfmt_annexb;
    unsigned char* w = writer.write;
    for (unsigned int i = 0; is_annex_b && i < zero_bytes; ++i)
        *w++ = 0;
    static constexpr unsigned char start_code[] = {0, 0, 1};
    std::memcpy(w, start_code, sizeof start_code);
    w += is_annex_b ? 3 : 4;
    unsigned char* const body = w;
    *w++ = static_cast<unsigned char>(nal.encode_header() & 0xFF);
    w = escape(w, writer.fence, data, data + length);
    if (w == nullptr)
        return 0;
    for (int i = 0; !is_annex_b && i < 4; ++i)
        writer.write[i] = static_cast<unsigned char>(left(body, w) >> (24 - 8 * i) & 0xFF);
    const std::size_t written = left(writer.write, w);
    writer.write = w;
    return written;
}

std::size_t frame_escaped(const unsigned char* unit, std::size_t size, bool is_annex_b, unsigned char* out)
{
    static constexpr unsigned char start_code[] = {0, 0, 1};
    unsigned char* w = out;
    if (is_annex_b)
        for (const unsigned char byte : start_code)
            *w++ = byte;
    else
        for (int i = 0; i < 4; ++i)
            *w++ = static_cast<unsigned char>(size >> (24 - 8 * i) & 0xFF);
    for (std::size_t i = 0; i < size; ++i) {
        if (i >= 2 && unit[i - 2] == 0 && unit[i - 1] == 0 && unit[i] <= 2)
            return 0;
        *w++ = unit[i];
    }
    return size == 0 || unit[size - 1] == 0 ? 0 : left(out, w);
}

const unsigned char* nal_parser_scan(h264_nal_parser_state* hp, unsigned char* out, std::size_t out_size,
                                     const unsigned char* s, const unsigned char* sf)
{
    hp->found = hp->overflow = 0;
    const unsigned char* p = s;
    while (left(p, sf) >= 4 && (p[0] != 0 || p[1] != 0 || p[2] != 1 || (p[3] & 0x80) != 0))
        ++p;
    if (left(p, sf) < 4)
        return p;
    hp->raw_nal = p;
    hp->nal_unit_type = p[3] & 31;
    hp->nal_ref_idc = static_cast<std::uint8_t>(p[3] >> 5);
    hp->nal = out;
    unsigned char* w = out;
    const unsigned char* const w_fence = out + out_size;
    const auto put = [&](unsigned char byte) {
        if (w == w_fence)
            hp->overflow = 1;
        else
            *w++ = byte;
    };
    for (p += 4; left(p, sf) >= 3;) {
        if (p[2] > 3) {
            for (int i = 0; i < 3; ++i)
                put(*p++);
        } else if (p[0] != 0 || p[1] != 0) {
            put(*p++);
        } else if (p[2] == 3) {
            put(0);
            put(0);
            p += 3;
        } else {
            break;
        }
    }
    while (p != sf && left(p, sf) < 3)
        put(*p++);
    hp->raw_nal_fence = p;
    hp->nal_fence = w;
    hp->found = 1;
    return p;
}

int nal_write(unsigned char* out, std::size_t out_size, const unsigned char* payload, std::size_t payload_size,
              unsigned char header)
{
    const unsigned char head[] = {0, 0, 1, header};
    std::memcpy(out, head, sizeof head);
    const unsigned char* const end = escape(out + sizeof head, out + out_size, payload, payload + payload_size);
    return end == nullptr ? -1 : static_cast<int>(end - out);
}

} // namespace bench::literal
