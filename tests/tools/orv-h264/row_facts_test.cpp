// What the slices, messages and parameter sets of an access unit make of its row.
#include "row_facts.h"

#include "support/coded_stream.h"
#include "support/made_stream.h"
#include "support/told_rows.h"

#include <gtest/gtest.h>

namespace {

using orv_h264::row_structure;
using orv_h264::h264::exact_time;
using orv_h264::h264::time_source;
using support::coded;
using support::coded_sps;
using support::coded_stream;
using support::rows_of;
using support::types_of;
using types = std::vector<int>;

} // namespace

TEST(RowFacts, ADurationIsInSecondsWhereTheSpsTellsTheFieldRate)
{
    support::sps_description slow = coded_sps(false);
    slow.vui->time_scale = 10;
    coded_stream stream;
    stream.sets(coded_sps(false)).timing(7).idr().timing(5).slice(1).timing(9).slice(2);
    stream.sets(slow).idr().sets(coded_sps(false, false)).idr();
    const auto rows = rows_of(stream);
    ASSERT_EQ(5U, rows.size());
    EXPECT_EQ(4U, rows[0].field_duration);
    EXPECT_EQ((exact_time{2, 25}), rows[0].duration);
    EXPECT_EQ(3U, rows[1].field_duration);
    EXPECT_EQ((exact_time{3, 50}), rows[1].duration);
    EXPECT_EQ(2U, rows[2].field_duration) << "pic_struct 9 is reserved";
    EXPECT_EQ((exact_time{1, 5}), rows[3].duration);
    EXPECT_EQ(2U, rows[4].field_duration);
    EXPECT_FALSE(rows[4].duration) << "an SPS without VUI tells no rate, whatever came before";
    const std::optional<std::uint8_t> expected[] = {7, 5, {}, {}, {}};
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(expected[i], rows[i].pic_struct);
}

TEST(RowFacts, TimesAreThoseOfThePicture)
{
    coded_stream stream;
    const auto rows = rows_of(stream.sets(coded_sps(false)).timing(7).idr().slice(1).slice(2));
    ASSERT_EQ(3U, rows.size());
    const exact_time shown[] = {{0, 1}, {2, 25}, {3, 25}};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(shown[i], rows[i].pts);
        EXPECT_EQ(shown[i], rows[i].dts) << "nothing is reordered";
        EXPECT_EQ(time_source::assumed_rate, rows[i].time_source);
    }
    const auto untimed = rows_of(coded_stream().sets(coded_sps(false, false)).idr());
    EXPECT_FALSE(untimed.at(0).pts || untimed.at(0).dts);
    EXPECT_EQ(time_source::none, untimed.at(0).time_source);
}

TEST(RowFacts, APairOfFieldsIsARowUnlessFieldsAreSplit)
{
    coded_stream stream;
    stream.sets(coded_sps(true));
    stream.timing(1).slice(1, coded::top).timing(2).slice(1, coded::bottom);
    stream.timing(2).slice(2, coded::bottom).timing(1).slice(2, coded::top);
    stream.timing(1).slice(3, coded::top);
    const auto pairs = rows_of(stream);
    ASSERT_EQ(3U, pairs.size());
    EXPECT_EQ((types{7, 8, 6, 1, 6, 1}), types_of(pairs[0]));
    EXPECT_EQ(2U, pairs[0].field_duration);
    EXPECT_EQ(2U, pairs[0].coded_pictures);
    EXPECT_EQ(row_structure::both_fields, pairs[0].structure);
    EXPECT_EQ(1, pairs[0].pic_struct) << "of the first field";
    EXPECT_EQ((types{6, 1, 6, 1}), types_of(pairs[1]));
    EXPECT_EQ(1U, pairs[2].coded_pictures) << "a field alone";
    EXPECT_EQ(1U, pairs[2].field_duration);
    EXPECT_EQ(row_structure::top_field, pairs[2].structure);

    const auto fields = rows_of(stream, true);
    ASSERT_EQ(5U, fields.size());
    const row_structure top = row_structure::top_field, bottom = row_structure::bottom_field;
    const row_structure structures[] = {top, bottom, bottom, top, top};
    for (std::size_t i = 0; i < fields.size(); ++i) {
        EXPECT_EQ(i, fields[i].number);
        EXPECT_EQ(i / 2, fields[i].picture);
        EXPECT_EQ(1U, fields[i].field_duration);
        EXPECT_EQ((exact_time{1, 50}), fields[i].duration);
        EXPECT_EQ(1U, fields[i].coded_pictures);
        EXPECT_EQ(structures[i], fields[i].structure);
        EXPECT_EQ(i / 2, fields[i].output_number) << "of their frame";
        EXPECT_EQ(i == 4, fields[i].last);
    }
}

TEST(RowFacts, FieldsHaveCountsOfTheirOwnAndAreShownInTheirOrder)
{
    using namespace orv_utils_v4::h264;
    seq_parameter_set_data sps = sps_data();
    sps.pic_order_cnt_type = 0;
    sps.frame_mbs_only_flag = false;
    sps.vui_parameters_present_flag = true;
    sps.vui_parameters.timing_info_present_flag = true;
    sps.vui_parameters.num_units_in_tick = 1;
    sps.vui_parameters.time_scale = 50;
    sps.vui_parameters.bitstream_restriction_flag = true;
    sps.vui_parameters.max_num_reorder_frames = 0;
    sps.vui_parameters.max_dec_frame_buffering = 1;
    made_stream stream(sps);
    stream.add_sets().add(top(idr())).add(bottom(reference(0, 1)));
    stream.add(top(reference(1, 5))).add(bottom(reference(1, 4)));
    const auto rows = support::rows_of(stream.bytes, true);
    ASSERT_EQ(4U, rows.size());
    const std::int64_t counts[] = {0, 1, 5, 4};
    const exact_time shown[] = {{0, 1}, {1, 50}, {3, 50}, {1, 25}};
    const exact_time decoded[] = {{0, 1}, {1, 50}, {1, 25}, {3, 50}};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(counts[i], rows[i].poc) << i;
        EXPECT_EQ(shown[i], rows[i].pts) << i;
        EXPECT_EQ(decoded[i], rows[i].dts) << i;
    }
    const auto pairs = support::rows_of(stream.bytes);
    ASSERT_EQ(2U, pairs.size());
    EXPECT_EQ(4, pairs[1].poc);
    EXPECT_EQ((exact_time{1, 25}), pairs[1].pts);
}

TEST(RowFacts, StructureReferenceUseAndNumbersAreThoseOfTheSlices)
{
    using namespace orv_utils_v4::h264;
    seq_parameter_set_data sps = sps_data(0);
    sps.frame_mbs_only_flag = false;
    sps.mb_adaptive_frame_field_flag = true;
    made_stream stream(sps);
    stream.add_sets().add(idr()).add(reference(1)).add(other(2)).add(top(other(3))).add(bottom(other(3)));
    const auto rows = support::rows_of(stream.bytes);
    ASSERT_EQ(4U, rows.size());
    const std::uint8_t idc[] = {1, 1, 0, 0};
    for (std::uint32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(idc[i], rows[i].nal_ref_idc);
        EXPECT_EQ(i, rows[i].frame_num);
        EXPECT_EQ(0U, rows[i].sps_id);
        EXPECT_EQ(0U, rows[i].pps_id);
        EXPECT_EQ(i == 3 ? row_structure::both_fields : row_structure::mbaff_frame, rows[i].structure);
        EXPECT_TRUE(rows[i].layers.empty());
    }
    coded_stream frames;
    EXPECT_EQ(row_structure::frame, rows_of(frames.sets(coded_sps(false)).idr()).at(0).structure);
}

TEST(RowFacts, WithoutParameterSetsNothingIsToldThatNeedsThem)
{
    const auto rows = rows_of(coded_stream().slice(1));
    ASSERT_EQ(1U, rows.size());
    EXPECT_FALSE(rows[0].poc.has_value());
    EXPECT_FALSE(rows[0].frame_num.has_value());
    EXPECT_FALSE(rows[0].sps_id.has_value());
    EXPECT_FALSE(rows[0].pps_id.has_value());
    EXPECT_EQ(0U, rows[0].output_number);
    EXPECT_FALSE(rows[0].units[0].slice.has_value());
    ASSERT_EQ(1U, rows[0].problems.size()) << "told once";
    EXPECT_FALSE(rows[0].problems[0].finding);
}

TEST(RowFacts, AnIdrPictureAndARecoveryPointAreKeys)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr().recovery_point(7).slice(1).recovery_point(0).slice(2).slice(3);
    const auto rows = rows_of(stream);
    ASSERT_EQ(4U, rows.size());
    EXPECT_TRUE(rows[0].idr && rows[0].key());
    EXPECT_FALSE(rows[0].recovery_frame_cnt.has_value());
    EXPECT_FALSE(rows[1].idr);
    EXPECT_EQ(7U, rows[1].recovery_frame_cnt);
    EXPECT_TRUE(rows[1].key());
    EXPECT_EQ(0U, rows[2].recovery_frame_cnt);
    EXPECT_FALSE(rows[3].key());
    const auto cut =
        rows_of(coded_stream().sets(coded_sps(false)).unit(support::sei, support::sei_rbsp({{6, {}}})).slice(1));
    ASSERT_EQ(1U, cut.size());
    EXPECT_FALSE(cut[0].key()) << "a message that is cut is none";
}

TEST(RowFacts, FillerIsThatOfUnitsAndOfMessages)
{
    coded_stream stream;
    stream.sets(coded_sps(false));
    stream.unit(support::sei, support::sei_rbsp({{3, support::bytes(20, 0xFF)}, {3, support::bytes(200, 0xFF)}}));
    stream.idr();
    const std::size_t filler = stream.here();
    stream.filler(50).filler(1);
    const auto rows = rows_of(stream);
    ASSERT_EQ(1U, rows.size());
    EXPECT_EQ(20 + 200 + stream.here() - filler, rows[0].filler);
    EXPECT_EQ(0U, rows_of(coded_stream().sets(coded_sps(false)).idr()).at(0).filler);
}

TEST(RowFacts, LayersAreToldOnceEachAndTheBaseWithThem)
{
    using namespace orv_utils_v4::h264;
    made_stream stream;
    stream.add_sets().add_subset_sps().add(idr());
    stream.add_view(3).add_view(3, 6).add_view(1);
    const auto rows = support::rows_of(stream.bytes);
    ASSERT_EQ(1U, rows.size());
    ASSERT_EQ(3U, rows[0].layers.size());
    const unsigned views[] = {0, 3, 1};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_FALSE(rows[0].layers[i].scalable);
        EXPECT_EQ(views[i], rows[0].layers[i].what.view_id);
    }
}

TEST(RowFacts, ABaseLayerOfWhichNothingTellsIsOneOfTheOthersKind)
{
    using namespace orv_utils_v4::h264;
    made_stream stream;
    stream.add_sets().add_subset_sps().add(idr());
    slice_layer_extension_rbsp slice;
    slice_header_in_scalable_extension header;
    header.slice_type = 7;
    slice.header = header;
    nal_unit unit = unit_of(20, slice);
    unit.header.svc_extension_flag = true;
    unit.header.nal_unit_header_svc_extension.dependency_id = 1;
    unit.header.nal_unit_header_svc_extension.quality_id = 2;
    unit.header.nal_unit_header_svc_extension.idr_flag = true;
    const auto rows = support::rows_of(stream.add(unit).bytes);
    ASSERT_EQ(1U, rows.size());
    ASSERT_EQ(2U, rows[0].layers.size());
    for (std::uint8_t i = 0; i < 2; ++i) {
        EXPECT_TRUE(rows[0].layers[i].scalable);
        EXPECT_EQ(i, rows[0].layers[i].what.dependency_id);
        EXPECT_EQ(2 * i, rows[0].layers[i].what.quality_id);
    }
}
