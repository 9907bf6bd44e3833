// How rows come out of a stream: which there are, their order, the bounds, the bytes, and what is wrong.
#include "picture_rows.h"

#include "support/coded_stream.h"
#include "support/made_stream.h"
#include "support/stream_files.h"
#include "support/timed_pictures.h"
#include "support/told_rows.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using orv_h264::picture_row;
using orv_h264::picture_rows;
using support::bytes;
using support::coded_sps;
using support::coded_stream;
using support::rows_of;
using support::told_rows;
using support::types_of;
using types = std::vector<int>;

support::sps_description counted_sps()
{
    support::sps_description seq = coded_sps(false);
    seq.pic_order_cnt_type = 0;
    return seq;
}

/// A slice with this pic_order_cnt_lsb, of a stream with counted_sps().
void add_counted(coded_stream& stream, std::uint32_t frame_num, std::uint32_t lsb, unsigned char header)
{
    support::slice_header_description slice = stream.described(frame_num);
    slice.pic_order_cnt_lsb = lsb;
    if (header == support::idr_slice)
        slice.idr_pic_id = 0;
    stream.slice(slice, header);
}

bytes operator+(bytes left, const bytes& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

} // namespace

TEST(PictureRows, OfNothingThereIsNoRow)
{
    EXPECT_TRUE(rows_of({}).empty());
    EXPECT_TRUE(rows_of(coded_stream().filler().end_of_sequence().filler(100000).unit(11, {})).empty());
    EXPECT_TRUE(rows_of(coded_stream().aud().sets(coded_sps(false)).recovery_point(0)).empty());
}

TEST(PictureRows, ARowHoldsWhatLeadsToItAndEndsBehindItsLastUnit)
{
    coded_stream stream;
    stream.aud().sets(coded_sps(false)).idr();
    const std::size_t second = stream.here();
    stream.timing(0).slice(1).filler();
    const auto rows = rows_of(stream);
    ASSERT_EQ(2U, rows.size());
    EXPECT_EQ((types{9, 7, 8, 5}), types_of(rows[0]));
    EXPECT_EQ(0U, rows[0].offset);
    EXPECT_EQ(second, rows[0].size);
    EXPECT_FALSE(rows[0].last);
    EXPECT_EQ((types{6, 1, 12}), types_of(rows[1]));
    EXPECT_EQ(second, rows[1].offset);
    EXPECT_EQ(stream.here() - second, rows[1].size);
    EXPECT_EQ(1U, rows[1].number);
    EXPECT_EQ(1U, rows[1].picture);
    EXPECT_TRUE(rows[1].last);
}

TEST(PictureRows, PicturesThatNothingButTheirSlicesTellApartAreRows)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().slice(1).slice(2);
    support::slice_header_description later = stream.described(2);
    later.first_mb_in_slice = 5;
    const auto rows = rows_of(stream.slice(later, 0x41));
    ASSERT_EQ(3U, rows.size());
    EXPECT_EQ((types{1}), types_of(rows[1]));
    EXPECT_EQ((types{1, 1}), types_of(rows[2]));
}

TEST(PictureRows, TheOutputNumberAndTheCountAreThoseOfThePicture)
{
    coded_stream stream;
    stream.sets(counted_sps());
    add_counted(stream, 0, 0, support::idr_slice);
    add_counted(stream, 1, 4, 0x41);
    add_counted(stream, 2, 2, 0x01);
    const auto rows = rows_of(stream);
    ASSERT_EQ(3U, rows.size());
    const std::uint64_t order[] = {0, 2, 1};
    const std::int64_t counts[] = {0, 4, 2};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(order[i], rows[i].output_number);
        EXPECT_EQ(counts[i], rows[i].poc);
        EXPECT_FALSE(rows[i].given_up);
    }
}

TEST(PictureRows, APictureThatIsDiscardedHasNoOutputNumber)
{
    using namespace orv_utils_v4::h264;
    seq_parameter_set_data sps = sps_data();
    sps.pic_order_cnt_type = 0;
    sps.log2_max_pic_order_cnt_lsb_minus4 = 4;
    sps.max_num_ref_frames = 4;
    made_stream stream(sps);
    made_slice discarding = idr(1);
    discarding.header.dec_ref_pic_marking.no_output_of_prior_pics_flag = true;
    stream.add_sets().add(idr()).add(reference(1, 2)).add(discarding).add(reference(1, 2));
    const auto rows = rows_of(stream.bytes);
    ASSERT_EQ(4U, rows.size());
    for (const std::size_t discarded : {0U, 1U}) {
        EXPECT_FALSE(rows[discarded].output_number.has_value());
        EXPECT_FALSE(rows[discarded].given_up);
    }
    EXPECT_EQ(0U, rows[2].output_number) << "places are those of what is output";
    EXPECT_EQ(1U, rows[3].output_number);
}

// Without a picture timing it is one field behind the first.
TEST(PictureRows, ASecondFieldHasTheTimesOfItsOwnPictureTiming)
{
    using namespace orv_utils_v4::h264;
    timed_pictures_stream stream(1, 50, true);
    stream.add_timed({0, 0, 1, 1}, top(idr()));
    stream.add_timed({{}, 1, 4, 2}, bottom(reference(0, 1)));
    stream.add_timed({{}, 2, 7, 1}, top(reference(1, 2)));
    stream.add(bottom(reference(1, 3)));
    const auto rows = rows_of(stream.bytes, true);
    ASSERT_EQ(4U, rows.size());
    const std::vector<exact_time> decoding = {{0, 1}, {1, 50}, {1, 25}, {}};
    const std::vector<exact_time> presentation = {{1, 50}, {1, 10}, {9, 50}, {1, 5}};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(decoding[i], rows[i].dts) << i;
        EXPECT_EQ(presentation[i], rows[i].pts) << i;
    }
}

TEST(PictureRows, ARowComesAsSoonAsItsOutputIsKnown)
{
    coded_stream stream;
    stream.sets(coded_sps(false));
    for (std::uint32_t i = 0; i < 10; ++i)
        stream.slice(i);
    told_rows told;
    told.feed(coded_stream(stream).aud()); // the last slice ends where the delimiter begins
    EXPECT_EQ(9U, told.rows.size()) << "with picture order count type 2 nothing waits but what may go on";
    EXPECT_EQ(10U, told.finish().size());
}

TEST(PictureRows, BehindSoManyLaterPicturesARowGoesWithoutItsOutputNumber)
{
    coded_stream head;
    head.sets(counted_sps());
    add_counted(head, 0, 7, 0x41); // above all that follow
    add_counted(head, 1, 6, 0x01);
    told_rows told;
    told.feed(head);
    coded_stream later;
    add_counted(later, 1, 6, 0x01);
    std::uint64_t pictures = 2;
    for (; told.rows.empty() && pictures < 2000; ++pictures)
        told.feed(later);
    ASSERT_FALSE(told.rows.empty());
    EXPECT_TRUE(told.rows[0].given_up);
    EXPECT_FALSE(told.rows[0].output_number.has_value());
    EXPECT_EQ(7, told.rows[0].poc);
    EXPECT_EQ(1 + picture_rows::most_waiting_pictures, pictures - 2)
        << "of the pictures that were fed the last two are not complete";
    const auto& all = told.finish();
    EXPECT_EQ(pictures, all.size());
    EXPECT_EQ(1, std::count_if(all.begin(), all.end(), [](const picture_row& row) { return row.given_up; }));
    EXPECT_EQ(0U, all[1].output_number);
}

TEST(PictureRows, UnitsOfRowsThatWaitAreBounded)
{
    coded_stream head;
    head.sets(counted_sps());
    add_counted(head, 0, 7, 0x41);
    coded_stream later;
    add_counted(later, 1, 6, 0x01);
    for (int i = 0; i < 10000; ++i)
        later.filler(1);
    told_rows told;
    told.feed(head);
    std::size_t units = 0;
    for (; told.rows.empty() && units < 3 * picture_rows::most_waiting_units; units += 10001)
        told.feed(later);
    ASSERT_FALSE(told.rows.empty());
    EXPECT_TRUE(told.rows[0].given_up);
    EXPECT_GT(units, picture_rows::most_waiting_units);
    EXPECT_LT(units, picture_rows::most_waiting_units + 30000);
}

TEST(PictureRows, UnitsOfRowsThatAreToldCountNoMore)
{
    coded_stream stream;
    stream.sets(counted_sps());
    add_counted(stream, 0, 0, support::idr_slice);
    for (std::uint32_t i = 0; i < 30; ++i) {
        add_counted(stream, (i + 1) % 16, 4 * (i + 1) % 16, 0x41);
        add_counted(stream, (i + 2) % 16, (4 * i + 2) % 16, 0x01);
        for (std::size_t k = 0; k < picture_rows::most_waiting_units / 25; ++k)
            stream.filler(1);
    }
    const auto rows = rows_of(stream);
    ASSERT_EQ(61U, rows.size());
    for (const picture_row& row : rows)
        EXPECT_FALSE(row.given_up) << row.number;
    EXPECT_EQ(60U, rows[59].output_number);
    EXPECT_EQ(59U, rows[60].output_number);
}

TEST(PictureRows, ARowOfTooManyUnitsIsCut)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr();
    for (std::size_t i = 0; i < orv_utils_v4::h264::access_units::most_units; ++i)
        stream.filler(1);
    const auto rows = rows_of(stream.slice(1));
    ASSERT_EQ(2U, rows.size());
    EXPECT_TRUE(rows[0].cut);
    EXPECT_EQ(orv_utils_v4::h264::access_units::most_units, rows[0].units.size());
    ASSERT_EQ(1U, rows[0].problems.size());
    EXPECT_NE(std::string::npos, rows[0].problems[0].message.find("65536 units, cut there"));
    EXPECT_FALSE(rows[0].problems[0].finding);
    EXPECT_FALSE(rows[1].cut);
}

TEST(PictureRows, ZeroBytesBetweenUnitsAndBehindThemArePadding)
{
    const bytes zeros_2(2), zeros_5(5), zeros_9(9);
    const bytes sets = coded_stream().sets(coded_sps(false));
    coded_stream of_slices;
    of_slices.sets(coded_sps(false)); // whose slices need not be written with them
    const std::size_t behind_sets = of_slices.here();
    bytes idr = of_slices.idr().filler(3);
    idr.erase(idr.begin(), idr.begin() + static_cast<std::ptrdiff_t>(behind_sets));
    const bytes other = coded_stream().slice(1);
    // The last of the zero bytes before a start code of three bytes is its zero_byte.
    told_rows told;
    told.feed(zeros_2 + sets + zeros_5 + idr + zeros_9 + other + zeros_5);
    const auto& rows = told.finish();
    ASSERT_EQ(2U, rows.size());
    EXPECT_EQ(1U, rows[0].offset);
    EXPECT_EQ(4U + 8, rows[0].padding);
    EXPECT_EQ(1 + sets.size() + 1 + idr.size(), rows[0].unit_bytes);
    EXPECT_EQ(rows[0].unit_bytes + 4, rows[0].size) << "with what lies between its units";
    EXPECT_EQ(5U, rows[1].padding);
    EXPECT_EQ(1 + other.size(), rows[1].unit_bytes);
    EXPECT_EQ(rows[1].unit_bytes, rows[1].size);
}

TEST(PictureRows, PaddingBehindTheEndOfTheStreamUnitIsTheRows)
{
    coded_stream first;
    first.sets(coded_sps(false)).idr().unit(11, {});
    coded_stream second;
    second.aud().sets(coded_sps(false)).idr().unit(11, {});
    const auto rows = rows_of(first.made() + bytes(6) + second.made() + bytes(3));
    ASSERT_EQ(2U, rows.size());
    EXPECT_EQ(5U, rows[0].padding);
    EXPECT_EQ(3U, rows[1].padding);
    EXPECT_TRUE(rows[1].last);
}

TEST(PictureRows, TheRowWithTheLastUnitIsTheLastOne)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().slice(1);
    EXPECT_TRUE(rows_of(stream).at(1).last);
    EXPECT_TRUE(rows_of(coded_stream(stream).end_of_sequence()).at(1).last);
    EXPECT_TRUE(rows_of(coded_stream(stream).end_of_sequence().unit(11, {})).at(1).last);
    EXPECT_FALSE(rows_of(coded_stream(stream).aud()).at(1).last);
    EXPECT_FALSE(rows_of(coded_stream(stream).unit(11, {}).aud()).at(1).last);
    EXPECT_FALSE(rows_of(stream).at(0).last);
}

TEST(PictureRows, ProblemsComeWithTheRowTheyLieInOrTheNextOne)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr();
    const std::size_t large = stream.here();
    stream.filler(3000).unit(support::sei, {0x06, 0x05, 0x80}).slice(1).filler(3000);
    const std::size_t last = stream.last();
    told_rows told(false, 2048);
    told.feed(bytes(3, 0xEE) + stream.made());
    const auto& rows = told.finish();
    ASSERT_EQ(2U, rows.size());
    ASSERT_EQ(1U, rows[0].problems.size());
    EXPECT_EQ(0U, rows[0].problems[0].offset);
    EXPECT_EQ(3U, rows[0].problems[0].bytes);
    EXPECT_EQ("bytes before the first start code", rows[0].problems[0].message);
    ASSERT_EQ(3U, rows[1].problems.size());
    EXPECT_EQ(3 + large, rows[1].problems[0].offset);
    EXPECT_EQ("unit of type 12 longer than the limit of 2048 bytes", rows[1].problems[0].message);
    EXPECT_EQ(rows[1].offset, rows[1].problems[1].offset) << "an SEI message that its unit cuts";
    EXPECT_EQ("bit_equal_to_one 0 at bit 29: outside of 1 to 1", rows[1].problems[1].message);
    EXPECT_TRUE(rows[1].problems[1].finding);
    EXPECT_EQ("payload_size at bit 32: the unit ends", rows[1].problems[2].message);
    EXPECT_FALSE(rows[1].problems[2].finding);
    EXPECT_EQ(0U, rows[1].problems[1].bytes);
    ASSERT_EQ(1U, told.left.size());
    EXPECT_EQ(3 + last, told.left[0].offset);
    EXPECT_EQ(0U, rows[0].padding) << "what is lost is no padding";
    EXPECT_FALSE(rows[0].problems[0].finding);
    EXPECT_FALSE(rows[1].problems[0].finding);
}

TEST(PictureRows, FindingsAreToldWithTheNumberOfThePicture)
{
    coded_stream stream;
    const auto rows = rows_of(stream.sets(coded_sps(false)).idr().slice(1).slice(4));
    ASSERT_EQ(3U, rows.size());
    EXPECT_TRUE(rows[1].problems.empty());
    ASSERT_EQ(1U, rows[2].problems.size());
    EXPECT_EQ("picture 2: frames are missing before it", rows[2].problems[0].message);
    EXPECT_EQ(rows[2].offset, rows[2].problems[0].offset);
    EXPECT_TRUE(rows[2].problems[0].finding);
}

TEST(PictureRows, AForbiddenBitIsAProblem)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr();
    bytes with_bit = stream;
    with_bit[stream.last() + 3] |= 0x80;
    const auto rows = rows_of(with_bit);
    ASSERT_EQ(1U, rows.size());
    ASSERT_EQ(1U, rows[0].problems.size());
    EXPECT_EQ(stream.last(), rows[0].problems[0].offset);
    EXPECT_EQ("unit whose header has the forbidden bit set", rows[0].problems[0].message);
    EXPECT_FALSE(rows[0].problems[0].finding);
}

TEST(PictureRows, ProblemsWithoutEndDoNotWaitForARow)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().unit(11, {});
    told_rows told(false, 64);
    told.feed(stream);
    const bytes too_large = coded_stream().filler(100);
    const std::size_t gaps = 2 * picture_rows::most_waiting_problems;
    for (std::size_t i = 0; i < gaps; ++i)
        told.feed(too_large);
    EXPECT_EQ(1U, told.rows.size()) << "the row goes first";
    EXPECT_GE(told.left.size() + picture_rows::most_waiting_problems + 1, gaps);
    told.finish();
    EXPECT_EQ(gaps, told.left.size());
    EXPECT_TRUE(std::is_sorted(told.left.begin(), told.left.end(),
                               [](const auto& a, const auto& b) { return a.offset < b.offset; }));
}

TEST(PictureRows, AUnitThatTheInputCutsIsAProblem)
{
    told_rows told(false, 1000, orv_utils_v4::h264::framing::length_4);
    told.feed(support::stream_builder().prefix(4, 50).unit(0x41, {0xE7, 0x55}));
    const auto& rows = told.finish();
    ASSERT_EQ(1U, rows.size());
    ASSERT_EQ(2U, rows[0].problems.size()) << "and it has no parameter sets";
    EXPECT_EQ("unit of 50 bytes runs past the end of the input", rows[0].problems[0].message);
    EXPECT_EQ(0U, rows[0].problems[0].offset);
}

TEST(PictureRows, EveryAccessUnitIsTold)
{
    told_rows told;
    told.feed(coded_stream().sets(coded_sps(false)).idr().end_of_sequence().sets(coded_sps(false)).end_of_sequence());
    EXPECT_EQ(1U, told.finish().size());
    EXPECT_EQ(2U, told.access_units);
}

namespace {

class PictureRowsStream : public testing::TestWithParam<std::filesystem::path> {};

INSTANTIATE_TEST_SUITE_P(Streams, PictureRowsStream, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& stream) { return support::test_name(stream.param); });

void expect_rows_in_order(const std::vector<picture_row>& rows, std::uint64_t stream_size)
{
    std::uint64_t end = 0;
    for (const picture_row& row : rows) {
        EXPECT_EQ(&row - rows.data(), static_cast<std::ptrdiff_t>(row.number));
        EXPECT_GE(row.offset, end);
        EXPECT_GE(row.size, row.unit_bytes);
        EXPECT_LE(row.size, row.unit_bytes + row.padding);
        end = row.offset + std::max(row.size, row.unit_bytes + row.padding);
        EXPECT_LE(row.filler, row.unit_bytes);
        EXPECT_FALSE(row.units.empty());
        EXPECT_FALSE(row.cut);
        EXPECT_TRUE(!row.last || row.number + 1 == rows.size());
    }
    EXPECT_LE(end, stream_size);
}

} // namespace

TEST_P(PictureRowsStream, RowsFollowOnEachOtherAndAreOutputOnce)
{
    const bytes stream = support::read_file(GetParam());
    const auto rows = rows_of(stream);
    expect_rows_in_order(rows, stream.size());
    std::vector<std::uint64_t> numbers;
    for (const picture_row& row : rows)
        if (row.output_number)
            numbers.push_back(*row.output_number);
    std::sort(numbers.begin(), numbers.end());
    for (std::size_t i = 0; i < numbers.size(); ++i)
        EXPECT_EQ(i, numbers[i]);
    expect_rows_in_order(rows_of(stream, true), stream.size());
}

TEST_P(PictureRowsStream, AnyCutOfTheInputGivesTheSameRows)
{
    const bytes stream = support::read_file(GetParam());
    const auto whole = rows_of(stream);
    told_rows told;
    for (std::size_t at = 0; at < stream.size(); at += 997)
        told.feed(bytes(stream.begin() + static_cast<std::ptrdiff_t>(at),
                        stream.begin() + static_cast<std::ptrdiff_t>(std::min(at + 997, stream.size()))));
    const auto& rows = told.finish();
    ASSERT_EQ(whole.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(whole[i].offset, rows[i].offset);
        EXPECT_EQ(whole[i].size, rows[i].size);
        EXPECT_EQ(whole[i].output_number, rows[i].output_number);
        EXPECT_EQ(whole[i].problems.size(), rows[i].problems.size());
    }
}
