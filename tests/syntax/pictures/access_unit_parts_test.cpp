// What the units of an access unit are: roles, layers and views, partitions.
#include "support/told_access_units.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

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
    for (const std::size_t i : {0U, 2U}) {
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
    for (const std::size_t i : {4U, 6U}) {
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

} // namespace
