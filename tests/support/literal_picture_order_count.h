// Picture order counts written down from H.264 clause 8.2.1, sentence by sentence, for sound streams. The tests hold
// the library against it; they share nothing.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace literal {

/// What the counts stand on.
struct counted_sequence {
    int pic_order_cnt_type = 0;
    std::int64_t MaxFrameNum = 16;
    std::int64_t MaxPicOrderCntLsb = 16;
    std::int64_t offset_for_non_ref_pic = 0;
    std::int64_t offset_for_top_to_bottom_field = 0;
    std::vector<std::int64_t> offset_for_ref_frame;
};

/// A coded picture: a frame, or a field.
struct counted_picture {
    bool idr = false;
    bool reference = true;
    bool field = false;
    bool bottom = false;
    bool operation_5 = false;
    std::int64_t frame_num = 0;
    std::int64_t pic_order_cnt_lsb = 0;
    std::int64_t delta_pic_order_cnt_bottom = 0;
    std::int64_t delta_pic_order_cnt[2] = {};
};

struct counts {
    std::int64_t TopFieldOrderCnt = 0;
    std::int64_t BottomFieldOrderCnt = 0;
};

class picture_order_count {
public:
    explicit picture_order_count(counted_sequence of) : sps(std::move(of)) {}

    /// Of the next picture, before operation 5 takes effect; a field has one of the two.
    counts next(const counted_picture& picture)
    {
        counts result;
        if (sps.pic_order_cnt_type == 0)
            result = by_type_0(picture);
        else if (sps.pic_order_cnt_type == 1)
            result = by_type_1(picture);
        else
            result = by_type_2(picture);
        previous = picture;
        return result;
    }

    /// "tempPicOrderCnt", at the end of 8.2.1.
    static counts after_operation_5(const counted_picture& picture, counts c)
    {
        if (!picture.operation_5)
            return c;
        if (!picture.field) {
            const std::int64_t tempPicOrderCnt =
                c.TopFieldOrderCnt < c.BottomFieldOrderCnt ? c.TopFieldOrderCnt : c.BottomFieldOrderCnt;
            return {c.TopFieldOrderCnt - tempPicOrderCnt, c.BottomFieldOrderCnt - tempPicOrderCnt};
        }
        return {0, 0};
    }

private:
    // 8.2.1.1
    counts by_type_0(const counted_picture& picture)
    {
        std::int64_t prevPicOrderCntMsb = 0;
        std::int64_t prevPicOrderCntLsb = 0;
        if (!picture.idr) {
            if (previous_reference.operation_5) {
                prevPicOrderCntLsb = previous_reference.bottom ? 0 : previous_reference_top;
            } else {
                prevPicOrderCntMsb = previous_reference_msb;
                prevPicOrderCntLsb = previous_reference.pic_order_cnt_lsb;
            }
        }
        std::int64_t PicOrderCntMsb = prevPicOrderCntMsb;
        if (picture.pic_order_cnt_lsb < prevPicOrderCntLsb &&
            prevPicOrderCntLsb - picture.pic_order_cnt_lsb >= sps.MaxPicOrderCntLsb / 2)
            PicOrderCntMsb = prevPicOrderCntMsb + sps.MaxPicOrderCntLsb;
        else if (picture.pic_order_cnt_lsb > prevPicOrderCntLsb &&
                 picture.pic_order_cnt_lsb - prevPicOrderCntLsb > sps.MaxPicOrderCntLsb / 2)
            PicOrderCntMsb = prevPicOrderCntMsb - sps.MaxPicOrderCntLsb;

        counts c;
        if (!picture.field || !picture.bottom)
            c.TopFieldOrderCnt = PicOrderCntMsb + picture.pic_order_cnt_lsb;
        if (!picture.field)
            c.BottomFieldOrderCnt = c.TopFieldOrderCnt + picture.delta_pic_order_cnt_bottom;
        else if (picture.bottom)
            c.BottomFieldOrderCnt = PicOrderCntMsb + picture.pic_order_cnt_lsb;
        if (picture.reference) {
            previous_reference = picture;
            previous_reference_msb = PicOrderCntMsb;
            previous_reference_top = after_operation_5(picture, c).TopFieldOrderCnt;
        }
        return c;
    }

    std::int64_t next_FrameNumOffset(const counted_picture& picture) const
    {
        const std::int64_t prevFrameNumOffset = previous.operation_5 ? 0 : FrameNumOffset;
        const std::int64_t prevFrameNum = previous.operation_5 ? 0 : previous.frame_num;
        if (picture.idr)
            return 0;
        if (prevFrameNum > picture.frame_num)
            return prevFrameNumOffset + sps.MaxFrameNum;
        return prevFrameNumOffset;
    }

    // 8.2.1.2
    counts by_type_1(const counted_picture& picture)
    {
        FrameNumOffset = next_FrameNumOffset(picture);
        const auto num_ref_frames_in_pic_order_cnt_cycle = static_cast<std::int64_t>(sps.offset_for_ref_frame.size());
        std::int64_t absFrameNum = 0;
        if (num_ref_frames_in_pic_order_cnt_cycle != 0)
            absFrameNum = FrameNumOffset + picture.frame_num;
        if (!picture.reference && absFrameNum > 0)
            absFrameNum = absFrameNum - 1;
        std::int64_t expectedPicOrderCnt = 0;
        // as many offsets as absFrameNum says, cycle for cycle
        for (std::int64_t i = 0; i < absFrameNum; ++i)
            expectedPicOrderCnt +=
                sps.offset_for_ref_frame[static_cast<std::size_t>(i % num_ref_frames_in_pic_order_cnt_cycle)];
        if (!picture.reference)
            expectedPicOrderCnt = expectedPicOrderCnt + sps.offset_for_non_ref_pic;

        counts c;
        if (!picture.field) {
            c.TopFieldOrderCnt = expectedPicOrderCnt + picture.delta_pic_order_cnt[0];
            c.BottomFieldOrderCnt =
                c.TopFieldOrderCnt + sps.offset_for_top_to_bottom_field + picture.delta_pic_order_cnt[1];
        } else if (!picture.bottom) {
            c.TopFieldOrderCnt = expectedPicOrderCnt + picture.delta_pic_order_cnt[0];
        } else {
            c.BottomFieldOrderCnt =
                expectedPicOrderCnt + sps.offset_for_top_to_bottom_field + picture.delta_pic_order_cnt[0];
        }
        return c;
    }

    // 8.2.1.3
    counts by_type_2(const counted_picture& picture)
    {
        FrameNumOffset = next_FrameNumOffset(picture);
        std::int64_t tempPicOrderCnt = 0;
        if (!picture.idr)
            tempPicOrderCnt = picture.reference ? 2 * (FrameNumOffset + picture.frame_num)
                                                : 2 * (FrameNumOffset + picture.frame_num) - 1;
        counts c;
        if (!picture.field || !picture.bottom)
            c.TopFieldOrderCnt = tempPicOrderCnt;
        if (!picture.field || picture.bottom)
            c.BottomFieldOrderCnt = tempPicOrderCnt;
        return c;
    }

    counted_sequence sps;
    counted_picture previous;
    counted_picture previous_reference;
    std::int64_t previous_reference_msb = 0;
    std::int64_t previous_reference_top = 0;
    std::int64_t FrameNumOffset = 0;
};

} // namespace literal
