/// @file
/// The whole legacy interface: free functions `h264_*` and the class `h264_sps`.
#pragma once

#include <orv-utils-v4/h264_legacy/decoder_configuration_record.h>
#include <orv-utils-v4/h264_legacy/frame_scan.h>
#include <orv-utils-v4/h264_legacy/golomb.h>
#include <orv-utils-v4/h264_legacy/nal_parser.h>
#include <orv-utils-v4/h264_legacy/nal_writer.h>
#include <orv-utils-v4/h264_legacy/sei.h>
#include <orv-utils-v4/h264_legacy/slice.h>
#include <orv-utils-v4/h264_legacy/sps.h>
#include <orv-utils-v4/misc/be_bitfields.h>
#include <orv-utils-v4/version.h>
