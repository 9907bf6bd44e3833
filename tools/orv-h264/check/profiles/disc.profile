about Streams for optical discs of high definition, in the usual reading of their rules.
profile_idc              one of 77 100
level_idc                at most 41
constraint_set4_flag     is 0 note
width                    one of 1920 1440 1280 720
height                   one of 1080 720 576 480
frame_rate               one of 24000/1001 24 25 30000/1001 50 60000/1001
chroma_format_idc        is 1
bit_depth_luma_minus8    is 0
max_num_ref_frames       at most 4 warning   # what the level leaves for 1080 lines
delimiters               is 1
pic_struct_present_flag  is 1
hrd_bit_rate             at most 40000000
hrd_buffer               at most 30000000
slices                   at least 4 warning  # at level 4.1; fewer below it
b_pictures               at most 3
key_seconds              at most 2           # 1 where the peak is above 15 Mbit/s
