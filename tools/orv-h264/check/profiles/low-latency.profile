about Streams for calls, games and remote control: every picture is shown as soon as it is decoded, and a lost one is overcome soon.
max_num_reorder_frames   present
max_num_reorder_frames   is 0
max_dec_frame_buffering  at most 1 warning   # a decoder keeps one reference frame, and shows what it decodes
b_pictures               is 0
field_pic_flag           is 0                # the second field of a frame comes a field later
entropy_coding_mode_flag is 1 note           # CAVLC takes a tenth more
key_seconds              at most 10 warning  # who joins waits as long
