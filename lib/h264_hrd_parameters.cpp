// H.264 clause E.1.2: HRD parameters.
#include <orv-utils-v4/h264/hrd_parameters.h>

#include "resize_counted.h"
#include "syntax_reads.h"

namespace brenik {

// H.264 E.1.2, hrd_parameters()
bool h264_hrd_parameters::parse(h2645_common_bitreader& br)
{
    cpb_cnt_minus1 = br.ue();
    bit_rate_scale = u<4>(br);
    cpb_size_scale = u<4>(br);
    if (!resize_counted(std::uint64_t{cpb_cnt_minus1} + 1, bit_rate_value_minus1, cpb_size_value_minus1, cbr_flag))
        return false;
    for (std::size_t SchedSelIdx = 0; SchedSelIdx < cbr_flag.size(); ++SchedSelIdx) {
        bit_rate_value_minus1[SchedSelIdx] = br.ue();
        cpb_size_value_minus1[SchedSelIdx] = br.ue();
        cbr_flag[SchedSelIdx] = u<1>(br);
    }
    initial_cpb_removal_delay_length_minus1 = u<5>(br);
    cpb_removal_delay_length_minus1 = u<5>(br);
    dpb_output_delay_length_minus1 = u<5>(br);
    time_offset_length = u<5>(br);
    return valid = true;
}

} // namespace brenik
