/// @file
/// The NAL reader for H.264.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264/nal.h>
#include <orv-utils-v4/h2645_common/nal_reader.h>

namespace brenik {

extern template class ORV_UTILS_V4_EXPORT h2645_common_nal_reader<h264_nal, h2645_common_nalfmt>;

/// Finds the NAL units of an H.264 stream; see h2645_common_nal_reader.
using h264_nal_reader = h2645_common_nal_reader<h264_nal, h2645_common_nalfmt>;

} // namespace brenik
