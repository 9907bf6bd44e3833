// Comparisons of the structures of layers, views, depth and the small units: member by member.
#include <orv-utils-v4/h264_syntax/depth_parameter_set.h>
#include <orv-utils-v4/h264_syntax/other_units.h>
#include <orv-utils-v4/h264_syntax/slice_layer_extension.h>
#include <orv-utils-v4/h264_syntax/subset_seq_parameter_set.h>

namespace orv_utils_v4::h264 {

bool operator==(const access_unit_delimiter_rbsp&, const access_unit_delimiter_rbsp&) = default;
bool operator==(const end_of_seq_rbsp&, const end_of_seq_rbsp&) = default;
bool operator==(const end_of_stream_rbsp&, const end_of_stream_rbsp&) = default;
bool operator==(const filler_data_rbsp&, const filler_data_rbsp&) = default;
bool operator==(const three_dv_value&, const three_dv_value&) = default;
bool operator==(const three_dv_acquisition_element&, const three_dv_acquisition_element&) = default;
bool operator==(const depth_ranges&, const depth_ranges&) = default;
bool operator==(const view_disparity&, const view_disparity&) = default;
bool operator==(const vsp_param&, const vsp_param&) = default;
bool operator==(const depth_parameter_set_rbsp&, const depth_parameter_set_rbsp&) = default;
bool operator==(const seq_parameter_set_svc_extension&, const seq_parameter_set_svc_extension&) = default;
bool operator==(const vui_extension_timing&, const vui_extension_timing&) = default;
bool operator==(const svc_vui_entry&, const svc_vui_entry&) = default;
bool operator==(const svc_vui_parameters_extension&, const svc_vui_parameters_extension&) = default;
bool operator==(const inter_view_references&, const inter_view_references&) = default;
bool operator==(const mvc_view&, const mvc_view&) = default;
bool operator==(const mvc_operation_point&, const mvc_operation_point&) = default;
bool operator==(const mvc_level&, const mvc_level&) = default;
bool operator==(const seq_parameter_set_mvc_extension&, const seq_parameter_set_mvc_extension&) = default;
bool operator==(const mvc_vui_operation_point&, const mvc_vui_operation_point&) = default;
bool operator==(const mvc_vui_parameters_extension&, const mvc_vui_parameters_extension&) = default;
bool operator==(const mvcd_view&, const mvcd_view&) = default;
bool operator==(const mvcd_target_view&, const mvcd_target_view&) = default;
bool operator==(const mvcd_operation_point&, const mvcd_operation_point&) = default;
bool operator==(const mvcd_level&, const mvcd_level&) = default;
bool operator==(const mvcd_vui_view&, const mvcd_vui_view&) = default;
bool operator==(const mvcd_vui_operation_point&, const mvcd_vui_operation_point&) = default;
bool operator==(const mvcd_vui_parameters_extension&, const mvcd_vui_parameters_extension&) = default;
bool operator==(const seq_parameter_set_mvcd_extension&, const seq_parameter_set_mvcd_extension&) = default;
bool operator==(const depth_grid_position&, const depth_grid_position&) = default;
bool operator==(const seq_parameter_set_3davc_extension&, const seq_parameter_set_3davc_extension&) = default;
bool operator==(const subset_seq_parameter_set_rbsp&, const subset_seq_parameter_set_rbsp&) = default;
bool operator==(const base_marking_operation&, const base_marking_operation&) = default;
bool operator==(const dec_ref_base_pic_marking&, const dec_ref_base_pic_marking&) = default;
bool operator==(const slice_header_in_scalable_extension&, const slice_header_in_scalable_extension&) = default;
bool operator==(const slice_header_in_3davc_extension&, const slice_header_in_3davc_extension&) = default;
bool operator==(const slice_layer_extension_rbsp&, const slice_layer_extension_rbsp&) = default;
bool operator==(const prefix_nal_unit_svc&, const prefix_nal_unit_svc&) = default;
bool operator==(const prefix_nal_unit_rbsp&, const prefix_nal_unit_rbsp&) = default;

} // namespace orv_utils_v4::h264
