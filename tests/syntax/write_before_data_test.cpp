// Slices whose headers change before their data: of real streams, CAVLC moved by some bits, CABAC aligned anew.
#include "support/small_units.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

using namespace orv_utils_v4::h264;
using support::bytes;

/// The bits from one to another, as zeros and ones.
std::string bits_of(const bytes& unit, std::uint64_t from, std::uint64_t to)
{
    std::string bits;
    for (; from < to; ++from)
        bits += static_cast<char>('0' + (unit[from / 8] >> (7 - from % 8) & 1));
    return bits;
}

/// From `from` on to the stop bit, and the number of zero bytes behind its byte.
struct slice_data {
    std::string bits;
    std::size_t zero_bytes = 0;

    slice_data(const bytes& unit, std::uint64_t from)
    {
        bits = bits_of(unit, from, 8 * unit.size());
        const std::size_t stop = bits.rfind('1');
        zero_bytes = (bits.size() - 1 - stop) / 8;
        bits.resize(stop + 1);
    }
    friend bool operator==(const slice_data&, const slice_data&) = default;
};

/// Changes each slice and holds its data against what they were.
class changing : public split_sink, public unit_sink {
public:
    changing(const char* path, std::int64_t (*make_value)(const slice_header&)) : element(path), value(make_value) {}

    void unit(const split_unit& u) override { reader.push({u.bytes, u.size, u.offset, 0}, *this); }
    void gap(const split_gap&) override {}
    void end() { reader.flush(*this); }

    void take(const unit_reading& reading) override
    {
        const slice_header* const header = slice_header_of(reading.unit);
        if (header == nullptr || reading.result.failure)
            return;
        bytes old(reading.place.size);
        old.resize(unescape(reading.place.bytes, reading.place.size, old.data(), old.size()));
        nal_unit changed = reading.unit;
        outcome result;
        ASSERT_TRUE(edit(changed, reading.context, element, value(*header), result)) << text_of(result.failure.why);
        bytes room(old.size() + 20);
        bit_writer to(room.data(), room.size());
        ASSERT_TRUE(
            write_before_data(changed, reading.context, old.data(), old.size(), reading.result.bits, to, result));
        room.resize(to.bytes());
        check(reading, changed, old, room);
    }

    std::size_t slices = 0;
    std::size_t moved = 0;   ///< by a number of bits that is no multiple of 8
    std::size_t aligned = 0; ///< with CABAC

private:
    void check(const unit_reading& reading, const nal_unit& changed, const bytes& old, const bytes& now)
    {
        nal_unit again;
        outcome result;
        read(again, now.data(), now.size(), reading.context, result);
        ASSERT_FALSE(result.failure);
        ASSERT_TRUE(again == changed);
        ASSERT_TRUE(slice_data(now, result.bits) == slice_data(old, reading.result.bits)) << reading.place.offset;
        ++slices;
        moved += result.bits % 8 != reading.result.bits % 8 ? 1 : 0;
        if (reading.pps->entropy_coding_mode_flag) {
            ++aligned;
            ASSERT_EQ(result.bits % 8, 0U);
        }
    }

    orv_utils_v4::h264::stream reader;
    std::string element;
    std::int64_t (*value)(const slice_header&);
};

changing changed_slices(const char* stream, const char* path, std::int64_t (*value)(const slice_header&))
{
    const bytes content = support::read_file(std::string(ORV_TEST_STREAMS) + "/" + stream);
    changing change(path, value);
    unit_splitter splitter(framing::annex_b);
    splitter.push(content.data(), content.size(), change);
    splitter.flush(change);
    change.end();
    return change;
}

std::int64_t longer_qp(const slice_header& header)
{
    return header.slice_qp_delta > 0 ? -40 : 40;
}
std::int64_t next_frame_num(const slice_header& header)
{
    return header.frame_num ^ 1;
}
std::int64_t far_macroblock(const slice_header& header)
{
    return std::int64_t{header.first_mb_in_slice} + 7;
}

TEST(WriteBeforeData, CavlcDataMoveByAsManyBitsAsTheHeaderGrows)
{
    const changing change = changed_slices("baseline_slices.264", "slice_qp_delta", longer_qp);
    EXPECT_GT(change.slices, 10U);
    EXPECT_GT(change.moved, 10U);
    EXPECT_EQ(change.aligned, 0U);
}

TEST(WriteBeforeData, CabacDataAreAlignedAnew)
{
    const changing change = changed_slices("main_bpyramid_weighted.264", "slice_qp_delta", longer_qp);
    EXPECT_GT(change.slices, 10U);
    EXPECT_EQ(change.aligned, change.slices);
}

TEST(WriteBeforeData, AHeaderOfTheSameLengthKeepsThePlaceOfItsData)
{
    const changing change = changed_slices("baseline_slices.264", "frame_num", next_frame_num);
    EXPECT_GT(change.slices, 10U);
    EXPECT_EQ(change.moved, 0U);
}

TEST(WriteBeforeData, EveryStreamOfTheRepository)
{
    for (const auto& path : support::annexb_files(ORV_TEST_STREAMS)) {
        const changing change = changed_slices(path.filename().c_str(), "first_mb_in_slice", far_macroblock);
        EXPECT_GT(change.slices, 0U) << path;
    }
}

TEST(WriteBeforeData, CabacZeroWordsStayBehindTheData)
{
    const small_sets s;
    const bytes slice = {0x65, 0xB9, 0x0E, 0xA5, 0x80, 0, 0, 0, 0};
    nal_unit unit;
    outcome result;
    read(unit, slice.data(), slice.size(), s.context, result);
    ASSERT_FALSE(result.failure);
    const slice_data old(slice, result.bits);
    EXPECT_EQ(old.zero_bytes, 4U);
    const std::uint64_t data_bit = result.bits;
    ASSERT_TRUE(edit(unit, s.context, "idr_pic_id", 9, result));
    bytes room(32);
    bit_writer to(room.data(), room.size());
    ASSERT_TRUE(write_before_data(unit, s.context, slice.data(), slice.size(), data_bit, to, result));
    room.resize(to.bytes());
    nal_unit again;
    read(again, room.data(), room.size(), s.context, result);
    EXPECT_TRUE(again == unit);
    EXPECT_TRUE(slice_data(room, result.bits) == old);
}

TEST(WriteBeforeData, WithoutRoomTheBytesThatAreNeededAreTold)
{
    const small_sets s;
    const bytes slice = {0x65, 0xB9, 0x0E, 0xA5, 0x80};
    nal_unit unit;
    outcome result;
    read(unit, slice.data(), slice.size(), s.context, result);
    const std::uint64_t data_bit = result.bits;
    for (std::size_t room = 0; room <= slice.size(); ++room) {
        bytes out(room);
        bit_writer to(out.data(), room);
        EXPECT_EQ(write_before_data(unit, s.context, slice.data(), slice.size(), data_bit, to, result),
                  room == slice.size());
        EXPECT_EQ(result.failure.bound, room == slice.size() ? 0 : 5) << room;
        if (room == slice.size()) {
            EXPECT_EQ(out, slice);
        }
    }
}

TEST(WriteBeforeData, AHeaderThatIsRefusedIsNotHandedOut)
{
    const small_sets s;
    const bytes slice = {0x65, 0xB9, 0x0E, 0xA5, 0x80};
    nal_unit unit = slice_unit(5);
    std::get<slice_layer_without_partitioning_rbsp>(unit.rbsp).slice_header.frame_num = 99;
    bytes out(32);
    bit_writer to(out.data(), out.size());
    outcome result;
    EXPECT_FALSE(write_before_data(unit, s.context, slice.data(), slice.size(), 24, to, result));
    EXPECT_STREQ(result.failure.element.name(), "frame_num");
}

} // namespace
