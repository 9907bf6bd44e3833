// The SPS of the legacy interface read up to a fence, beside the open-ended parse: the same for whole SPSs, and zeros
// behind the end of cut ones.
#include "legacy/sps_syntax.h"

#include "support/legacy_parse.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

// The linker sends the calls of legacy_bits::ue() here, so that a test can count them.
unsigned int
counted_ue(const orv_utils_v4::legacy::legacy_bits* bits) asm("__wrap__ZNK12orv_utils_v46legacy11legacy_bits2ueEv");
unsigned int
real_ue(const orv_utils_v4::legacy::legacy_bits* bits) asm("__real__ZNK12orv_utils_v46legacy11legacy_bits2ueEv");

static std::size_t codes_read = 0;

unsigned int counted_ue(const orv_utils_v4::legacy::legacy_bits* bits)
{
    ++codes_read;
    return real_ue(bits);
}

namespace {

using orv_utils_v4::legacy::legacy_bits;
using orv_utils_v4::legacy::read_hrd_lengths;
using orv_utils_v4::legacy::read_seq_parameter_set_data;
using orv_utils_v4::legacy::skip_scaling_list;
using support::bit_writer;
using support::bytes;
using support::guarded_buffer;
using support::open_bits;
using support::parsed_legacy_sps;
using support::sps_description;

/// An SPS, or a part of one, read up to the end of a buffer that ends at an unmapped page.
struct fenced_bits {
    guarded_buffer buffer;
    be_bitfield bf;
    h264_sps object = support::numbered_sps(3);

    explicit fenced_bits(const bytes& data) : buffer(data)
    {
        be_bitfield_open_until(&bf, buffer.begin(), buffer.end());
    }

    legacy_bits bits() { return {bf, buffer.end()}; }
    std::size_t loaded() const { return static_cast<std::size_t>(bf.ptr - buffer.begin()); }
};

fenced_bits fenced(const bytes& data)
{
    return fenced_bits(data);
}

std::vector<sps_description> several_spss()
{
    std::vector<sps_description> spss = {{}, support::high_sps(), support::full_legacy_sps()};
    spss.push_back(support::full_legacy_sps());
    spss.back().scaling_lists.reset();
    spss.push_back(support::high_sps());
    spss.back().scaling_lists.emplace()[1] = support::rising_list(16, 9);
    spss.back().vui.emplace().nal_hrd = support::hrd_of(32);
    spss.emplace_back().vui = support::full_vui();
    spss.emplace_back().pic_order_cnt_type = 1;
    spss.back().offset_for_ref_frame.assign(255, -3);
    return spss;
}

/// The fenced parse of `data`, and an open one of the same bytes before zeros: the same members and, but for where
/// loading ended, the same reader.
void expect_zeros_behind(const bytes& data)
{
    fenced_bits f = fenced(data);
    read_seq_parameter_set_data(f.object, f.bits());
    const parsed_legacy_sps open(data, support::numbered_sps(3), 8192);
    EXPECT_EQ("", support::difference_of(open.object, f.object));
    EXPECT_EQ(open.bf.word, f.bf.word);
    EXPECT_EQ(open.bf.bits, f.bf.bits);
    EXPECT_EQ(std::min(static_cast<std::size_t>(open.bf.ptr - open.buffer.begin()), data.size()), f.loaded());
}

/// The head of an SPS up to and with a cycle of `count` offsets, none of which is written.
bit_writer cycle_of(std::uint32_t count)
{
    bit_writer writer;
    return writer.u(8, 66).u(8, 0).u(8, 30).ue(0).ue(0).ue(1).flag(true).se(0).se(0).ue(count);
}

} // namespace

TEST(LegacyFencedSps, CutAnywhereItIsFollowedByZeros)
{
    for (const sps_description& seq : several_spss()) {
        const bytes whole = written(seq).made();
        for (std::size_t size = 0; size <= whole.size(); ++size) {
            const bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            fenced_bits f = fenced(cut);
            support::named_values expected = support::fields_of(f.object);
            literal::legacy_bit_reader reader(cut);
            const bool counts_are_followed = literal::legacy::sps({expected, reader});
            read_seq_parameter_set_data(f.object, f.bits());
            ASSERT_EQ("", support::difference(expected, support::fields_of(f.object))) << size;
            if (counts_are_followed)
                expect_zeros_behind(cut);
        }
    }
}

TEST(LegacyFencedSps, ALargeCycleWithoutDataEndsAtOnce)
{
    // The count is 33554430: 24 zeros and 24 ones.
    bit_writer writer;
    writer.u(8, 66).u(8, 0).u(8, 30).ue(0).ue(0).ue(1).flag(true).se(0).se(0).u(24, 0).u(24, 0xFFFFFF);
    fenced_bits f = fenced(writer.bytes());
    codes_read = 0;
    read_seq_parameter_set_data(f.object, f.bits());
    EXPECT_EQ(6U + 3, codes_read) << "up to the count, and from max_num_ref_frames on";
    EXPECT_EQ(writer.bytes().size(), f.loaded());
    EXPECT_EQ(255, f.object.max_num_ref_frames);
    EXPECT_EQ(16777216U, f.object.pic_width_in_mbps);
    EXPECT_EQ(16777216U, f.object.pic_height_in_map_units);
    EXPECT_EQ(0, f.object.vui_parameters_present_flag);
}

TEST(LegacyFencedSps, ACycleIsFollowedWhileAOneBitRemains)
{
    bit_writer writer = cycle_of(1000);
    for (int i = 0; i < 700; ++i)
        writer.se(1 + i % 5);
    writer.u(40, 0).flag(true); // the last value of the cycle, 24 zeros and 24 bits
    fenced_bits f = fenced(writer.bytes());
    codes_read = 0;
    read_seq_parameter_set_data(f.object, f.bits());
    EXPECT_EQ(writer.bytes().size(), f.loaded());
    EXPECT_EQ(6U + 701 + 3, codes_read) << "the one bit belongs to the cycle";
    EXPECT_EQ(255, f.object.max_num_ref_frames);
}

TEST(LegacyFencedSps, AOneBitInAByteThatIsNotYetLoadedCounts)
{
    // The second value of the cycle begins on a byte: 24 zeros, which are loaded, and a byte, which is not.
    bit_writer writer;
    writer.u(8, 66).u(8, 0).u(8, 30).ue(1).ue(1).ue(1).flag(true).se(0).se(0).ue(2).se(0);
    ASSERT_EQ(40U, writer.bits());
    fenced_bits f = fenced(writer.u(24, 0).u(8, 1).bytes());
    codes_read = 0;
    read_seq_parameter_set_data(f.object, f.bits());
    EXPECT_EQ(6U + 2 + 3, codes_read);
    EXPECT_EQ(writer.bytes().size(), f.loaded());
}

TEST(LegacyFencedSps, AWholeCycleUpToTheVeryEndIsReadWhole)
{
    bit_writer writer = cycle_of(3);
    writer.se(1).se(1).se(1);
    writer.ue(4).flag(true).ue(10).ue(8).u(3, 0b110).flag(false);
    fenced_bits f = fenced(writer.bytes());
    read_seq_parameter_set_data(f.object, f.bits());
    EXPECT_EQ(4, f.object.max_num_ref_frames);
    EXPECT_EQ(1, f.object.gaps_in_frame_num_value_allowed_flag);
    EXPECT_EQ(11U, f.object.pic_width_in_mbps);
    EXPECT_EQ(9U, f.object.pic_height_in_map_units);
}

TEST(LegacyFencedSps, ScalingListsAndHrdsAreFencedToo)
{
    support::bit_writer list;
    list.flag(true);
    for (int i = 0; i < 64; ++i)
        list.se(i % 7 - 2);
    const bytes whole = list.bytes();
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        fenced_bits f = fenced(cut);
        skip_scaling_list(f.bits(), 64);
        open_bits open(cut, 8192);
        h264_sps sps;
        sps.discard_h264_video_scaling_matrix_list_because_nobody_fucking_cares(open.bf, 64);
        EXPECT_EQ(open.bf.word, f.bf.word);
        EXPECT_EQ(open.bf.bits, f.bf.bits);
    }
    const bytes hrd = support::written(support::hrd_of(32)).made();
    for (std::size_t size = 0; size <= hrd.size(); ++size) {
        const bytes cut(hrd.begin(), hrd.begin() + static_cast<std::ptrdiff_t>(size));
        fenced_bits f = fenced(cut);
        read_hrd_lengths(f.object, f.bits());
        open_bits open(cut, 8192);
        h264_sps sps = support::numbered_sps(3);
        sps.discard_h264_video_hrd_params_because_nobody_fucking_cares(open.bf);
        EXPECT_EQ("", support::difference_of(sps, f.object));
        EXPECT_EQ(open.bf.word, f.bf.word);
        EXPECT_EQ(open.bf.bits, f.bf.bits);
    }
}
