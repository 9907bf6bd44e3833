// The parse of sequence parameter sets against the literal parse, and the getters. Input: see expect_same_in_a_row().
#include "structure.h"

namespace {

/// The SPS parse, with a look at the sizes after it.
struct sps_and_size : support::sps_parses {
    support::compared operator()(brenik::h264_nal_sps& sps, const support::bit_range& bits) const
    {
        support::compared c = support::sps_parses::operator()(sps, bits);
        const std::uint64_t rows = sps.frame_mbs_only_flag ? 1 : 2;
        expect_size(sps.getCropLeft(), std::uint64_t{sps.SubWidthC} * sps.frame_crop_left_offset);
        expect_size(sps.getCropRight(), std::uint64_t{sps.SubWidthC} * sps.frame_crop_right_offset);
        expect_size(sps.getCropTop(), rows * sps.SubHeightC * sps.frame_crop_top_offset);
        expect_size(sps.getCropBottom(), rows * sps.SubHeightC * sps.frame_crop_bottom_offset);
        expect_size(sps.getPicWidth(), (std::uint64_t{sps.pic_width_in_mbs_minus1} + 1) * 16);
        expect_size(sps.getPicHeight(), (std::uint64_t{sps.pic_height_in_map_units_minus1} + 1) * 16 * rows);
        expect_size(sps.getCroppedPicWidth(), cropped(sps.getPicWidth(), sps.getCropLeft(), sps.getCropRight()));
        expect_size(sps.getCroppedPicHeight(), cropped(sps.getPicHeight(), sps.getCropTop(), sps.getCropBottom()));
        return c;
    }

    static std::uint64_t cropped(std::uint64_t size, std::uint64_t before, std::uint64_t behind)
    {
        return (std::uint64_t{1} << 33) + size - before - behind;
    }

    static void expect_size(std::uint32_t actual, std::uint64_t expected)
    {
        fuzz::expect(actual == expected % (std::uint64_t{1} << 32), "sizes are those of arithmetic modulo 2^32");
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    fuzz::expect_same_in_a_row(input, sps_and_size());
    return 0;
}
