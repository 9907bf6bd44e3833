about Segmented streaming over HTTP: closed segments that begin with a key picture, for all players.
profile_idc              one of 66 77 100
level_idc                at most 52
chroma_format_idc        is 1
bit_depth_luma_minus8    is 0
frame_mbs_only_flag      is 1
separate_colour_plane_flag is 0
num_slice_groups_minus1  is 0
redundant_pic_cnt_present_flag is 0
max_num_reorder_frames   present warning     # players that are not told wait for the whole buffer
time_scale               present warning
key_seconds              at most 10
frame_rate               at most 60 warning
