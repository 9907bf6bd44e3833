// A real parse of an SEI payload beside the literal one; see literal_parse.h.
#pragma once

#include "support/literal_parse.h"
#include "support/literal_sei.h"
#include "support/sei_fields.h"

#include <cstdint>
#include <optional>

namespace support {

/// HRD parameters of which a payload may use what `hrd` has. The lengths that the standard has for the delays of a
/// picture timing differ from it.
inline brenik::h264_hrd_parameters hrd_with(const literal::stored_hrd& hrd)
{
    brenik::h264_hrd_parameters made;
    made.cpb_cnt_minus1 = static_cast<std::uint32_t>(hrd.cpb_cnt_minus1);
    made.initial_cpb_removal_delay_length_minus1 =
        static_cast<std::uint8_t>(hrd.initial_cpb_removal_delay_length_minus1);
    made.cpb_removal_delay_length_minus1 = static_cast<std::uint8_t>(made.initial_cpb_removal_delay_length_minus1 ^ 9);
    made.dpb_output_delay_length_minus1 = static_cast<std::uint8_t>(made.initial_cpb_removal_delay_length_minus1 ^ 17);
    made.time_offset_length = static_cast<std::uint8_t>(hrd.time_offset_length);
    return made;
}

/// An SPS of which a payload may use what `vui` has. It is not valid, which no payload minds.
inline brenik::h264_nal_sps sps_with(const literal::stored_vui& vui)
{
    brenik::h264_nal_sps made;
    made.vui.nal_hrd_parameters_present_flag = vui.nal.present;
    made.vui.nal_hrd = hrd_with(vui.nal);
    made.vui.vcl_hrd_parameters_present_flag = vui.vcl.present;
    made.vui.vcl_hrd = hrd_with(vui.vcl);
    made.vui.pic_struct_present_flag = vui.pic_struct_present_flag;
    return made;
}

using sei_sps_store = brenik::h2645_common_base_store<brenik::h264_nal_sps>;

inline sei_sps_store store_with(const literal::vui_store& stored)
{
    sei_sps_store store;
    for (const auto& [id, vui] : stored)
        store.insert_or_assign(static_cast<std::uint32_t>(id), sps_with(vui));
    return store;
}

struct pic_timing_parses {
    using structure = brenik::h264_nal_sei_pic_timing;
    literal::stored_vui vui = {};

    compared operator()(structure& object, const bit_range& bits) const
    {
        const brenik::h264_nal_sps seq = sps_with(vui);
        return compare_parses(
            object, bits, [&](structure& timing, brenik::h2645_common_bitreader& br) { return timing.parse(br, seq); },
            [this](const literal::structure& s) { return literal::pic_timing(s, vui); });
    }
};

/// With the current SPS of a store. Without a current one, an SPS lies under the id that stands for none.
struct current_pic_timing_parses {
    using structure = brenik::h264_nal_sei_pic_timing;
    literal::vui_store stored = {};
    std::optional<std::uint32_t> current = {};

    compared operator()(structure& object, const bit_range& bits) const
    {
        sei_sps_store store = store_with(stored);
        store.insert_or_assign(sei_sps_store::no_current_id, sps_with({}));
        store.set_current_id(current.value_or(sei_sps_store::no_current_id));
        return compare_parses(
            object, bits,
            [&](structure& timing, brenik::h2645_common_bitreader& br) { return timing.parse(br, store); },
            [this](const literal::structure& s) { return literal::pic_timing(s, stored, current); });
    }
};

struct buffering_period_parses {
    using structure = brenik::h264_nal_sei_buffering_period;
    literal::vui_store stored = {};

    compared operator()(structure& object, const bit_range& bits) const
    {
        const sei_sps_store store = store_with(stored);
        return compare_parses(
            object, bits,
            [&](structure& period, brenik::h2645_common_bitreader& br) { return period.parse(br, store); },
            [this](const literal::structure& s) { return literal::buffering_period(s, stored); });
    }
};

struct pan_scan_rect_parses {
    using structure = brenik::h264_nal_sei_pan_scan_rect;

    compared operator()(structure& object, const bit_range& bits) const
    {
        return compare_parses(
            object, bits, [](structure& pan_scan, brenik::h2645_common_bitreader& br) { return pan_scan.parse(br); },
            literal::pan_scan_rect);
    }
};

struct recovery_point_parses {
    using structure = brenik::h264_nal_sei_recovery_point;

    compared operator()(structure& object, const bit_range& bits) const
    {
        return compare_parses(
            object, bits, [](structure& recovery, brenik::h2645_common_bitreader& br) { return recovery.parse(br); },
            literal::recovery_point);
    }
};

} // namespace support
