// orv-h264 over sound streams with layers, views, data partitions, slice groups and redundant pictures: nothing is
// wrong with them, their pictures are counted, and inspect tells what is special.
#include "support/run_tool.h"
#include "support/special_streams.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

using namespace orv_utils_v4::h264;
using support::run_tool;
using support::temporary_file;
using support::tool_result;

namespace {

using texts = std::vector<std::string>;

/// A line of inspect --tsv.
struct row {
    std::string nal_unit_type;
    std::string structure;
    std::string name;
    std::string value;
    std::string inside;
};

/// What inspect --tsv tells of a stream.
class told_stream {
public:
    explicit told_stream(const std::vector<unsigned char>& stream)
    {
        const temporary_file file(stream);
        std::istringstream lines(run_tool({"inspect", "--tsv", file.path()}).out);
        std::string line;
        std::getline(lines, line); // the names of the columns
        while (std::getline(lines, line)) {
            texts columns;
            std::istringstream cells(line);
            for (std::string cell; std::getline(cells, cell, '\t');)
                columns.push_back(cell);
            if (columns.size() == 11)
                rows.push_back({columns[1], columns[7], columns[8], columns[9], columns[10]});
            EXPECT_EQ(columns.size(), 11U) << line;
        }
    }

    /// The values of an element, in units of this type, or of all.
    texts of(const std::string& name, const std::string& nal_unit_type = "") const
    {
        texts values;
        for (const row& r : rows)
            if (r.name == name && (nal_unit_type.empty() || r.nal_unit_type == nal_unit_type))
                values.push_back(r.value);
        return values;
    }
    /// The structure around an element where it is first.
    std::string around(const std::string& name, const std::string& nal_unit_type) const
    {
        for (const row& r : rows)
            if (r.name == name && r.nal_unit_type == nal_unit_type)
                return r.structure;
        return "";
    }
    bool all_inside() const
    {
        return !rows.empty() && std::all_of(rows.begin(), rows.end(), [](const row& r) { return r.inside == "1"; });
    }

private:
    std::vector<row> rows;
};

/// What frames --json lists.
std::size_t frames_in(const std::string& json_lines)
{
    std::size_t count = 0;
    std::istringstream lines(json_lines);
    for (std::string line; std::getline(lines, line);)
        count += nlohmann::json::parse(line).at("record") == "frame" ? 1U : 0U;
    return count;
}

void expect_sound(const std::vector<unsigned char>& stream)
{
    ASSERT_FALSE(stream.empty());
    const temporary_file file(stream);
    for (const texts& options : {texts{"inspect"}, texts{"inspect", "--tsv"}, texts{"inspect", "--json"}, texts{"info"},
                                 texts{"info", "--json"}, texts{"frames"}, texts{"frames", "--json"}}) {
        texts arguments = options;
        arguments.push_back(file.path());
        const tool_result result = run_tool(arguments);
        const std::string command = options[0] + (options.size() > 1 ? ' ' + options[1] : "");
        EXPECT_EQ(result.status, 0) << command;
        EXPECT_EQ(result.err, "") << command;
        EXPECT_FALSE(result.out.empty()) << command;
        if (command == "frames --json") {
            EXPECT_EQ(frames_in(result.out), special_pictures);
        }
    }
    EXPECT_TRUE(told_stream(stream).all_inside());
}

TEST(CliMadeStreams, OfLayersAreSound)
{
    expect_sound(scalable_stream());
}

TEST(CliMadeStreams, OfLayersTellEachLayer)
{
    const told_stream told(scalable_stream());
    EXPECT_EQ(told.of("profile_idc"), (texts{"100", "86"}));
    EXPECT_EQ(told.of("pic_width_in_mbs_minus1"), (texts{"3", "7"}));
    EXPECT_EQ(told.of("inter_layer_deblocking_filter_control_present_flag", "15"), texts{"1"});
    EXPECT_EQ(told.of("svc_extension_flag", "14"), (texts{"1", "1", "1"}));
    EXPECT_EQ(told.of("dependency_id"), (texts{"0", "1", "1", "0", "1", "1", "0", "1", "1"}));
    EXPECT_EQ(told.of("quality_id", "20"), (texts{"0", "1", "0", "1", "0", "1"}));
    EXPECT_EQ(told.of("temporal_id", "14"), (texts{"0", "1", "0"}));
    EXPECT_EQ(told.of("idr_flag", "20"), (texts{"1", "1", "0", "0", "0", "0"}));
    EXPECT_EQ(told.of("store_ref_base_pic_flag", "14"), (texts{"0", "0", "0"}));
    EXPECT_EQ(told.of("slice_type", "20"), (texts{"7", "7", "5", "5", "5", "5"}));
    EXPECT_EQ(told.of("frame_num", "20"), (texts{"0", "0", "1", "1", "2", "2"}));
    EXPECT_EQ(told.of("ref_layer_dq_id", "20"), (texts{"0", "0", "0"}));
    EXPECT_EQ(told.of("scan_idx_end", "20"), (texts{"5", "15", "5", "15", "5", "15"}));
    EXPECT_EQ(told.around("scan_idx_end", "20"), "slice_layer_extension_rbsp.slice_header_in_scalable_extension");
}

TEST(CliMadeStreams, OfViewsAreSound)
{
    expect_sound(multiview_stream(118, {0, 2, 1}));
    expect_sound(multiview_stream(128, {0, 1}));
}

TEST(CliMadeStreams, OfViewsTellEachView)
{
    const told_stream told(multiview_stream(118, {0, 2, 1}));
    EXPECT_EQ(told.of("profile_idc"), (texts{"100", "118"}));
    EXPECT_EQ(told.of("num_views_minus1"), texts{"2"});
    EXPECT_EQ(told.of("view_id[1]", "15"), texts{"2"});
    EXPECT_EQ(told.of("anchor_ref_l0[2][0]"), texts{"0"});
    EXPECT_EQ(told.of("level_idc[0]", "15"), texts{"30"});
    EXPECT_EQ(told.of("applicable_op_target_view_id[0][0][1]"), texts{"2"});
    EXPECT_EQ(told.of("view_id", "14"), (texts{"0", "0", "0"}));
    EXPECT_EQ(told.of("view_id", "20"), (texts{"2", "1", "2", "1", "2", "1"}));
    EXPECT_EQ(told.of("non_idr_flag", "20"), (texts{"0", "0", "1", "1", "1", "1"}));
    EXPECT_EQ(told.of("inter_view_flag", "14"), (texts{"1", "1", "1"}));
    EXPECT_EQ(told.of("modification_of_pic_nums_idc", "20"), (texts{"5", "3", "5", "3"}));
    EXPECT_EQ(told.of("abs_diff_view_idx_minus1", "20"), (texts{"0", "0"}));
    EXPECT_EQ(told.around("modification_of_pic_nums_idc", "20"),
              "slice_layer_extension_rbsp.slice_header.ref_pic_list_mvc_modification");

    const told_stream stereo(multiview_stream(128, {0, 1}));
    EXPECT_EQ(stereo.of("profile_idc"), (texts{"100", "128"}));
    EXPECT_EQ(stereo.of("view_id", "20"), (texts{"1", "1", "1"}));
}

TEST(CliMadeStreams, OfDataPartitionsAreSound)
{
    expect_sound(partitioned_stream());
}

TEST(CliMadeStreams, OfDataPartitionsTellWhichSliceTheyAreOf)
{
    const told_stream told(partitioned_stream());
    EXPECT_EQ(told.of("profile_idc"), texts{"88"});
    EXPECT_EQ(told.of("slice_id", "2"), (texts{"0", "1", "0", "1"}));
    EXPECT_EQ(told.of("slice_id", "3"), (texts{"0", "1", "0"}));
    EXPECT_EQ(told.of("slice_id", "4"), (texts{"0", "1", "0", "1"}));
    EXPECT_EQ(told.of("first_mb_in_slice"), (texts{"0", "0", "6", "0", "6"}));
    EXPECT_EQ(told.around("slice_id", "3"), "slice_data_partition_b_layer_rbsp");
}

class CliMadeSliceGroups : public testing::TestWithParam<std::uint32_t> {};

TEST_P(CliMadeSliceGroups, AreSound)
{
    expect_sound(slice_group_stream(GetParam()));
}

TEST_P(CliMadeSliceGroups, AreToldWithTheirMapType)
{
    const told_stream told(slice_group_stream(GetParam()));
    EXPECT_EQ(told.of("slice_group_map_type"), texts{std::to_string(GetParam())});
    const bool changing = GetParam() >= 3 && GetParam() <= 5;
    EXPECT_EQ(told.of("num_slice_groups_minus1"), texts{changing ? "1" : "2"});
    EXPECT_EQ(told.of("slice_group_change_cycle"), changing ? (texts{"1", "1", "2", "2", "3", "3"}) : texts());
    EXPECT_EQ(told.of("first_mb_in_slice").size(), special_pictures * (changing ? 2 : 3));
}
INSTANTIATE_TEST_SUITE_P(MapTypes, CliMadeSliceGroups, testing::Range(0U, 7U));

TEST(CliMadeStreams, OfSliceGroupsTellWhatTheTypeHas)
{
    const told_stream runs(slice_group_stream(0));
    EXPECT_EQ(runs.of("run_length_minus1[1]"), texts{"2"});
    EXPECT_EQ(runs.of("first_mb_in_slice"), (texts{"0", "2", "5", "0", "2", "5", "0", "2", "5"}));
    const told_stream boxes(slice_group_stream(2));
    EXPECT_EQ(boxes.of("top_left[1]"), texts{"6"});
    EXPECT_EQ(boxes.of("bottom_right[1]"), texts{"11"});
    EXPECT_EQ(boxes.of("first_mb_in_slice"), (texts{"0", "6", "2", "0", "6", "2", "0", "6", "2"}));
    const told_stream raster(slice_group_stream(4));
    EXPECT_EQ(raster.of("slice_group_change_direction_flag"), texts{"1"});
    EXPECT_EQ(raster.of("slice_group_change_rate_minus1"), texts{"2"});
    const told_stream listed(slice_group_stream(6));
    EXPECT_EQ(listed.of("pic_size_in_map_units_minus1"), texts{"11"});
    EXPECT_EQ(listed.of("slice_group_id[3]"), texts{"2"});
}

TEST(CliMadeStreams, OfRedundantPicturesAreSound)
{
    expect_sound(redundant_stream());
}

TEST(CliMadeStreams, OfRedundantPicturesTellTheirCount)
{
    const told_stream told(redundant_stream());
    EXPECT_EQ(told.of("redundant_pic_cnt_present_flag"), texts{"1"});
    EXPECT_EQ(told.of("redundant_pic_cnt"), (texts{"0", "0", "1", "1", "0", "0", "1", "1", "0", "0", "1", "1"}));
    EXPECT_EQ(told.of("first_mb_in_slice").size(), 4 * special_pictures);
}

} // namespace
