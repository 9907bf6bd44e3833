// What the framings are called, and what their numbers mean.
#pragma once

#include <orv-utils-v4/h264.h>
#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <string>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// The bytes of the length prefix before each unit, ISO/IEC 14496-15; 0 in Annex B, which has start codes instead.
constexpr unsigned int prefix_size_of(h264::framing framing)
{
    return static_cast<unsigned int>(framing);
}

constexpr brenik::h2645_common_nalfmt nalfmt_of(h264::framing framing)
{
    return framing == h264::framing::annex_b ? brenik::nalfmt_annexb
                                             : static_cast<brenik::h2645_common_nalfmt>(prefix_size_of(framing));
}

/// The framing as the command line has it: "annexb", "length4".
std::string framing_name(h264::framing framing);

} // namespace orv_h264
