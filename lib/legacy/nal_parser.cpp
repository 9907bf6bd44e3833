// The NAL scanner of the legacy interface, H.264 clause 7.3.1 and Annex B, and the dump of a buffer's units. It shares
// the byte search and the loop that drops emulation-prevention bytes (bytescan/) with the newer NAL reader, so neither
// is a check on the other there: the tests hold each against a literal model of its own.
#include <orv-utils-v4/h264_legacy/nal_parser.h>

#include "bytescan/bytescan.h"
#include "bytescan/copy_bytes.h"
#include "bytescan/escapes.h"

#include <orv-utils-v4/h2645_common/advance_past.h>
#include <orv-utils-v4/misc/assertion.h>

#include <algorithm>
#include <iterator>

using brenik::range_size;
using brenik::bytescan::at_most_3;
using brenik::bytescan::copy_bytes;
using brenik::bytescan::drop_escapes;
using brenik::bytescan::is_place;
using brenik::bytescan::milestone;
using brenik::bytescan::passage;
using brenik::bytescan::take_first_few;
using brenik::bytescan::zero_pairs;
using orv_utils_v4::check;

namespace {

constexpr const char* source = "lib/nal_parser";
constexpr unsigned char forbidden_bit = 0x80;

/// An output that drops what does not fit.
struct bounded_copy {
    unsigned char* write;
    unsigned char* const fence;
    bool overflow = false;

    void put(unsigned char byte)
    {
        if (write == fence)
            overflow = true;
        else
            *write++ = byte;
    }

    /// Both bytes or none.
    void put_pair(unsigned char first, unsigned char second)
    {
        if (range_size(write, fence) < 2) {
            overflow = true;
            return;
        }
        *write++ = first;
        *write++ = second;
    }
};

/// Copies the RBSP from `q` on, bytes in the groups that an overflow drops; where the unit ends, at `unit_end` or
/// before.
const unsigned char* copy_rbsp_in_groups(bounded_copy& out, const unsigned char* q, const unsigned char* unit_end)
{
    while (range_size(q, unit_end) >= 3) {
        const bool two_zeros = q[0] == 0 && q[1] == 0;
        if (q[2] > 3) {
            out.put_pair(q[0], q[1]);
            out.put(q[2]);
            q += 3;
        } else if (two_zeros && q[2] == 3) {
            out.put_pair(0, 0);
            q += 3;
        } else if (two_zeros) {
            return q;
        } else {
            out.put(*q++);
        }
    }
    while (q != unit_end)
        out.put(*q++);
    return q;
}

/// Copies the RBSP of the unit from `q` on, up to where it ends, at `unit_end` at the latest; where that is. Groups are
/// counted from `q` on.
[[gnu::noinline]] const unsigned char* copy_rbsp(bounded_copy& out, const unsigned char* q,
                                                 const unsigned char* unit_end)
{
    passage bytes = {q, unit_end, out.write, out.fence};
    milestone group = {q, out.write};
    if (!bytes.runs_into_itself() && drop_escapes(bytes, group)) {
        out.write = bytes.write;
        return bytes.read;
    }
    zero_pairs pairs(bytes.read, unit_end, at_most_3);
    for (;;) {
        const unsigned char* const place = pairs.next();
        const std::size_t plain = range_size(bytes.read, place);
        if (range_size(bytes.write, out.fence) < plain + 2) {
            out.write = group.write;
            return copy_rbsp_in_groups(out, group.read, unit_end);
        }
        copy_bytes(bytes.write, bytes.read, plain);
        bytes.write += plain;
        bytes.read = place;
        if (place == unit_end || place[2] != 3) {
            out.write = bytes.write;
            return place;
        }
        *bytes.write++ = 0;
        *bytes.write++ = 0;
        bytes.read += 3;
        pairs.resume(bytes.read);
        group = {bytes.read, bytes.write};
    }
}

/// Takes the unit whose header byte is at `header`.
const unsigned char* take_unit(h264_nal_parser_state& hp, unsigned char* out, std::size_t out_size,
                               const unsigned char* header, const unsigned char* unit_end)
{
    hp.nal_unit_type = *header & 31;
    hp.nal_ref_idc = static_cast<std::uint8_t>(*header >> 5);
    hp.nal = out;
    passage first = {header + 1, unit_end, out, out + out_size};
    const bool is_all = !first.runs_into_itself() && take_first_few(first); // as groups: whole ones
    bounded_copy copy{first.write, first.write_fence};
    const unsigned char* const q = is_all ? first.read : copy_rbsp(copy, first.read, unit_end);
    hp.overflow = copy.overflow ? 1 : 0;
    hp.raw_nal_fence = q;
    hp.nal_fence = copy.write;
    hp.found = 1;
    return q;
}

/// Mostly it does: a scan begins where the last unit ended.
bool begins_with_unit(const unsigned char* s, const unsigned char* sf)
{
    return range_size(s, sf) >= 4 && is_place(s, brenik::bytescan::one) && (s[3] & forbidden_bit) == 0;
}

const unsigned char* search_annexb(h264_nal_parser_state& hp, unsigned char* out, std::size_t out_size,
                                   const unsigned char* s, const unsigned char* sf)
{
    zero_pairs start_codes(s, sf, brenik::bytescan::one);
    for (const unsigned char* p = start_codes.next(); p != sf; p = start_codes.next()) {
        const unsigned char* const header = p + 3;
        hp.raw_nal = p;
        hp.raw_nal_fence = nullptr;
        if (header == sf)
            return sf;
        if ((*header & forbidden_bit) == 0)
            return take_unit(hp, out, out_size, header, sf);
        start_codes.resume(header);
    }
    return range_size(s, sf) >= 3 ? sf - 2 : s;
}

const unsigned char* scan_annexb(h264_nal_parser_state& hp, unsigned char* out, std::size_t out_size,
                                 const unsigned char* s, const unsigned char* sf)
{
    if (!begins_with_unit(s, sf))
        return search_annexb(hp, out, out_size, s, sf);
    hp.raw_nal = s;
    return take_unit(hp, out, out_size, s + 3, sf);
}

const unsigned char* scan_length_prefixed(h264_nal_parser_state& hp, unsigned char* out, std::size_t out_size,
                                          const unsigned char* s, const unsigned char* sf, unsigned int prefix_size)
{
    constexpr std::uint64_t largest_length = 16777214;
    if (range_size(s, sf) < prefix_size)
        return s;
    hp.raw_nal = s;
    hp.raw_nal_fence = nullptr;
    std::uint64_t length = 0;
    for (unsigned int i = 0; i < prefix_size; ++i)
        length = std::min(length << 8 | *s++, largest_length + 1);
    check(s <= sf, source, __LINE__, "s <= sf");
    if (length == 0 || length > largest_length || length > range_size(s, sf))
        return sf;
    const unsigned char* const unit_end = s + length;
    if ((*s & forbidden_bit) != 0)
        return unit_end;
    return take_unit(hp, out, out_size, s, unit_end);
}

void dump_hex(std::FILE* f, const unsigned char* bytes, std::size_t count)
{
    constexpr std::size_t bytes_a_line = 16;
    for (std::size_t i = 0; i < count; ++i) {
        const bool last_of_line = i % bytes_a_line == bytes_a_line - 1 || i == count - 1;
        static_cast<void>(std::fprintf(f, "%s%02x %s", i % bytes_a_line == 0 ? "  " : "",
                                       static_cast<unsigned int>(bytes[i]), last_of_line ? "\n" : ""));
    }
}

void dump_unit(std::FILE* f, const h264_nal_parser_state& hp, int dump_bytes)
{
    const std::size_t length = range_size(hp.nal, hp.nal_fence);
    const char* const name = h264_nal_parser_unit_type_to_str(hp.nal_unit_type);
    static_cast<void>(std::fprintf(f, "NAL: ref_ide=%u unit_type=%u(%s) len=%u of=%u\n",
                                   static_cast<unsigned int>(hp.nal_ref_idc),
                                   static_cast<unsigned int>(hp.nal_unit_type), name == nullptr ? "(null)" : name,
                                   static_cast<unsigned int>(length), static_cast<unsigned int>(hp.overflow)));
    if (dump_bytes >= 1)
        dump_hex(f, hp.nal, std::min(length, static_cast<std::size_t>(dump_bytes)));
}

} // namespace

const unsigned char* h264_nal_parser_scan(h264_nal_parser_state* hp, unsigned char* out, std::size_t out_size,
                                          const unsigned char* s, const unsigned char* sf, unsigned int nal_length_size)
{
    hp->found = 0;
    hp->overflow = 0;
    return nal_length_size == 0 ? scan_annexb(*hp, out, out_size, s, sf)
                                : scan_length_prefixed(*hp, out, out_size, s, sf, nal_length_size);
}

const char* h264_nal_parser_unit_type_to_str(unsigned char type)
{
    static constexpr const char* names[] = {
        nullptr,
        "Coded slice of a non-IDR picture",
        "Coded slice data partition A",
        "Coded slice data partition B",
        "Coded slice data partition C",
        "Coded slice of an IDR picture",
        "Supplemental enhancement information",
        "Sequence parameter set",
        "Picture parameter set",
        "Access unit delimiter",
        "End of sequence",
        "End of stream",
        "Filler data",
    };
    return type < std::size(names) ? names[type] : nullptr;
}

void h264_nal_dump_dbg(std::FILE* f, const unsigned char* s, const unsigned char* sf, unsigned int nal_length_size,
                       int dump_bytes)
{
    constexpr std::size_t buffer_size = 65536;
    unsigned char buffer[buffer_size];
    h264_nal_parser_state hp;
    std::FILE* const out = f == nullptr ? stderr : f;
    while (range_size(s, sf) != 0) {
        s = h264_nal_parser_scan(&hp, buffer, buffer_size, s, sf, nal_length_size);
        if (hp.found == 0)
            return;
        check(hp.nal != nullptr, source, 180, "hp.nal != nullptr");
        check(hp.nal_fence != nullptr, source, 181, "hp.nal_fence != nullptr");
        check(hp.nal <= hp.nal_fence, source, 182, "hp.nal <= hp.nal_fence");
        dump_unit(out, hp, dump_bytes);
    }
}
