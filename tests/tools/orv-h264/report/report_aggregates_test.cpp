#include "report/report_aggregates.h"

#include <gtest/gtest.h>

namespace {

using orv_h264::frame_stretch;
using orv_h264::json;
using orv_h264::picture_row;
using orv_h264::report_aggregates;
using orv_h264::row_type;
using orv_h264::stretch_list;
using orv_h264::h264::slice_kind;

picture_row row_of(const std::vector<slice_kind>& slices)
{
    picture_row row;
    for (const slice_kind kind : slices)
        row.units.push_back({1, kind});
    row.size = row.unit_bytes = 100;
    row.coded_pictures = 1;
    return row;
}

} // namespace

TEST(ReportAggregates, TheTypeOfARowIsThatOfTheSliceThatNeedsMost)
{
    EXPECT_EQ(row_type::none, type_of(row_of({})));
    EXPECT_EQ(row_type::i, type_of(row_of({slice_kind::I, slice_kind::SI})));
    EXPECT_EQ(row_type::p, type_of(row_of({slice_kind::I, slice_kind::SP})));
    EXPECT_EQ(row_type::b, type_of(row_of({slice_kind::B, slice_kind::P})));
}

TEST(ReportAggregates, TwoStretchesBecomeOneWhenThereAreTooMany)
{
    report_aggregates all;
    constexpr std::uint64_t rows = 3 * stretch_list<frame_stretch>::most + 1;
    for (std::uint64_t i = 0; i < rows; ++i) {
        picture_row row = row_of({i % 5 == 0 ? slice_kind::I : slice_kind::P});
        row.size = i;
        row.idr = i % 5 == 0;
        all.add(row);
    }
    const json stretches = all.stretches();
    EXPECT_EQ(4, stretches["frames_each"]);
    ASSERT_EQ((rows + 3) / 4, stretches["frames"].size());
    EXPECT_EQ(json({4, 0 + 1 + 2 + 3, 0, 0, 3, 0, 0, 1}), stretches["frames"][0]);
    EXPECT_EQ(json({4, 8 + 9 + 10 + 11, 8, 10, 11, 0, 0, 1}), stretches["frames"][2]);
    EXPECT_EQ(1, stretches["frames"].back()[0]);
}

TEST(ReportAggregates, SecondsWithoutEndTakeFewSteps)
{
    report_aggregates all;
    picture_row row = row_of({slice_kind::I});
    row.duration = {std::int64_t{1} << 50, 1};
    all.add(row);
    const json stretches = all.stretches();
    std::uint64_t seconds = 0;
    for (const json& stretch : stretches["seconds"])
        seconds += stretch[0].get<std::uint64_t>();
    EXPECT_EQ(std::uint64_t{1} << 50U, seconds);
    EXPECT_LE(stretches["seconds"].size(), stretch_list<frame_stretch>::most);
}

TEST(ReportAggregates, PicturesAreCountedByStructureReferenceAndType)
{
    report_aggregates all;
    for (int i = 0; i < 3; ++i)
        all.add(row_of({slice_kind::B}));
    picture_row key = row_of({slice_kind::I});
    key.nal_ref_idc = 3;
    all.add(key);
    const json wanted = json::parse(R"([
        {"structure": "frame", "nal_ref_idc": 0, "type": "B", "pictures": 3, "bytes": 300},
        {"structure": "frame", "nal_ref_idc": 3, "type": "I", "pictures": 1, "bytes": 100}])");
    EXPECT_EQ(wanted, all.pictures());
}
