/// @file
/// The NAL writer for H.264.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264/nal.h>
#include <orv-utils-v4/h2645_common/nal_writer.h>

namespace brenik {

extern template class ORV_UTILS_V4_EXPORT h2645_common_nal_writer<h264_nal, h2645_common_nalfmt>;

/// Writes the NAL units of an H.264 stream: Annex B, or behind lengths.
///
/// The order of calls: made with a buffer of recommended_output_size() bytes; for each unit a header, `valid` set to
/// true, and block_encode(), which gives 0 when the unit does not fit; data_length() tells how much was written.
/// setbuf() goes on in another buffer.
using h264_nal_writer = h2645_common_nal_writer<h264_nal, h2645_common_nalfmt>;

} // namespace brenik
