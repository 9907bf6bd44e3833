// Equality of the structures of sei/ and of registered user data.
#include <orv-utils-v4/h264_syntax/registered_user_data.h>
#include <orv-utils-v4/h264_syntax/sei/sei.h>

namespace orv_utils_v4::h264 {

bool operator==(const initial_cpb_removal&, const initial_cpb_removal&) = default;
bool operator==(const buffering_period&, const buffering_period&) = default;
bool operator==(const clock_timestamp&, const clock_timestamp&) = default;
bool operator==(const pic_timing&, const pic_timing&) = default;
bool operator==(const payload_bytes&, const payload_bytes&) = default;
bool operator==(const reserved_sei_message&, const reserved_sei_message&) = default;
bool operator==(const filler_payload&, const filler_payload&) = default;
bool operator==(const user_data_registered_itu_t_t35&, const user_data_registered_itu_t_t35&) = default;
bool operator==(const user_data_unregistered&, const user_data_unregistered&) = default;
bool operator==(const recovery_point&, const recovery_point&) = default;
bool operator==(const dec_ref_pic_marking_repetition&, const dec_ref_pic_marking_repetition&) = default;
bool operator==(const spare_picture&, const spare_picture&) = default;
bool operator==(const spare_pic&, const spare_pic&) = default;
bool operator==(const scene_info&, const scene_info&) = default;
bool operator==(const full_frame_freeze&, const full_frame_freeze&) = default;
bool operator==(const full_frame_freeze_release&, const full_frame_freeze_release&) = default;
bool operator==(const full_frame_snapshot&, const full_frame_snapshot&) = default;
bool operator==(const progressive_refinement_segment_start&, const progressive_refinement_segment_start&) = default;
bool operator==(const progressive_refinement_segment_end&, const progressive_refinement_segment_end&) = default;
bool operator==(const motion_constrained_slice_group_set&, const motion_constrained_slice_group_set&) = default;
bool operator==(const sub_seq_info&, const sub_seq_info&) = default;
bool operator==(const sub_seq_layer&, const sub_seq_layer&) = default;
bool operator==(const sub_seq_layer_characteristics&, const sub_seq_layer_characteristics&) = default;
bool operator==(const referenced_sub_seq&, const referenced_sub_seq&) = default;
bool operator==(const sub_seq_characteristics&, const sub_seq_characteristics&) = default;
bool operator==(const pan_scan_rect&, const pan_scan_rect&) = default;
bool operator==(const deblocking_filter_display_preference&, const deblocking_filter_display_preference&) = default;
bool operator==(const stereo_video_info&, const stereo_video_info&) = default;
bool operator==(const frame_packing_arrangement&, const frame_packing_arrangement&) = default;
bool operator==(const display_orientation&, const display_orientation&) = default;
bool operator==(const film_grain_interval&, const film_grain_interval&) = default;
bool operator==(const film_grain_component&, const film_grain_component&) = default;
bool operator==(const film_grain_characteristics&, const film_grain_characteristics&) = default;
bool operator==(const post_filter_hint&, const post_filter_hint&) = default;
bool operator==(const tone_map_pivot&, const tone_map_pivot&) = default;
bool operator==(const tone_mapping_info&, const tone_mapping_info&) = default;
bool operator==(const colour_remap_point&, const colour_remap_point&) = default;
bool operator==(const colour_remapping_info&, const colour_remapping_info&) = default;
bool operator==(const mastering_display_colour_volume&, const mastering_display_colour_volume&) = default;
bool operator==(const content_light_level_info&, const content_light_level_info&) = default;
bool operator==(const alternative_transfer_characteristics&, const alternative_transfer_characteristics&) = default;
bool operator==(const ambient_viewing_environment&, const ambient_viewing_environment&) = default;
bool operator==(const equirectangular_projection&, const equirectangular_projection&) = default;
bool operator==(const cubemap_projection&, const cubemap_projection&) = default;
bool operator==(const sphere_rotation&, const sphere_rotation&) = default;
bool operator==(const packed_region&, const packed_region&) = default;
bool operator==(const regionwise_packing&, const regionwise_packing&) = default;
bool operator==(const viewport&, const viewport&) = default;
bool operator==(const omni_viewport&, const omni_viewport&) = default;
bool operator==(const manifest_entry&, const manifest_entry&) = default;
bool operator==(const sei_manifest&, const sei_manifest&) = default;
bool operator==(const sei_prefix&, const sei_prefix&) = default;
bool operator==(const sei_prefix_indication&, const sei_prefix_indication&) = default;
bool operator==(const ar_label_update&, const ar_label_update&) = default;
bool operator==(const ar_object_update&, const ar_object_update&) = default;
bool operator==(const annotated_regions&, const annotated_regions&) = default;
bool operator==(const cc_construct&, const cc_construct&) = default;
bool operator==(const cc_data&, const cc_data&) = default;
bool operator==(const bar_data&, const bar_data&) = default;
bool operator==(const afd_data&, const afd_data&) = default;
bool operator==(const registered_user_data&, const registered_user_data&) = default;
bool operator==(const sei_message&, const sei_message&) = default;
bool operator==(const sei_rbsp&, const sei_rbsp&) = default;

} // namespace orv_utils_v4::h264
