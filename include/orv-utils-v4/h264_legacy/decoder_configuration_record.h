/// @file
/// The AVC decoder configuration record of ISO/IEC 14496-15 clause 5.2.4.1, the payload of the box avcC.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>

/// An AVC decoder configuration record, checked and indexed. The pointers point into the caller's buffer.
///
/// An entry of either list is a big-endian length of 16 bits and so many bytes of a NAL unit, header byte included. So
/// each list is a length-prefixed buffer: brenik::h264_nal_reader walks it with `nalfmt_length2`, up to a length of 0
/// (it never writes, so that const may be cast away), and h264_nal_parser_scan() with a `nal_length_size` of 2.
struct h264_AVCDecoderConfigurationRecord {
    std::uint8_t configurationVersion = 0;       ///< as it stands (the standard: 1)
    std::uint8_t AVCProfileIndication = 0;       ///< profile_idc
    std::uint8_t profile_compatibility = 0;      ///< the constraint flags of the SPS
    std::uint8_t AVCLevelIndication = 0;         ///< level_idc
    std::uint8_t lengthSizeMinusOne = 0;         ///< 0 to 3: the bytes of a length prefix, less one
    std::uint8_t numOfSequenceParameterSets = 0; ///< 0 to 31
    const unsigned char* sps_list = nullptr;     ///< the first SPS entry
    const unsigned char* sps_list_end = nullptr; ///< one past the last SPS entry
    std::uint8_t numOfPictureParameterSets = 0;  ///< 0 to 255
    const unsigned char* pps_list = nullptr;     ///< the first PPS entry
    const unsigned char* pps_list_end = nullptr; ///< one past the last PPS entry, where an extension may begin
};

/// Reads the record [`s`, `sf`) into `r`. Reserved bits are not looked at.
/// @return 0; -1 when the record is too short for what it announces, and also when it ends directly behind a number of
///     PPSs of 0. The members read before stay set, the others keep their values
ORV_UTILS_V4_EXPORT int h264_AVCDecoderConfigurationRecord_parse(h264_AVCDecoderConfigurationRecord* r,
                                                                 const unsigned char* s, const unsigned char* sf);
