/// @file
/// The parameter sets of a stream by their ids: what the table of a PPS, a slice header or an SEI message takes from
/// elsewhere.
#pragma once

#include <orv-utils-v4/h264_syntax/nal_unit_header.h>
#include <orv-utils-v4/h264_syntax/pic_parameter_set.h>
#include <orv-utils-v4/h264_syntax/seq_parameter_set.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

struct subset_seq_parameter_set_rbsp;
struct depth_parameter_set_rbsp;

/// Parameter sets by id; SPS and subset SPS are stores of their own. The sets live elsewhere: a null pointer stands for
/// one that is not there.
struct parameter_sets {
    static constexpr std::uint32_t sps_ids = 32;  ///< ids 0 to 31, clause 7.4.2.1.1
    static constexpr std::uint32_t pps_ids = 256; ///< ids 0 to 255, clause 7.4.2.2
    static constexpr std::uint32_t dps_ids = 64;  ///< ids 0 to 63, clause J.7.4.2

    const seq_parameter_set_rbsp* sps[sps_ids] = {};
    const subset_seq_parameter_set_rbsp* subset_sps[sps_ids] = {};
    const pic_parameter_set_rbsp* pps[pps_ids] = {};
    const depth_parameter_set_rbsp* dps[dps_ids] = {};

    /// The data of the SPS with this id, or null.
    const seq_parameter_set_data* find_sps(std::uint32_t id) const noexcept
    {
        return id < sps_ids && sps[id] != nullptr ? &sps[id]->seq_parameter_set_data : nullptr;
    }
    /// The subset SPS with this id, or null.
    const subset_seq_parameter_set_rbsp* find_subset_sps(std::uint32_t id) const noexcept
    {
        return id < sps_ids ? subset_sps[id] : nullptr;
    }
    /// The PPS with this id, or null.
    const pic_parameter_set_rbsp* find_pps(std::uint32_t id) const noexcept { return id < pps_ids ? pps[id] : nullptr; }
    /// The depth parameter set with this id, or null.
    const depth_parameter_set_rbsp* find_dps(std::uint32_t id) const noexcept
    {
        return id < dps_ids ? dps[id] : nullptr;
    }
};

/// The SPS that a slice with this header stands on: in other layers and views the subset SPS. Null when it is not
/// there.
ORV_UTILS_V4_EXPORT const seq_parameter_set_data*
sps_of(const nal_unit_header& header, const pic_parameter_set_rbsp& pps, const parameter_sets& sets) noexcept;

/// The SPS that a PPS is read with: the one that it names, else the subset SPS of that id; null when neither is there.
ORV_UTILS_V4_EXPORT const seq_parameter_set_data* sps_of(const pic_parameter_set_rbsp& pps,
                                                         const parameter_sets& sets) noexcept;

} // namespace orv_utils_v4::h264
