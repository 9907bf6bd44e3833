// What an access unit keeps: its picture, parameter sets, messages, bytes, and how much of them.
#include "support/told_access_units.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace {

using namespace orv_utils_v4::h264;

TEST(AccessUnitContents, TellTheirPicture)
{
    made_stream stream;
    stream.sps().frame_mbs_only_flag = false;
    stream.sps().mb_adaptive_frame_field_flag = true;
    made_slice predicted = from_macroblock(reference(1), 2);
    predicted.header.slice_type = 0;
    predicted.nal_ref_idc = 2;
    stream.add_sets().add(idr()).add(reference(1)).add(predicted).add(top(other(2))).add(bottom(other(2)));
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 5|1 1|1|1");
    EXPECT_TRUE(told.all[0].unit.idr);
    EXPECT_EQ(told.all[0].unit.structure, picture_structure::mbaff_frame);
    EXPECT_FALSE(told.all[1].unit.idr);
    EXPECT_FALSE(told.all[1].unit.field());
    EXPECT_EQ(told.all[1].unit.nal_ref_idc, 1); // the first slice's
    EXPECT_TRUE(told.all[1].unit.has_slices(slice_kind::I));
    EXPECT_TRUE(told.all[1].unit.has_slices(slice_kind::P));
    EXPECT_FALSE(told.all[1].unit.has_slices(slice_kind::B));
    EXPECT_EQ(told.all[2].unit.structure, picture_structure::top_field);
    EXPECT_EQ(told.all[3].unit.structure, picture_structure::bottom_field);
    EXPECT_TRUE(told.all[3].unit.field());
}

TEST(AccessUnitContents, ParameterSetsBehindAPictureDoNotChangeIts)
{
    made_stream stream;
    stream.add_sets().add(idr(1));
    stream.sps().level_idc = 40;
    stream.pps().pic_init_qp_minus26 = 7;
    stream.add_sets().add(idr(1)).add_sets();
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 5|7 8 5|7 8");
    ASSERT_TRUE(told.all[0].sps && told.all[0].pps && told.all[1].sps && told.all[1].pps);
    EXPECT_EQ(told.all[0].sps->level_idc, 30);
    EXPECT_EQ(told.all[0].pps->pic_init_qp_minus26, 0);
    EXPECT_EQ(told.all[1].sps->level_idc, 40);
    EXPECT_EQ(told.all[1].pps->pic_init_qp_minus26, 7);
}

TEST(AccessUnitContents, SeiAndParameterSetsKeepTheirContents)
{
    made_stream stream;
    recovery_point recovery;
    recovery.recovery_frame_cnt = 4;
    stream.add_sets().add(unit_of(6, sei_rbsp{{message_of(6, recovery)}})).add(idr(1)).add(from_macroblock(idr(1), 2));
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 6 5 5");
    const kept_access_unit& unit = told.all[0];
    ASSERT_TRUE(unit.contents[0] && unit.contents[1] && unit.contents[2] && unit.contents[3]);
    EXPECT_EQ(std::get<seq_parameter_set_rbsp>(unit.contents[0]->rbsp).seq_parameter_set_data.level_idc, 30);
    EXPECT_TRUE(std::holds_alternative<pic_parameter_set_rbsp>(unit.contents[1]->rbsp));
    const auto& messages = std::get<sei_rbsp>(unit.contents[2]->rbsp).sei_messages;
    EXPECT_EQ(std::get<recovery_point>(messages[0].payload).recovery_frame_cnt, 4U);
    EXPECT_FALSE(unit.contents[4]); // a further slice
}

TEST(AccessUnitContents, AMessageIsTheFirstOneOfItsKind)
{
    class sink : public access_unit_sink {
    public:
        void take(const access_unit& unit) override
        {
            const auto* const found = unit.message<recovery_point>();
            count = found == nullptr ? -1 : static_cast<int>(found->recovery_frame_cnt);
            other = unit.message<pic_timing>() != nullptr;
        }
        int count = -2;
        bool other = true;
    } found;
    recovery_point first, second;
    first.recovery_frame_cnt = 4;
    second.recovery_frame_cnt = 5;
    made_stream stream;
    stream.add_sets().add(unit_of(6, sei_rbsp{{message_of(6, first), message_of(6, second)}})).add(idr());
    access_units units;
    for (const auto& unit : stream.units)
        units.push({unit.data(), unit.size(), 0, 0}, found);
    units.flush(found);
    EXPECT_EQ(found.count, 4);
    EXPECT_FALSE(found.other);
}

TEST(AccessUnitContents, HaveTheBytesOfTheirUnitsCopiedOrNot)
{
    made_stream stream;
    stream.add_sets()
        .add_subset_sps()
        .add(idr(1))
        .add_view(3)
        .add(unit_of(6, sei_rbsp{{message_of(6, recovery_point())}}))
        .add(idr(2))
        .add_sets();
    const told_access_units copied(stream);
    const told_access_units stayed(stream, false, true);
    EXPECT_EQ(copied.types(), stayed.types());
    std::size_t at = 0;
    for (std::size_t i = 0; i < copied.all.size(); ++i) {
        EXPECT_EQ(copied.all[i].bytes, stayed.all[i].bytes);
        for (std::size_t j = 0; j < copied.all[i].bytes.size(); ++j, ++at) {
            EXPECT_EQ(copied.all[i].bytes[j], stream.units[at]);
            EXPECT_EQ(copied.all[i].unit.parts[j].place.number, at);
        }
    }
    EXPECT_EQ(at, stream.units.size());
}

TEST(AccessUnitContents, BeyondMostContentsThereAreNoneButThePictureIsTold)
{
    made_stream stream;
    stream.add_sets();
    const nal_unit message = unit_of(6, sei_rbsp{{message_of(6, recovery_point())}});
    for (int i = 0; i < 80; ++i)
        stream.add(message);
    stream.add(reference(3)).add(reference(4));
    const told_access_units told(stream);
    ASSERT_EQ(told.all.size(), 2U);
    std::size_t contents = 0;
    for (std::size_t i = 0; i + 1 < told.all[0].contents.size(); ++i)
        contents += told.all[0].contents[i].has_value();
    EXPECT_EQ(contents, access_units::most_contents);
    ASSERT_TRUE(told.all[0].header);
    EXPECT_EQ(told.all[0].header->frame_num, 3U);
    ASSERT_TRUE(told.all[1].header);
    EXPECT_EQ(told.all[1].header->frame_num, 4U);
}

TEST(AccessUnitContents, BeyondMostUnitsAnotherOneBeginsAndNothingIsLost)
{
    class sink : public access_unit_sink {
    public:
        void take(const access_unit& unit) override
        {
            sizes.push_back(unit.parts.size());
            reached.push_back(unit.findings.has(picture_finding::limit_reached));
        }
        std::vector<std::size_t> sizes;
        std::vector<bool> reached;
    } found;
    access_units units;
    const unsigned char filler[] = {12, 0xFF, 0x80};
    for (std::size_t i = 0; i < access_units::most_units + 5; ++i)
        units.push({filler, sizeof filler, 3 * i, i}, found, true);
    units.flush(found);
    EXPECT_EQ(found.sizes, (std::vector<std::size_t>{access_units::most_units, 5}));
    EXPECT_EQ(found.reached, (std::vector<bool>{true, false}));
}

TEST(AccessUnitContents, AnEmptyUnitIsAUnit)
{
    access_units units;
    told_access_units told;
    told.push({});
    told.push({0x65});
    told.flush();
    EXPECT_EQ(told.types(), "0 5");
    EXPECT_TRUE(told.findings().has(picture_finding::slice_damaged));
}

TEST(PictureFindings, HaveATextEach)
{
    for (int i = 0; i <= static_cast<int>(picture_finding::limit_reached); ++i)
        EXPECT_STRNE(text_of(static_cast<picture_finding>(i)), "") << i;
    EXPECT_STREQ(text_of(static_cast<picture_finding>(31)), "");
}

TEST(PictureFindings, AreEachOnce)
{
    picture_findings findings;
    EXPECT_TRUE(findings.empty());
    findings.add(picture_finding::frame_num_gap);
    findings.add(picture_finding::frame_num_gap);
    EXPECT_TRUE(findings.has(picture_finding::frame_num_gap));
    EXPECT_FALSE(findings.has(picture_finding::no_parameter_sets));
    picture_findings others;
    others.add(picture_finding::no_parameter_sets);
    findings.add(others);
    EXPECT_TRUE(findings.has(picture_finding::frame_num_gap));
    EXPECT_TRUE(findings.has(picture_finding::no_parameter_sets));
}

/// A slice of a layer or view; `change` makes its header what it shall be.
template <class Change>
nal_unit slice_of_layer(unsigned nal_unit_type, Change change)
{
    nal_unit unit = unit_of(nal_unit_type, slice_layer_extension_rbsp());
    change(unit.header);
    auto& header = std::get<slice_layer_extension_rbsp>(unit.rbsp).header;
    if (unit.header.scalable())
        header = slice_header_in_scalable_extension();
    if (unit.header.avc_3d())
        header = slice_header_in_3davc_extension();
    std::visit([](auto& h) { h.slice_type = 7; }, header);
    return unit;
}

TEST(AccessUnitContents, AUnitLargerThanAnAccessUnitMayBeIsLeftOutAndTold)
{
    constexpr std::size_t size = access_units::most_bytes + 1;
    const std::unique_ptr<unsigned char, void (*)(void*)> large(static_cast<unsigned char*>(std::calloc(size, 1)),
                                                                &std::free); // pages that nobody touches
    ASSERT_NE(large, nullptr);
    *large = 12;
    made_stream stream;
    stream.add_sets().add(idr(1));
    told_access_units told;
    access_units units;
    units.push({large.get(), size, 0, 0}, told);
    for (const auto& unit : stream.units)
        units.push({unit.data(), unit.size(), size, 1}, told, true);
    units.flush(told);
    ASSERT_EQ(told.types(), "7 8 5");
    EXPECT_TRUE(told.all[0].has(picture_finding::limit_reached));
}

TEST(AccessUnitContents, OfTheSlicesOfEachLayerAndViewTheFirstIsKept)
{
    made_stream stream;
    stream.add_sets().add_subset_sps().add(idr(0)).add_view(1).add_view(1, 2).add_view(2);
    const auto add_scalable = [&](std::uint8_t dependency_id, std::uint8_t quality_id) {
        stream.add(slice_of_layer(20, [&](nal_unit_header& h) {
            h.svc_extension_flag = true;
            h.nal_unit_header_svc_extension.dependency_id = dependency_id;
            h.nal_unit_header_svc_extension.quality_id = quality_id;
        }));
    };
    const auto add_3d = [&](std::uint8_t view_idx, bool depth_flag) {
        stream.add(slice_of_layer(21, [&](nal_unit_header& h) {
            h.avc_3d_extension_flag = true;
            h.nal_unit_header_3davc_extension.view_idx = view_idx;
            h.nal_unit_header_3davc_extension.depth_flag = depth_flag;
        }));
    };
    add_scalable(1, 0);
    add_scalable(1, 0);
    add_scalable(2, 0);
    add_scalable(2, 1);
    add_3d(1, false);
    add_3d(1, false);
    add_3d(2, false);
    add_3d(2, true);
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 15 5 20 20 20 20 20 20 20 21 21 21 21");
    std::string kept;
    for (const auto& content : told.all[0].contents)
        kept += content ? '+' : '-';
    EXPECT_EQ(kept, "+++++-++-+++-++");
}

} // namespace
