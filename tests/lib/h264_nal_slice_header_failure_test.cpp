// Slice headers that are cut and codes that stand for nothing.
#include <orv-utils-v4/h264/nal_slice_header.h>

#include "support/parsed_slice.h"
#include "support/slice_header_fields.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using brenik::h264_nal_slice_header;
using support::difference;
using support::fields_of;
using support::full_field_slice;
using support::full_slice;
using support::parsed_slice;
using support::slice_context;
using support::slice_header_description;
using support::slice_of_type;
using support::with_valid;
using support::written;

/// What a parse did, whether it threw or not.
struct outcome {
    std::string end;
    support::named_values fields;
};

outcome outcome_of(const support::bytes& data, const slice_context& context, bool valid)
{
    const support::guarded_buffer buffer(data);
    brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
    h264_nal_slice_header slice = with_valid<h264_nal_slice_header>(valid);
    std::string end;
    try {
        end = slice.parse(br, context.sps_store(), context.pps_store(), context.nal) ? "true" : "false";
    } catch (const brenik::h2645_common_malformed_code& malformed) {
        end = "malformed at bit " + std::to_string(malformed.bit_position());
    }
    return {end + ", at bit " + std::to_string(br.bits_consumed()), fields_of(slice)};
}

} // namespace

TEST(SliceHeader, BitsPastTheEndReadAsZero)
{
    for (const slice_header_description& slice :
         {full_slice(0), full_slice(1), full_field_slice(0), slice_of_type(0), slice_of_type(2)}) {
        const auto writer = written(slice);
        for (std::size_t length = 0; length < writer.size_in_bits(); ++length) {
            const support::bytes cut = support::first_bits(writer.made(), length);
            support::bytes filled_up = cut;
            filled_up.resize(cut.size() + 64, 0);
            for (const bool valid : {false, true}) {
                const outcome of_zeros = outcome_of(filled_up, context_of(slice), valid);
                const outcome of_cut = outcome_of(cut, context_of(slice), valid);
                EXPECT_EQ(of_zeros.end, of_cut.end) << length;
                EXPECT_EQ("", difference(of_zeros.fields, of_cut.fields)) << length;
            }
        }
    }
}

TEST(SliceHeader, APSliceCutBeforeItsListFlagSucceeds)
{
    slice_header_description slice = slice_of_type(0);
    slice.num_ref_idx_active_override_flag = false;
    slice.first_mb_in_slice = 1;
    const auto writer = written(slice);
    for (const support::element& e : writer.elements())
        if (e.name == "ref_pic_list_modification_l0.ref_pic_list_modification_flag") {
            const parsed_slice p(support::first_bits(writer.made(), e.position), context_of(slice));
            EXPECT_TRUE(p.result && p->valid);
            EXPECT_FALSE(p->ref_pic_list_modification_l0.ref_pic_list_modification_flag);
            EXPECT_EQ(e.position + 1, p.consumed());
        }
}

TEST(SliceHeader, AMalformedCodeThrowsAndLeavesValidAndTheFieldsBefore)
{
    for (const slice_header_description& slice : {full_slice(0), full_slice(1)}) {
        const slice_context context = context_of(slice);
        const auto writer = written(slice);
        std::size_t thrown = 0;
        for (const support::element& e : writer.elements()) {
            if (e.how == support::descriptor::u || e.name.ends_with("modification_of_pic_nums_idc"))
                continue;
            for (const bool valid : {false, true}) {
                const support::guarded_buffer buffer(support::with_malformed_code(writer, e));
                brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
                h264_nal_slice_header object = with_valid<h264_nal_slice_header>(valid);
                try {
                    object.parse(br, context.sps_store(), context.pps_store(), context.nal);
                    ADD_FAILURE() << e.name;
                } catch (const brenik::h2645_common_malformed_code& malformed) {
                    EXPECT_EQ(e.position, malformed.bit_position()) << e.name;
                    ++thrown;
                }
                EXPECT_EQ(valid, object.valid) << e.name;
                EXPECT_EQ(e.position + 32, br.bits_consumed()) << e.name;
                EXPECT_TRUE(object.IdrPicFlag);
                EXPECT_EQ(e.position > 0 ? 300U : 0U, object.first_mb_in_slice) << e.name;
                EXPECT_EQ(e.name == "first_mb_in_slice" || e.name == "slice_type" ? 0U : 6U, object.slice_type);
                EXPECT_EQ(e.position > writer.elements()[4].position ? 0x1A5U : 0U, object.frame_num) << e.name;
            }
        }
        const std::size_t deltas = slice.pic_order_cnt_lsb ? 1 : 2;
        const std::size_t list_values = 5;
        EXPECT_EQ(2 * (3 + 1 + deltas + 1 + 2 + list_values), thrown);
    }
}
