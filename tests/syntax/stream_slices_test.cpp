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

TEST(StreamSlices, APartitionCWithoutItsBTakesThePpsOfItsA)
{
    pushed_stream s;
    small_sets known;
    known.pps.redundant_pic_cnt_present_flag = true;
    slice_data_partition_a_layer_rbsp a;
    a.slice_id = 4;
    a.slice_header.slice_type = 7;
    slice_data_partition_c_layer_rbsp c;
    c.slice_id = 4;
    c.redundant_pic_cnt = 9;
    known.context.partition_a_pps = 0;
    for (const nal_unit& unit : {sps_unit(known.sps.seq_parameter_set_data), unit_of(8, known.pps), unit_of(2, a)})
        s.push(unit, known.context);
    s.push(unit_of(4, c), known.context);
    EXPECT_FALSE(s.last().result.failure);
    EXPECT_EQ(s.last().unit.rbsp, unit_of(4, c).rbsp);
}

TEST(StreamSlices, APartitionWithoutAnAFails)
{
    constexpr unsigned char headers[] = {0x63, 0x64};
    for (const unsigned char header : headers) {
        pushed_stream s;
        s.push({sps_unit(sps_data()), pps_unit()});
        s.push_bytes({header, 0xC0});
        EXPECT_EQ(s.last().result.failure.why, reason::no_partition_a);
    }
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

/// A B slice of which everything that can repeat does, in the longest codes: no header is longer by much.
struct longest_header : small_sets {
    nal_unit unit = slice_unit(1);

    longest_header()
    {
        constexpr std::uint32_t number = 0xFFFFFFFE;
        constexpr std::int32_t offset = 0x7FFFFFFF;
        pps.weighted_bipred_idc = 1;
        slice_header& header = std::get<slice_layer_without_partitioning_rbsp>(unit.rbsp).slice_header;
        header.slice_type = 6;
        header.num_ref_idx_active_override_flag = true;
        header.num_ref_idx_l0_active_minus1 = header.num_ref_idx_l1_active_minus1 = 31;
        ref_pic_list_modification& lists = header.ref_pic_list_modification;
        lists.ref_pic_list_modification_flag_l0 = lists.ref_pic_list_modification_flag_l1 = true;
        lists.l0.resize(ref_pic_list_modification::most_modifications);
        for (pic_num_modification& m : lists.l0)
            m.abs_diff_pic_num_minus1 = number;
        lists.l0.back() = {3, 0, 0, 0};
        lists.l1 = lists.l0;
        header.pred_weight_table.l0.resize(pred_weight_table::most_weights);
        for (prediction_weight& w : header.pred_weight_table.l0)
            w = {true, offset, offset, true, {offset, offset}, {offset, offset}};
        header.pred_weight_table.l1 = header.pred_weight_table.l0;
        header.dec_ref_pic_marking.adaptive_ref_pic_marking_mode_flag = true;
        header.dec_ref_pic_marking.operations.resize(dec_ref_pic_marking::most_operations);
        for (marking_operation& operation : header.dec_ref_pic_marking.operations)
            operation = {3, number, 0, number, 0};
        header.dec_ref_pic_marking.operations.back() = {};
    }
};

TEST(StreamSlices, TheLongestHeaderIsFarShorterThanWhatItIsLookedForIn)
{
    const longest_header longest;
    const std::vector<unsigned char> slice = written(longest.unit, longest.context);
    EXPECT_GT(slice.size(), 4096U);
    EXPECT_LT(slice.size() * 3 / 2, stream::most_slice_header_bytes / 8);
    for (const std::size_t size : {slice.size(), stream::most_slice_header_bytes - 1, stream::most_slice_header_bytes,
                                   stream::most_slice_header_bytes + 1}) {
        pushed_stream s;
        s.push({sps_unit(longest.sps.seq_parameter_set_data), unit_of(8, longest.pps)});
        std::vector<unsigned char> whole = slice;
        whole.resize(size, 0x55);
        s.push_bytes(whole);
        EXPECT_FALSE(s.last().result.failure) << size;
        EXPECT_EQ(s.last().unit, longest.unit) << size;
    }
}

// More and more bytes are looked at: at the places where that happens, and wherever escapes stand, nothing changes.
TEST(StreamSlices, ACutHeaderIsReadAsFarAsItReaches)
{
    const longest_header longest;
    const std::vector<unsigned char> slice = written(longest.unit, longest.context);
    nal_unit expected;
    outcome how;
    pushed_stream s;
    s.push({sps_unit(longest.sps.seq_parameter_set_data), unit_of(8, longest.pps)});
    for (std::size_t size = 1; size < slice.size(); size += size % 512 < 80 || size % 512 > 500 ? 1 : 60) {
        read(expected, slice.data(), size, longest.context, how);
        s.push_bytes({slice.begin(), slice.begin() + static_cast<std::ptrdiff_t>(size)});
        ASSERT_EQ(s.last().result.failure.why, reason::unit_ends) << size;
        ASSERT_EQ(s.last().result.bits, how.bits) << size;
        ASSERT_EQ(s.last().unit, expected) << size;
    }
}

} // namespace
