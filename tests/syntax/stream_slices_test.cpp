// Slices in a stream: the SPS and PPS that each kind stands on.
#include "support/small_units.h"
#include "support/stream_units.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

/// An anchor picture of another view: header, MVC extension, and an I slice of PPS 0.
std::vector<unsigned char> bytes_of_other_view()
{
    small_sets known;
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = sps_data();
    known.sets.subset_sps[0] = &subset;
    slice_layer_extension_rbsp slice;
    slice.header.emplace<slice_header>().slice_type = 7;
    nal_unit unit = unit_of(20, slice);
    unit.header.nal_unit_header_mvc_extension.non_idr_flag = true;
    return written(unit, known.context);
}

TEST(StreamSlices, SlicesOfTypeTwentyStandOnTheSubsetSpsAllOthersOnTheSps)
{
    pushed_stream s;
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = sps_data(0, 7, 7);
    s.push(sps_unit(sps_data()));
    s.push(unit_of(15, subset));
    s.push(pps_unit());
    s.push(slice_unit(5));
    EXPECT_EQ(s.last().sps_width, 4U);
    s.push_bytes(bytes_of_other_view());
    EXPECT_EQ(s.last().sps_width, 7U);
}

TEST(StreamSlices, AnAuxiliarySliceIsIdrWhereItsPrimaryPictureIs)
{
    for (const unsigned primary : {1U, 5U}) {
        pushed_stream s;
        s.push({sps_unit(sps_data()), pps_unit(), slice_unit(primary)});
        nal_unit auxiliary = slice_unit(19);
        small_sets known;
        known.context.primary_idr = primary == 5;
        std::get<slice_layer_without_partitioning_rbsp>(auxiliary.rbsp).slice_header.idr_pic_id = primary == 5 ? 6 : 0;
        s.push(auxiliary, known.context);
        EXPECT_EQ(s.last().header.idr_pic_id, primary == 5 ? 6U : 0U);
        EXPECT_FALSE(s.last().result.failure);
    }
}

TEST(StreamSlices, PartitionsTakeThePpsOfThePartitionAWithTheirSliceId)
{
    pic_parameter_set_rbsp redundant = pps_rbsp(1);
    redundant.redundant_pic_cnt_present_flag = true;
    pushed_stream s;
    s.push({sps_unit(sps_data()), pps_unit(), unit_of(8, redundant)});
    small_sets known;
    known.sets.pps[1] = &redundant;
    const auto push_a = [&](std::uint32_t slice_id, std::uint32_t pps_id) {
        slice_data_partition_a_layer_rbsp a;
        a.slice_id = slice_id;
        a.slice_header.slice_type = 7;
        a.slice_header.pic_parameter_set_id = pps_id;
        s.push(unit_of(2, a), known.context);
        EXPECT_FALSE(s.last().result.failure);
    };
    const auto redundant_pic_cnt_of_b = [&](std::uint32_t slice_id, std::uint32_t pps_id) {
        slice_data_partition_b_layer_rbsp b;
        b.slice_id = slice_id;
        b.redundant_pic_cnt = pps_id == 1 ? 9 : 0;
        known.context.partition_a_pps = static_cast<std::int32_t>(pps_id);
        s.push(unit_of(3, b), known.context);
        EXPECT_FALSE(s.last().result.failure);
        return s.last().redundant_pic_cnt;
    };
    push_a(4, 1);
    push_a(5, 0);
    EXPECT_EQ(redundant_pic_cnt_of_b(4, 1), 9U);
    EXPECT_EQ(redundant_pic_cnt_of_b(5, 0), 0U);
    EXPECT_EQ(redundant_pic_cnt_of_b(77, 0), 0U); // the latest
    push_a(5, 1);
    EXPECT_EQ(redundant_pic_cnt_of_b(5, 1), 9U);
    EXPECT_EQ(redundant_pic_cnt_of_b(77, 1), 9U);
}

TEST(StreamSlices, APartitionWithoutAnAFails)
{
    pushed_stream s;
    s.push({sps_unit(sps_data()), pps_unit()});
    s.push_bytes({0x63, 0xC0});
    EXPECT_EQ(s.last().result.failure.why, reason::no_partition_a);
}

TEST(StreamSlices, ALongSliceIsReadUpToItsData)
{
    pushed_stream s;
    s.push({sps_unit(sps_data()), pps_unit()});
    std::vector<unsigned char> slice = written(slice_unit(5), small_sets().context);
    slice.resize(std::size_t{1} << 20, 0x55); // data are not read, however many there are
    s.push_bytes(slice);
    EXPECT_FALSE(s.last().result.failure);
}

} // namespace
