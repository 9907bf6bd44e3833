// Which SPS a slice stands on. Slices of types 20 and 21 activate a subset SPS, all others an SPS, whose ids are spaces
// of their own: H.264 clauses G.7.4.1.2.1, H.7.4.1.2.1, I.7.4.1.2.1 and J.7.4.1.2.1.
#include <orv-utils-v4/h264_syntax/parameter_sets.h>
#include <orv-utils-v4/h264_syntax/subset_seq_parameter_set.h>

namespace orv_utils_v4::h264 {

const seq_parameter_set_data* sps_of(const nal_unit_header& header, const pic_parameter_set_rbsp& pps,
                                     const parameter_sets& sets) noexcept
{
    if (header.nal_unit_type != 20 && header.nal_unit_type != 21)
        return sets.find_sps(pps.seq_parameter_set_id);
    const subset_seq_parameter_set_rbsp* const subset = sets.find_subset_sps(pps.seq_parameter_set_id);
    return subset != nullptr ? &subset->seq_parameter_set_data : nullptr;
}

const seq_parameter_set_data* sps_of(const pic_parameter_set_rbsp& pps, const parameter_sets& sets) noexcept
{
    const seq_parameter_set_data* const sps = sets.find_sps(pps.seq_parameter_set_id);
    if (sps != nullptr)
        return sps;
    const subset_seq_parameter_set_rbsp* const subset = sets.find_subset_sps(pps.seq_parameter_set_id);
    return subset == nullptr ? nullptr : &subset->seq_parameter_set_data;
}

} // namespace orv_utils_v4::h264
