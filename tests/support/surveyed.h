// What `orv-h264 info` adds up of a stream in memory.
#pragma once

#include "stream_summary.h"
#include "support/made_stream.h"

#include <vector>

namespace support {

inline orv_h264::stream_summary survey_of(const std::vector<unsigned char>& annex_b)
{
    namespace h264 = orv_utils_v4::h264;
    constexpr std::size_t most = h264::unit_splitter::usual_most_bytes;
    orv_h264::stream_survey survey(h264::framing::annex_b, most);
    h264::unit_splitter splitter(h264::framing::annex_b, most);
    splitter.push(annex_b.data(), annex_b.size(), survey);
    splitter.flush(survey);
    survey.finish(annex_b.size());
    return std::move(survey.summary);
}

inline orv_h264::stream_summary survey_of(const orv_utils_v4::h264::made_stream& stream)
{
    return survey_of(stream.bytes);
}

/// 25 frames a second, fixed, and pic_struct in picture timing.
inline orv_utils_v4::h264::seq_parameter_set_data timed_sps(std::uint8_t level_idc = 30)
{
    orv_utils_v4::h264::seq_parameter_set_data made = orv_utils_v4::h264::sps_data();
    made.level_idc = level_idc;
    made.vui_parameters_present_flag = true;
    orv_utils_v4::h264::vui_parameters& vui = made.vui_parameters;
    vui.timing_info_present_flag = true;
    vui.num_units_in_tick = 1;
    vui.time_scale = 50;
    vui.fixed_frame_rate_flag = true;
    vui.low_delay_hrd_flag = false;
    vui.pic_struct_present_flag = true;
    return made;
}

} // namespace support
