// What an access unit tells of its units: roles, layers, contents, parameter sets, losses and limits.
#include "support/told_access_units.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

made_slice from_macroblock(made_slice slice, std::uint32_t first_mb_in_slice)
{
    slice.header.first_mb_in_slice = first_mb_in_slice;
    return slice;
}

std::vector<unit_role> roles_of(const kept_access_unit& unit)
{
    std::vector<unit_role> roles;
    for (const access_unit_part& part : unit.unit.parts)
        roles.push_back(part.role);
    return roles;
}

/// A stream with redundant slices, and a subset SPS for other views.
class rich_stream : public made_stream {
public:
    rich_stream()
    {
        pps().redundant_pic_cnt_present_flag = true;
        add_sets().add_subset_sps();
    }
};

TEST(AccessUnitParts, HaveTheirRoles)
{
    rich_stream stream;
    stream.add_redundant(idr(), 1).add(slice_unit(19)).add_bytes(12, {0xFF, 0x80}).add_bytes(30, {1}).add_bytes(10, {});
    stream.add_bytes(9, {0xF0}).add_bytes(6, {0x80}).add_bytes(13, {0x80});
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 15 5 19 12 30 10|9 6 13");
    EXPECT_EQ(roles_of(told.all[0]),
              (std::vector<unit_role>{unit_role::parameter_set, unit_role::parameter_set, unit_role::parameter_set,
                                      unit_role::redundant, unit_role::auxiliary, unit_role::other, unit_role::other,
                                      unit_role::end}));
    EXPECT_EQ(roles_of(told.all[1]),
              (std::vector<unit_role>{unit_role::delimiter, unit_role::sei, unit_role::parameter_set}));
}

TEST(AccessUnitParts, RedundantAndAuxiliarySlicesBelongToTheirPicture)
{
    rich_stream stream;
    stream.add(reference(1)).add_redundant(reference(1), 1).add_redundant(reference(1), 2).add(slice_unit(19));
    stream.add(reference(2));
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 15 1 1 1 19|1");
    const auto& parts = told.all[0].unit.parts;
    EXPECT_EQ(parts[3].role, unit_role::primary);
    EXPECT_EQ(parts[4].role, unit_role::redundant);
    EXPECT_EQ(parts[5].redundant_pic_cnt, 2U);
    EXPECT_EQ(parts[6].role, unit_role::auxiliary);
    EXPECT_TRUE(told.findings().empty());
}

TEST(AccessUnitParts, WithoutAPrimarySliceTellNoPicture)
{
    rich_stream stream;
    stream.add_redundant(reference(1), 1).add(reference(2)).add_view(1).add_bytes(9, {0xF0}).add_view(1);
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 15 1|1 20|9 20");
    for (const std::size_t i : {0, 2}) {
        EXPECT_FALSE(told.all[i].header);
        EXPECT_TRUE(told.all[i].has(picture_finding::no_primary_picture));
    }
    EXPECT_TRUE(told.all[1].unit.findings.empty());
}

// What begins an access unit ends the one before, whatever slices follow (7.4.1.2.3).
TEST(AccessUnitParts, OtherSlicesBehindUnitsOfTheNextOneAreThatOnes)
{
    rich_stream stream;
    stream.add(reference(1)).add_bytes(6, {0x80}).add_view(1).add(reference(2)).add_subset_sps();
    stream.add_redundant(reference(2), 1);
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 15 1|6 20|1|15 1");
    EXPECT_TRUE(told.all[1].has(picture_finding::no_primary_picture));
    EXPECT_TRUE(told.all[3].has(picture_finding::no_primary_picture));
    EXPECT_FALSE(told.findings().has(picture_finding::unit_out_of_place));
}

TEST(AccessUnitParts, PartitionsBelongToTheirPicture)
{
    rich_stream stream;
    for (std::uint32_t frame_num = 1; frame_num <= 2; ++frame_num) {
        for (std::uint32_t slice = 0; slice < 2; ++slice) {
            slice_header header = reference(frame_num).header;
            header.first_mb_in_slice = 6 * slice;
            stream.add_partition(2, header, slice).add_partition(3, header, slice).add_partition(4, header, slice);
        }
    }
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 15 2 3 4 2 3 4|2 3 4 2 3 4");
    EXPECT_TRUE(told.findings().empty());
    EXPECT_EQ(told.all[1].header->frame_num, 2U);
    for (const access_unit_part& part : told.all[1].unit.parts)
        EXPECT_EQ(part.role, unit_role::primary);
}

TEST(AccessUnitParts, ALostPartitionAIsAFinding)
{
    rich_stream stream;
    stream.add_partition(3, {}, 0).add_partition(2, reference(1).header, 0).add_partition(4, {}, 0);
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 15 3|2 4");
    EXPECT_TRUE(told.all[0].has(picture_finding::slice_damaged));
    EXPECT_TRUE(told.all[0].has(picture_finding::no_primary_picture));
    EXPECT_TRUE(told.all[1].unit.findings.empty());
}

TEST(AccessUnitParts, SlicesOfOtherViewsFollowTheBaseView)
{
    rich_stream stream;
    stream.add(idr(1)).add_view(3).add_view(3, 2).add_view(7).add(idr(2)).add_view(3);
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 15 5 20 20 20|5 20");
    EXPECT_TRUE(told.findings().empty());
    const auto& parts = told.all[0].unit.parts;
    EXPECT_EQ(layer_of(parts[3]).view_id, 0);
    EXPECT_EQ(layer_of(parts[4]).view_id, 3);
    EXPECT_EQ(layer_of(parts[5]).view_id, 3);
    EXPECT_EQ(layer_of(parts[6]).view_id, 7);
    EXPECT_EQ(layer_of(parts[6]).temporal_id, 2);
    EXPECT_EQ(layer_of(parts[6]).priority_id, 5);
    EXPECT_TRUE(layer_of(parts[6]).anchor_pic_flag);
    EXPECT_TRUE(layer_of(parts[6]).inter_view_flag);
    EXPECT_TRUE(told.all[0].contents[4]); // the first one of a view
    EXPECT_FALSE(told.all[0].contents[5]);
    EXPECT_TRUE(told.all[0].contents[6]);
    EXPECT_EQ(parts[5].first_mb_in_slice, 2U);
}

TEST(AccessUnitParts, APrefixTellsTheLayerOfTheSliceBehindIt)
{
    nal_unit prefix = unit_of(14, prefix_nal_unit_rbsp());
    prefix.header.nal_ref_idc = 0;
    prefix.header.svc_extension_flag = true;
    prefix.header.nal_unit_header_svc_extension.temporal_id = 3;
    prefix.header.nal_unit_header_svc_extension.priority_id = 9;
    rich_stream stream;
    stream.add(prefix).add(other(1)).add(prefix).add(from_macroblock(other(1), 2)).add(prefix).add(other(2));
    stream.add(from_macroblock(other(2), 2));
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 15 14 1 14 1|14 1 1");
    EXPECT_TRUE(told.findings().empty());
    const auto& first = told.all[0].unit.parts;
    for (const std::size_t i : {4, 6}) {
        EXPECT_TRUE(first[i].prefixed);
        EXPECT_EQ(layer_of(first[i]).temporal_id, 3);
        EXPECT_EQ(layer_of(first[i]).priority_id, 9);
    }
    const auto& second = told.all[1].unit.parts;
    EXPECT_TRUE(second[1].prefixed);
    EXPECT_FALSE(second[2].prefixed);
    EXPECT_EQ(layer_of(second[2]).temporal_id, 0);
}

TEST(AccessUnitParts, APrefixMayTellAView)
{
    nal_unit prefix = unit_of(14, prefix_nal_unit_rbsp());
    prefix.header.nal_unit_header_mvc_extension = extension_of_view(6);
    rich_stream stream;
    stream.add(prefix).add(reference(1));
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 15 14 1");
    EXPECT_EQ(layer_of(told.all[0].unit.parts[4]).view_id, 6);
}

TEST(AccessUnitParts, TheLayersOfType20And21AreThoseOfTheirHeaders)
{
    access_unit_part part;
    part.header.nal_unit_type = 20;
    part.header.svc_extension_flag = true;
    part.header.nal_unit_header_svc_extension.dependency_id = 2;
    part.header.nal_unit_header_svc_extension.quality_id = 4;
    EXPECT_EQ(layer_of(part).dependency_id, 2);
    EXPECT_EQ(layer_of(part).quality_id, 4);
    part.header.nal_unit_type = 21; // has no svc_extension_flag
    part.header.nal_unit_header_mvc_extension.view_id = 9;
    EXPECT_EQ(layer_of(part).view_id, 9);
    EXPECT_EQ(layer_of(part).dependency_id, 0);
    part.header.avc_3d_extension_flag = true;
    part.header.nal_unit_header_3davc_extension.view_idx = 5;
    part.header.nal_unit_header_3davc_extension.depth_flag = true;
    EXPECT_EQ(layer_of(part).view_id, 5);
    EXPECT_TRUE(layer_of(part).depth);
}

TEST(AccessUnitParts, TheBaseAloneLeavesOtherLayersOut)
{
    rich_stream stream;
    stream.add(unit_of(14, prefix_nal_unit_rbsp())).add(idr(1)).add_view(3).add_bytes(21, {0, 0, 1, 0x80});
    stream.add(idr(2));
    EXPECT_EQ(told_access_units(stream, true).types(), "7 8 5|5");
    EXPECT_EQ(told_access_units(stream).types(), "7 8 15 14 5 20 21|5");
}

TEST(AccessUnitParts, ALostFirstSliceIsAFinding)
{
    made_stream stream;
    stream.add_sets().add(from_macroblock(reference(1), 2)).add(from_macroblock(reference(1), 4)).add(reference(2));
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 1 1|1");
    EXPECT_TRUE(told.all[0].has(picture_finding::first_slice_missing));
    EXPECT_TRUE(told.all[1].unit.findings.empty());
}

TEST(AccessUnitParts, SlicesInAnyOrderLackNothing)
{
    made_stream stream;
    stream.add_sets().add(from_macroblock(reference(1), 4)).add(reference(1)).add(from_macroblock(reference(1), 2));
    const told_access_units told(stream);
    EXPECT_EQ(told.types(), "7 8 1 1 1");
    EXPECT_TRUE(told.findings().empty());
}

// Between two slices with the same first macroblock those of other pictures are lost, though nothing else differs.
TEST(AccessUnitParts, AMacroblockThatComesAgainBeginsAPicture)
{
    made_stream stream;
    stream.add_sets().add(other(1)).add(from_macroblock(other(1), 2)).add(other(1)).add(from_macroblock(other(1), 2));
    EXPECT_EQ(told_access_units(stream).types(), "7 8 1 1|1 1");
}

TEST(AccessUnitParts, ColourPlanesBeginWithMacroblock0Each)
{
    made_stream stream;
    stream.sps().profile_idc = 244;
    stream.sps().chroma_format_idc = 3;
    stream.sps().separate_colour_plane_flag = true;
    stream.add_sets();
    for (std::uint32_t frame_num = 1; frame_num <= 2; ++frame_num) {
        for (std::uint8_t plane = 0; plane < 3; ++plane) {
            made_slice slice = reference(frame_num);
            slice.header.colour_plane_id = plane;
            stream.add(slice);
        }
    }
    const told_access_units told(stream);
    EXPECT_EQ(told.types(), "7 8 1 1 1|1 1 1");
    EXPECT_TRUE(told.findings().empty());
}

TEST(AccessUnitParts, WithoutParameterSetsBeginWithMacroblock0)
{
    made_stream stream;
    for (std::uint32_t frame_num = 1; frame_num <= 3; ++frame_num)
        stream.add(reference(frame_num)).add(from_macroblock(reference(frame_num), 2));
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "1 1|1 1|1 1");
    for (const kept_access_unit& unit : told.all) {
        EXPECT_TRUE(unit.has(picture_finding::no_parameter_sets));
        EXPECT_FALSE(unit.unit.whole);
        EXPECT_FALSE(unit.sps);
    }
}

TEST(AccessUnitParts, WithoutParameterSetsAndTheirFirstSliceEndBeforeMacroblock0)
{
    made_stream stream;
    stream.add(from_macroblock(reference(1), 2)).add(from_macroblock(reference(1), 4)).add(reference(2));
    EXPECT_EQ(told_access_units(stream).types(), "1 1|1");
}

TEST(AccessUnitParts, ADamagedSliceIsAFindingAndTheNextOneTellsThePicture)
{
    made_stream stream;
    stream.add_sets().add_bytes(0x21, {0xE0}).add(from_macroblock(reference(5), 2));
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 1 1");
    EXPECT_TRUE(told.all[0].has(picture_finding::slice_damaged));
    EXPECT_FALSE(told.all[0].has(picture_finding::no_parameter_sets));
    EXPECT_TRUE(told.all[0].unit.whole);
    EXPECT_EQ(told.all[0].header->frame_num, 5U);
    EXPECT_TRUE(told.all[0].unit.parts[2].failure);
}

TEST(AccessUnitParts, TellTheirPicture)
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

TEST(AccessUnitParts, ParameterSetsBehindAPictureDoNotChangeIts)
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

TEST(AccessUnitParts, SeiAndParameterSetsKeepTheirContents)
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

TEST(AccessUnitParts, AMessageIsTheFirstOneOfItsKind)
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

TEST(AccessUnitParts, HaveTheBytesOfTheirUnitsCopiedOrNot)
{
    rich_stream stream;
    stream.add(idr(1)).add_view(3).add(unit_of(6, sei_rbsp{{message_of(6, recovery_point())}})).add(idr(2)).add_sets();
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

TEST(AccessUnitParts, BeyondMostContentsThereAreNoneButThePictureIsTold)
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

TEST(AccessUnitParts, BeyondMostUnitsAnotherOneBeginsAndNothingIsLost)
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

TEST(AccessUnitParts, AnEmptyUnitIsAUnit)
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

} // namespace
