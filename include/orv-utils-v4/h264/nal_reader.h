/// @file
/// The NAL reader for H.264.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264/nal.h>
#include <orv-utils-v4/h2645_common/nal_reader.h>

namespace brenik {

extern template class ORV_UTILS_V4_EXPORT h2645_common_nal_reader<h264_nal, h2645_common_nalfmt>;

/// Finds the NAL units of an H.264 stream and hands out their RBSP: Annex B, or behind lengths.
///
/// The order of calls: scan(); while `found`, look at `nal`; find_unit_end(), where the extent of the unit in the
/// stream matters; block_decode() into a block of your own; a h2645_common_bitreader over what it returned, and the
/// `parse` of the class that `nal.nal_unit_type` asks for; scan() again from `next`. The head of
/// h2645_common/nal_reader.h tells how to read input that comes in pieces.
using h264_nal_reader = h2645_common_nal_reader<h264_nal, h2645_common_nalfmt>;

} // namespace brenik
