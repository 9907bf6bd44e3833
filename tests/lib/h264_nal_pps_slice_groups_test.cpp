// The slice groups of a picture parameter set.
#include <orv-utils-v4/h264/nal_pps.h>

#include "support/literal_parse.h"
#include "support/parsed.h"
#include "support/pps_builder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

using brenik::h264_nal_pps;
using support::fields_of;
using support::pps_description;
using support::pps_of_map_type;
using support::with_valid;
using support::written_rbsp;
using numbers = std::vector<std::uint32_t>;

struct parsed_pps : support::parsed<h264_nal_pps> {
    explicit parsed_pps(const support::element_writer& pps, const h264_nal_pps& before = {})
        : parsed(pps, before, store())
    {
    }

    static brenik::h2645_common_base_store<brenik::h264_nal_sps> store()
    {
        brenik::h2645_common_base_store<brenik::h264_nal_sps> one;
        one.insert_or_assign(0, with_valid<brenik::h264_nal_sps>(true));
        return one;
    }
};

/// What parses of other map types left.
h264_nal_pps earlier(bool valid = true)
{
    h264_nal_pps pps;
    pps.valid = valid;
    pps.slice_group_map_type = 9;
    pps.run_length_minus1 = {1, 2, 3, 4};
    pps.top_left = {5, 6};
    pps.bottom_right = {7, 8, 9};
    pps.slice_group_id = {10, 11, 12, 13, 14};
    pps.slice_group_change_rate_minus1 = 15;
    pps.pic_size_in_map_units_minus1 = 16;
    return pps;
}

pps_description with_map_units(std::uint32_t count, std::uint32_t num_slice_groups_minus1, unsigned int width)
{
    pps_description pps = pps_of_map_type(6, num_slice_groups_minus1);
    pps.slice_group_id_width = width;
    pps.slice_group_id.clear();
    for (std::uint32_t i = 0; i < count; ++i)
        pps.slice_group_id.push_back(static_cast<std::uint32_t>((0x9E3779B9ULL * (i + 1)) & ((1ULL << width) - 1)));
    return pps;
}

/// A PPS that must be refused for its count: nothing but what stands before changes.
void expect_refused(const pps_description& pps, const char* first_unread, h264_nal_pps expected, bool valid)
{
    const auto writer = written_rbsp(pps);
    const parsed_pps p(writer, earlier(valid));
    EXPECT_FALSE(p.result);
    expected.valid = valid;
    expected.num_slice_groups_minus1 = pps.num_slice_groups_minus1;
    expected.slice_group_map_type = pps.slice_group_map_type;
    EXPECT_EQ("", difference(fields_of(expected), fields_of(p.object)));
    std::size_t position = 0;
    for (const support::element& e : writer.elements())
        if (e.name == first_unread && e.entry == 0)
            position = e.position;
    EXPECT_EQ(position, p.consumed());
}

} // namespace

TEST(PpsSliceGroups, EachMapTypeWritesItsOwnFieldsAndKeepsTheOthers)
{
    for (std::uint32_t map_type = 0; map_type <= 8; ++map_type) {
        pps_description pps = pps_of_map_type(map_type, 3);
        pps.slice_group_id_width = 3;
        const auto writer = written_rbsp(pps);
        const parsed_pps p(writer, earlier(false));
        EXPECT_TRUE(p.result) << map_type;
        EXPECT_TRUE(p->valid) << map_type;
        EXPECT_EQ(writer.size_in_bits(), p.consumed()) << map_type;
        EXPECT_EQ(3U, p->num_slice_groups_minus1);
        EXPECT_EQ(map_type, p->slice_group_map_type);
        EXPECT_EQ(map_type == 0 ? numbers({20, 21, 22, 23}) : earlier().run_length_minus1, p->run_length_minus1);
        EXPECT_EQ(map_type == 2 ? numbers({0, 3, 6}) : earlier().top_left, p->top_left) << map_type;
        EXPECT_EQ(map_type == 2 ? numbers({100, 103, 106}) : earlier().bottom_right, p->bottom_right) << map_type;
        const bool changing = map_type >= 3 && map_type <= 5;
        EXPECT_EQ(changing, p->slice_group_change_direction_flag) << map_type;
        EXPECT_EQ(changing ? 17U : 15U, p->slice_group_change_rate_minus1) << map_type;
        EXPECT_EQ(map_type == 6 ? pps.slice_group_id : earlier().slice_group_id, p->slice_group_id) << map_type;
        EXPECT_EQ(map_type == 6 ? 6U : 16U, p->pic_size_in_map_units_minus1) << map_type;
    }
}

TEST(PpsSliceGroups, MapTypesAboveSixReadNothingMore)
{
    for (const std::uint32_t map_type : {7U, 8U, 255U, 256U, 258U, 262U, 0xFFFFFFFEU}) {
        const auto writer = written_rbsp(pps_of_map_type(map_type));
        const parsed_pps p(writer);
        EXPECT_TRUE(p.result) << map_type;
        EXPECT_EQ(map_type, p->slice_group_map_type);
        EXPECT_EQ(writer.size_in_bits(), p.consumed()) << map_type;
    }
}

TEST(PpsSliceGroups, MapTypeZeroTakes128GroupsAndRefuses129)
{
    for (const std::uint32_t groups : {2U, 127U, 128U}) {
        const pps_description pps = pps_of_map_type(0, groups - 1);
        const parsed_pps p(written_rbsp(pps), earlier(false));
        EXPECT_TRUE(p.result) << groups;
        EXPECT_TRUE(p->valid) << groups;
        EXPECT_EQ(pps.run_length_minus1, p->run_length_minus1) << groups;
    }
    for (const std::uint32_t minus1 : {128U, 129U, 255U, 256U, 0x80000000U, 0xFFFFFFFEU})
        for (const bool valid : {false, true}) {
            pps_description pps = pps_of_map_type(0, 2);
            pps.num_slice_groups_minus1 = minus1;
            expect_refused(pps, "run_length_minus1", earlier(), valid);
        }
}

TEST(PpsSliceGroups, MapTypeTwoTakes128PairsAndRefuses129)
{
    for (const std::uint32_t pairs : {1U, 127U, 128U}) {
        const pps_description pps = pps_of_map_type(2, pairs);
        const parsed_pps p(written_rbsp(pps), earlier(false));
        EXPECT_TRUE(p.result) << pairs;
        EXPECT_TRUE(p->valid) << pairs;
        EXPECT_EQ(pps.top_left, p->top_left) << pairs;
        EXPECT_EQ(pps.bottom_right, p->bottom_right) << pairs;
    }
    for (const std::uint32_t minus1 : {129U, 130U, 256U, 0x80000000U, 0xFFFFFFFEU})
        for (const bool valid : {false, true}) {
            pps_description pps = pps_of_map_type(2, 2);
            pps.num_slice_groups_minus1 = minus1;
            expect_refused(pps, "top_left", earlier(), valid);
        }
}

TEST(PpsSliceGroups, MapTypeSixTakes128MapUnitsAndRefuses129)
{
    for (const std::uint32_t units : {1U, 2U, 127U, 128U}) {
        const pps_description pps = with_map_units(units, 1, 2);
        const parsed_pps p(written_rbsp(pps), earlier(false));
        EXPECT_TRUE(p.result) << units;
        EXPECT_TRUE(p->valid) << units;
        EXPECT_EQ(pps.slice_group_id, p->slice_group_id) << units;
        EXPECT_EQ(units - 1, p->pic_size_in_map_units_minus1) << units;
    }
    for (const std::uint32_t minus1 : {128U, 129U, 255U, 256U, 0x80000000U, 0xFFFFFFFEU})
        for (const bool valid : {false, true}) {
            pps_description pps = with_map_units(3, 1, 2);
            pps.pic_size_in_map_units_minus1 = minus1;
            h264_nal_pps expected = earlier();
            expected.pic_size_in_map_units_minus1 = minus1;
            expect_refused(pps, "slice_group_id", expected, valid);
        }
}

TEST(PpsSliceGroups, ASliceGroupIdHasTheBitsThatHoldTheNumberOfGroups)
{
    struct {
        std::uint32_t groups;
        unsigned int width;
    } const cases[] = {{2, 2},           {3, 2},          {4, 3},          {5, 3},          {6, 3},
                       {7, 3},           {8, 4},          {9, 4},          {10, 4},         {11, 4},
                       {12, 4},          {13, 4},         {14, 4},         {15, 4},         {16, 5},
                       {17, 5},          {31, 5},         {32, 6},         {127, 7},        {128, 8},
                       {129, 8},         {255, 8},        {256, 9},        {65535, 16},     {65536, 17},
                       {0xFFFFFF, 24},   {0x1000000, 25}, {0x1FFFFFF, 25}, {0x2000000, 26}, {0x7FFFFFFF, 31},
                       {0x80000000, 32}, {0xFFFFFFFF, 32}};
    for (const auto& c : cases) {
        pps_description pps = with_map_units(5, 1, c.width);
        pps.num_slice_groups_minus1 = c.groups - 1;
        const auto writer = written_rbsp(pps);
        const parsed_pps p(writer);
        EXPECT_TRUE(p.result) << c.groups;
        EXPECT_EQ(pps.slice_group_id, p->slice_group_id) << c.groups;
        EXPECT_EQ(writer.size_in_bits(), p.consumed()) << c.groups;
    }
}
