// Parameter sets and slice headers of the newer exact interface against this reading, field by field, over every real
// stream. Where they depart from one another the table says so; docs/deviations.md tells why.
#include "support/exact_comparison.h"
#include "support/sent_elements.h"
#include "support/slice_header_fields.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace orv_utils_v4::h264;
using support::fields_of;

constexpr departure departures[] = {
    {"sps.chroma_format_idc", true},                            // inferred as 1 where it is not sent
    {"sps.vui.sar_width", true},                                // of Table E-1, too
    {"sps.vui.sar_height", true},    {"sps is refused", false}, // more than 128 frames in the picture order count cycle
    {"pps is refused", false},                                  // its SPS is missing, or refused
};

/// Fields that are no elements.
const std::set<std::string> made_up = {"valid",
                                       "SubWidthC",
                                       "SubHeightC",
                                       "high_profile_syntax_present",
                                       "IdrPicFlag",
                                       "vui.valid",
                                       "vui.nal_hrd.valid",
                                       "vui.vcl_hrd.valid",
                                       "vui.extended_sar",
                                       "more_rbsp_data_present"};

bool is_list_content(const std::string& name)
{
    const bool scaling = name.find("_4x4[") != std::string::npos || name.find("_8x8[") != std::string::npos;
    return (scaling && name.find(".present") == std::string::npos) || name.rfind("ref_pic_list_modification_l", 0) == 0;
}

class comparing : public exact_comparison {
public:
    visitor* before(const unit_place&) override { return &(sent = sent_elements()); }

private:
    void compare(const unit_reading& reading) override
    {
        if (std::get_if<seq_parameter_set_rbsp>(&reading.unit.rbsp) != nullptr)
            take_sps(reading);
        else if (std::get_if<pic_parameter_set_rbsp>(&reading.unit.rbsp) != nullptr)
            take_pps(reading);
        else if (const auto* const slice = std::get_if<slice_layer_without_partitioning_rbsp>(&reading.unit.rbsp))
            take_slice(reading, slice->slice_header);
    }

    using exact_comparison::hold;
    /// Each element that was sent, and each field: of what was not sent, 0.
    void hold(const std::string& what, const support::named_values& old)
    {
        const std::string structure = what + ".";
        for (const auto& element : sent.values) {
            if (!old.names->contain(element.first))
                shown.insert(structure + element.first + " is not read");
        }
        for (const std::string& name : old.names->in_order) {
            if (made_up.contains(name) || is_list_content(name))
                continue;
            support::value now = sent.values[name];
            const support::value& then = old.at(name);
            now.entries.resize(std::max(now.entries.size(), then.entries.size()));
            if (!(then == now))
                shown.insert(structure + name);
        }
    }
    void hold_list(const std::string& name, const brenik::h264_scaling_list& old, const scaling_list& now,
                   unsigned size)
    {
        seq_parameter_set_data alone;
        alone.seq_scaling_matrix_present_flag = true;
        const unsigned i = size == 16 ? 0 : 6;
        alone.seq_scaling_list_present_flag[i] = true;
        alone.lists[i] = now;
        const scaling_lists lists = scaling_lists_of(alone, nullptr);
        const std::uint8_t* const first = size == 16 ? lists.list_4x4[0] : lists.list_8x8[0];
        if (!old.useDefaultScalingMatrixFlag)
            hold(name, old.values, std::vector<std::uint8_t>(first, first + size));
        hold(name + ".useDefaultScalingMatrixFlag", old.useDefaultScalingMatrixFlag,
             !now.delta_scale.empty() && (now.delta_scale[0] + 8) % 256 == 0);
    }
    template <class Lists>
    void hold_lists(const char* name, const Lists& old_4x4, const Lists& old_8x8, const bool* present,
                    const scaling_list* now)
    {
        for (unsigned i = 0; i < 12; ++i) {
            if (present[i])
                hold_list(name, i < 6 ? old_4x4[i] : old_8x8[i - 6], now[i], i < 6 ? 16 : 64);
        }
    }

    void take_sps(const unit_reading& reading)
    {
        brenik::h264_nal_sps old;
        if (!parse("sps", reading, old))
            return;
        hold("sps", fields_of(old));
        const auto& now = std::get<seq_parameter_set_rbsp>(reading.unit.rbsp).seq_parameter_set_data;
        hold_lists("sps.scaling_list", old.scaling_list_4x4, old.scaling_list_8x8, now.seq_scaling_list_present_flag,
                   now.lists);
        hold<std::uint64_t>("sps.getCroppedPicWidth()", old.getCroppedPicWidth(), cropped_size(now).width);
        hold<std::uint64_t>("sps.getCroppedPicHeight()", old.getCroppedPicHeight(), cropped_size(now).height);
        spss.insert_or_assign(old.seq_parameter_set_id, old);
    }

    void take_pps(const unit_reading& reading)
    {
        brenik::h264_nal_pps old;
        if (!parse("pps", reading, old, spss))
            return;
        hold("pps", fields_of(old));
        const auto& now = std::get<pic_parameter_set_rbsp>(reading.unit.rbsp);
        hold("pps.more_rbsp_data_present", old.more_rbsp_data_present, now.transform_8x8_mode_sent);
        hold_lists("pps.pic_scaling_list", old.pic_scaling_list_4x4, old.pic_scaling_list_8x8,
                   now.pic_scaling_list_present_flag, now.lists);
        ppss.insert_or_assign(old.pic_parameter_set_id, old);
    }

    template <class List>
    void hold_modification(const brenik::h264_nal_slice_header::ref_pic_list_modification_entry_t& old, bool flag,
                           const List& now)
    {
        hold("slice.ref_pic_list_modification_flag", old.ref_pic_list_modification_flag, flag);
        hold("slice.modifications", old.entries.size(), now.size() - (now.empty() ? 0 : 1));
        for (std::size_t i = 0; i < old.entries.size(); ++i) {
            const std::uint32_t value =
                now[i].modification_of_pic_nums_idc == 2 ? now[i].long_term_pic_num : now[i].abs_diff_pic_num_minus1;
            hold("slice.modifications", old.entries[i].modification_of_pic_nums_idc,
                 now[i].modification_of_pic_nums_idc);
            hold("slice.modifications", old.entries[i].pic_num_value, value);
        }
    }
    void take_slice(const unit_reading& reading, const slice_header& now)
    {
        if (reading.unit.header.nal_unit_type == 19)
            return;
        brenik::h264_nal header;
        header.decode_header(rbsp[0]);
        brenik::h264_nal_slice_header old;
        if (!parse("slice", reading, old, spss, ppss, header))
            return;
        hold("slice", fields_of(old));
        hold("slice.IdrPicFlag", old.IdrPicFlag, IdrPicFlag(reading.unit.header));
        const auto& lists = now.ref_pic_list_modification;
        hold_modification(old.ref_pic_list_modification_l0, lists.ref_pic_list_modification_flag_l0, lists.l0);
        hold_modification(old.ref_pic_list_modification_l1, lists.ref_pic_list_modification_flag_l1, lists.l1);
    }

    sent_elements sent;
    brenik::h2645_common_base_store<brenik::h264_nal_sps> spss;
    brenik::h2645_common_base_store<brenik::h264_nal_pps> ppss;
};

TEST(ExactClasses, DepartInWhatTheTableSaysAlone)
{
    check_departures<comparing>(departures, {"sps", "pps", "slice"});
}

} // namespace
