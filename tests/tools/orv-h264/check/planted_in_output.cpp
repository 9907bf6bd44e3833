#include "support/planted_slices.h"
#include "support/planted_violation.h"

namespace {

using namespace support;

/// With picture order counts of their own.
seq_parameter_set_data sps_of_order(std::uint32_t max_num_reorder_frames, std::uint32_t max_dec_frame_buffering,
                                    std::uint32_t max_num_ref_frames = 1)
{
    seq_parameter_set_data made = sps_of_references(max_num_ref_frames);
    made.pic_order_cnt_type = 0;
    made.vui_parameters_present_flag = true;
    made.vui_parameters.bitstream_restriction_flag = true;
    made.vui_parameters.log2_max_mv_length_horizontal = 9;
    made.vui_parameters.log2_max_mv_length_vertical = 9;
    made.vui_parameters.max_num_reorder_frames = max_num_reorder_frames;
    made.vui_parameters.max_dec_frame_buffering = max_dec_frame_buffering;
    return made;
}

/// An IDR picture on these sets, then one on those that `change` makes of them.
template <class Change>
std::vector<unsigned char> with_new_sets(Change change)
{
    made_stream stream;
    stream.add_sets().add(idr());
    change(stream.sps());
    stream.add_sets().add(idr(1));
    return stream.bytes;
}

/// An SPS of pictures of which a decoder at its level holds five.
seq_parameter_set_data sps_of_large_pictures()
{
    return sps_data(0, 45, 36);
}

constexpr planted_violation planted[] = {
    {"a frame waits for one behind it, which max_num_reorder_frames 0 does not allow", "output-reordering-in-limit@4",
     [] {
         return slices_of(sps_of_order(0, 2), {idr(), reference(1, 4), other(2, 2), reference(2, 8), other(3, 6)});
     }},
    {"two frames wait, then a third one", "output-reordering-in-limit@5, output-reordering-in-limit@6",
     [] {
         return slices_of(sps_of_order(1, 4, 4),
                          {idr(), reference(1, 8), reference(2, 6), reference(3, 4), reference(4, 2)});
     }},
    {"a frame waits for one behind it, as max_num_reorder_frames 1 allows", "",
     [] {
         return slices_of(sps_of_order(1, 2), {idr(), reference(1, 4), other(2, 2), reference(2, 8), other(3, 6)});
     }},
    {"a frame cannot wait in a buffer of one frame", "output-buffer-suffices@4",
     [] {
         return slices_of(sps_of_order(1, 1), {idr(), reference(1, 8), reference(2, 4)});
     }},
    {"a frame that is no reference is output at once before one that waits in a buffer of one frame", "",
     [] {
         return slices_of(sps_of_order(1, 1), {idr(), reference(1, 8), other(2, 4)});
     }},
    {"a frame waits in a buffer of two frames", "",
     [] {
         return slices_of(sps_of_order(1, 2), {idr(), reference(1, 8), reference(2, 4)});
     }},
    {"an IDR picture drops two pictures", "output-picture-shown@2",
     [] {
         made_slice next = idr(1);
         next.header.dec_ref_pic_marking.no_output_of_prior_pics_flag = true;
         return slices_of(sps_of_references(2), {idr(), reference(1), next});
     }},
    {"an IDR picture drops no picture", "",
     [] {
         return slices_of(sps_of_references(2), {idr(), reference(1), idr(1)});
     }},
    {"wider pictures from an IDR picture on", "output-survives-new-buffer@5",
     [] { return with_new_sets([](seq_parameter_set_data& sps) { sps.pic_width_in_mbs_minus1 = 7; }); }},
    {"a smaller buffer from an IDR picture on", "output-survives-new-buffer@5",
     [] { return with_new_sets([](seq_parameter_set_data& sps) { sps = sps_of_order(1, 1); }); }},
    {"another SPS from an IDR picture on, with the same buffer", "",
     [] { return with_new_sets([](seq_parameter_set_data& sps) { sps.level_idc = 31; }); }},
    {"no word that nothing is reordered", "output-delay-told@0",
     [] {
         return slices_of(sps_of_large_pictures(),
                          {idr(), reference(1), reference(2), reference(3), reference(4), reference(5)});
     }},
    {"no word that nothing is reordered, of too few pictures to tell", "",
     [] {
         return slices_of(sps_of_large_pictures(), {idr(), reference(1), reference(2), reference(3), reference(4)});
     }},
    {"no word of the order, which is another one", "",
     [] {
         seq_parameter_set_data made = sps_of_large_pictures();
         made.pic_order_cnt_type = 0;
         return slices_of(made, {idr(), reference(1, 4), other(2, 2), reference(2, 8), other(3, 6), reference(3, 10)});
     }},
};

const support::planted_table here("output", planted);

} // namespace
