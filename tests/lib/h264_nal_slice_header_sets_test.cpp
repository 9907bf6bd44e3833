// The parameter sets that a slice names, and the kinds of slices.
#include <orv-utils-v4/h264/nal_slice_header.h>

#include "support/parsed_slice.h"
#include "support/slice_header_fields.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

using brenik::h264_nal_slice_header;
using support::fields_of;
using support::full_slice;
using support::parsed_slice;
using support::slice_context;
using support::slice_header_description;
using support::slice_of_type;
using support::with_valid;
using support::written;

/// Parses a full slice in a context where a parameter set is absent.
void expect_absence_is_told(const slice_context& context)
{
    const auto writer = written(full_slice(0));
    for (const bool valid : {false, true}) {
        const parsed_slice p(writer, context, with_valid<h264_nal_slice_header>(valid));
        EXPECT_FALSE(p.result);
        support::named_values expected = fields_of(h264_nal_slice_header{});
        expected.at("IdrPicFlag").number = 1;
        expected.at("first_mb_in_slice").number = 300;
        expected.at("slice_type").number = 6;
        expected.at("pic_parameter_set_id").number = 7;
        EXPECT_EQ("", difference(expected, fields_of(p.object)));
        EXPECT_EQ(writer.elements()[3].position, p.consumed());
    }
}

} // namespace

TEST(SliceHeaderSets, AnAbsentPpsFailsBehindTheThreeIds)
{
    for (const std::uint32_t stored : {0U, 3U, 6U, 8U, 4294967294U}) {
        slice_context context = context_of(full_slice(0));
        context.pps_id = stored;
        context.pps.pic_parameter_set_id = 7; // what the PPS says of itself does not matter
        expect_absence_is_told(context);
    }
}

TEST(SliceHeaderSets, AnAbsentSpsFailsBehindTheThreeIds)
{
    for (const std::uint32_t stored : {0U, 2U, 7U, 4294967294U}) {
        slice_context context = context_of(full_slice(0));
        context.sps_id = stored;
        context.sps.seq_parameter_set_id = 3;
        expect_absence_is_told(context);
    }
}

TEST(SliceHeaderSets, EmptyStoresFail)
{
    const support::guarded_buffer buffer(written(slice_of_type(0)).made());
    brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
    h264_nal_slice_header slice = with_valid<h264_nal_slice_header>(true);
    EXPECT_FALSE(slice.parse(br, {}, {}, {}));
    EXPECT_FALSE(slice.valid);
}

TEST(SliceHeaderSets, TheOnesThatAreNamedAreUsedAndNotTheCurrentOnes)
{
    const slice_header_description slice = full_slice(0);
    const slice_context named = context_of(slice);
    auto sps_store = named.sps_store();
    auto pps_store = named.pps_store();
    for (const std::uint32_t other : {0U, 1U, 2U, 4U, 8U}) {
        sps_store.insert_or_assign(other, {});
        pps_store.insert_or_assign(other, {});
    }
    sps_store.set_current_id(1);
    pps_store.set_current_id(1);
    const support::guarded_buffer buffer(written(slice).made());
    brenik::h2645_common_bitreader br(buffer.begin(), buffer.end());
    h264_nal_slice_header object;
    EXPECT_TRUE(object.parse(br, sps_store, pps_store, named.nal));
    EXPECT_EQ(written(slice).size_in_bits(), br.bits_consumed());
    EXPECT_EQ(1U, sps_store.current_id());
    EXPECT_EQ(1U, pps_store.current_id());
}

TEST(SliceHeaderSets, TheIdsUnderWhichTheyAreStoredCount)
{
    slice_header_description slice = full_slice(0);
    slice.pic_parameter_set_id = 4294967294;
    slice_context context = context_of(slice);
    context.pps.seq_parameter_set_id = context.sps_id = 4294967294;
    context.pps.pic_parameter_set_id = 1;
    context.sps.seq_parameter_set_id = 2;
    EXPECT_TRUE(parsed_slice(written(slice), context).result);
}

TEST(SliceHeaderSets, ThoseThatAreNotValidAreUsed)
{
    for (const bool sps_valid : {false, true})
        for (const bool pps_valid : {false, true}) {
            slice_context context = context_of(full_slice(0));
            context.sps.valid = sps_valid;
            context.pps.valid = pps_valid;
            const parsed_slice p(written(full_slice(0)), context);
            EXPECT_TRUE(p.result);
            EXPECT_TRUE(p->valid);
            EXPECT_EQ(written(full_slice(0)).size_in_bits(), p.consumed());
        }
}

TEST(SliceType, IsTheRemainderByFive)
{
    h264_nal_slice_header slice;
    for (std::uint32_t type = 0; type < 1000; ++type) {
        slice.slice_type = type;
        EXPECT_EQ(type % 5, static_cast<std::uint32_t>(slice.getSliceType()));
        EXPECT_EQ(type, slice.slice_type);
    }
    slice.slice_type = 0x7FFFFFFF;
    EXPECT_EQ(brenik::h264_slice_type_I, slice.getSliceType());
    slice.slice_type = 0x80000000;
    EXPECT_EQ(brenik::h264_slice_type_SP, slice.getSliceType());
    slice.slice_type = 4294967294;
    EXPECT_EQ(brenik::h264_slice_type_SI, slice.getSliceType());
    slice.slice_type = 4294967295;
    EXPECT_EQ(brenik::h264_slice_type_P, slice.getSliceType());
}

TEST(SliceType, OtherNumbersHaveAnEmptyName)
{
    for (const std::int32_t number :
         {5, 6, 255, 65536, std::numeric_limits<std::int32_t>::max(), -1, -5, std::numeric_limits<std::int32_t>::min()})
        EXPECT_STREQ("", brenik::h264_slice_type_t_to_string(static_cast<brenik::h264_slice_type_t>(number))) << number;
}

TEST(SliceType, ANameWrittenToTheTableIsGiven)
{
    for (std::int32_t kind = 0; kind < 5; ++kind) {
        const char* const name = brenik::h264_slice_type_t_str[kind];
        brenik::h264_slice_type_t_str[kind] = "other";
        const std::string given = brenik::h264_slice_type_t_to_string(static_cast<brenik::h264_slice_type_t>(kind));
        brenik::h264_slice_type_t_str[kind] = name;
        EXPECT_EQ("other", given);
        EXPECT_EQ(name, brenik::h264_slice_type_t_to_string(static_cast<brenik::h264_slice_type_t>(kind)));
    }
}
