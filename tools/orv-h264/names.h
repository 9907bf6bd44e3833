// What units and payloads are called, in a word for a person.
#pragma once

#include <orv-utils-v4/h264.h>

#include <cstdint>
#include <string>

namespace orv_h264 {

/// A NAL unit type in a word, for tables: "SPS", "slice IDR", "slice"; "type-24" for one without a name.
std::string short_unit_name(brenik::h264_nal_unit_type type);

/// The structure of an SEI payload type, H.264 D.1.1: "pic_timing"; "" of one without a name.
const char* payload_name(std::uint32_t payload_type);

} // namespace orv_h264
