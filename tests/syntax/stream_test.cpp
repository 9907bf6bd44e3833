// The stream: what each unit is read with, and in which order units are handed on.
#include "support/small_units.h"
#include "support/stream_units.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

/// 4:4:4, so that a PPS with 8x8 lists has six of them.
seq_parameter_set_data sps_444(std::uint32_t id = 0)
{
    seq_parameter_set_data sps = sps_data(id);
    sps.profile_idc = 244;
    sps.chroma_format_idc = 3;
    return sps;
}

/// A PPS whose last 8x8 list, of 4:4:4 alone, is sent.
pic_parameter_set_rbsp pps_with_12_lists()
{
    pic_parameter_set_rbsp pps = pps_rbsp();
    pps.transform_8x8_mode_sent = pps.transform_8x8_mode_flag = pps.pic_scaling_matrix_present_flag = true;
    pps.pic_scaling_list_present_flag[11] = true;
    pps.lists[11].delta_scale.grow();
    pps.lists[11].delta_scale.back() = -8;
    pps.second_chroma_qp_index_offset = 5;
    return pps;
}

TEST(Stream, APpsBeforeItsSpsIsReadAgainWhenThatComes)
{
    pushed_stream s;
    const small_sets with_444(sps_444());
    s.push(unit_of(8, pps_with_12_lists()), with_444.context);
    ASSERT_NE(s.sets().find_pps(0), nullptr);
    EXPECT_FALSE(*s.sets().find_pps(0) == pps_with_12_lists());
    s.push(sps_unit(sps_444()));
    EXPECT_TRUE(*s.sets().find_pps(0) == pps_with_12_lists());
}

TEST(Stream, APpsIsReadAgainWhenItsSpsChanges)
{
    pushed_stream s;
    const small_sets with_444(sps_444());
    s.push(sps_unit(sps_data()));
    s.push(unit_of(8, pps_with_12_lists()), with_444.context);
    EXPECT_FALSE(*s.sets().find_pps(0) == pps_with_12_lists());
    s.push(sps_unit(sps_444(1)));
    EXPECT_FALSE(*s.sets().find_pps(0) == pps_with_12_lists());
    s.push(sps_unit(sps_444()));
    EXPECT_TRUE(*s.sets().find_pps(0) == pps_with_12_lists());
}

TEST(Stream, APpsThatFailsWithItsSpsIsThereAgainWithAnother)
{
    pic_parameter_set_rbsp six_flags = pps_rbsp(); // as 4:4:4 would have it, a flag is the first bit of a list
    six_flags.transform_8x8_mode_sent = six_flags.transform_8x8_mode_flag = true;
    six_flags.pic_scaling_matrix_present_flag = true;
    pushed_stream s;
    s.push({sps_unit(sps_data()), unit_of(8, six_flags)});
    EXPECT_TRUE(*s.sets().find_pps(0) == six_flags);
    s.push(sps_unit(sps_444()));
    EXPECT_EQ(s.sets().find_pps(0), nullptr);
    s.push(sps_unit(sps_data()));
    ASSERT_NE(s.sets().find_pps(0), nullptr);
    EXPECT_TRUE(*s.sets().find_pps(0) == six_flags);
}

TEST(Stream, APpsWithASubsetSpsAloneIsReadWithThat)
{
    pushed_stream s;
    const small_sets with_444(sps_444());
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = sps_444();
    s.push(unit_of(8, pps_with_12_lists()), with_444.context);
    s.push(unit_of(15, subset));
    ASSERT_NE(s.sets().find_subset_sps(0), nullptr);
    EXPECT_EQ(s.sets().find_sps(0), nullptr);
    EXPECT_TRUE(*s.sets().find_pps(0) == pps_with_12_lists());
}

TEST(Stream, SpsAndSubsetSpsOfOneIdAreStoredApart)
{
    pushed_stream s;
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = sps_data(3, 7, 7);
    s.push(sps_unit(sps_data(3, 5, 5)));
    s.push(unit_of(15, subset));
    ASSERT_NE(s.sets().find_sps(3), nullptr);
    EXPECT_EQ(s.sets().find_sps(3)->pic_width_in_mbs_minus1, 4U);
    ASSERT_NE(s.sets().find_subset_sps(3), nullptr);
    EXPECT_EQ(s.sets().find_subset_sps(3)->seq_parameter_set_data.pic_width_in_mbs_minus1, 6U);
}

TEST(Stream, AnSpsUnderTheActiveIdReplacesIt)
{
    pushed_stream s;
    s.push({sps_unit(sps_data()), pps_unit(), slice_unit(5)});
    EXPECT_EQ(s.last().sps_width, 4U);
    s.push({sps_unit(sps_data(0, 9, 9)), slice_unit(5)});
    EXPECT_EQ(s.last().sps_width, 9U);
}

TEST(Stream, AnSpsThatFailsDoesNotReplaceASoundOne)
{
    pushed_stream s;
    s.push(sps_unit(sps_data()));
    std::vector<unsigned char> broken = written(sps_unit(sps_data(0, 9, 9)), {});
    broken.resize(5);
    s.push_bytes(broken);
    EXPECT_TRUE(s.last().result.failure);
    EXPECT_EQ(PicWidthInMbs(*s.sets().find_sps(0)), 4U);
}

TEST(Stream, ABrokenPpsDoesNotReplaceASoundOne)
{
    for (const std::uint32_t sps_id : {0U, 5U}) { // 5 is not there
        pushed_stream s;
        s.push({sps_unit(sps_data()), pps_unit()});
        pic_parameter_set_rbsp other = pps_rbsp(0, sps_id);
        other.pic_init_qp_minus26 = 7;
        std::vector<unsigned char> broken = written(unit_of(8, other), {});
        broken.resize(broken.size() - 1);
        s.push_bytes(broken);
        EXPECT_TRUE(s.last().result.failure);
        ASSERT_NE(s.sets().find_pps(0), nullptr);
        EXPECT_TRUE(*s.sets().find_pps(0) == pps_rbsp()) << sps_id;
    }
}

TEST(Stream, IdsBeyondTheirRangesAreNotStored)
{
    pushed_stream s;
    s.push({sps_unit(sps_data(32)), pps_unit(256)});
    EXPECT_EQ(s.sets().find_sps(32), nullptr);
    EXPECT_EQ(s.sets().find_pps(256), nullptr);
    EXPECT_EQ(s.last().result.finding_count, 1U);
}

TEST(Stream, AUnitAboveTheMostBytesFails)
{
    pushed_stream s;
    std::vector<unsigned char> unit(stream::most_unit_bytes, 0xFF);
    unit[0] = 30;
    s.push_bytes(unit);
    EXPECT_FALSE(s.last().result.failure);
    unit.push_back(0x80);
    s.push_bytes(unit);
    EXPECT_EQ(s.last().result.failure.why, reason::unit_too_long);
    EXPECT_EQ(s.last().result.failure.value, std::int64_t{stream::most_unit_bytes} + 1);
    EXPECT_EQ(s.last().result.failure.bound, std::int64_t{stream::most_unit_bytes});
}

TEST(Stream, AMovedOneGoesOnWhereItStood)
{
    struct : unit_sink {
        void take(const unit_reading& reading) override { failures += reading.result.failure ? 1 : 0; }
        int failures = 0;
    } sink;
    const small_sets sets;
    const std::vector<unsigned char> units[] = {written(sps_unit(sps_data()), {}), written(pps_unit(), {}),
                                                written(slice_unit(5), sets.context)};
    stream reader;
    for (const auto& unit : units) {
        reader.push({unit.data(), unit.size(), 0, 0}, sink);
        stream moved = std::move(reader);
        reader = std::move(moved);
    }
    reader.flush(sink);
    EXPECT_EQ(sink.failures, 0);
    EXPECT_NE(reader.sets().find_pps(0), nullptr);
}

TEST(Stream, AUnitOfNoBytesIsHandedOnAndFails)
{
    pushed_stream s;
    s.push_bytes({6, 6, 1, 0x61, 0x80}); // waits for its slice
    stream alone;
    struct : unit_sink {
        void take(const unit_reading& reading) override { why = reading.result.failure.why; }
        reason why = reason::none;
    } sink;
    alone.push({nullptr, 0, 0, 0}, sink);
    EXPECT_EQ(sink.why, reason::unit_ends);
}

TEST(Stream, ASubsetSpsWithAnIdAboveTheLastIsNotKept)
{
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = sps_data(32);
    pushed_stream s;
    s.push(unit_of(15, subset));
    for (std::uint32_t id = 0; id <= 32; ++id)
        EXPECT_EQ(s.sets().find_subset_sps(id), nullptr);
}

TEST(Stream, ADepthParameterSetAndASubsetSpsOfDepthAreKept)
{
    depth_parameter_set_rbsp depth;
    depth.depth_parameter_set_id = 3;
    depth.pred_direction = 2;
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = sps_data(2);
    pushed_stream s;
    for (const unsigned profile_idc : {138U, 135U, 118U}) {
        subset.seq_parameter_set_data.profile_idc = static_cast<std::uint8_t>(profile_idc);
        if (profile_idc == 118) {
            subset.seq_parameter_set_mvc_extension.views.resize(1);
            subset.seq_parameter_set_mvc_extension.levels.resize(1);
            subset.seq_parameter_set_mvc_extension.levels[0].operation_points.resize(1);
            subset.seq_parameter_set_mvc_extension.levels[0].operation_points[0].applicable_op_target_view_id = {0};
        } else {
            subset.seq_parameter_set_mvcd_extension.views.resize(1);
            subset.seq_parameter_set_mvcd_extension.levels.resize(1);
            subset.seq_parameter_set_mvcd_extension.levels[0].operation_points.resize(1);
            subset.seq_parameter_set_mvcd_extension.levels[0].operation_points[0].target_views.resize(1);
        }
        s.push(unit_of(15, subset));
        ASSERT_NE(s.sets().find_subset_sps(2), nullptr);
        EXPECT_EQ(s.sets().find_subset_sps(2)->seq_parameter_set_data.profile_idc, profile_idc);
    }
    s.push(unit_of(16, depth));
    ASSERT_NE(s.sets().find_dps(3), nullptr);
    EXPECT_TRUE(*s.sets().find_dps(3) == depth);
    EXPECT_EQ(s.sets().find_dps(2), nullptr);
    EXPECT_EQ(s.sets().find_dps(parameter_sets::dps_ids), nullptr);
}

} // namespace
