// Slice headers, damaged in every small way, against the literal parse, with several pairs of parameter sets.
#include "support/literal_slice_parse.h"
#include "support/parsed_slice.h"
#include "support/sweep.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using brenik::h264_nal_slice_header;
using support::full_field_slice;
using support::full_slice;
using support::slice_context;
using support::slice_header_description;
using support::slice_header_parses;
using support::slice_of_type;
using support::written;
using slice_sweep = support::sweep<slice_header_parses>;

/// The parameter sets of the context, and others beside them that a damaged id may hit.
slice_header_parses parses_in(const slice_context& context)
{
    slice_header_parses parses;
    parses.nal = context.nal;
    for (std::uint32_t id = 0; id < 16; ++id) {
        slice_context other;
        other.sps.separate_colour_plane_flag = id % 5 == 1;
        other.sps.log2_max_frame_num_minus4 = 3 * id;
        other.sps.frame_mbs_only_flag = id % 2 == 0;
        other.sps.pic_order_cnt_type = id % 3;
        other.sps.log2_max_pic_order_cnt_lsb_minus4 = id % 4 == 3 ? 250 + id % 8 : id;
        other.sps.delta_pic_order_always_zero_flag = id % 7 == 0;
        other.pps.seq_parameter_set_id = id + id / 15; // that of the last PPS is absent
        other.pps.bottom_field_pic_order_in_frame_present_flag = id % 4 < 2;
        other.pps.redundant_pic_cnt_present_flag = id % 3 == 0;
        parses.sps_store.insert_or_assign(id, other.sps);
        parses.pps_store.insert_or_assign(id, other.pps);
    }
    parses.sps_store.insert_or_assign(context.sps_id, context.sps);
    parses.pps_store.insert_or_assign(context.pps_id, context.pps);
    return parses;
}

/// What two slices left: every field and both lists hold something, field_pic_flag apart.
h264_nal_slice_header filled()
{
    return support::parsed_slice(full_slice(1), support::parsed_slice(full_field_slice(0)).object).object;
}

void sweep_slice(const slice_header_description& slice)
{
    slice_sweep(parses_in(context_of(slice)), written(slice), filled()).everything();
}

} // namespace

TEST(SliceHeaderSweep, EveryType)
{
    for (std::uint32_t type = 0; type < 10; ++type) {
        SCOPED_TRACE(type);
        sweep_slice(slice_of_type(type));
    }
}

TEST(SliceHeaderSweep, FramesWithEveryElement)
{
    sweep_slice(full_slice(0));
    sweep_slice(full_slice(1));
}

TEST(SliceHeaderSweep, FieldsWithEveryElement)
{
    sweep_slice(full_field_slice(0));
    sweep_slice(full_field_slice(1));
}

TEST(SliceHeaderSweep, SlicesOfNonIdrPictures)
{
    for (const std::uint32_t type : {0U, 2U, 6U}) {
        slice_header_description slice = full_slice(0);
        slice.slice_type = type;
        slice.idr_pic_id.reset();
        slice.colour_plane_id.reset();
        sweep_slice(slice);
    }
}

TEST(SliceHeaderSweep, WideCounters)
{
    for (const unsigned int width : {16U, 25U, 26U, 32U}) {
        slice_header_description slice = full_slice(0);
        slice.frame_num_width = width;
        slice.pic_order_cnt_lsb_width = 36 - width;
        sweep_slice(slice);
    }
}

TEST(SliceHeaderSweep, ALongList)
{
    slice_header_description slice = slice_of_type(1);
    for (std::uint32_t i = 0; i < 30; ++i)
        slice.ref_pic_list_modification_l0.steps->push_back({i % 3, 2 * i});
    sweep_slice(slice);
}

TEST(SliceHeaderSweep, AnObjectThatKeepsItsFieldFlag)
{
    slice_header_description slice = slice_of_type(0);
    slice.pic_order_cnt_lsb = 11;
    slice_context context = context_of(slice);
    context.pps.bottom_field_pic_order_in_frame_present_flag = true;
    h264_nal_slice_header field = filled();
    field.field_pic_flag = true;
    support::random_source random(3);
    slice_sweep sweep(parses_in(context), written(slice), field);
    sweep.every_bit_flipped();
    sweep.every_length();
    sweep.random_damage(random, 500);
}

TEST(SliceHeaderSweep, ZerosInPlaceOfAnIdcFailWithoutAnException)
{
    const slice_header_description slice = full_slice(0);
    const support::element_writer writer = written(slice);
    slice_sweep sweep(parses_in(context_of(slice)), writer, filled());
    int seen = 0;
    for (const support::element& e : writer.elements())
        for (int before = 0; slice_header_parses::looked_ahead(e) && before < 3; ++before) {
            const support::compared c = sweep.run(with_malformed_code(writer, e));
            EXPECT_EQ("", c.difference);
            EXPECT_FALSE(c.end.threw || c.end.result);
            EXPECT_EQ(e.position, c.end.position);
            EXPECT_EQ(0, c.after.at("valid").number);
            ++seen;
        }
    EXPECT_EQ(3 * (2 + 1 + 4 + 1), seen);
}

TEST(SliceHeaderSweep, RandomBytes)
{
    for (const std::uint32_t type : {1U, 5U, 20U}) {
        slice_context context;
        context.nal.nal_unit_type = static_cast<brenik::h264_nal_unit_type>(type);
        parse_random_bytes(parses_in(context));
        // first_mb_in_slice 0, the kinds of slices, and PPS 0
        parse_random_bytes(parses_in(context), {0b11100101, 0b10101010, 0b10111110, 0b10010011, 0b10010111});
    }
}
