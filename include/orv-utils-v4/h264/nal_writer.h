/// @file
/// The NAL writer for H.264.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264/nal.h>
#include <orv-utils-v4/h2645_common/nal_writer.h>

namespace brenik {

extern template class ORV_UTILS_V4_EXPORT h2645_common_nal_writer<h264_nal, h2645_common_nalfmt>;

/// Writes the NAL units of an H.264 stream; see h2645_common_nal_writer.
using h264_nal_writer = h2645_common_nal_writer<h264_nal, h2645_common_nalfmt>;

} // namespace brenik
