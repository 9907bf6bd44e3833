/// @file
/// The one-byte NAL unit header of H.264 (clause 7.3.1) and the names of NAL unit types (Table 7-1).
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>

namespace brenik {

/// nal_unit_type, H.264 Table 7-1.
enum ORV_UTILS_V4_EXPORT h264_nal_unit_type : std::uint32_t {
    h264_nal_unit_type_unspecified_0 = 0,
    h264_nal_unit_type_slice_non_idr = 1,
    h264_nal_unit_type_slice_data_partition_a = 2,
    h264_nal_unit_type_slice_data_partition_b = 3,
    h264_nal_unit_type_slice_data_partition_c = 4,
    h264_nal_unit_type_slice_idr = 5,
    h264_nal_unit_type_sei = 6,
    h264_nal_unit_type_sps = 7,
    h264_nal_unit_type_pps = 8,
    h264_nal_unit_type_aud = 9,
    h264_nal_unit_type_end_of_seq = 10,
    h264_nal_unit_type_end_of_stream = 11,
    h264_nal_unit_type_filler_data = 12,
    h264_nal_unit_type_sps_extension = 13,
    h264_nal_unit_type_prefix_nal_unit = 14,
    h264_nal_unit_type_subset_sps = 15,
    h264_nal_unit_type_dps = 16,
    h264_nal_unit_type_reserved_17 = 17,
    h264_nal_unit_type_reserved_18 = 18,
    h264_nal_unit_type_slice_auxiliary = 19,
    h264_nal_unit_type_slice_extension = 20,
    h264_nal_unit_type_slice_extension_depth = 21,
    h264_nal_unit_type_reserved_22 = 22,
    h264_nal_unit_type_reserved_23 = 23,
    h264_nal_unit_type_unspecified_24 = 24,
    h264_nal_unit_type_unspecified_25 = 25,
    h264_nal_unit_type_unspecified_26 = 26,
    h264_nal_unit_type_unspecified_27 = 27,
    h264_nal_unit_type_unspecified_28 = 28,
    h264_nal_unit_type_unspecified_29 = 29,
    h264_nal_unit_type_unspecified_30 = 30,
    h264_nal_unit_type_unspecified_31 = 31,
};

/// The descriptive names of the 32 NAL unit types, by type.
extern ORV_UTILS_V4_EXPORT const char* const h264_nal_unit_type_str[32];

/// The name of a NAL unit type in h264_nal_unit_type_str; "" for a value above 31. Never null, never to be freed.
ORV_UTILS_V4_EXPORT const char* h264_nal_unit_type_to_str(h264_nal_unit_type t);

/// The NAL unit header of H.264 clause 7.3.1: forbidden_zero_bit, nal_ref_idc u(2), nal_unit_type u(5).
class ORV_UTILS_V4_EXPORT h264_nal {
public:
    /// 0 to 3; 0 when no other picture refers to the unit's content.
    unsigned char nal_ref_idc = 0;
    /// What the unit holds, 0 to 31.
    h264_nal_unit_type nal_unit_type = h264_nal_unit_type_unspecified_0;
    /// The members above come from a header byte without the forbidden bit. Who makes a header by hand, for the writer,
    /// has to set it: a header that is not valid goes out as the byte FF.
    bool valid = false;

    /// The header byte, 0 to 127, of the low bits of the members; -1 when `valid` is false.
    int encode_header() const;

    /// Sets the members from a header byte. With the forbidden bit set only `valid` changes, to false.
    void decode_header(unsigned char b);
};

} // namespace brenik
