#include "layer_list.h"

#include "support/surveyed.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;
using orv_h264::layer_list;
using orv_h264::layer_summary;
using support::survey_of;

nal_unit prefix_of(unsigned temporal_id)
{
    nal_unit prefix = unit_of(14, prefix_nal_unit_rbsp());
    prefix.header.nal_ref_idc = 0;
    prefix.header.svc_extension_flag = true;
    prefix.header.nal_unit_header_svc_extension.temporal_id = static_cast<std::uint8_t>(temporal_id);
    return prefix;
}

nal_unit layer_slice(unsigned dependency_id, unsigned quality_id, unsigned temporal_id)
{
    slice_header_in_scalable_extension header;
    header.slice_type = 2;
    slice_layer_extension_rbsp slice;
    slice.header = header;
    nal_unit unit = unit_of(20, slice);
    unit.header.svc_extension_flag = true;
    nal_unit_header_svc_extension& extension = unit.header.nal_unit_header_svc_extension;
    extension.dependency_id = static_cast<std::uint8_t>(dependency_id);
    extension.quality_id = static_cast<std::uint8_t>(quality_id);
    extension.temporal_id = static_cast<std::uint8_t>(temporal_id);
    extension.no_inter_layer_pred_flag = true;
    return unit;
}

/// A subset SPS of twice the width, whose VUI has entries for layers where there are rates.
subset_seq_parameter_set_rbsp scalable_sps(const std::vector<svc_vui_entry>& entries = {})
{
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = sps_data(0, 8, 3);
    subset.seq_parameter_set_data.profile_idc = 83;
    subset.seq_parameter_set_data.level_idc = 40;
    subset.svc_vui_parameters_present_flag = !entries.empty();
    subset.svc_vui_parameters_extension.vui_ext_num_entries_minus1 =
        static_cast<std::uint32_t>(entries.empty() ? 0 : entries.size() - 1);
    subset.svc_vui_parameters_extension.entries = entries;
    return subset;
}

class scalable_stream : public made_stream {
public:
    explicit scalable_stream(subset_seq_parameter_set_rbsp of_layers = scalable_sps())
        : subset_sps(std::move(of_layers))
    {
        add_sets();
        sets.sets.subset_sps[0] = &subset_sps;
        add(unit_of(15, subset_sps));
    }

private:
    subset_seq_parameter_set_rbsp subset_sps;
};

std::string name_of(const layer_summary& layer)
{
    const slice_layer& what = layer.layer;
    return "v" + std::to_string(what.view_id) + (what.depth ? "d" : "") + " D" + std::to_string(what.dependency_id) +
           " Q" + std::to_string(what.quality_id) + " T" + std::to_string(what.temporal_id);
}

std::vector<std::string> names_of(const std::vector<layer_summary>& layers)
{
    std::vector<std::string> names;
    names.reserve(layers.size());
    for (const layer_summary& layer : layers)
        names.push_back(name_of(layer));
    return names;
}

using names = std::vector<std::string>;

} // namespace

TEST(LayerList, AStreamOfTheBaseAloneHasNone)
{
    EXPECT_TRUE(survey_of(made_stream().add_sets().add(idr()).add(reference(1))).layers.layers().empty());
}

TEST(LayerList, LayersHaveTheirUnitsAndTheirSps)
{
    scalable_stream stream;
    stream.add(prefix_of(0)).add(idr()).add(layer_slice(1, 0, 0)).add(layer_slice(1, 1, 0));
    stream.add(prefix_of(1)).add(reference(1)).add(layer_slice(1, 0, 1)).add(layer_slice(1, 0, 1));
    const std::vector<layer_summary> layers = survey_of(stream).layers.layers();
    ASSERT_EQ((names{"v0 D0 Q0 T0", "v0 D0 Q0 T1", "v0 D1 Q0 T0", "v0 D1 Q0 T1", "v0 D1 Q1 T0"}), names_of(layers));
    for (const layer_summary& layer : layers) {
        const bool base = layer.layer.dependency_id == 0;
        EXPECT_TRUE(layer.scalable);
        EXPECT_EQ(1U, layer.pictures) << name_of(layer);
        ASSERT_TRUE(layer.sps.has_value()) << name_of(layer);
        EXPECT_EQ(base ? 77 : 83, layer.sps->profile_idc) << name_of(layer);
        EXPECT_EQ(base ? 64U : 128U, cropped_size(*layer.sps).width) << name_of(layer);
    }
    EXPECT_EQ(2U, layers[0].units) << "with the prefix";
    EXPECT_EQ(1U, layers[2].units);
    EXPECT_EQ(2U, layers[3].units);
    EXPECT_EQ(2 * layers[2].bytes, layers[3].bytes);
    const auto& units = stream.units;
    EXPECT_EQ(units[3].size() + units[4].size(), layers[0].bytes) << "without framing";
}

TEST(LayerList, BaseSlicesWithoutAPrefixAreOfTheBase)
{
    scalable_stream stream;
    stream.add(idr()).add(layer_slice(1, 0, 0)).add(prefix_of(0)).add(reference(1)).add(layer_slice(1, 0, 0));
    const std::vector<layer_summary> layers = survey_of(stream).layers.layers();
    ASSERT_EQ((names{"v0 D0 Q0 T0", "v0 D1 Q0 T0"}), names_of(layers));
    EXPECT_EQ(2U, layers[0].pictures);
    EXPECT_TRUE(layers[0].scalable);
}

TEST(LayerList, TheRateIsThatOfTheLayersEntryOrOfItsSps)
{
    svc_vui_entry of_t1;
    of_t1.vui_ext_dependency_id = 1;
    of_t1.vui_ext_temporal_id = 1;
    of_t1.timing.timing_info_present_flag = true;
    of_t1.timing.num_units_in_tick = 1;
    of_t1.timing.time_scale = 60;
    subset_seq_parameter_set_rbsp subset = scalable_sps({of_t1});
    subset.seq_parameter_set_data.vui_parameters_present_flag = true;
    vui_parameters& vui = subset.seq_parameter_set_data.vui_parameters;
    vui.timing_info_present_flag = true;
    vui.num_units_in_tick = 1;
    vui.time_scale = 50;
    vui.bitstream_restriction_flag = false;
    scalable_stream stream(subset);
    stream.add(prefix_of(0)).add(idr()).add(layer_slice(1, 0, 0));
    stream.add(prefix_of(1)).add(reference(1)).add(layer_slice(1, 0, 1));
    const std::vector<layer_summary> layers = survey_of(stream).layers.layers();
    ASSERT_EQ(4U, layers.size());
    EXPECT_FALSE(layers[0].frame_rate.has_value());
    ASSERT_TRUE(layers[2].frame_rate && layers[3].frame_rate);
    EXPECT_EQ(25U, layers[2].frame_rate->numerator) << "D1 T0";
    EXPECT_EQ(30U, layers[3].frame_rate->numerator) << "D1 T1";
}

TEST(LayerList, ViewsAreToldApartByTheirIdsAlone)
{
    made_stream stream;
    stream.add_sets().add_subset_sps().add(idr()).add_view(3).add_view(7).add(reference(1)).add_view(3).add_view(7);
    const orv_h264::stream_summary summary = survey_of(stream);
    const std::vector<layer_summary> views = summary.layers.layers();
    ASSERT_EQ((names{"v0 D0 Q0 T0", "v3 D0 Q0 T0", "v7 D0 Q0 T0"}), names_of(views));
    for (const layer_summary& view : views) {
        EXPECT_FALSE(view.scalable);
        EXPECT_EQ(2U, view.pictures);
        EXPECT_EQ(2U, view.units);
    }
    EXPECT_TRUE(views[0].sps.has_value());
}

TEST(LayerList, LayersBeyondTheBoundAreCountedByTheirUnits)
{
    made_stream stream;
    stream.add_sets().add_subset_sps().add(idr());
    for (std::uint16_t view = 1; view < layer_list::most_layers + 5; ++view)
        stream.add_view(view);
    const orv_h264::stream_summary summary = survey_of(stream);
    EXPECT_EQ(std::size_t{layer_list::most_layers}, summary.layers.layers().size());
    EXPECT_EQ(5U, summary.layers.further_units());
}
