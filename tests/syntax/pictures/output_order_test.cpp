// The order of output: bumping (clause C.4), and the same order earlier.
#include "support/made_slice.h"
#include "support/small_units.h"
#include "support/told_pictures.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

/// Pictures given to output_order one by one, with their marking. What is output is kept as "number" each.
class ordered : public picture_sink {
public:
    explicit ordered(std::uint32_t max_num_ref_frames, output_mode mode = output_mode::bumping) : order(mode)
    {
        sps.pic_order_cnt_type = 0;
        sps.max_num_ref_frames = max_num_ref_frames;
        sps.vui_parameters.bitstream_restriction_flag = true;
        sps.vui_parameters.max_dec_frame_buffering = max_num_ref_frames;
        sps.vui_parameters.max_num_reorder_frames = max_num_ref_frames;
    }
    /// The next frame with this picture order count.
    ordered& add(const made_slice& slice, std::int64_t PicOrderCnt)
    {
        picture next;
        next.number = number++;
        next.nal_ref_idc = static_cast<std::uint8_t>(slice.nal_ref_idc);
        next.count = {PicOrderCnt, PicOrderCnt};
        if (slice.idr())
            order.end_sequence(slice.header.dec_ref_pic_marking.no_output_of_prior_pics_flag, *this);
        const marked_picture marked{sps, slice.header, slice.nal_ref_idc, slice.idr(), false, next.number};
        marking.before_picture(marked);
        marking.after_picture(marked);
        order.begin(next, sps, marking, *this);
        order.end(next, *this);
        return *this;
    }
    ordered& end()
    {
        order.end_sequence(false, *this);
        return *this;
    }
    void output(const picture& picture) override
    {
        EXPECT_EQ(picture.output_number, count++);
        text += (text.empty() ? "" : " ") + std::to_string(picture.number) + (picture.discarded ? "-" : "");
    }

    seq_parameter_set_data sps = sps_data();
    std::string text;

private:
    output_order order;
    reference_marking marking;
    std::uint64_t number = 0;
    std::uint64_t count = 0;
};

TEST(OutputOrder, TheLowestCountGoesWhenThereIsNoRoom)
{
    ordered o(2);
    o.add(idr(), 0).add(reference(1), 8);
    EXPECT_EQ(o.text, "");
    o.add(reference(2), 4);
    EXPECT_EQ(o.text, "0"); // frames 1 and 2 are for reference, and not output: they fill both buffers
    o.add(reference(3), 12);
    EXPECT_EQ(o.text, "0 2 1");
    EXPECT_EQ(o.end().text, "0 2 1 3");
}

TEST(OutputOrder, ANonReferencePictureWithTheLowestCountIsNotStored)
{
    ordered o(2);
    o.add(idr(), 0).add(reference(1), 8).add(other(2), 2);
    EXPECT_EQ(o.text, "0 2"); // there is no room: frame 0 goes, and is still for reference
    o.add(other(2), 4);
    EXPECT_EQ(o.text, "0 2 3");
    EXPECT_EQ(o.end().text, "0 2 3 1");
}

TEST(OutputOrder, ANonReferencePictureWaitsWhereThereIsRoom)
{
    ordered o(3);
    o.add(idr(), 0).add(reference(1), 8).add(other(2), 4);
    EXPECT_EQ(o.text, "");
    o.add(other(2), 6);
    EXPECT_EQ(o.text, "0 2"); // the third buffer is that of picture 2
    EXPECT_EQ(o.end().text, "0 2 3 1");
}

// C.4.5.2: nothing waits that is lower, and there is no empty buffer.
TEST(OutputOrder, ANonReferencePictureIsOutputAtOnceWhenReferencesTakeAllRoom)
{
    ordered o(1);
    o.add(idr(), 0).add(other(1), 2);
    EXPECT_EQ(o.text, "0 1");
    o.add(other(1), 4);
    EXPECT_EQ(o.text, "0 1 2");
}

TEST(OutputOrder, ReferencesTakeRoomUntilTheyAreUnmarked)
{
    ordered kept(3), unmarked(3);
    kept.add(idr(), 0).add(reference(1), 2).add(reference(2), 4).add(other(3), 6);
    EXPECT_EQ(kept.text, "0 1 2 3"); // all three are for reference
    unmarked.add(idr(), 0).add(reference(1), 2).add(with(reference(2), {unmark_short(0), unmark_short(1)}), 4);
    unmarked.add(other(3), 6);
    EXPECT_EQ(unmarked.text, "0"); // pictures 1 and 2 wait
}

TEST(OutputOrder, FramesThatDoNotExistTakeRoomAndAreNotOutput)
{
    ordered o(3);
    o.sps.gaps_in_frame_num_value_allowed_flag = true;
    o.add(idr(), 0).add(reference(1), 2).add(reference(4), 8);
    EXPECT_EQ(o.text, "0 1");
    EXPECT_EQ(o.end().text, "0 1 2");
}

TEST(OutputOrder, AnIdrPictureLetsAllBeforeGo)
{
    ordered o(4);
    o.add(idr(), 0).add(reference(1), 8).add(reference(2), 4).add(idr(), 0);
    EXPECT_EQ(o.text, "0 2 1");
    EXPECT_EQ(o.end().text, "0 2 1 3");
}

TEST(OutputOrder, NoOutputOfPriorPicsDiscardsWhatWaits)
{
    made_slice discarding = idr();
    discarding.header.dec_ref_pic_marking.no_output_of_prior_pics_flag = true;
    ordered o(2);
    o.add(idr(), 0).add(reference(1), 8).add(reference(2), 4).add(discarding, 0);
    EXPECT_EQ(o.text, "0 2- 1-");
    EXPECT_EQ(o.end().text, "0 2- 1- 3");
}

TEST(OutputOrder, WithoutABufferEachPictureLeavesBeforeTheNext)
{
    ordered o(0);
    o.add(idr(), 0);
    EXPECT_EQ(o.text, "");
    o.add(idr(), 0);
    EXPECT_EQ(o.text, "0");
    o.add(other(1), 2);
    EXPECT_EQ(o.text, "0 1 2");
}

TEST(OutputOrder, EarlyOnlyAsManyWaitAsMayBeReordered)
{
    ordered o(4, output_mode::early);
    o.sps.vui_parameters.max_num_reorder_frames = 1;
    o.add(idr(), 0);
    EXPECT_EQ(o.text, "");
    o.add(reference(1), 8);
    EXPECT_EQ(o.text, "0");
    o.add(reference(2), 4);
    EXPECT_EQ(o.text, "0 2");
    o.add(reference(3), 6);
    EXPECT_EQ(o.text, "0 2 3");
    EXPECT_EQ(o.end().text, "0 2 3 1");
}

TEST(OutputOrder, EarlyWithoutReorderingIsAtOnce)
{
    ordered told(4, output_mode::early), of_type_2(4, output_mode::early);
    told.sps.vui_parameters.max_num_reorder_frames = 0;
    of_type_2.sps.pic_order_cnt_type = 2;
    for (ordered* o : {&told, &of_type_2})
        EXPECT_EQ(o->add(idr(), 0).add(reference(1), 2).text, "0 1");
}

TEST(OutputOrder, WhenDecodedIsDecodingOrder)
{
    ordered o(4, output_mode::when_decoded);
    o.add(idr(), 0).add(reference(1), 8).add(other(2), 4);
    EXPECT_EQ(o.text, "0 1 2");
}

TEST(OutputOrder, APictureWithoutAPlaceIsOutputWhenItIsComplete)
{
    ordered sink(2);
    output_order order(output_mode::bumping);
    order.begin_alone();
    EXPECT_EQ(sink.text, "");
    picture alone;
    alone.number = 7;
    order.end(alone, sink);
    EXPECT_EQ(sink.text, "7");
}

TEST(OutputOrder, TheFramesOfABufferAreSentOrInferred)
{
    seq_parameter_set_data sps = sps_data(0, 45, 36); // 720 by 576, level 3
    EXPECT_EQ(most_buffered_frames(sps), 5U);
    sps.pic_order_cnt_type = 0;
    EXPECT_EQ(most_reordered_frames(sps), 5U);
    sps.profile_idc = 100; // High Intra
    sps.constraint_set3_flag = true;
    EXPECT_EQ(most_buffered_frames(sps), 0U);
    EXPECT_EQ(most_reordered_frames(sps), 0U);
    sps.vui_parameters.bitstream_restriction_flag = true;
    sps.vui_parameters.max_dec_frame_buffering = 3;
    sps.vui_parameters.max_num_reorder_frames = 2;
    EXPECT_EQ(most_buffered_frames(sps), 3U);
    EXPECT_EQ(most_reordered_frames(sps), 2U);
    sps.pic_order_cnt_type = 2;
    EXPECT_EQ(most_reordered_frames(sps), 0U);
    sps.pic_order_cnt_type = 0;
    sps.vui_parameters.max_dec_frame_buffering = sps.vui_parameters.max_num_reorder_frames = 0xFFFFFFFF;
    EXPECT_EQ(most_buffered_frames(sps), 16U);
    EXPECT_EQ(most_reordered_frames(sps), 16U);
}

// A buffer that says less than what is for reference is as large as that.
TEST(OutputOrder, TheBufferHoldsTheReferences)
{
    ordered o(2);
    o.sps.vui_parameters.max_dec_frame_buffering = 0;
    o.add(idr(), 0).add(reference(1), 8);
    EXPECT_EQ(o.text, "");
}

} // namespace
