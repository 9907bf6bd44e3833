// H.264 clauses 7.3.2.3.1 and D.1.3 for the legacy interface: SEI messages, and how long picture timing shows a
// picture.
#include <orv-utils-v4/h264_legacy/sei.h>

#include "legacy_bits.h"

#include <orv-utils-v4/h2645_common/advance_past.h>
#include <orv-utils-v4/misc/assertion.h>

#include <iterator>

using brenik::range_size;
using orv_utils_v4::check;

namespace {

constexpr const char* source = "lib/sps";
constexpr std::uint32_t pic_timing = 1;
constexpr std::uint32_t usual_field_duration = 2;

// H.264 Table D-1, the pic_struct values that are not reserved
constexpr std::uint8_t field_durations[] = {2, 1, 1, 2, 2, 3, 3, 4, 6};

/// Adds the bytes of a type or size to `sum`, and goes past them; false when the last one is not before `sf`.
bool read_sum(std::uint32_t& sum, const unsigned char*& p, const unsigned char* sf)
{
    while (p != sf) {
        const unsigned char byte = *p++;
        sum += byte;
        if (byte != 0xFF)
            return true;
    }
    return false;
}

} // namespace

// H.264 7.3.2.3.1, sei_message()
const unsigned char* h264_sei_read_pair(h264_sei_pair* pair, const unsigned char* s, const unsigned char* sf)
{
    *pair = {};
    pair->start = s;
    if (range_size(s, sf) == 0)
        return sf;
    const unsigned char* p = s;
    if (!read_sum(pair->payload_type, p, sf) || !read_sum(pair->payload_size, p, sf))
        return sf;
    pair->data = p;
    pair->fence = brenik::advance_past(p, pair->payload_size);
    if (pair->payload_size > range_size(p, sf))
        return sf;
    pair->valid = 1;
    return pair->fence;
}

// H.264 D.1.3, pic_timing() up to pic_struct
int h264_sei_picture_timing_info_parse(h264_sei_picture_timing_info* pt, const unsigned char* s,
                                       const unsigned char* sf, h264_sps& sps)
{
    *pt = {};
    pt->field_duration = usual_field_duration;
    if (range_size(s, sf) == 0)
        return 0;
    be_bitfield bf;
    be_bitfield_open_until(&bf, s, sf);
    const orv_utils_v4::legacy::legacy_bits bits{bf, sf};
    if (sps.nal_hrd_parameters_present_flag != 0 || sps.vcl_hrd_parameters_present_flag != 0) {
        pt->cpb_removal_delay = bits.u(sps.cpb_removal_delay_length);
        pt->dpb_output_delay = bits.u(sps.dpb_output_delay_length);
    }
    if (sps.pic_struct_present_flag == 0)
        return 1;
    pt->pic_struct = bits.u(4);
    pt->field_duration = pt->pic_struct < std::size(field_durations) ? field_durations[pt->pic_struct] : 0;
    return 1;
}

int h264_sei_get_field_duration(h264_sps& sps, const unsigned char* s, const unsigned char* sf)
{
    while (range_size(s, sf) != 0) {
        h264_sei_pair pair;
        s = h264_sei_read_pair(&pair, s, sf);
        if (pair.valid == 0)
            break;
        check(pair.data != nullptr, source, __LINE__, "pair.data != nullptr");
        check(pair.data <= pair.fence, source, __LINE__, "pair.data <= pair.fence");
        if (pair.payload_type != pic_timing)
            continue;
        h264_sei_picture_timing_info pt;
        const int read = h264_sei_picture_timing_info_parse(&pt, pair.data, pair.fence, sps);
        return static_cast<int>(read != 0 ? pt.field_duration : usual_field_duration);
    }
    return usual_field_duration;
}
