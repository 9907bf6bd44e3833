/// @file
/// The SEI payloads view_scalability_info() (H.264 clauses H.13.1.3 and H.13.2.3) and mvcd_view_scalability_info()
/// (clauses I.13.1 and I.13.2): the operation points of a multiview stream. G.13 and H.13 in editions that letter the
/// annexes F to I.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_syntax/sei/stream_info.h>

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// mvcd_op_view_info(): what of a view is there and which of it is meant.
struct mvcd_op_view_info {
    bool view_info_depth_view_present_flag = false;
    bool mvcd_depth_view_flag = false;
    bool view_info_texture_view_present_flag = false;
    bool mvcd_texture_view_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvcd_op_view_info&, const mvcd_op_view_info&);
};

/// An operation point: the elements with the index i.
struct view_scalability_operation_point {
    std::uint32_t operation_point_id = 0;             ///< 0 to 65535
    std::uint8_t priority_id = 0;                     ///< 0 to 31
    std::uint8_t temporal_id = 0;                     ///< 0 to 7
    std::uint32_t num_target_output_views_minus1 = 0; ///< 0 to 1023
    std::vector<std::uint32_t> view_id;               ///< 0 to 1023 each
    std::vector<mvcd_op_view_info> view_info;         ///< of mvcd_view_scalability_info() alone, by view_id
    bool profile_level_info_present_flag = false;
    bool bitrate_info_present_flag = false;
    bool frm_rate_info_present_flag = false;
    bool view_dependency_info_present_flag = false; ///< sent for one target view
    bool parameter_sets_info_present_flag = false;
    bool bitstream_restriction_info_present_flag = false;
    std::uint32_t op_profile_level_idc = 0;    ///< the three bytes from profile_idc to level_idc
    std::uint16_t avg_bitrate = 0;             ///< 1000 bit/s
    std::uint16_t max_bitrate = 0;             ///< 1000 bit/s
    std::uint16_t max_bitrate_calc_window = 0; ///< 1/100 s
    std::uint8_t constant_frm_rate_idc = 0;    ///< 0 to 2: not constant, constant, not known
    std::uint16_t avg_frm_rate = 0;            ///< frames in 256 s
    std::uint32_t num_directly_dependent_views = 0;
    std::vector<std::uint32_t> directly_dependent_view_id;       ///< 0 to 1023 each
    std::vector<mvcd_op_view_info> directly_dependent_view_info; ///< of mvcd_view_scalability_info() alone
    std::uint32_t view_dependency_info_src_op_id = 0;            ///< 0 to 65535
    required_parameter_sets parameter_sets;
    std::uint32_t parameter_sets_info_src_op_id = 0; ///< 0 to 65535
    bitstream_restriction_info bitstream_restriction;

    friend ORV_UTILS_V4_EXPORT bool operator==(const view_scalability_operation_point&,
                                               const view_scalability_operation_point&);
};

/// view_scalability_info(), payload type 38.
struct view_scalability_info {
    static constexpr std::uint32_t most_operation_points = 1024;

    std::uint32_t num_operation_points_minus1 = 0; ///< 0 to 1023
    std::vector<view_scalability_operation_point> operation_points;

    friend ORV_UTILS_V4_EXPORT bool operator==(const view_scalability_info&, const view_scalability_info&);
};

/// mvcd_view_scalability_info(), payload type 49.
struct mvcd_view_scalability_info {
    static constexpr std::uint32_t most_operation_points = 1024;

    std::uint32_t num_operation_points_minus1 = 0; ///< 0 to 1023
    std::vector<view_scalability_operation_point> operation_points;

    friend ORV_UTILS_V4_EXPORT bool operator==(const mvcd_view_scalability_info&, const mvcd_view_scalability_info&);
};

} // namespace orv_utils_v4::h264
