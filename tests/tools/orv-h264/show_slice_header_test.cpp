#include "show_syntax.h"

#include "support/walked_stream.h"

#include <gtest/gtest.h>

namespace {

using support::bit_writer;
using support::bytes;

constexpr unsigned char slice = support::header_byte(2, 1);

/// The lines of a slice behind these parameter sets.
std::string shown(const support::sps_description& seq, const support::pps_description& pic, bit_writer rbsp,
                  unsigned char header = slice)
{
    support::walked_stream stream;
    stream.walk(seq);
    stream.walk(pic);
    return orv_h264::show_fields(stream.walk(header, rbsp.trailing_bits().bytes()));
}

} // namespace

TEST(ShowSliceHeader, AnIdrSlice)
{
    bit_writer w;
    w.ue(0).ue(7).ue(0).u(4, 9).ue(3).u(4, 8);
    EXPECT_EQ("    first_mb_in_slice 0\n"
              "    slice_type 7 (I)\n"
              "    pic_parameter_set_id 0\n"
              "    frame_num 9\n"
              "    idr_pic_id 3\n"
              "    pic_order_cnt_lsb 8\n"
              "    = IDR picture\n",
              shown({}, {}, w, support::idr_slice));
}

TEST(ShowSliceHeader, AFieldOfABSliceWithEverything)
{
    support::sps_description seq;
    seq.profile_idc = 244;
    seq.high_profile_syntax = true;
    seq.chroma_format_idc = 3;
    seq.separate_colour_plane_flag = true;
    seq.log2_max_frame_num_minus4 = 12;
    seq.log2_max_pic_order_cnt_lsb_minus4 = 4;
    seq.frame_mbs_only_flag = false;
    support::pps_description pic;
    pic.bottom_field_pic_order_in_frame_present_flag = true;
    pic.redundant_pic_cnt_present_flag = true;
    bit_writer w;
    w.ue(120).ue(1).ue(0).u(2, 2).u(16, 65535).flag(true).flag(true).u(8, 200).ue(1).flag(true).flag(true).ue(3).ue(4);
    w.flag(true).ue(0).ue(5).ue(1).ue(6).ue(2).ue(7).ue(4).ue(3);
    w.flag(true).ue(5).ue(3);
    EXPECT_EQ("    first_mb_in_slice 120\n"
              "    slice_type 1 (B)\n"
              "    pic_parameter_set_id 0\n"
              "    colour_plane_id 2\n"
              "    frame_num 65535\n"
              "    field_pic_flag 1\n"
              "    bottom_field_flag 1\n"
              "    pic_order_cnt_lsb 200\n"
              "    redundant_pic_cnt 1\n"
              "    direct_spatial_mv_pred_flag 1\n"
              "    num_ref_idx_active_override_flag 1\n"
              "    num_ref_idx_l0_active_minus1 3\n"
              "    num_ref_idx_l1_active_minus1 4\n"
              "    ref_pic_list_modification_flag_l0 1\n"
              "        modification_of_pic_nums_idc 0\n"
              "        abs_diff_pic_num_minus1 5\n"
              "        modification_of_pic_nums_idc 1\n"
              "        abs_diff_pic_num_minus1 6\n"
              "        modification_of_pic_nums_idc 2\n"
              "        long_term_pic_num 7\n"
              "        modification_of_pic_nums_idc 4 (no value read, in multiview coding there is one)\n"
              "        modification_of_pic_nums_idc 3\n"
              "    ref_pic_list_modification_flag_l1 1\n"
              "        modification_of_pic_nums_idc 5 (no value read, in multiview coding there is one)\n"
              "        modification_of_pic_nums_idc 3\n",
              shown(seq, pic, w));
}

TEST(ShowSliceHeader, PictureOrderCountsOfAFrame)
{
    support::sps_description seq;
    seq.frame_mbs_only_flag = false;
    support::pps_description pic;
    pic.bottom_field_pic_order_in_frame_present_flag = true;
    bit_writer lsb;
    lsb.ue(0).ue(2).ue(0).u(4, 1).flag(false).u(4, 2).se(-3);
    EXPECT_EQ("    first_mb_in_slice 0\n"
              "    slice_type 2 (I)\n"
              "    pic_parameter_set_id 0\n"
              "    frame_num 1\n"
              "    field_pic_flag 0\n"
              "    pic_order_cnt_lsb 2\n"
              "    delta_pic_order_cnt_bottom -3\n",
              shown(seq, pic, lsb));
    seq.pic_order_cnt_type = 1;
    bit_writer deltas;
    deltas.ue(0).ue(4).ue(0).u(4, 1).flag(false).se(-7).se(8);
    EXPECT_EQ("    first_mb_in_slice 0\n"
              "    slice_type 4 (SI)\n"
              "    pic_parameter_set_id 0\n"
              "    frame_num 1\n"
              "    field_pic_flag 0\n"
              "    delta_pic_order_cnt[0] -7\n"
              "    delta_pic_order_cnt[1] 8\n",
              shown(seq, pic, deltas));
    seq.delta_pic_order_always_zero_flag = true;
    bit_writer none;
    none.ue(0).ue(8).ue(0).u(4, 1).flag(false).flag(false).flag(false);
    EXPECT_EQ("    first_mb_in_slice 0\n"
              "    slice_type 8 (SP)\n"
              "    pic_parameter_set_id 0\n"
              "    frame_num 1\n"
              "    field_pic_flag 0\n"
              "    num_ref_idx_active_override_flag 0\n"
              "    ref_pic_list_modification_flag_l0 0\n",
              shown(seq, pic, none));
}

TEST(ShowSliceHeader, WithoutItsPpsTheThreeFieldsBeforeItAreShown)
{
    bit_writer w;
    w.ue(5).ue(0).ue(6).u(32, 0xFFFFFFFF);
    EXPECT_EQ("    first_mb_in_slice 5\n"
              "    slice_type 0 (P)\n"
              "    pic_parameter_set_id 6\n",
              shown({}, {}, w));
}

TEST(ShowSliceHeader, AListWithoutAnEndShowsItsEntriesAndNoEnd)
{
    support::walked_stream stream;
    stream.walk(support::sps_description());
    stream.walk(support::pps_description());
    bit_writer w;
    w.ue(0).ue(0).ue(0).u(4, 1).u(4, 2).flag(false).flag(true).ue(1).ue(4).u(32, 0);
    const std::string lines = orv_h264::show_fields(stream.walk(slice, w.bytes()));
    EXPECT_EQ("    ref_pic_list_modification_flag_l0 1\n"
              "        modification_of_pic_nums_idc 1\n"
              "        abs_diff_pic_num_minus1 4\n",
              lines.substr(lines.find("    ref_pic_list")));
}

TEST(ShowSliceHeader, ACutHeaderShowsTheFieldsBeforeTheCut)
{
    bit_writer w;
    w.ue(0).ue(2).ue(0).u(3, 7);
    support::walked_stream stream;
    stream.walk(support::sps_description());
    stream.walk(support::pps_description());
    EXPECT_EQ("    first_mb_in_slice 0\n"
              "    slice_type 2 (I)\n"
              "    pic_parameter_set_id 0\n",
              orv_h264::show_fields(stream.walk(slice, w.bytes())));
}
