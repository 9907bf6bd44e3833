/// @file
/// The buffering period SEI message, H.264 clause D.1.2.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264/nal_sps.h>
#include <orv-utils-v4/h2645_common/base_store.h>
#include <orv-utils-v4/h2645_common/bitreader.h>

#include <cstdint>
#include <vector>

namespace brenik {

/// The buffering period SEI message: buffering_period() of H.264 clause D.1.2. The arrays have an entry for each
/// SchedSelIdx of the HRD parameters that they belong to; delays and offsets are in units of a 90 kHz clock. A parse
/// does not clear the object: the arrays of HRD parameters that the SPS does not have keep their entries.
class ORV_UTILS_V4_EXPORT h264_nal_sei_buffering_period {
public:
    std::uint32_t seq_parameter_set_id = 0;                          ///< ue(v), names an SPS of the store
    std::vector<std::uint32_t> nal_initial_cpb_removal_delay;        ///< u(v) each
    std::vector<std::uint32_t> nal_initial_cpb_removal_delay_offset; ///< u(v) each
    std::vector<std::uint32_t> vcl_initial_cpb_removal_delay;        ///< u(v) each
    std::vector<std::uint32_t> vcl_initial_cpb_removal_delay_offset; ///< u(v) each
    bool valid = false;                                              ///< see parse()

    /// Reads the payload with the SPS that it names, used as stored, also where its `valid` is false. Each value has
    /// initial_cpb_removal_delay_length_minus1 + 1 bits. Bits past the end read as zero.
    /// @return true, and `valid` true. False with `valid` false, and only the id read, when the SPS is absent; false
    ///     with `valid` as it was when HRD parameters have more than 128 CPB specifications or memory runs out
    /// @throws h2645_common_malformed_code from the bit reader; `valid` stays as it was
    bool parse(h2645_common_bitreader& br, const h2645_common_base_store<h264_nal_sps>& sps_store);
};

} // namespace brenik
