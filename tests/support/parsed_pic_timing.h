// Picture timings after a parse, for their tests.
#pragma once

#include "support/literal_sei_parse.h"
#include "support/parsed.h"
#include "support/sei_builder.h"

#include <orv-utils-v4/h264/nal_sei_pic_timing.h>

namespace support {

/// An SPS with both HRD parameters and pic_struct; its lengths are those of a new description.
inline brenik::h264_nal_sps timing_sps(bool hrd = true, bool pic_struct = true)
{
    return sps_with({{hrd}, {hrd}, pic_struct});
}

/// A picture timing parsed with an SPS.
struct parsed_timing : parsed<brenik::h264_nal_sei_pic_timing> {
    template <typename Written>
    explicit parsed_timing(const Written& timing, const brenik::h264_nal_sei_pic_timing& before = {},
                           const brenik::h264_nal_sps& seq = timing_sps())
        : parsed(timing, before, seq)
    {
    }
};

/// What a parse of full_pic_timing() leaves.
inline brenik::h264_nal_sei_pic_timing full_timing(bool valid = true)
{
    return with_valid(valid, parsed_timing(written(full_pic_timing())).object);
}

} // namespace support
