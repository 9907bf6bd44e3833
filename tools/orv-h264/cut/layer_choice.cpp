#include "cut/layer_choice.h"

#include <algorithm>
#include <variant>

namespace orv_h264 {

namespace {

constexpr unsigned sei_type = 6;
constexpr unsigned pps_type = 8;
constexpr unsigned prefix_type = 14;
constexpr unsigned subset_sps_type = 15;
constexpr unsigned dps_type = 16;
constexpr unsigned depth_type = 21;

bool is_slice(const h264::access_unit_part& part)
{
    return part.role >= h264::unit_role::primary && part.role <= h264::unit_role::layer;
}

/// The first message, which tells of what kind all of a unit are (clauses G.8.8.1 and H.8.5.3); null where none is
/// read.
const h264::sei_message* first_message(const h264::access_unit_part& part)
{
    const auto* const sei = part.content != nullptr ? std::get_if<h264::sei_rbsp>(&part.content->rbsp) : nullptr;
    return sei != nullptr && !sei->sei_messages.empty() ? &sei->sei_messages.front() : nullptr;
}

/// Table D-1 has 45, frame packing, for all streams between those of Annexes G to J.
bool is_of_layers(std::uint32_t payload_type)
{
    constexpr std::uint32_t frame_packing = 45;
    constexpr std::uint32_t display_orientation = 47;
    return payload_type >= 24 && payload_type <= 54 && payload_type != frame_packing &&
           payload_type != display_orientation;
}

bool is_of_depth(std::uint32_t payload_type)
{
    return payload_type >= 48 && payload_type <= 54;
}

bool is_subset_alone(std::uint32_t sps_id, const h264::parameter_sets& sets)
{
    return sets.find_sps(sps_id) == nullptr && sets.find_subset_sps(sps_id) != nullptr;
}

bool is_multiview(const h264::subset_seq_parameter_set_rbsp& subset)
{
    return !subset.seq_parameter_set_mvc_extension.views.empty();
}

} // namespace

layer_choice layer_choice::of_base()
{
    layer_choice choice;
    choice.what = kind::base;
    return choice;
}

layer_choice layer_choice::of_layer(const layer_target& target)
{
    layer_choice choice;
    choice.what = kind::layer;
    choice.target = target;
    return choice;
}

layer_choice layer_choice::of_view(std::uint16_t view_id)
{
    layer_choice choice;
    choice.what = kind::view;
    choice.view = view_id;
    return choice;
}

std::vector<bool> layer_choice::kept(const h264::access_unit& unit, const h264::parameter_sets& sets)
{
    std::vector<bool> stays(unit.parts.size(), true);
    if (what == kind::everything)
        return stays;
    const bool new_views = std::any_of(unit.parts.begin(), unit.parts.end(), [](const h264::access_unit_part& part) {
        return part.header.nal_unit_type == subset_sps_type;
    });
    if (what == kind::view && (new_views || !views_known))
        find_views(sets);
    bool any_slice = false;
    bool any_kept = false;
    for (std::size_t i = 0; i < stays.size(); ++i) {
        stays[i] = keeps(unit.parts[i], sets);
        any_slice = any_slice || is_slice(unit.parts[i]);
        any_kept = any_kept || (stays[i] && is_slice(unit.parts[i]));
    }
    if (any_slice && !any_kept)
        stays.assign(stays.size(), false);
    return stays;
}

bool layer_choice::keeps_set(const h264::nal_unit& set, const h264::parameter_sets& sets) const
{
    if (!is_base_alone())
        return true;
    if (const auto* const pps = std::get_if<h264::pic_parameter_set_rbsp>(&set.rbsp))
        return !is_subset_alone(pps->seq_parameter_set_id, sets);
    return set.header.nal_unit_type != subset_sps_type && set.header.nal_unit_type != dps_type;
}

bool layer_choice::is_base_alone() const
{
    return what == kind::base || (what == kind::layer && target.dependency_id == 0 && target.quality_id == 0) ||
           (what == kind::view && base_view_wanted);
}

bool layer_choice::keeps(const h264::access_unit_part& part, const h264::parameter_sets& sets)
{
    const unsigned type = part.header.nal_unit_type;
    if (type == prefix_type || part.role == h264::unit_role::layer)
        return keeps_extension(part.header);
    if (is_slice(part))
        return keeps_slice(part);
    if (type == sei_type)
        return keeps_message(part);
    if (type == dps_type)
        return what == kind::layer && !is_base_alone();
    if (is_base_alone() && type == pps_type && part.content != nullptr)
        return keeps_set(*part.content, sets);
    return !is_base_alone() || type != subset_sps_type;
}

/// Of the base layer or view.
bool layer_choice::keeps_slice(const h264::access_unit_part& part)
{
    seen = seen || (what == kind::layer && target.dependency_id == 0);
    return what != kind::layer || h264::layer_of(part).temporal_id <= target.temporal_id;
}

/// A prefix unit, or a slice of another layer or view.
bool layer_choice::keeps_extension(const h264::nal_unit_header& header)
{
    if (what == kind::view && header.multiview()) {
        const bool wanted = required.contains(header.nal_unit_header_mvc_extension.view_id);
        return wanted && header.nal_unit_type != depth_type && !is_base_alone();
    }
    if (what != kind::layer || !header.scalable())
        return false;
    const h264::nal_unit_header_svc_extension& layer = header.nal_unit_header_svc_extension;
    seen = seen || layer.dependency_id == target.dependency_id;
    const bool above = layer.dependency_id > target.dependency_id || layer.temporal_id > target.temporal_id ||
                       (layer.dependency_id == target.dependency_id && layer.quality_id > target.quality_id);
    return !above && !is_base_alone();
}

bool layer_choice::keeps_message(const h264::access_unit_part& part) const
{
    const h264::sei_message* const message = first_message(part);
    if (message == nullptr)
        return true;
    if (is_base_alone())
        return !is_of_layers(message->payload_type);
    return keeps_nested(*message) && !(what == kind::view && is_of_depth(message->payload_type));
}

/// A nesting message stays when one of the layers or views that it is for does.
bool layer_choice::keeps_nested(const h264::sei_message& message) const
{
    if (const auto* const nesting = std::get_if<h264::scalable_nesting>(&message.payload);
        nesting != nullptr && what == kind::layer && !nesting->layers.empty())
        return std::any_of(nesting->layers.begin(), nesting->layers.end(), [&](const auto& layer) {
            return nesting->sei_temporal_id <= target.temporal_id &&
                   (layer.sei_dependency_id < target.dependency_id ||
                    (layer.sei_dependency_id == target.dependency_id && layer.sei_quality_id <= target.quality_id));
        });
    if (const auto* const nesting = std::get_if<h264::mvc_scalable_nesting>(&message.payload);
        nesting != nullptr && what == kind::view) {
        const auto& ids = nesting->operation_point_flag ? nesting->sei_op_view_id : nesting->sei_view_id;
        return ids.empty() ||
               std::any_of(ids.begin(), ids.end(), [&](std::uint32_t id) { return required.contains(id); });
    }
    return true;
}

/// All views that the target needs, by any subset SPS: a view that needs another in its anchor pictures alone keeps it.
void layer_choice::find_views(const h264::parameter_sets& sets)
{
    views_known = true;
    for (const h264::subset_seq_parameter_set_rbsp* const subset : sets.subset_sps) {
        if (subset == nullptr || !is_multiview(*subset))
            continue;
        const std::vector<h264::mvc_view>& views = subset->seq_parameter_set_mvc_extension.views;
        if (std::none_of(views.begin(), views.end(), [&](const h264::mvc_view& v) { return v.view_id == view; }))
            continue;
        seen = true;
        base_view_wanted = views[0].view_id == view;
        required.insert(view);
        required.insert(views[0].view_id);
        add_references(views);
    }
}

/// Views refer to those that stand before them alone (clause H.7.4.2.1.4), so one way from the last one back is enough.
void layer_choice::add_references(const std::vector<h264::mvc_view>& views)
{
    for (std::size_t i = views.size(); i-- > 0;) {
        const h264::mvc_view& referring = views[i];
        if (!required.contains(referring.view_id))
            continue;
        const h264::inter_view_references& to = referring.references;
        for (const auto* const list :
             {&to.anchor_ref_l0, &to.anchor_ref_l1, &to.non_anchor_ref_l0, &to.non_anchor_ref_l1})
            required.insert(list->begin(), list->end());
    }
}

} // namespace orv_h264
