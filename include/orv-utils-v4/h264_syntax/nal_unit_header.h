/// @file
/// The header of a NAL unit with its extensions, H.264 clauses 7.3.1, G.7.3.1.1, H.7.3.1.1 and J.7.3.1.1.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// nal_unit_header_svc_extension(), clause G.7.3.1.1 (F.7.3.1.1 in older editions).
struct nal_unit_header_svc_extension {
    bool idr_flag = false;
    std::uint8_t priority_id = 0; ///< 0 to 63
    bool no_inter_layer_pred_flag = false;
    std::uint8_t dependency_id = 0; ///< 0 to 7
    std::uint8_t quality_id = 0;    ///< 0 to 15
    std::uint8_t temporal_id = 0;   ///< 0 to 7
    bool use_ref_base_pic_flag = false;
    bool discardable_flag = false;
    bool output_flag = false;
    std::uint8_t reserved_three_2bits = 3;

    friend ORV_UTILS_V4_EXPORT bool operator==(const nal_unit_header_svc_extension&,
                                               const nal_unit_header_svc_extension&);
};

/// nal_unit_header_mvc_extension(), clause H.7.3.1.1 (G.7.3.1.1 in older editions).
struct nal_unit_header_mvc_extension {
    bool non_idr_flag = false;
    std::uint8_t priority_id = 0; ///< 0 to 63
    std::uint16_t view_id = 0;    ///< 0 to 1023
    std::uint8_t temporal_id = 0; ///< 0 to 7
    bool anchor_pic_flag = false;
    bool inter_view_flag = false;
    bool reserved_one_bit = true;

    friend ORV_UTILS_V4_EXPORT bool operator==(const nal_unit_header_mvc_extension&,
                                               const nal_unit_header_mvc_extension&);
};

/// nal_unit_header_3davc_extension(), clause J.7.3.1.1 (I.7.3.1.1 in older editions).
struct nal_unit_header_3davc_extension {
    std::uint8_t view_idx = 0;
    bool depth_flag = false;
    bool non_idr_flag = false;
    std::uint8_t temporal_id = 0; ///< 0 to 7
    bool anchor_pic_flag = false;
    bool inter_view_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const nal_unit_header_3davc_extension&,
                                               const nal_unit_header_3davc_extension&);
};

/// What nal_unit() has before its RBSP, clause 7.3.1. The extensions count where their flags say so.
struct nal_unit_header {
    std::uint8_t nal_ref_idc = 0;   ///< 0 to 3
    std::uint8_t nal_unit_type = 0; ///< 0 to 31, Table 7-1
    bool svc_extension_flag = false;
    bool avc_3d_extension_flag = false;
    h264::nal_unit_header_svc_extension nal_unit_header_svc_extension;
    h264::nal_unit_header_mvc_extension nal_unit_header_mvc_extension;
    h264::nal_unit_header_3davc_extension nal_unit_header_3davc_extension;

    /// Types 14, 20 and 21 have an extension.
    bool extended() const noexcept { return nal_unit_type == 14 || nal_unit_type == 20 || nal_unit_type == 21; }
    /// Its extension is nal_unit_header_svc_extension; type 21 has no svc_extension_flag.
    bool scalable() const noexcept { return extended() && nal_unit_type != 21 && svc_extension_flag; }
    /// Its extension is nal_unit_header_3davc_extension; type 21 alone has the flag.
    bool avc_3d() const noexcept { return nal_unit_type == 21 && avc_3d_extension_flag; }
    /// Its extension is nal_unit_header_mvc_extension.
    bool multiview() const noexcept { return extended() && !scalable() && !avc_3d(); }
    /// nalUnitHeaderBytes: 1, 3 or 4.
    unsigned bytes() const noexcept
    {
        if (!extended())
            return 1;
        return avc_3d() ? 3 : 4;
    }

    friend ORV_UTILS_V4_EXPORT bool operator==(const nal_unit_header&, const nal_unit_header&);
};

/// IdrPicFlag of a slice with this header, clauses 7.4.1.2.4 (7-1), G.7.4.1.1, H.7.4.1.1 and J.7.4.1.1; of type 19 that
/// of its primary coded picture, which the header does not tell.
inline bool IdrPicFlag(const nal_unit_header& header) noexcept
{
    if (!header.extended())
        return header.nal_unit_type == 5;
    if (header.scalable())
        return header.nal_unit_header_svc_extension.idr_flag;
    if (header.avc_3d())
        return !header.nal_unit_header_3davc_extension.non_idr_flag;
    return !header.nal_unit_header_mvc_extension.non_idr_flag;
}

} // namespace orv_utils_v4::h264
