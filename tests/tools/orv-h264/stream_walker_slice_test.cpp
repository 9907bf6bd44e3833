// Slices: read from small decoded blocks, and what is wrong with them.
#include "stream_walker.h"

#include "support/walked_stream.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using brenik::h264_nal_slice_header;
using orv_h264::stream_walker;
using orv_h264::walked_unit;
using support::bit_writer;
using support::bytes;
using support::problem_of;

constexpr unsigned char p_slice = support::header_byte(2, 1);

/// A P slice up to and with ref_pic_list_modification_flag_l0.
bit_writer modified_p_slice(std::uint32_t pps_id = 0)
{
    bit_writer w;
    return w.ue(0).ue(0).ue(pps_id).u(4, 5).u(4, 6).flag(false).flag(true);
}

/// The slice with `count` modifications of idc 0, value 0: two bits each, all ones. `fill` bits follow the end.
bit_writer with_modifications(bit_writer slice, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        slice.ue(0).ue(0);
    return slice.ue(3);
}

bytes followed_by(bit_writer slice, std::size_t size)
{
    bytes rbsp = slice.trailing_bits().bytes();
    rbsp.insert(rbsp.end(), size, 0xA5);
    return rbsp;
}

class WalkedSlice : public testing::Test {
protected:
    WalkedSlice()
    {
        stream.walk(support::sps_description());
        stream.walk(support::pps_description());
    }

    walked_unit walk(const bytes& rbsp) { return stream.walk(p_slice, rbsp); }

    support::walked_stream stream;
};

const h264_nal_slice_header& header_of(const walked_unit& unit)
{
    return std::get<h264_nal_slice_header>(unit.syntax);
}

} // namespace

TEST_F(WalkedSlice, HeadersOfEveryLengthAreReadWhole)
{
    // Headers of 3 to 600 bytes end before, at and behind the ends of the blocks.
    for (std::size_t count = 0; count < 2400; ++count)
        for (const std::size_t more : {0U, 1U, 2U, 3U, 1000U}) {
            const walked_unit unit = walk(followed_by(with_modifications(modified_p_slice(), count), more));
            ASSERT_EQ("", problem_of(unit)) << count;
            ASSERT_EQ(count, header_of(unit).ref_pic_list_modification_l0.entries.size());
            ASSERT_EQ(5U, header_of(unit).frame_num);
        }
}

TEST_F(WalkedSlice, EscapesAtTheEndOfABlockAreTakenOut)
{
    // Of the values 65535 some put 00 00 on every place in a byte.
    for (std::size_t count = 60; count < 200; ++count) {
        bit_writer slice = with_modifications(modified_p_slice(), count);
        bit_writer w = modified_p_slice();
        for (std::size_t i = 0; i < count; ++i)
            w.ue(0).ue(0);
        for (int i = 0; i < 30; ++i)
            w.ue(0).ue(65535U << i % 4);
        const walked_unit unit = walk(followed_by(w.ue(3), 500));
        ASSERT_EQ("", problem_of(unit)) << count;
        const auto& entries = header_of(unit).ref_pic_list_modification_l0.entries;
        ASSERT_EQ(count + 30, entries.size());
        for (std::size_t i = 0; i < 30; ++i)
            ASSERT_EQ(65535U << i % 4, entries[count + i].pic_num_value);
    }
}

TEST_F(WalkedSlice, AnIdcWhoseZerosReachBehindABlockDoesNotEndTheList)
{
    constexpr std::uint32_t idc = 0x7FFFFF; // 23 zeros in front
    for (std::size_t count = 330; count < 400; ++count) {
        bit_writer w = modified_p_slice();
        for (std::size_t i = 0; i < count; ++i)
            w.ue(0).ue(0);
        const walked_unit unit = walk(followed_by(w.ue(idc).ue(3), 100));
        ASSERT_EQ("", problem_of(unit)) << count;
        ASSERT_EQ(idc, header_of(unit).ref_pic_list_modification_l0.entries.at(count).modification_of_pic_nums_idc);
    }
}

TEST_F(WalkedSlice, ZerosThatEndTheUnitAtTheEndOfABlockAreNoPartOfTheHeader)
{
    support::sps_description seq;
    seq.log2_max_frame_num_minus4 = 1;
    stream.walk(seq);
    bit_writer w; // 94 bytes of a B slice, up to and without ref_pic_list_modification_flag_l1
    w.ue(0).ue(1).ue(0).u(5, 5).u(4, 6).flag(true).flag(false).flag(true);
    for (int i = 0; i < 365; ++i)
        w.ue(0).ue(0);
    w.ue(3);
    ASSERT_EQ(94U * 8, w.bits());
    const bytes stream_bytes =
        support::stream_builder().prefixed_unit(2, p_slice, support::stream_builder().raw(w.bytes()).raw({0, 0, 1, 9}));
    const support::guarded_buffer buffer(stream_bytes);
    brenik::h264_nal_reader reader(brenik::nalfmt_length2);
    reader.scan(buffer.begin(), buffer.end());
    EXPECT_EQ("truncated: fields read past the end, 753 bits of 752", problem_of(stream.walker.walk(reader)));
}

TEST_F(WalkedSlice, AListWithoutAnEndIsReadToTheEndOfTheUnit)
{
    bit_writer w = modified_p_slice();
    for (int i = 0; i < 10000; ++i)
        w.ue(0).ue(0);
    bytes rbsp = w.bytes();
    rbsp.insert(rbsp.end(), 4, 0);
    const walked_unit unit = walk(rbsp);
    EXPECT_EQ("reference picture list modification does not end", problem_of(unit));
    EXPECT_GE(header_of(unit).ref_pic_list_modification_l0.entries.size(), 10000U);
}

TEST_F(WalkedSlice, AHeaderIsLookedForInABoundedPartOfTheSlice)
{
    bit_writer w = modified_p_slice();
    for (std::size_t i = 0; i < 5 * stream_walker::most_slice_header; ++i)
        w.ue(0).ue(0);
    const walked_unit endless = walk(w.ue(3).bytes());
    EXPECT_EQ("slice header does not end within 98302 bytes", problem_of(endless));
    EXPECT_LE(header_of(endless).ref_pic_list_modification_l0.entries.size(), 4 * stream_walker::most_slice_header);
    const bytes zeros(2 * stream_walker::most_slice_header, 0);
    EXPECT_EQ("malformed Exp-Golomb code at bit 0", problem_of(walk(zeros)));
    EXPECT_EQ("slice names picture parameter set 9, which is missing",
              problem_of(walk(followed_by(modified_p_slice(9), zeros.size()))));
    bytes ends = with_modifications(modified_p_slice(), 100).bytes();
    ends.insert(ends.end(), zeros.begin(), zeros.end());
    EXPECT_EQ("", problem_of(walk(ends)));
}

TEST_F(WalkedSlice, TheTypesThatBeginWithASliceHeaderAreRead)
{
    for (const unsigned int type : {1U, 2U, 5U, 19U}) {
        bit_writer w;
        w.ue(7).ue(7).ue(0).u(4, 5);
        if (type == 5)
            w.ue(0);
        w.u(4, 6);
        const walked_unit unit = stream.walk(support::header_byte(1, type), followed_by(w, 20));
        EXPECT_EQ("", problem_of(unit)) << type;
        EXPECT_EQ(7U, header_of(unit).first_mb_in_slice);
        EXPECT_EQ(6U, header_of(unit).pic_order_cnt_lsb);
        EXPECT_EQ(type == 5, header_of(unit).IdrPicFlag);
    }
}

TEST_F(WalkedSlice, ProblemMissingPps)
{
    const walked_unit unit = walk(followed_by(modified_p_slice(9), 1000));
    EXPECT_EQ("slice names picture parameter set 9, which is missing", problem_of(unit));
    EXPECT_EQ(nullptr, unit.pps);
}

TEST_F(WalkedSlice, ProblemMissingSps)
{
    support::sps_description seq;
    seq.seq_parameter_set_id = 1000;
    support::pps_description pic;
    pic.pic_parameter_set_id = 1;
    pic.seq_parameter_set_id = 1000;
    stream.walk(seq);
    stream.walk(pic);
    for (std::uint32_t id = 1; id <= orv_h264::stream_walker::most_sps; ++id) {
        seq.seq_parameter_set_id = id;
        stream.walk(seq); // the SPS with the highest id gives way
    }
    const walked_unit unit = walk(followed_by(modified_p_slice(1), 0));
    EXPECT_EQ("picture parameter set 1 names sequence parameter set 1000, which is missing", problem_of(unit));
    EXPECT_EQ("    first_mb_in_slice 0\n"
              "    slice_type 0 (P)\n"
              "    pic_parameter_set_id 1\n",
              orv_h264::show_fields(unit));
}

TEST_F(WalkedSlice, ProblemMalformedCodeAndFieldsPastTheEnd)
{
    EXPECT_EQ("malformed Exp-Golomb code at bit 0", problem_of(walk(bytes(300, 0))));
    EXPECT_EQ("malformed Exp-Golomb code at bit 0, truncated: it reads past the end", problem_of(walk({})));
    bit_writer cut;
    cut.ue(0).ue(2).ue(0).u(3, 7);
    EXPECT_EQ("truncated: fields read past the end, 13 bits of 8", problem_of(walk(cut.bytes())));
}

TEST_F(WalkedSlice, AMalformedSliceActivatesNothing)
{
    support::sps_description seq;
    seq.seq_parameter_set_id = 4;
    stream.walk(seq);
    ASSERT_EQ(4U, stream.walker.sps_store().current_id());
    walk(bytes(20, 0)); // its pic_parameter_set_id was not read, and is not 0
    EXPECT_EQ(4U, stream.walker.sps_store().current_id());
    walk(followed_by(modified_p_slice().ue(3), 10));
    EXPECT_EQ(0U, stream.walker.sps_store().current_id());
}
