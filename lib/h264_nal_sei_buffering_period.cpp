// H.264 clause D.1.2: the buffering period SEI message.
#include <orv-utils-v4/h264/nal_sei_buffering_period.h>

#include "resize_counted.h"
#include "syntax_reads.h"

namespace brenik {

namespace {

bool parse_delays(h2645_common_bitreader& br, const h264_hrd_parameters& hrd, std::vector<std::uint32_t>& delays,
                  std::vector<std::uint32_t>& offsets)
{
    if (!resize_counted(std::uint64_t{hrd.cpb_cnt_minus1} + 1, delays, offsets))
        return false;
    const auto length = static_cast<std::uint8_t>(hrd.initial_cpb_removal_delay_length_minus1 + 1);
    for (std::size_t SchedSelIdx = 0; SchedSelIdx < delays.size(); ++SchedSelIdx) {
        delays[SchedSelIdx] = br.get_wide(length);
        offsets[SchedSelIdx] = br.get_wide(length);
    }
    return true;
}

} // namespace

// H.264 D.1.2, buffering_period()
bool h264_nal_sei_buffering_period::parse(h2645_common_bitreader& br,
                                          const h2645_common_base_store<h264_nal_sps>& sps_store)
{
    seq_parameter_set_id = br.ue();
    const h264_nal_sps* const sps = sps_store.find(seq_parameter_set_id);
    if (sps == nullptr)
        return valid = false;
    const h264_vui_parameters& vui = sps->vui;
    if (vui.nal_hrd_parameters_present_flag &&
        !parse_delays(br, vui.nal_hrd, nal_initial_cpb_removal_delay, nal_initial_cpb_removal_delay_offset))
        return false;
    if (vui.vcl_hrd_parameters_present_flag &&
        !parse_delays(br, vui.vcl_hrd, vcl_initial_cpb_removal_delay, vcl_initial_cpb_removal_delay_offset))
        return false;
    return valid = true;
}

} // namespace brenik
