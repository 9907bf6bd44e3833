// The legacy interface's reads beside the literal ones, and readers over bytes with few readable ones behind them.
#pragma once

#include "support/element_writer.h"
#include "support/guarded_buffer.h"
#include "support/legacy_fields.h"
#include "support/literal_legacy_sps.h"
#include "support/literal_parse.h"
#include "support/sps_builder.h"

#include <orv-utils-v4/h264_legacy/frame_scan.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace support {

inline bytes followed_by_zeros(bytes data, std::size_t count)
{
    data.resize(data.size() + count, 0);
    return data;
}

/// An open-ended reader over some bytes, which its buffer holds with zero bytes and an unmapped page behind them.
struct open_bits {
    /// As many as the reader may load behind the last bit it gives.
    static constexpr std::size_t loaded_ahead = 4;

    guarded_buffer buffer;
    be_bitfield bf;

    explicit open_bits(const bytes& data, std::size_t zeros = loaded_ahead) : buffer(followed_by_zeros(data, zeros))
    {
        be_bitfield_open(&bf, buffer.begin());
    }

    explicit open_bits(const bit_writer& writer) : open_bits(writer.bytes()) {}

    std::size_t consumed() const { return static_cast<std::size_t>(bf.ptr - buffer.begin()) * 8 - 32 + bf.bits; }
};

/// An SPS after an open-ended parse.
struct parsed_legacy_sps : open_bits {
    h264_sps object;

    explicit parsed_legacy_sps(const bytes& data, const h264_sps& before = {}, std::size_t zeros = loaded_ahead)
        : open_bits(data, zeros), object(before)
    {
        object.parse_sps(bf);
    }

    explicit parsed_legacy_sps(const element_writer& writer, const h264_sps& before = {})
        : parsed_legacy_sps(writer.made(), before)
    {
    }

    const h264_sps* operator->() const { return &object; }
};

/// The position of the bit behind an element.
inline std::size_t end_of(const element_writer& writer, const std::string& name)
{
    for (const element& e : writer.elements())
        if (e.name == name)
            return e.position + e.width;
    return SIZE_MAX;
}

/// full_sps() without codes of 24 zeros and more, which the legacy interface reads otherwise.
inline sps_description full_legacy_sps()
{
    sps_description seq = full_sps();
    seq.offset_for_ref_frame = {2, -7, 8388607, -8388607, 0};
    return seq;
}

/// Parses an SPS as the frame scan does: up to the end of the unit.
inline void parse_fenced(h264_sps& seq, unsigned char* start, unsigned char* fence)
{
    h264_nal_parser_state st;
    st.nal_unit_type = 7;
    st.nal = start;
    st.nal_fence = fence;
    h264_common_frame_scan_info info;
    bool updated = false;
    h264_common_frame_scan_on_NAL(info, updated, seq, st);
}

inline int parse_slice(h264_nal_slice_info& info, const bit_range& bits, h264_sps& seq)
{
    h264_nal_parser_state st;
    st.nal = const_cast<unsigned char*>(bits.start);
    st.nal_fence = const_cast<unsigned char*>(bits.fence);
    return h264_slice_parse(info, st, seq);
}

/// Both parses of an SPS: up to the end of the bits and, where no count runs out of data, open-ended over zeros, where
/// the position is compared too.
struct legacy_sps_parses {
    using structure = h264_sps;
    static constexpr bool never_throws = true;

    /// More than 12 lists and 2 HRD parameters of the longest codes, six bytes each.
    static constexpr std::size_t most_zeros_read = 8192;

    compared operator()(structure& object, const bit_range& bits) const
    {
        const named_values before = fields_of(object);
        named_values expected = before;
        literal::legacy_bit_reader reader({bits.start, bits.fence});
        const bool whole = literal::legacy::sps({expected, reader});
        h264_sps open = object;
        {
            const real_parse_scope scope;
            parse_fenced(object, const_cast<unsigned char*>(bits.start), const_cast<unsigned char*>(bits.fence));
        }
        named_values after = fields_of(object);
        std::string text = difference(expected, after);
        if (whole) {
            bytes data = followed_by_zeros(reader.bytes, most_zeros_read);
            be_bitfield bf;
            be_bitfield_open(&bf, data.data());
            open.parse_sps(bf);
            text += difference(expected, fields_of(open));
            const std::size_t position = static_cast<std::size_t>(bf.ptr - data.data()) * 8 - 32 + bf.bits;
            if (position != reader.position)
                text += "ends at bit " + std::to_string(position) + ", not " + std::to_string(reader.position);
        }
        return {{false, 0, true, reader.position}, before, std::move(after), std::move(text)};
    }

    /// Codes have other values where they are long, and names are not always the element's.
    static std::optional<std::int64_t> kept_value(const compared& c, const element& e)
    {
        const std::string name = e.name.rfind("vui.", 0) == 0 ? e.name.substr(4) : e.name;
        if (e.how != descriptor::u || !c.after.names->contain(name))
            return {};
        return c.after.at(name).number;
    }
};

/// Both reads of a record whose bits have an end.
template <typename Record, typename Real, typename Model>
compared compare_legacy_reads(Record& object, const bit_range& bits, Real real, Model model)
{
    const named_values before = fields_of(object);
    named_values expected = before;
    literal::legacy_bit_reader reader({bits.start, bits.fence});
    const bool expected_result = model(literal::legacy::record{expected, reader});
    const bool result = [&] {
        const real_parse_scope scope;
        return real(object, bits) == 1;
    }();
    named_values after = fields_of(object);
    std::string text = result == expected_result ? "" : "the result is " + std::to_string(result) + "; ";
    text += difference(expected, after);
    return {{false, 0, result, reader.position}, before, std::move(after), std::move(text)};
}

struct legacy_slice_parses {
    using structure = h264_nal_slice_info;
    static constexpr bool never_throws = true;

    h264_sps sps;

    compared operator()(structure& object, const bit_range& bits) const
    {
        return compare_legacy_reads(
            object, bits,
            [this](structure& info, const bit_range& range) {
                h264_sps seq = sps;
                return parse_slice(info, range, seq);
            },
            [this](const literal::legacy::record& r) {
                return literal::legacy::slice(r, literal::legacy::stored_sps(fields_of(sps)));
            });
    }

    static std::optional<std::int64_t> kept_value(const compared& c, const element& e)
    {
        return e.how == descriptor::u ? std::optional(c.after.at(e.name).number) : std::nullopt;
    }
};

struct legacy_timing_parses {
    using structure = h264_sei_picture_timing_info;
    static constexpr bool never_throws = true;

    h264_sps sps;

    compared operator()(structure& object, const bit_range& bits) const
    {
        return compare_legacy_reads(
            object, bits,
            [this](structure& timing, const bit_range& range) {
                h264_sps seq = sps;
                return h264_sei_picture_timing_info_parse(&timing, range.start, range.fence, seq);
            },
            [this](const literal::legacy::record& r) {
                return literal::legacy::pic_timing(r, literal::legacy::stored_sps(fields_of(sps)));
            });
    }
};

/// The first difference between every message of an SEI RBSP as read and as it stands there; "" when there is none.
inline std::string compare_sei_messages(const unsigned char* start, const unsigned char* fence)
{
    const bytes data(start, fence);
    for (const unsigned char* p = start;;) {
        const literal::legacy::message expected =
            literal::legacy::sei_message(data, static_cast<std::size_t>(p - start));
        h264_sei_pair pair;
        const unsigned char* const next = h264_sei_read_pair(&pair, p, fence);
        const auto offset = [&](const unsigned char* pointer) {
            const auto distance = reinterpret_cast<std::uintptr_t>(pointer) - reinterpret_cast<std::uintptr_t>(start);
            return pointer == nullptr ? std::int64_t{-1} : static_cast<std::int64_t>(distance);
        };
        const std::string at = " of the message at " + std::to_string(p - start) + " differs";
        if (pair.start != p)
            return "start" + at;
        if (pair.valid != (expected.valid ? 1 : 0))
            return "valid" + at;
        if (pair.payload_type != expected.type || pair.payload_size != expected.size)
            return "type or size" + at;
        if (offset(pair.data) != expected.data || offset(pair.fence) != expected.fence)
            return "data or fence" + at;
        if (offset(next) != (expected.valid ? expected.fence : static_cast<std::int64_t>(data.size())))
            return "what follows" + at;
        if (!expected.valid)
            return "";
        p = next;
    }
}

} // namespace support
