// What the numbers of H.264 mean, in words for a person. "" where a number has no meaning.
#pragma once

#include <orv-utils-v4/h264.h>

#include <cstdint>
#include <string>

namespace orv_h264 {

/// A NAL unit type in a word, for tables: "SPS", "IDR", "slice"; "type-24" for one without a name.
std::string short_unit_name(brenik::h264_nal_unit_type type);

/// The profile, H.264 Annex A, with what the constraint flags make of it.
std::string profile_name(const brenik::h264_nal_sps& sps);

/// The level, H.264 A.3: "4", "3.1", "1b".
std::string level_name(const brenik::h264_nal_sps& sps);

/// The codecs parameter of RFC 6381, clause 3.3: "avc1.640028".
std::string codec_string(const brenik::h264_nal_sps& sps);

/// H.264 Table 6-1.
std::string chroma_format_name(std::uint32_t chroma_format_idc);

/// The ratio that aspect_ratio_idc stands for, H.264 Table E-1.
std::string sample_aspect_ratio_name(const brenik::h264_vui_parameters& vui);

/// H.264 Table E-3.
std::string colour_primaries_name(std::uint8_t colour_primaries);

/// H.264 Table E-4.
std::string transfer_characteristics_name(std::uint8_t transfer_characteristics);

/// H.264 Table E-5.
std::string matrix_coefficients_name(std::uint8_t matrix_coefficients);

/// The structure of an SEI payload type, H.264 D.1.1: "pic_timing"; "" of one without a name.
const char* payload_name(std::uint32_t payload_type);

/// Likewise; "payloadType 203" for one without a name.
std::string payload_type_name(brenik::h264_nal_sei_payload_type type);

} // namespace orv_h264
