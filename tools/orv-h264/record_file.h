// AVC decoder configuration records in files of their own (ISO/IEC 14496-15 5.3.3.1).
#pragma once

#include "output_file.h"

#include <orv-utils-v4/h264_syntax/parameter_set_store.h>

#include <span>
#include <string>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// No record is larger: 31 and 255 parameter sets and as many extensions, of 65535 bytes each.
constexpr std::size_t largest_record = std::size_t{40} * 1024 * 1024;

/// The record behind the size and type of a box avcC, or all of the input where there are none.
std::span<const unsigned char> without_box_header(std::span<const unsigned char> input);

/// Why a record cannot be read or written: "SequenceParameterSet[1].profile_idc: another than ...".
std::string describe(const h264::configuration_outcome& result);

/// Gives the parameter sets of the record in a file to `to`. Throws refusal when it is none, or has none that can be
/// read, and std::system_error when it cannot be read.
void read_record(const std::string& path, h264::parameter_set_store& to);

/// The record that goes with the parameter sets of a stream and length prefixes of so many bytes. Throws refusal when
/// there is no one record for them.
std::vector<unsigned char> make_record(const std::string& stream_name, const h264::parameter_set_store& sets,
                                       unsigned length_size);

} // namespace orv_h264
