/// @file
/// The syntax library whole: the header syntax of H.264 as structures, read, traced, written and edited by one text
/// each; the stream, which keeps parameter sets; the unit splitter in front of it; access units and pictures behind it;
/// parameter sets to hand out, and the decoder configuration record that has them in files.
#pragma once

#include <orv-utils-v4/h264_syntax/clauses.h>
#include <orv-utils-v4/h264_syntax/decoder_configuration.h>
#include <orv-utils-v4/h264_syntax/derived.h>
#include <orv-utils-v4/h264_syntax/nal_unit.h>
#include <orv-utils-v4/h264_syntax/parameter_set_store.h>
#include <orv-utils-v4/h264_syntax/picture_size.h>
#include <orv-utils-v4/h264_syntax/pictures.h>
#include <orv-utils-v4/h264_syntax/registered_user_data.h>
#include <orv-utils-v4/h264_syntax/stream.h>
#include <orv-utils-v4/h264_syntax/unit_search.h>
#include <orv-utils-v4/h264_syntax/unit_splitter.h>
