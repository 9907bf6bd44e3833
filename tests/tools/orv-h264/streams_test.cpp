// Every real stream through the feeder: whole and in pieces, and rewritten in every framing.
#include "support/feed.h"
#include "support/slice_header_fields.h"
#include "support/stream_files.h"
#include "support/walked.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using support::bytes;
using support::fed;
using support::feed;

class RealStream : public testing::TestWithParam<std::filesystem::path> {
protected:
    bytes stream = support::read_file(GetParam());
    std::vector<fed> items = feed(stream, brenik::nalfmt_annexb);
};

INSTANTIATE_TEST_SUITE_P(Streams, RealStream, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& stream) { return support::test_name(stream.param); });

/// The units as the bytes themselves show them: a start code and a header without the forbidden bit, each.
std::size_t count_start_codes(const bytes& stream)
{
    std::size_t count = 0;
    for (std::size_t i = 0; i + 3 < stream.size(); ++i)
        if (stream[i] == 0 && stream[i + 1] == 0 && stream[i + 2] == 1 && stream[i + 3] < 0x80)
            ++count;
    return count;
}

TEST_P(RealStream, HasAUnitForEachStartCodeAndIsTiled)
{
    EXPECT_GT(items.size(), 0U);
    EXPECT_TRUE(support::tiles(items, stream));
    const auto units = std::count_if(items.begin(), items.end(), [](const fed& item) { return item.is_unit; });
    EXPECT_EQ(static_cast<std::size_t>(units), count_start_codes(stream));
    if (!support::is_broken(GetParam())) {
        EXPECT_EQ(static_cast<std::size_t>(units), items.size()) << "a sound stream has no gaps";
    }
}

TEST_P(RealStream, PiecesGiveTheSameAsTheWhole)
{
    for (const std::size_t piece : {1U, 3U, 1000U, 65536U})
        EXPECT_EQ(feed(stream, brenik::nalfmt_annexb, {piece}), items) << "pieces of " << piece;
}

/// The header of a slice from the whole of its unit.
brenik::h264_nal_slice_header whole_header(const orv_h264::stream_walker& walker, const fed& slice)
{
    brenik::h264_nal_slice_header header;
    brenik::h264_nal nal;
    nal.decode_header(static_cast<unsigned char>(slice.header));
    brenik::h2645_common_bitreader br(slice.rbsp.data(), slice.rbsp.data() + slice.rbsp.size());
    header.parse(br, walker.sps_store(), walker.pps_store(), nal);
    return header;
}

TEST_P(RealStream, SliceHeadersFromSmallBlocksAreThoseOfTheWholeUnit)
{
    orv_h264::stream_walker walker;
    for (const fed& item : items) {
        if (!item.is_unit)
            continue;
        const orv_h264::walked_unit unit = support::walk(walker, static_cast<unsigned char>(item.header), item.rbsp);
        const auto* const header = std::get_if<brenik::h264_nal_slice_header>(&unit.syntax);
        if (header != nullptr) {
            ASSERT_EQ("",
                      support::difference(support::fields_of(whole_header(walker, item)), support::fields_of(*header)))
                << "unit at " << item.offset;
        }
    }
}

TEST_P(RealStream, EveryFramingCarriesTheSameUnits)
{
    for (const auto nalfmt : {brenik::nalfmt_length3, brenik::nalfmt_length4, brenik::nalfmt_annexb}) {
        bytes rewritten(brenik::h264_nal_writer::recommended_output_size(stream.size()) + 2 * stream.size());
        brenik::h264_nal_writer writer(rewritten.data(), rewritten.data(), rewritten.data() + rewritten.size(), nalfmt);
        for (fed& item : items) {
            if (!item.is_unit)
                continue;
            brenik::h264_nal nal;
            nal.decode_header(static_cast<unsigned char>(item.header));
            ASSERT_NE(writer.block_encode(item.rbsp.data(), item.rbsp.size(), nal, 1), 0U);
        }
        rewritten.resize(writer.data_length());
        const std::vector<fed> again = feed(rewritten, nalfmt);
        auto unit = items.begin();
        for (const fed& item : again) {
            unit = std::find_if(unit, items.end(), [](const fed& it) { return it.is_unit; });
            ASSERT_NE(unit, items.end());
            ASSERT_EQ(item.header, unit->header);
            ASSERT_EQ(item.rbsp, unit->rbsp) << "unit at " << unit->offset;
            ++unit;
        }
        EXPECT_EQ(std::find_if(unit, items.end(), [](const fed& it) { return it.is_unit; }), items.end());
    }
}

} // namespace
