/// @file
/// The slice header, H.264 clause 7.3.3, up to the modification of the reference picture lists.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264/nal.h>
#include <orv-utils-v4/h264/nal_pps.h>
#include <orv-utils-v4/h264/nal_sps.h>
#include <orv-utils-v4/h2645_common/base_store.h>
#include <orv-utils-v4/h2645_common/bitreader.h>

#include <cstdint>
#include <vector>

namespace brenik {

/// The kind of a slice: slice_type of H.264 Table 7-6 modulo 5.
enum ORV_UTILS_V4_EXPORT h264_slice_type_t : std::int32_t {
    h264_slice_type_P = 0,
    h264_slice_type_B = 1,
    h264_slice_type_I = 2,
    h264_slice_type_SP = 3,
    h264_slice_type_SI = 4,
};

/// The names of the five kinds of slices, by kind.
extern ORV_UTILS_V4_EXPORT const char* h264_slice_type_t_str[5];

/// The name of a kind of slice in h264_slice_type_t_str; "" for a value that is none of the five. Never null, never to
/// be freed.
ORV_UTILS_V4_EXPORT const char* h264_slice_type_t_to_string(const h264_slice_type_t& t);

/// The leading part of slice_header() of H.264 clause 7.3.3: from first_mb_in_slice to the modification of the
/// reference picture lists. What follows in the syntax (prediction weights, reference marking, QP, deblocking) is not
/// read. A parse does not clear the object: fields that the slice does not carry keep their values and list entries
/// accumulate, so use a fresh object for each slice.
class ORV_UTILS_V4_EXPORT h264_nal_slice_header {
public:
    /// How a reference picture list is modified: ref_pic_list_modification() of H.264 clause 7.3.3.1 for one list.
    struct ORV_UTILS_V4_EXPORT ref_pic_list_modification_entry_t {
        /// One step of the modification.
        struct entry {
            std::uint32_t modification_of_pic_nums_idc = 0; ///< ue(v), never 3, which ends the list
            /// ue(v): abs_diff_pic_num_minus1 when the idc is 0 or 1, long_term_pic_num when it is 2; 0 above, where
            /// nothing is read
            std::uint32_t pic_num_value = 0;
        };

        bool ref_pic_list_modification_flag = false; ///< u(1), that of list 0 or of list 1
        std::vector<entry> entries; ///< in stream order; each parse of the object appends as many as the slice sends

        /// Reads the syntax of one list and appends its steps to `entries`.
        /// @return false when 24 zero bits stand where an idc should: the data has ended, or is broken. The steps read
        ///     so far are kept
        /// @throws h2645_common_malformed_code from the bit reader
        /// @throws std::bad_alloc when there is no memory for a step
        bool parse(h2645_common_bitreader& br);
    };

    std::uint32_t first_mb_in_slice = 0;            ///< ue(v)
    std::uint32_t slice_type = 0;                   ///< ue(v), as coded (the standard: 0 to 9); see getSliceType()
    std::uint32_t pic_parameter_set_id = 0;         ///< ue(v), names a PPS of the store
    std::uint8_t colour_plane_id = 0;               ///< u(2), with separate_colour_plane_flag
    std::uint32_t frame_num = 0;                    ///< u(v), log2_max_frame_num_minus4 + 4 bits
    bool field_pic_flag = false;                    ///< u(1), not with frame_mbs_only_flag
    bool bottom_field_flag = false;                 ///< u(1), with field_pic_flag
    std::uint32_t idr_pic_id = 0;                   ///< ue(v), in IDR pictures
    std::uint32_t pic_order_cnt_lsb = 0;            ///< u(v), log2_max_pic_order_cnt_lsb_minus4 + 4 bits
    std::int32_t delta_pic_order_cnt_bottom = 0;    ///< se(v)
    std::int32_t delta_pic_order_cnt[2] = {0, 0};   ///< se(v) each
    std::uint32_t redundant_pic_cnt = 0;            ///< ue(v)
    bool direct_spatial_mv_pred_flag = false;       ///< u(1), in B slices
    bool num_ref_idx_active_override_flag = false;  ///< u(1), in P, SP and B slices
    std::uint32_t num_ref_idx_l0_active_minus1 = 0; ///< ue(v), with the flag; not inferred from the PPS
    std::uint32_t num_ref_idx_l1_active_minus1 = 0; ///< ue(v), with the flag, in B slices
    ref_pic_list_modification_entry_t ref_pic_list_modification_l0; ///< list 0, in P, SP and B slices
    ref_pic_list_modification_entry_t ref_pic_list_modification_l1; ///< list 1, in B slices
    bool IdrPicFlag = false;                                        ///< nal_unit_type is 5
    bool valid = false;                                             ///< see parse()

    /// Reads the header from behind the NAL unit header `nal`, with the PPS that it names and the SPS that the PPS
    /// names. Both are used as stored, also where their `valid` is false. Values are not checked against ranges, and
    /// bits past the end read as zero.
    /// @return true, and `valid` true, when the header was read to its end. False with `valid` false when the PPS or
    ///     the SPS is absent (nothing is read behind pic_parameter_set_id) or a list modification does not end. The
    ///     fields read so far are kept
    /// @throws h2645_common_malformed_code from the bit reader; `valid` stays as it was
    /// @throws std::bad_alloc when there is no memory for a list entry; likewise
    bool parse(h2645_common_bitreader& br, const h2645_common_base_store<h264_nal_sps>& sps_store,
               const h2645_common_base_store<h264_nal_pps>& pps_store, const h264_nal& nal);

    /// The kind of the slice: slice_type modulo 5.
    h264_slice_type_t getSliceType() const;
};

} // namespace brenik
