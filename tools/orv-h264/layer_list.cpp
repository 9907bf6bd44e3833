#include "layer_list.h"

#include "sequence_summary.h"

#include <algorithm>
#include <tuple>

namespace orv_h264 {

namespace {

bool is_slice_role(h264::unit_role role)
{
    return role == h264::unit_role::primary || role == h264::unit_role::redundant || role == h264::unit_role::layer;
}

/// Its extension is that of a scalable stream.
bool says_scalable(const h264::access_unit_part& part)
{
    return part.header.scalable() || (part.prefixed && part.header.svc_extension_flag);
}

auto key_of(const h264::slice_layer& layer)
{
    return std::tuple(layer.view_id, layer.depth, layer.dependency_id, layer.quality_id, layer.temporal_id);
}

/// The view_id of the base view, where a subset SPS tells it.
std::uint16_t base_view_of(const h264::parameter_sets& sets)
{
    for (const h264::subset_seq_parameter_set_rbsp* const sps : sets.subset_sps) {
        if (sps == nullptr)
            continue;
        if (const auto& views = sps->seq_parameter_set_mvc_extension.views; !views.empty())
            return static_cast<std::uint16_t>(views[0].view_id);
        if (const auto& views = sps->seq_parameter_set_mvcd_extension.views; !views.empty())
            return static_cast<std::uint16_t>(views[0].view_id);
    }
    return 0;
}

/// The layer or view of a unit that tells it, temporal_id left out of views; DepthFlag as clause 7.4.1 has it.
h264::slice_layer place_of(const h264::access_unit_part& part)
{
    h264::slice_layer layer = h264::layer_of(part);
    if (!says_scalable(part))
        layer.temporal_id = 0;
    layer.depth = layer.depth || (part.header.nal_unit_type == 21 && !part.header.avc_3d());
    return layer;
}

/// The id of the PPS of a slice of another layer or view, whose content is there.
std::optional<std::uint32_t> pps_id_of(const h264::nal_unit& unit)
{
    const auto* const extension = std::get_if<h264::slice_layer_extension_rbsp>(&unit.rbsp);
    if (extension == nullptr)
        return {};
    return std::visit([](const auto& header) { return header.pic_parameter_set_id; }, extension->header);
}

const h264::seq_parameter_set_data* sps_of_layer(const h264::access_unit& unit, const h264::access_unit_part& part,
                                                 const h264::parameter_sets& sets)
{
    if (part.role == h264::unit_role::primary)
        return unit.sps;
    const auto id = part.content != nullptr && !part.failure ? pps_id_of(*part.content) : std::nullopt;
    const h264::pic_parameter_set_rbsp* const pps = id ? sets.find_pps(*id) : nullptr;
    return pps != nullptr ? h264::sps_of(part.header, *pps, sets) : nullptr;
}

/// What svc_vui_parameters_extension() has for the layer, else the VUI of its SPS.
h264::ratio rate_of(const layer_summary& summary, const h264::parameter_sets& sets)
{
    const auto* const subset = sets.find_subset_sps(summary.sps->seq_parameter_set_id);
    if (summary.scalable && subset != nullptr && subset->svc_vui_parameters_present_flag)
        for (const h264::svc_vui_entry& entry : subset->svc_vui_parameters_extension.entries)
            if (entry.vui_ext_dependency_id == summary.layer.dependency_id &&
                entry.vui_ext_quality_id == summary.layer.quality_id &&
                entry.vui_ext_temporal_id == summary.layer.temporal_id && entry.timing.timing_info_present_flag)
                return {entry.timing.time_scale, std::uint64_t{2} * entry.timing.num_units_in_tick};
    return h264::frame_rate(summary.sps->vui_parameters);
}

} // namespace

/// Its place in the list; most_layers where there is no room for it.
std::size_t layer_list::find(const h264::slice_layer& layer)
{
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const entry& e) { return key_of(e.summary.layer) == key_of(layer); });
    const auto place = static_cast<std::size_t>(found - list.begin());
    if (found == list.end() && place < most_layers)
        list.emplace_back().summary.layer = layer;
    return place;
}

void layer_list::add(const h264::access_unit& unit, const h264::parameter_sets& sets)
{
    std::optional<std::size_t> base; // of the units that tell of no layer: one place in an access unit
    for (const h264::access_unit_part& part : unit.parts) {
        const bool prefix = part.role == h264::unit_role::prefix;
        if (!prefix && !is_slice_role(part.role))
            continue;
        const bool tells_layer = part.header.extended() || part.prefixed;
        any_extension = any_extension || part.header.extended();
        if (!tells_layer && !base)
            base = find({.view_id = base_view_of(sets)});
        const std::size_t place = tells_layer ? find(place_of(part)) : *base;
        if (place == most_layers) {
            ++further;
            continue;
        }
        layer_summary& summary = list[place].summary;
        ++summary.units;
        summary.bytes += part.place.size;
        summary.scalable = summary.scalable || says_scalable(part);
        if (!prefix)
            add_slice(list[place], unit, part, sets);
    }
}

void layer_list::add_slice(entry& of, const h264::access_unit& unit, const h264::access_unit_part& slice,
                           const h264::parameter_sets& sets)
{
    layer_summary& summary = of.summary;
    if (of.latest != unit.number) {
        ++summary.pictures;
        summary.references += slice.header.nal_ref_idc != 0 ? 1U : 0U;
    }
    of.latest = unit.number;
    const h264::seq_parameter_set_data* const sps = summary.sps ? nullptr : sps_of_layer(unit, slice, sets);
    if (sps == nullptr)
        return;
    summary.sps = *sps;
    summary.frame_rate = known(rate_of(summary, sets));
}

std::vector<layer_summary> layer_list::layers() const
{
    std::vector<layer_summary> all;
    if (any_extension)
        for (const entry& e : list)
            all.push_back(e.summary);
    std::sort(all.begin(), all.end(),
              [](const layer_summary& a, const layer_summary& b) { return key_of(a.layer) < key_of(b.layer); });
    return all;
}

} // namespace orv_h264
