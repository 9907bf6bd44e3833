// Comparison, member by member, of the structures; their headers are C++17, which has no word for it.
#include <orv-utils-v4/h264_syntax/nal_unit.h>

namespace orv_utils_v4::h264 {

bool operator==(const nal_unit_header_svc_extension&, const nal_unit_header_svc_extension&) = default;
bool operator==(const nal_unit_header_mvc_extension&, const nal_unit_header_mvc_extension&) = default;
bool operator==(const nal_unit_header_3davc_extension&, const nal_unit_header_3davc_extension&) = default;
bool operator==(const nal_unit_header&, const nal_unit_header&) = default;
bool operator==(const hrd_parameters&, const hrd_parameters&) = default;
bool operator==(const vui_parameters&, const vui_parameters&) = default;
bool operator==(const scaling_list&, const scaling_list&) = default;
bool operator==(const seq_parameter_set_data&, const seq_parameter_set_data&) = default;
bool operator==(const seq_parameter_set_rbsp&, const seq_parameter_set_rbsp&) = default;
bool operator==(const seq_parameter_set_extension_rbsp&, const seq_parameter_set_extension_rbsp&) = default;
bool operator==(const pic_parameter_set_rbsp&, const pic_parameter_set_rbsp&) = default;
bool operator==(const pic_num_modification&, const pic_num_modification&) = default;
bool operator==(const ref_pic_list_modification&, const ref_pic_list_modification&) = default;
bool operator==(const prediction_weight&, const prediction_weight&) = default;
bool operator==(const pred_weight_table&, const pred_weight_table&) = default;
bool operator==(const marking_operation&, const marking_operation&) = default;
bool operator==(const dec_ref_pic_marking&, const dec_ref_pic_marking&) = default;
bool operator==(const slice_header&, const slice_header&) = default;
bool operator==(const slice_layer_without_partitioning_rbsp&, const slice_layer_without_partitioning_rbsp&) = default;
bool operator==(const slice_data_partition_a_layer_rbsp&, const slice_data_partition_a_layer_rbsp&) = default;
bool operator==(const slice_data_partition_b_layer_rbsp&, const slice_data_partition_b_layer_rbsp&) = default;
bool operator==(const slice_data_partition_c_layer_rbsp&, const slice_data_partition_c_layer_rbsp&) = default;
bool operator==(const nal_unit&, const nal_unit&) = default;

} // namespace orv_utils_v4::h264
