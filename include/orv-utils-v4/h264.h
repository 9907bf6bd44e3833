/// @file
/// The whole newer interface: namespace `brenik`, a class per syntax structure, and the layer it shares with H.265.
#pragma once

#include <orv-utils-v4/h264/hrd_parameters.h>
#include <orv-utils-v4/h264/nal.h>
#include <orv-utils-v4/h264/nal_aud.h>
#include <orv-utils-v4/h264/nal_pps.h>
#include <orv-utils-v4/h264/nal_reader.h>
#include <orv-utils-v4/h264/nal_sei.h>
#include <orv-utils-v4/h264/nal_sei_buffering_period.h>
#include <orv-utils-v4/h264/nal_sei_pan_scan_rect.h>
#include <orv-utils-v4/h264/nal_sei_pic_timing.h>
#include <orv-utils-v4/h264/nal_sei_recovery_point.h>
#include <orv-utils-v4/h264/nal_sei_user_data_unreg.h>
#include <orv-utils-v4/h264/nal_slice_header.h>
#include <orv-utils-v4/h264/nal_sps.h>
#include <orv-utils-v4/h264/nal_writer.h>
#include <orv-utils-v4/h264/scaling_list.h>
#include <orv-utils-v4/h264/vui_parameters.h>
#include <orv-utils-v4/h2645_common/base_store.h>
#include <orv-utils-v4/h2645_common/bitreader.h>
#include <orv-utils-v4/h2645_common/nal_reader.h>
#include <orv-utils-v4/h2645_common/nal_writer.h>
#include <orv-utils-v4/h2645_common/nalfmt.h>
#include <orv-utils-v4/h2645_common/sei_vlu32.h>
#include <orv-utils-v4/h2645_common/uuid.h>
#include <orv-utils-v4/version.h>
