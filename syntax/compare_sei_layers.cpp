// Equality of the SEI payloads of Annexes G to J: member by member.
#include <orv-utils-v4/h264_syntax/sei/depth.h>
#include <orv-utils-v4/h264_syntax/sei/multiview.h>
#include <orv-utils-v4/h264_syntax/sei/multiview_acquisition_info.h>
#include <orv-utils-v4/h264_syntax/sei/scalability_info.h>
#include <orv-utils-v4/h264_syntax/sei/scalable.h>
#include <orv-utils-v4/h264_syntax/sei/sei.h>
#include <orv-utils-v4/h264_syntax/sei/view_scalability_info.h>

namespace orv_utils_v4::h264 {

bool operator==(const required_parameter_sets&, const required_parameter_sets&) = default;
bool operator==(const bitstream_restriction_info&, const bitstream_restriction_info&) = default;

bool operator==(const scalability_info_roi&, const scalability_info_roi&) = default;
bool operator==(const scalability_info_rewriting&, const scalability_info_rewriting&) = default;
bool operator==(const scalability_info_layer&, const scalability_info_layer&) = default;
bool operator==(const scalability_info_priority&, const scalability_info_priority&) = default;
bool operator==(const scalability_info_priorities&, const scalability_info_priorities&) = default;
bool operator==(const scalability_info&, const scalability_info&) = default;

bool operator==(const sub_pic_scalable_layer&, const sub_pic_scalable_layer&) = default;
bool operator==(const non_required_layer_rep_id&, const non_required_layer_rep_id&) = default;
bool operator==(const non_required_layer_rep_entry&, const non_required_layer_rep_entry&) = default;
bool operator==(const non_required_layer_rep&, const non_required_layer_rep&) = default;
bool operator==(const priority_layer_info&, const priority_layer_info&) = default;
bool operator==(const layers_not_present&, const layers_not_present&) = default;
bool operator==(const layer_dependency&, const layer_dependency&) = default;
bool operator==(const layer_dependency_change&, const layer_dependency_change&) = default;
bool operator==(const scalable_nesting_layer&, const scalable_nesting_layer&) = default;
bool operator==(const scalable_nesting&, const scalable_nesting&) = default;
bool operator==(const base_layer_temporal_hrd_layer&, const base_layer_temporal_hrd_layer&) = default;
bool operator==(const base_layer_temporal_hrd&, const base_layer_temporal_hrd&) = default;
bool operator==(const quality_layer_integrity_entry&, const quality_layer_integrity_entry&) = default;
bool operator==(const quality_layer_integrity_check&, const quality_layer_integrity_check&) = default;
bool operator==(const redundant_pic_match&, const redundant_pic_match&) = default;
bool operator==(const redundant_pic_quality&, const redundant_pic_quality&) = default;
bool operator==(const redundant_pic_dependency&, const redundant_pic_dependency&) = default;
bool operator==(const redundant_pic_property&, const redundant_pic_property&) = default;
bool operator==(const tl0_dep_rep_index&, const tl0_dep_rep_index&) = default;
bool operator==(const tl_switching_point&, const tl_switching_point&) = default;

bool operator==(const mvcd_op_view_info&, const mvcd_op_view_info&) = default;
bool operator==(const view_scalability_operation_point&, const view_scalability_operation_point&) = default;
bool operator==(const view_scalability_info&, const view_scalability_info&) = default;
bool operator==(const mvcd_view_scalability_info&, const mvcd_view_scalability_info&) = default;

bool operator==(const mvc_scalable_nesting&, const mvc_scalable_nesting&) = default;
bool operator==(const multiview_scene_info&, const multiview_scene_info&) = default;
bool operator==(const non_required_view_entry&, const non_required_view_entry&) = default;
bool operator==(const non_required_view_component&, const non_required_view_component&) = default;
bool operator==(const view_dependency_flags&, const view_dependency_flags&) = default;
bool operator==(const view_dependency_change&, const view_dependency_change&) = default;
bool operator==(const operation_points_not_present&, const operation_points_not_present&) = default;
bool operator==(const base_view_temporal_hrd_layer&, const base_view_temporal_hrd_layer&) = default;
bool operator==(const base_view_temporal_hrd&, const base_view_temporal_hrd&) = default;
bool operator==(const multiview_view_position&, const multiview_view_position&) = default;

bool operator==(const acquisition_parameter&, const acquisition_parameter&) = default;
bool operator==(const intrinsic_camera_parameters&, const intrinsic_camera_parameters&) = default;
bool operator==(const extrinsic_camera_parameters&, const extrinsic_camera_parameters&) = default;
bool operator==(const multiview_acquisition_info&, const multiview_acquisition_info&) = default;

bool operator==(const mvcd_nesting_view&, const mvcd_nesting_view&) = default;
bool operator==(const mvcd_nesting_op_view&, const mvcd_nesting_op_view&) = default;
bool operator==(const mvcd_scalable_nesting&, const mvcd_scalable_nesting&) = default;
bool operator==(const depth_representation_sei_element&, const depth_representation_sei_element&) = default;
bool operator==(const depth_representation_view&, const depth_representation_view&) = default;
bool operator==(const depth_representation_info&, const depth_representation_info&) = default;
bool operator==(const reference_display_parameter&, const reference_display_parameter&) = default;
bool operator==(const reference_display&, const reference_display&) = default;
bool operator==(const three_dimensional_reference_displays_info&,
                const three_dimensional_reference_displays_info&) = default;
bool operator==(const depth_timing_offset&, const depth_timing_offset&) = default;
bool operator==(const depth_timing&, const depth_timing&) = default;
bool operator==(const sei_depth_grid_position&, const sei_depth_grid_position&) = default;
bool operator==(const depth_sampling_view&, const depth_sampling_view&) = default;
bool operator==(const depth_sampling_info&, const depth_sampling_info&) = default;
bool operator==(const constrained_depth_parameter_set_identifier&,
                const constrained_depth_parameter_set_identifier&) = default;

} // namespace orv_utils_v4::h264
