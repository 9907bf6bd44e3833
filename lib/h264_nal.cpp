// H.264 clause 7.3.1 and Table 7-1: the one-byte NAL unit header and the names of NAL unit types.
#include <orv-utils-v4/h264/nal.h>

#include <iterator>

namespace brenik {

namespace {

constexpr char reserved[] = "reserved";
constexpr char unspecified[] = "unspecified";

} // namespace

const char* const h264_nal_unit_type_str[32] = {
    "Unspecified",
    "Coded slice of a non-IDR picture, slice_layer_without_partitioning_rbsp()",
    "Coded slice data partition A, slice_data_partition_a_layer_rbsp()",
    "Coded slice data partition B, slice_data_partition_b_layer_rbsp()",
    "Coded slice data partition C, slice_data_partition_c_layer_rbsp()",
    "Coded slice of an IDR picture, slice_layer_without_partitioning_rbsp()",
    "Supplemental enhancement information (SEI), sei_rbsp()",
    "Sequence parameter set, seq_parameter_set_rbsp()",
    "Picture parameter set, pic_parameter_set_rbsp()",
    "Access unit delimiter, access_unit_delimiter_rbsp()",
    "End of sequence, end_of_seq_rbsp()",
    "End of stream, end_of_stream_rbsp()",
    "Filler data, filler_data_rbsp()",
    "Sequence parameter set extension, seq_parameter_set_extension_rbsp()",
    "Prefix NAL unit, prefix_nal_unit_rbsp()",
    "Subset sequence parameter set, subset_seq_parameter_set_rbsp()",
    "Depth parameter set, depth_parameter_set_rbsp()",
    reserved,
    reserved,
    "Coded slice of an auxiliary coded picture without partitioning, slice_layer_without_partitioning_rbsp()",
    "Coded slice extension, slice_layer_extension_rbsp()",
    "Coded slice extension for a depth view componentor a 3D-AVC texture view component, slice_layer_extension_rbsp()",
    reserved,
    reserved,
    unspecified,
    unspecified,
    unspecified,
    unspecified,
    unspecified,
    unspecified,
    unspecified,
    unspecified,
};

const char* h264_nal_unit_type_to_str(h264_nal_unit_type t)
{
    return t < std::size(h264_nal_unit_type_str) ? h264_nal_unit_type_str[t] : "";
}

} // namespace brenik
