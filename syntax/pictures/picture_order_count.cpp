// Picture order counts, H.264 clause 8.2.1, with its variables under its names.
#include <orv-utils-v4/h264_syntax/picture_order_count.h>

#include "operation_5.h"

#include <orv-utils-v4/h264_syntax/picture_size.h>

#include <algorithm>
#include <limits>

namespace orv_utils_v4::h264 {

namespace {

constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();

std::int64_t sum(std::int64_t a, std::int64_t b)
{
    if (b > 0)
        return a > highest - b ? highest : a + b;
    return a < lowest - b ? lowest : a + b;
}

/// `count` is not negative.
std::int64_t product(std::int64_t count, std::int64_t each)
{
    if (count == 0)
        return 0;
    if (each > 0)
        return each > highest / count ? highest : each * count;
    return each < lowest / count ? lowest : each * count;
}

std::int64_t MaxPicOrderCntLsb(const seq_parameter_set_data& sps)
{
    return std::int64_t{1} << std::min(sps.log2_max_pic_order_cnt_lsb_minus4 + std::uint64_t{4}, std::uint64_t{32});
}

bool fits_32_bits(std::int64_t count)
{
    return count == static_cast<std::int32_t>(count);
}

/// A field has its own count alone.
picture_order_count of_picture(const slice_header& header, std::int64_t top, std::int64_t bottom)
{
    if (header.field_pic_flag)
        return header.bottom_field_flag ? picture_order_count{bottom, bottom} : picture_order_count{top, top};
    return {top, bottom};
}

} // namespace

bool has_operation_5(const slice_header& header) noexcept
{
    const auto& operations = header.dec_ref_pic_marking.operations;
    return std::any_of(operations.begin(), operations.end(),
                       [](const marking_operation& o) { return o.memory_management_control_operation == 5; });
}

bool picture_order_count::in_range() const noexcept
{
    return fits_32_bits(top) && fits_32_bits(bottom);
}

picture_order_count picture_order_counter::after_marking(picture_order_count count, const slice_header& header) noexcept
{
    if (!with_operation_5(header))
        return count;
    const std::int64_t tempPicOrderCnt = count.lower();
    return {sum(count.top, -tempPicOrderCnt), sum(count.bottom, -tempPicOrderCnt)};
}

picture_order_count picture_order_counter::next(const seq_parameter_set_data& sps, const slice_header& header,
                                                unsigned nal_ref_idc, bool idr) noexcept
{
    if (idr)
        *this = picture_order_counter();
    else if (previous_frame_num > header.frame_num)
        FrameNumOffset = sum(FrameNumOffset, static_cast<std::int64_t>(MaxFrameNum(sps)));

    picture_order_count count;
    if (sps.pic_order_cnt_type == 0)
        count = type_0(sps, header);
    else if (sps.pic_order_cnt_type == 1)
        count = type_1(sps, header, nal_ref_idc);
    else
        count = idr ? picture_order_count() : type_2(header, nal_ref_idc);

    const bool operation_5 = nal_ref_idc != 0 && with_operation_5(header);
    previous_frame_num = operation_5 ? 0 : header.frame_num;
    FrameNumOffset = operation_5 ? 0 : FrameNumOffset;
    if (operation_5) {
        previous_msb = 0;
        previous_lsb = header.bottom_field_flag ? 0 : after_marking(count, header).top;
    } else if (nal_ref_idc != 0) {
        previous_msb = PicOrderCntMsb;
        previous_lsb = header.pic_order_cnt_lsb;
    }
    return count;
}

// 8.2.1.1
picture_order_count picture_order_counter::type_0(const seq_parameter_set_data& sps,
                                                  const slice_header& header) noexcept
{
    const std::int64_t max_lsb = MaxPicOrderCntLsb(sps);
    const std::int64_t lsb = header.pic_order_cnt_lsb;
    PicOrderCntMsb = previous_msb;
    if (lsb < previous_lsb && previous_lsb - lsb >= max_lsb / 2)
        PicOrderCntMsb = sum(previous_msb, max_lsb);
    else if (lsb > previous_lsb && lsb - previous_lsb > max_lsb / 2)
        PicOrderCntMsb = sum(previous_msb, -max_lsb);

    const std::int64_t field = sum(PicOrderCntMsb, lsb);
    const std::int64_t of_bottom = header.field_pic_flag ? 0 : header.delta_pic_order_cnt_bottom;
    return of_picture(header, field, sum(field, of_bottom));
}

// 8.2.1.2
picture_order_count picture_order_counter::type_1(const seq_parameter_set_data& sps, const slice_header& header,
                                                  unsigned nal_ref_idc) const noexcept
{
    constexpr std::uint32_t most = seq_parameter_set_data::most_frames_in_cycle;
    const std::uint32_t cycle = std::min(sps.num_ref_frames_in_pic_order_cnt_cycle, most);
    std::int64_t absFrameNum = cycle != 0 ? sum(FrameNumOffset, header.frame_num) : 0;
    if (nal_ref_idc == 0 && absFrameNum > 0)
        --absFrameNum;

    std::int64_t expectedPicOrderCnt = 0;
    if (absFrameNum > 0) {
        const std::int64_t picOrderCntCycleCnt = (absFrameNum - 1) / cycle;
        const std::int64_t frameNumInPicOrderCntCycle = (absFrameNum - 1) % cycle;
        std::int64_t ExpectedDeltaPerPicOrderCntCycle = 0;
        for (std::uint32_t i = 0; i < cycle; ++i) {
            ExpectedDeltaPerPicOrderCntCycle += sps.offset_for_ref_frame[i];
            if (i <= frameNumInPicOrderCntCycle)
                expectedPicOrderCnt += sps.offset_for_ref_frame[i];
        }
        expectedPicOrderCnt = sum(expectedPicOrderCnt, product(picOrderCntCycleCnt, ExpectedDeltaPerPicOrderCntCycle));
    }
    if (nal_ref_idc == 0)
        expectedPicOrderCnt = sum(expectedPicOrderCnt, sps.offset_for_non_ref_pic);

    const std::int64_t top = sum(expectedPicOrderCnt, header.delta_pic_order_cnt[0]);
    const std::int64_t of_bottom = header.field_pic_flag ? 0 : header.delta_pic_order_cnt[1];
    return of_picture(header, top, sum(sum(top, sps.offset_for_top_to_bottom_field), of_bottom));
}

// 8.2.1.3
picture_order_count picture_order_counter::type_2(const slice_header& header, unsigned nal_ref_idc) const noexcept
{
    const std::int64_t tempPicOrderCnt =
        sum(product(2, sum(FrameNumOffset, header.frame_num)), nal_ref_idc == 0 ? -1 : 0);
    return {tempPicOrderCnt, tempPicOrderCnt};
}

} // namespace orv_utils_v4::h264
