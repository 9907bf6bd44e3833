// Where frames end in a stream, for the legacy interface: by the types of units, frame_num, and picture timing. Every
// unit is decoded once, into the caller's buffer, and read there.
#include <orv-utils-v4/h264_legacy/frame_scan.h>

#include "sps_syntax.h"

#include <orv-utils-v4/h264_legacy/sei.h>
#include <orv-utils-v4/h264_legacy/slice.h>
#include <orv-utils-v4/misc/assertion.h>

using orv_utils_v4::check;

namespace {

constexpr const char* source = "lib/sps";

// H.264 Table 7-1
constexpr std::uint8_t slice_non_idr = 1;
constexpr std::uint8_t slice_idr = 5;
constexpr std::uint8_t sei = 6;
constexpr std::uint8_t sps_unit = 7;
constexpr std::uint8_t pps = 8;
constexpr std::uint8_t aud = 9;
constexpr std::uint8_t end_of_stream = 11;

bool is_slice(std::uint8_t type)
{
    return type == slice_non_idr || type == slice_idr;
}

/// What may stand before the slices of a frame.
bool is_leading(std::uint8_t type)
{
    return type >= sei && type <= aud;
}

/// What ends a frame when a slice came before it.
bool is_boundary(std::uint8_t type)
{
    return type >= sei && type <= end_of_stream;
}

/// The payload of a unit; one zero byte behind which nothing is known stands for an absent one.
struct payload_range {
    const unsigned char* start;
    const unsigned char* fence;
};

payload_range payload_of(const h264_nal_parser_state& st)
{
    static constexpr unsigned char zero = 0;
    if (st.nal == nullptr)
        return {&zero, &zero};
    return {st.nal, st.nal_fence == nullptr ? st.nal : st.nal_fence};
}

void read_sps(h264_sps& sps, const payload_range& payload)
{
    be_bitfield bf;
    be_bitfield_open_until(&bf, payload.start, payload.fence);
    orv_utils_v4::legacy::read_seq_parameter_set_data(sps, {bf, payload.fence});
}

/// Takes the field duration from the last picture timing message.
void read_sei(h264_common_frame_scan_info& info, h264_sps& sps, const payload_range& payload)
{
    constexpr std::uint32_t pic_timing = 1;
    for (const unsigned char* p = payload.start; p < payload.fence;) {
        h264_sei_pair pair;
        p = h264_sei_read_pair(&pair, p, payload.fence);
        if (pair.valid == 0)
            return;
        h264_sei_picture_timing_info pt;
        if (pair.payload_type == pic_timing && h264_sei_picture_timing_info_parse(&pt, pair.data, pair.fence, sps) != 0)
            info.field_duration = pt.field_duration;
    }
}

/// The search for one frame.
class frame_search {
public:
    frame_search(h264_common_frame_scan_info& result, bool& sps_was_updated, h264_sps& stream_sps,
                 const unsigned char* s, const unsigned char* sf, int prefix_size, unsigned char* room,
                 std::size_t room_size, unsigned int flags)
        : info(result),
          sps_updated(sps_was_updated),
          sps(stream_sps),
          position(s),
          input_fence(sf),
          nal_length_size(static_cast<unsigned int>(prefix_size)),
          out(room),
          out_size(room_size),
          split_fields((flags & h264_common_frame_scan_split_fields) != 0)
    {
    }

    /// Where the caller's next scan begins.
    const unsigned char* run()
    {
        info = {};
        info.field_duration = 2;
        do {
            if (!fetch())
                return position;
        } while (!is_slice(st.nal_unit_type) && !is_leading(st.nal_unit_type));
        info.frame_start = st.raw_nal;
        for (bool leading = true;;) {
            leading = leading && is_leading(st.nal_unit_type);
            if (!leading && is_boundary(st.nal_unit_type)) {
                if (pair_marked || split_fields || !collecting_pair)
                    return end_before_unit();
                mark_pair();
                leading = true;
                continue; // the same unit, which leads the second field
            }
            if (!leading && is_slice(st.nal_unit_type) && slice_ends_frame())
                return end_at_slice();
            h264_common_frame_scan_on_NAL(info, sps_updated, sps, st);
            if (!fetch()) {
                info.need_more_data = st.overflow != 0 ? 0 : 1;
                return info.frame_start;
            }
        }
    }

private:
    /// Goes to the next unit; false when there is none, or it is larger than the room for it.
    bool fetch()
    {
        position = h264_nal_parser_scan(&st, out, out_size, position, input_fence, nal_length_size);
        return st.found != 0 && st.overflow == 0;
    }

    /// The first field of a pair is complete.
    void mark_pair()
    {
        pair_marked = true;
        end_field = st.raw_nal;
        saved_duration = static_cast<std::int32_t>(info.field_duration);
    }

    bool slice_ends_frame()
    {
        if (h264_slice_parse(slice, st, sps) == 0)
            return false;
        if (!collecting_pair && !pair_marked) {
            collecting_pair = slice.field_pic_flag == 1;
        } else if (collecting_pair && pair_marked && slice.field_pic_flag == 0) {
            check(end_field != nullptr, source, __LINE__, "end_field != nullptr");
            info.frame_end = end_field;
        }
        const auto frame_num = static_cast<std::int32_t>(slice.frame_num);
        if (first_frame_num >= 0)
            return frame_num != first_frame_num;
        first_frame_num = frame_num;
        return false;
    }

    const unsigned char* end_before_unit()
    {
        info.complete = 1;
        info.frame_end = st.raw_nal;
        if (saved_duration == 1 && info.field_duration == 1)
            info.field_duration = 2; // one field each
        else if (info.field_duration == 2 && !pair_marked && slice.field_pic_flag == 1 && split_fields)
            info.field_duration = 1;
        return info.frame_end;
    }

    /// At a slice with another frame_num; the first field of a pair then stands alone.
    const unsigned char* end_at_slice()
    {
        info.complete = 1;
        check(!pair_marked || end_field != nullptr, source, __LINE__, "end_field != nullptr");
        info.frame_end = pair_marked ? end_field : st.raw_nal;
        return info.frame_end;
    }

    h264_common_frame_scan_info& info;
    bool& sps_updated;
    h264_sps& sps;
    const unsigned char* position;
    const unsigned char* input_fence;
    unsigned int nal_length_size;
    unsigned char* out;
    std::size_t out_size;
    bool split_fields;

    h264_nal_parser_state st;
    h264_nal_slice_info slice;         // the last one read
    std::int32_t first_frame_num = -1; // below 0: not yet seen
    bool collecting_pair = false;      // the first picture is a field
    bool pair_marked = false;
    const unsigned char* end_field = nullptr; // where the first field of a marked pair ends
    std::int32_t saved_duration = -1;         // what was known when the pair was marked
};

} // namespace

void h264_common_frame_scan_on_NAL(h264_common_frame_scan_info& info, bool& sps_updated, h264_sps& sps,
                                   h264_nal_parser_state& st)
{
    switch (st.nal_unit_type) {
    case aud:
        info.has_aud = 1;
        break;
    case pps:
        info.has_pps = 1;
        break;
    case sps_unit:
        info.has_sps = 1;
        read_sps(sps, payload_of(st));
        sps_updated = true;
        break;
    case sei:
        read_sei(info, sps, payload_of(st));
        info.has_sei = 1;
        break;
    case slice_non_idr:
    case slice_idr:
        info.has_slice = 1;
        break;
    default:
        break;
    }
}

const unsigned char* h264_common_frame_scan(h264_common_frame_scan_info& info, bool& sps_updated, h264_sps& sps,
                                            const unsigned char* s, const unsigned char* sf, int nal_length_size,
                                            unsigned char* out, std::size_t out_size, unsigned int flags)
{
    return frame_search(info, sps_updated, sps, s, sf, nal_length_size, out, out_size, flags).run();
}
