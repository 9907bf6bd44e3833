// The SPS of the legacy interface against this reading, field by field, over every real stream. Where they depart from
// one another the table says so; docs/deviations.md tells why.
#include "support/exact_comparison.h"
#include "support/legacy_fields.h"
#include "support/sent_elements.h"

#include <orv-utils-v4/h264_legacy.h>

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

constexpr departure departures[] = {
    {"chroma_format_idc", true}, // of profiles that do not tell it, not inferred
    {"bit_depth_luma", true},
    {"bit_depth_chroma", true},
    {"final_frame_width", false}, // without a chroma format crop units are luma samples
    {"final_frame_height", false},
    // the unit is read in another way behind them
    {"profiles of depth and of two resolutions", false}, // they do not tell the chroma format
    {"codes of 24 zeros and more", false},
};

/// Elements that a field of another name holds.
const std::map<std::string, std::string> renamed = {
    {"qprime_y_zero_transform_bypass_flag", "qpprime_y_zero_transform_bypass_flag"},
    {"overscan_info_appropriate_flag", "vui.overscan_appropriate_flag"},
    {"chroma_location_info_present_flag", "vui.chroma_loc_info_present_flag"},
    {"chroma_sample_location_type_top_field", "vui.chroma_sample_loc_type_top_field"},
    {"chroma_sample_location_type_bottom_field", "vui.chroma_sample_loc_type_bottom_field"},
    {"num_units_in_ticks", "vui.num_units_in_tick"},
};

/// Told of an SPS: its elements, and whether it has a code that the legacy interface reads in another way.
class sent_sps : public sent_elements {
public:
    void element(const traced_element& e) override
    {
        constexpr std::uint64_t of_24_zeros = 49;
        long_codes = long_codes || ((e.how == coding::ue || e.how == coding::se) && e.bits >= of_24_zeros);
        sent_elements::element(e);
    }

    bool long_codes = false;
};

class comparing : public exact_comparison {
public:
    visitor* before(const unit_place&) override { return &(sent = sent_sps()); }

private:
    void compare(const unit_reading& reading) override
    {
        const auto* const set = std::get_if<seq_parameter_set_rbsp>(&reading.unit.rbsp);
        if (set == nullptr || reading.result.failure)
            return;
        const std::uint8_t profile_idc = set->seq_parameter_set_data.profile_idc;
        if (profile_idc == 134 || profile_idc == 135 || profile_idc == 138 || profile_idc == 139)
            return static_cast<void>(shown.insert("profiles of depth and of two resolutions"));
        if (sent.long_codes)
            return static_cast<void>(shown.insert("codes of 24 zeros and more"));
        ++compared["sps"];
        held.clear();
        rbsp.resize(rbsp.size() + 64); // the parse is open-ended
        be_bitfield bits;
        be_bitfield_open(&bits, rbsp.data() + 1);
        h264_sps old;
        old.parse_sps(bits);
        hold_sps(old, set->seq_parameter_set_data);
        if (set->seq_parameter_set_data.vui_parameters_present_flag)
            hold_vui(old, set->seq_parameter_set_data.vui_parameters);
        hold_elements(support::fields_of(old));
    }

    sent_sps sent;
    std::set<std::string> held;

    /// What follows from elements, numbers of any width.
    void hold_number(const char* name, std::uint64_t old, std::uint64_t now)
    {
        held.insert(name);
        hold(name, old, now);
    }
    /// Each other field is an element: of what was not sent, 0.
    void hold_elements(const support::named_values& old)
    {
        for (const std::string& name : old.names->in_order) {
            const auto other = renamed.find(name);
            const std::string element = other != renamed.end() ? other->second : name;
            if (!held.contains(name))
                hold(name, old.at(name), sent.values[sent.values.contains(element) ? element : "vui." + element]);
        }
    }

    void hold_sps(h264_sps& old, const seq_parameter_set_data& now)
    {
        hold_number("chroma_format_idc", old.chroma_format_idc, now.chroma_format_idc);
        hold_number("bit_depth_luma", old.bit_depth_luma, BitDepthY(now));
        hold_number("bit_depth_chroma", old.bit_depth_chroma, BitDepthC(now));
        hold_number("log2_max_frame_num", old.log2_max_frame_num, now.log2_max_frame_num_minus4 + 4);
        hold_number("max_frame_num", old.max_frame_num, MaxFrameNum(now));
        hold_number("max_pic_order_cnt_lsb", old.max_pic_order_cnt_lsb,
                    now.pic_order_cnt_type == 0 ? pic_order_cnt_lsb_bits(now) : 0);
        hold_number("pic_width_in_mbps", old.pic_width_in_mbps, PicWidthInMbs(now));
        hold_number("pic_height_in_map_units", old.pic_height_in_map_units, PicHeightInMapUnits(now));
        hold_number("final_frame_width", static_cast<unsigned>(old.get_final_frame_width()), cropped_size(now).width);
        hold_number("final_frame_height", static_cast<unsigned>(old.get_final_frame_height()),
                    cropped_size(now).height);
    }

    void hold_vui(const h264_sps& old, const vui_parameters& now)
    {
        const ratio sar = sample_aspect_ratio(now);
        if (sar.numerator != 0) {
            hold_number("sar_width", old.sar_width, sar.numerator);
            hold_number("sar_height", old.sar_height, sar.denominator);
        }
        const hrd_parameters* const hrd =
            now.vcl_hrd_parameters_present_flag ? &now.vcl_hrd_parameters : timing_hrd(now); // the one read last
        if (hrd == nullptr)
            return;
        ++compared["hrd"];
        hold_number("initial_cpb_removal_delay_length", old.initial_cpb_removal_delay_length,
                    hrd->initial_cpb_removal_delay_length_minus1 + 1U);
        hold_number("cpb_removal_delay_length", old.cpb_removal_delay_length,
                    hrd->cpb_removal_delay_length_minus1 + 1U);
        hold_number("dpb_output_delay_length", old.dpb_output_delay_length, hrd->dpb_output_delay_length_minus1 + 1U);
        hold_number("time_offset_length", old.time_offset_length, hrd->time_offset_length);
    }
};

TEST(ExactLegacy, SpsDepartsInWhatTheTableSaysAlone)
{
    check_departures<comparing>(departures, {"sps", "hrd"});
}

} // namespace
