// SEI messages of the newer exact interface against this reading, field by field, over every real stream. Where they
// depart from one another the table says so; docs/deviations.md tells why. No stream of the repository has pan-scan
// rectangles: those are made.
#include "support/exact_comparison.h"
#include "support/sei_builder.h"
#include "support/stream_builder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace orv_utils_v4::h264;
using brenik::h2645_common_bitreader;

// Both delays are read with the length of the initial one; what follows them is read elsewhere then.
constexpr departure departures[] = {
    {"pic_timing.cpb_removal_delay", true},
    {"pic_timing.dpb_output_delay", true},
    {"pic_timing.pic_struct", false},
    {"pic_timing.clock_timestamp_flag", false},
    {"pic_timing.timestamps", false},
    {"sps is refused", false}, // more than 128 frames in the picture order count cycle
};

class comparing : public exact_comparison {
private:
    void compare(const unit_reading& reading) override
    {
        brenik::h264_nal_sps old;
        if (std::get_if<seq_parameter_set_rbsp>(&reading.unit.rbsp) != nullptr && parse("sps", reading, old))
            spss.insert_or_assign(old.seq_parameter_set_id, old);
        if (const auto* const sei = std::get_if<sei_rbsp>(&reading.unit.rbsp))
            take_sei(reading, *sei);
    }

    void take_sei(const unit_reading& reading, const sei_rbsp& sei)
    {
        brenik::h264_nal_sei_reader messages(rbsp.data() + 1, rbsp.data() + rbsp.size());
        for (const sei_message& now : sei.sei_messages) {
            ASSERT_TRUE(messages.next_message());
            hold<std::uint32_t>("sei.payloadType", messages.payloadType, now.payload_type);
            hold("sei.payloadSize", messages.payloadSize, now.payload_size);
            h2645_common_bitreader br(messages.payload, messages.payload_fence);
            if (const auto* const period = std::get_if<buffering_period>(&now.payload))
                hold_period(br, *period);
            else if (const auto* const timing = std::get_if<pic_timing>(&now.payload); timing != nullptr && reading.sps)
                hold_timing(br, *timing, *reading.sps);
            else if (const auto* const point = std::get_if<recovery_point>(&now.payload))
                hold_point(br, *point);
            else if (const auto* const pan_scan = std::get_if<pan_scan_rect>(&now.payload))
                hold_pan_scan(br, *pan_scan);
            else if (const auto* const data = std::get_if<user_data_unregistered>(&now.payload))
                hold_user_data({messages.payload, messages.payload_fence}, *data);
        }
    }
    void hold_period(h2645_common_bitreader& br, const buffering_period& now)
    {
        brenik::h264_nal_sei_buffering_period old;
        if (!old.parse(br, spss))
            return;
        ++compared["buffering_period"];
        hold("buffering_period.seq_parameter_set_id", old.seq_parameter_set_id, now.seq_parameter_set_id);
        std::vector<std::uint32_t> delays;
        std::vector<std::uint32_t> offsets;
        for (const initial_cpb_removal& entry : now.nal) {
            delays.push_back(entry.initial_cpb_removal_delay);
            offsets.push_back(entry.initial_cpb_removal_delay_offset);
        }
        hold("buffering_period.nal_initial_cpb_removal_delay", old.nal_initial_cpb_removal_delay, delays);
        hold("buffering_period.nal_initial_cpb_removal_delay_offset", old.nal_initial_cpb_removal_delay_offset,
             offsets);
        hold("buffering_period.vcl", old.vcl_initial_cpb_removal_delay.size(), now.vcl.size());
    }
    void hold_timing(h2645_common_bitreader& br, const pic_timing& now, const seq_parameter_set_data& sps)
    {
        const brenik::h264_nal_sps* const old_sps = spss.find(sps.seq_parameter_set_id);
        brenik::h264_nal_sei_pic_timing old;
        if (old_sps == nullptr || !old.parse(br, *old_sps))
            return;
        ++compared["pic_timing"];
        hold("pic_timing.cpb_removal_delay", old.cpb_removal_delay, now.cpb_removal_delay);
        hold("pic_timing.dpb_output_delay", old.dpb_output_delay, now.dpb_output_delay);
        hold("pic_timing.pic_struct", old.pic_struct, now.pic_struct);
        for (std::size_t i = 0; i < std::min<std::size_t>(old.timestamps.size(), now.NumClockTS()); ++i)
            hold_timestamp(old.timestamps[i], now.timestamps[i]);
    }
    void hold_timestamp(const brenik::h264_nal_sei_pic_timing::timestamp_t& old, const clock_timestamp& now)
    {
        hold("pic_timing.clock_timestamp_flag", old.clock_timestamp_flag, now.clock_timestamp_flag);
        using numbers = std::vector<std::int64_t>;
        hold("pic_timing.timestamps",
             numbers{old.ct_type, old.nuit_field_based_flag, old.counting_type, old.full_timestamp_flag,
                     old.discontinuity_flag, old.cnt_dropped_flag, old.n_frames, old.seconds_value, old.minutes_value,
                     old.hours_value, old.time_offset},
             numbers{now.ct_type, now.nuit_field_based_flag, now.counting_type, now.full_timestamp_flag,
                     now.discontinuity_flag, now.cnt_dropped_flag, now.n_frames, now.seconds_value, now.minutes_value,
                     now.hours_value, now.time_offset});
    }
    void hold_point(h2645_common_bitreader& br, const recovery_point& now)
    {
        brenik::h264_nal_sei_recovery_point old;
        ASSERT_TRUE(old.parse(br));
        ++compared["recovery_point"];
        hold("recovery_point.recovery_frame_cnt", old.recovery_frame_cnt, now.recovery_frame_cnt);
        hold("recovery_point.exact_match_flag", old.exact_match_flag, now.exact_match_flag);
        hold("recovery_point.broken_link_flag", old.broken_link_flag, now.broken_link_flag);
        hold("recovery_point.changing_slice_group_idc", old.changing_slice_group_idc, now.changing_slice_group_idc);
    }
    void hold_pan_scan(h2645_common_bitreader& br, const pan_scan_rect& now)
    {
        brenik::h264_nal_sei_pan_scan_rect old;
        ASSERT_TRUE(old.parse(br));
        ++compared["pan_scan_rect"];
        hold("pan_scan_rect.pan_scan_rect_id", old.pan_scan_rect_id, now.pan_scan_rect_id);
        hold("pan_scan_rect.pan_scan_rect_cancel_flag", old.pan_scan_rect_cancel_flag, now.pan_scan_rect_cancel_flag);
        hold("pan_scan_rect.pan_scan_cnt_minus1", old.pan_scan_cnt_minus1, now.pan_scan_cnt_minus1);
        if (old.rects.size() > pan_scan_rect::most_rectangles) {
            shown.insert("pan_scan_rect of more than three");
            return;
        }
        for (std::size_t i = 0; i < old.rects.size(); ++i) {
            hold("pan_scan_rect.left", old.rects[i].pan_scan_rect_left_offset, now.pan_scan_rect_left_offset[i]);
            hold("pan_scan_rect.right", old.rects[i].pan_scan_rect_right_offset, now.pan_scan_rect_right_offset[i]);
            hold("pan_scan_rect.top", old.rects[i].pan_scan_rect_top_offset, now.pan_scan_rect_top_offset[i]);
            hold("pan_scan_rect.bottom", old.rects[i].pan_scan_rect_bottom_offset, now.pan_scan_rect_bottom_offset[i]);
        }
        hold("pan_scan_rect.pan_scan_rect_repetition_period", old.pan_scan_rect_repetition_period,
             now.pan_scan_rect_repetition_period);
    }
    void hold_user_data(std::pair<unsigned char*, unsigned char*> payload, const user_data_unregistered& now)
    {
        const brenik::h264_nal_sei_user_data_unreg old(payload.first, payload.second);
        ASSERT_NE(old.payload, nullptr);
        ++compared["user_data"];
        hold("user_data.uuid", std::vector<std::uint8_t>(payload.first, old.payload),
             std::vector<std::uint8_t>(now.uuid_iso_iec_11578.begin(), now.uuid_iso_iec_11578.end()));
        hold("user_data.payload", std::vector<std::uint8_t>(old.payload, old.payload_fence),
             now.user_data_payload_byte);
    }

    brenik::h2645_common_base_store<brenik::h264_nal_sps> spss;
};

TEST(ExactSei, DepartsInWhatTheTableSaysAlone)
{
    check_departures<comparing>(departures, {"buffering_period", "pic_timing", "recovery_point", "user_data"});
}

/// What is held of a stream of one message with these rectangles.
comparing compared_over(const support::pan_scan_rect_description& pan_scan)
{
    comparing comparison;
    const support::bytes rbsp = support::sei_rbsp({{2, support::written(pan_scan).made()}});
    comparison.of_stream(support::stream_builder().annexb_unit(support::sei, rbsp));
    return comparison;
}

TEST(ExactSei, PanScanRectanglesAreReadAlike)
{
    support::pan_scan_rect_description cancelled = support::pan_scan_of(1);
    cancelled.pan_scan_rect_cancel_flag = true;
    for (const auto& pan_scan : {support::pan_scan_of(1), support::pan_scan_of(2), support::pan_scan_of(3), cancelled,
                                 support::pan_scan_rect_description()}) {
        const comparing comparison = compared_over(pan_scan);
        EXPECT_EQ(comparison.compared.at("pan_scan_rect"), 1U);
        EXPECT_EQ(comparison.shown, std::set<std::string>());
    }
}

TEST(ExactSei, FourPanScanRectanglesAreReadByTheExactClassAlone)
{
    EXPECT_EQ(compared_over(support::pan_scan_of(4)).shown,
              (std::set<std::string>{"pan_scan_rect of more than three", "pan_scan_rect.pan_scan_cnt_minus1"}));
}

} // namespace
