// Picture order counts against clause 8.2.1 written down a second time, by hand, and at the ends of what numbers hold.
#include "support/literal_picture_order_count.h"
#include "support/made_slice.h"
#include "support/small_units.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

namespace orv_utils_v4::h264 {

static bool operator==(const picture_order_count& a, const picture_order_count& b)
{
    return a.top == b.top && a.bottom == b.bottom;
}
static std::ostream& operator<<(std::ostream& out, const picture_order_count& c)
{
    return out << c.top << '/' << c.bottom;
}

} // namespace orv_utils_v4::h264

namespace {

using namespace orv_utils_v4::h264;
using support::pick;
using support::random_source;

constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();

/// Counts slices of streams with the SPS.
class counter {
public:
    explicit counter(std::uint32_t pic_order_cnt_type)
    {
        sps.pic_order_cnt_type = pic_order_cnt_type;
        sps.frame_mbs_only_flag = false;
    }
    picture_order_count operator()(const made_slice& slice)
    {
        return counting.next(sps, slice.header, slice.nal_ref_idc, slice.idr());
    }
    seq_parameter_set_data sps = sps_data();

private:
    picture_order_counter counting;
};

made_slice with_bottom(made_slice slice, std::int32_t delta_pic_order_cnt_bottom)
{
    slice.header.delta_pic_order_cnt_bottom = delta_pic_order_cnt_bottom;
    return slice;
}
made_slice with_deltas(made_slice slice, std::int32_t first, std::int32_t second)
{
    slice.header.delta_pic_order_cnt[0] = first;
    slice.header.delta_pic_order_cnt[1] = second;
    return slice;
}

// MaxPicOrderCntLsb is 16.
TEST(PictureOrderCount, Type0WrapsForwardsFromHalfARangeOn)
{
    counter count(0);
    EXPECT_EQ(count(idr()), (picture_order_count{0, 0}));
    EXPECT_EQ(count(reference(1, 8)), (picture_order_count{8, 8}));
    EXPECT_EQ(count(reference(2, 0)), (picture_order_count{16, 16})); // 8 back: forwards
    EXPECT_EQ(count(reference(3, 9)), (picture_order_count{9, 9}));   // 9 ahead: backwards
    EXPECT_EQ(count(reference(4, 1)), (picture_order_count{17, 17}));
}

TEST(PictureOrderCount, Type0WrapsBackwardsBelowZero)
{
    counter count(0);
    count(idr());
    EXPECT_EQ(count(reference(1, 9)), (picture_order_count{-7, -7}));
    EXPECT_EQ(count(reference(2, 2)), (picture_order_count{-14, -14}));
    EXPECT_EQ(count(reference(3, 10)), (picture_order_count{-6, -6})); // 8 ahead: not backwards
    EXPECT_EQ(count(reference(4, 2)), (picture_order_count{2, 2}));    // 8 back: forwards
}

TEST(PictureOrderCount, Type0CountsFromTheLatestReferencePicture)
{
    counter count(0);
    count(idr());
    EXPECT_EQ(count(reference(1, 8)).top, 8);
    EXPECT_EQ(count(other(2, 15)).top, 15);
    EXPECT_EQ(count(other(2, 1)).top, 1); // 7 below 8, not 14 below 15
}

TEST(PictureOrderCount, Type0TellsFieldsTheirOwnAndFramesBoth)
{
    counter count(0);
    EXPECT_EQ(count(with_bottom(idr(), -1)), (picture_order_count{0, -1}));
    EXPECT_EQ(count(top(reference(1, 4))), (picture_order_count{4, 4}));
    EXPECT_EQ(count(bottom(reference(1, 5))), (picture_order_count{5, 5}));
}

TEST(PictureOrderCount, BehindOperation5Type0CountsFromTheTopField)
{
    counter count(0);
    count(idr());
    const made_slice frame = with(with_bottom(reference(1, 6), -2), {forget_all()});
    const picture_order_count before = count(frame);
    EXPECT_EQ(before, (picture_order_count{6, 4}));
    EXPECT_EQ(picture_order_counter::after_marking(before, frame.header), (picture_order_count{2, 0}));
    EXPECT_EQ(count(reference(1, 10)).top, 10); // 8 above 2: not backwards

    count(with(top(reference(2, 6)), {forget_all()}));
    EXPECT_EQ(count(bottom(reference(0, 9))).top, -7); // 9 above 0
    count(with(bottom(reference(2, 6)), {forget_all()}));
    EXPECT_EQ(count(top(reference(0, 8))).top, 8);
}

TEST(PictureOrderCount, Type1FollowsTheCycle)
{
    counter count(1);
    count.sps.offset_for_non_ref_pic = -3;
    count.sps.offset_for_top_to_bottom_field = 1;
    count.sps.num_ref_frames_in_pic_order_cnt_cycle = 2;
    count.sps.offset_for_ref_frame[0] = 4;
    count.sps.offset_for_ref_frame[1] = 6;
    EXPECT_EQ(count(idr()), (picture_order_count{0, 1}));
    EXPECT_EQ(count(reference(1)), (picture_order_count{4, 5}));
    EXPECT_EQ(count(other(2)), (picture_order_count{1, 2}));
    EXPECT_EQ(count(with_deltas(reference(2), 100, 10)), (picture_order_count{110, 121}));
    EXPECT_EQ(count(bottom(with_deltas(reference(3), 1, 50))), (picture_order_count{16, 16}));
    EXPECT_EQ(count(reference(15)).top, 74);
    EXPECT_EQ(count(reference(0)).top, 80); // frame_num begins again: the 16th
}

TEST(PictureOrderCount, Type1WithoutACycleIsWhatIsSent)
{
    counter count(1);
    count.sps.offset_for_non_ref_pic = -3;
    count(idr());
    EXPECT_EQ(count(with_deltas(reference(7), 9, 2)), (picture_order_count{9, 11}));
    EXPECT_EQ(count(with_deltas(other(8), 9, 2)), (picture_order_count{6, 8}));
}

TEST(PictureOrderCount, Type2IsDecodingOrder)
{
    counter count(2);
    EXPECT_EQ(count(idr()), (picture_order_count{0, 0}));
    EXPECT_EQ(count(other(1)), (picture_order_count{1, 1}));
    EXPECT_EQ(count(reference(1)), (picture_order_count{2, 2}));
    EXPECT_EQ(count(reference(15)).top, 30);
    EXPECT_EQ(count(other(0)).top, 31);
    const made_slice forgetting = with(reference(1), {forget_all()});
    const picture_order_count before = count(forgetting);
    EXPECT_EQ(before.top, 34);
    EXPECT_EQ(picture_order_counter::after_marking(before, forgetting.header).top, 0);
    EXPECT_EQ(count(reference(1)).top, 2);
}

/// Sound sequences of frames and fields at random.
class random_sequence {
public:
    random_sequence(int pic_order_cnt_type, random_source& source) : random(source)
    {
        model.pic_order_cnt_type = pic_order_cnt_type;
        sps.pic_order_cnt_type = static_cast<std::uint32_t>(pic_order_cnt_type);
        sps.log2_max_frame_num_minus4 = static_cast<std::uint32_t>(pick(random, 3));
        sps.log2_max_pic_order_cnt_lsb_minus4 = static_cast<std::uint32_t>(pick(random, 5));
        model.MaxFrameNum = 16 << sps.log2_max_frame_num_minus4;
        model.MaxPicOrderCntLsb = 16 << sps.log2_max_pic_order_cnt_lsb_minus4;
        model.offset_for_non_ref_pic = sps.offset_for_non_ref_pic = between(-9, 9);
        model.offset_for_top_to_bottom_field = sps.offset_for_top_to_bottom_field = between(-9, 9);
        sps.num_ref_frames_in_pic_order_cnt_cycle = static_cast<std::uint32_t>(pick(random, 5));
        for (std::uint32_t i = 0; i < sps.num_ref_frames_in_pic_order_cnt_cycle; ++i) {
            sps.offset_for_ref_frame[i] = between(-100, 200);
            model.offset_for_ref_frame.push_back(sps.offset_for_ref_frame[i]);
        }
    }
    /// The next coded picture.
    literal::counted_picture next()
    {
        if (second_field) {
            second_field = false;
            last.bottom = !last.bottom;
            last.idr = false;
            if (last.operation_5)
                last.frame_num = 0;
            last.operation_5 = false;
            choose_counts();
            return last;
        }
        literal::counted_picture picture;
        picture.idr = any && pick(random, 60) == 0;
        picture.idr |= !any;
        picture.reference = picture.idr || pick(random, 3) != 0;
        if (!picture.idr)
            picture.frame_num = (reference_frame_num + 1) % model.MaxFrameNum;
        picture.field = pick(random, 2) == 0;
        picture.bottom = picture.field && pick(random, 2) == 0;
        picture.operation_5 = picture.reference && !picture.idr && pick(random, 30) == 0;
        second_field = picture.field && pick(random, 4) != 0;
        if (picture.reference)
            reference_frame_num = picture.operation_5 ? 0 : picture.frame_num;
        any = true;
        last = picture;
        choose_counts();
        return last;
    }
    made_slice slice_of(const literal::counted_picture& picture) const
    {
        made_slice slice = picture.idr ? idr() : reference(static_cast<std::uint32_t>(picture.frame_num));
        slice.nal_ref_idc = picture.reference ? 2 : 0;
        if (picture.field)
            slice = picture.bottom ? bottom(slice) : top(slice);
        slice.header.pic_order_cnt_lsb = static_cast<std::uint32_t>(picture.pic_order_cnt_lsb);
        slice.header.delta_pic_order_cnt_bottom = static_cast<std::int32_t>(picture.delta_pic_order_cnt_bottom);
        slice.header.delta_pic_order_cnt[0] = static_cast<std::int32_t>(picture.delta_pic_order_cnt[0]);
        slice.header.delta_pic_order_cnt[1] = static_cast<std::int32_t>(picture.delta_pic_order_cnt[1]);
        return picture.operation_5 ? with(slice, {forget_all()}) : slice;
    }

    seq_parameter_set_data sps = sps_data();
    literal::counted_sequence model;

private:
    int between(int low, int high)
    {
        return low + static_cast<int>(pick(random, static_cast<std::size_t>(high - low) + 1));
    }
    void choose_counts()
    {
        last.pic_order_cnt_lsb = between(0, static_cast<int>(model.MaxPicOrderCntLsb) - 1);
        last.delta_pic_order_cnt_bottom = last.field ? 0 : between(-20, 20);
        last.delta_pic_order_cnt[0] = between(-50, 50);
        last.delta_pic_order_cnt[1] = last.field ? 0 : between(-50, 50);
    }

    random_source& random;
    literal::counted_picture last;
    std::int64_t reference_frame_num = 0;
    bool any = false;
    bool second_field = false;
};

picture_order_count expected_of(const literal::counted_picture& picture, const literal::counts& c)
{
    if (!picture.field)
        return {c.TopFieldOrderCnt, c.BottomFieldOrderCnt};
    const std::int64_t own = picture.bottom ? c.BottomFieldOrderCnt : c.TopFieldOrderCnt;
    return {own, own};
}

class PictureOrderCountOfType : public testing::TestWithParam<int> {};
TEST_P(PictureOrderCountOfType, IsThatOfTheClause)
{
    random_source random(static_cast<unsigned>(GetParam()) + 7);
    for (int i = 0; i < 1500; ++i) {
        random_sequence sequence(GetParam(), random);
        literal::picture_order_count model(sequence.model);
        picture_order_counter counting;
        for (int n = 0; n < 60; ++n) {
            const literal::counted_picture picture = sequence.next();
            const made_slice slice = sequence.slice_of(picture);
            const literal::counts wanted = model.next(picture);
            const picture_order_count told = counting.next(sequence.sps, slice.header, slice.nal_ref_idc, slice.idr());
            ASSERT_EQ(told, expected_of(picture, wanted)) << "sequence " << i << " picture " << n;
            ASSERT_EQ(picture_order_counter::after_marking(told, slice.header),
                      expected_of(picture, literal::picture_order_count::after_operation_5(picture, wanted)));
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Types, PictureOrderCountOfType, testing::Values(0, 1, 2));

TEST(PictureOrderCount, OutOf32BitsIsTold)
{
    EXPECT_TRUE((picture_order_count{2147483647, -2147483648LL}.in_range()));
    EXPECT_FALSE((picture_order_count{2147483648LL, 0}.in_range()));
    EXPECT_FALSE((picture_order_count{0, -2147483649LL}.in_range()));
}

// What a damaged SPS and slices at the ends of their ranges lead to.
TEST(PictureOrderCount, StopsAtTheEndsOf64Bits)
{
    for (const std::int32_t extreme : {2147483647, -2147483647 - 1}) {
        counter count(1);
        count.sps.log2_max_frame_num_minus4 = 0xFFFFFFFF;
        count.sps.offset_for_non_ref_pic = extreme;
        count.sps.offset_for_top_to_bottom_field = extreme;
        count.sps.num_ref_frames_in_pic_order_cnt_cycle = 255;
        for (std::int32_t& offset : count.sps.offset_for_ref_frame)
            offset = extreme;
        picture_order_count latest;
        for (std::uint32_t i = 0; i < 1000; ++i) // each other one is a wrap of 2^32
            latest = count(with_deltas(other(i % 2 == 0 ? 0xFFFFFFFF : 0), extreme, extreme));
        EXPECT_EQ(latest.top, extreme > 0 ? highest : lowest);
        EXPECT_EQ(latest.bottom, latest.top);
        EXPECT_FALSE(latest.in_range());
    }
}

TEST(PictureOrderCount, ACycleBeyond255IsOneOf255)
{
    counter hostile(1), largest(1);
    hostile.sps.num_ref_frames_in_pic_order_cnt_cycle = 0xFFFFFFFF;
    largest.sps.num_ref_frames_in_pic_order_cnt_cycle = 255;
    for (counter* c : {&hostile, &largest}) {
        c->sps.log2_max_frame_num_minus4 = 12;
        for (int i = 0; i < 255; ++i)
            c->sps.offset_for_ref_frame[i] = i;
        (*c)(idr());
    }
    EXPECT_EQ(hostile(reference(1000)), largest(reference(1000)));
}

TEST(PictureOrderCount, OfType0AndType2NeverOverflow)
{
    for (const std::uint32_t type : {0U, 2U}) {
        counter count(type);
        count.sps.log2_max_pic_order_cnt_lsb_minus4 = 0xFFFFFFFF;
        count.sps.log2_max_frame_num_minus4 = 0xFFFFFFFF;
        picture_order_count latest;
        for (std::uint32_t i = 0; i < 4000; ++i) {
            latest = count(with_bottom(reference(0xFFFFFFFF - i % 2, i % 2 == 0 ? 0xFFFFFFFF : 0), 2147483647));
            EXPECT_LE(latest.top, highest / 2);
        }
    }
}

} // namespace
