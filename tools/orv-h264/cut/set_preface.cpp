#include "cut/set_preface.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>
#include <variant>

namespace orv_h264 {

namespace {

constexpr unsigned sps_type = 7;
constexpr unsigned sps_extension_type = 13;

/// A parameter set's type and id.
using set_name = std::pair<unsigned, std::uint32_t>;

std::optional<set_name> set_name_of(const h264::nal_unit& unit)
{
    const unsigned type = unit.header.nal_unit_type;
    if (const auto* const sps = std::get_if<h264::seq_parameter_set_rbsp>(&unit.rbsp))
        return set_name(type, sps->seq_parameter_set_data.seq_parameter_set_id);
    if (const auto* const extension = std::get_if<h264::seq_parameter_set_extension_rbsp>(&unit.rbsp))
        return set_name(type, extension->seq_parameter_set_id);
    if (const auto* const subset = std::get_if<h264::subset_seq_parameter_set_rbsp>(&unit.rbsp))
        return set_name(type, subset->seq_parameter_set_data.seq_parameter_set_id);
    if (const auto* const pps = std::get_if<h264::pic_parameter_set_rbsp>(&unit.rbsp))
        return set_name(type, pps->pic_parameter_set_id);
    return {};
}

/// The names of those that stand before its first slice. An SPS takes the extension of its id away.
std::set<set_name> carried_by(const h264::access_unit& unit, std::size_t fence)
{
    std::set<set_name> names;
    for (std::size_t i = 0; i < fence; ++i) {
        const h264::access_unit_part& part = unit.parts[i];
        const auto name = part.content != nullptr && !part.failure ? set_name_of(*part.content) : std::nullopt;
        if (!name)
            continue;
        names.insert(*name);
        if (name->first == sps_type)
            names.insert({sps_extension_type, name->second});
    }
    return names;
}

h264::nal_unit read_set(const h264::unit_view& set, const h264::parameter_sets& sets)
{
    std::vector<unsigned char> plain(set.size);
    plain.resize(h264::unescape(set.bytes, set.size, plain.data(), plain.size()));
    h264::unit_context context;
    context.sets = &sets;
    h264::nal_unit unit;
    h264::outcome result;
    h264::read(unit, plain.data(), plain.size(), context, result);
    return unit;
}

/// Or the prefix unit before one.
bool is_slice_or_prefix(const h264::access_unit_part& part)
{
    return part.role >= h264::unit_role::prefix && part.role <= h264::unit_role::layer;
}

} // namespace

set_preface make_preface(const h264::parameter_set_store& in_force, const h264::access_unit& first,
                         const layer_choice& layers, const h264::parameter_sets& sets)
{
    set_preface preface;
    const auto slice = std::find_if(first.parts.begin(), first.parts.end(), is_slice_or_prefix);
    const auto before_slices = static_cast<std::size_t>(slice - first.parts.begin());
    preface.before_sequence_sets = !first.parts.empty() && first.parts[0].role == h264::unit_role::delimiter ? 1 : 0;
    preface.before_picture_sets = preface.before_sequence_sets;
    for (std::size_t i = 0; i < before_slices; ++i)
        if (first.parts[i].role == h264::unit_role::parameter_set)
            preface.before_picture_sets = i + 1;
    const std::set<set_name> carried = carried_by(first, before_slices);
    for (const h264::unit_view& set : in_force.all()) {
        const h264::nal_unit unit = read_set(set, sets);
        const auto name = set_name_of(unit);
        if (!name || carried.contains(*name) || !layers.keeps_set(unit, sets))
            continue;
        const bool of_picture = std::holds_alternative<h264::pic_parameter_set_rbsp>(unit.rbsp);
        (of_picture ? preface.picture_sets : preface.sequence_sets).push_back(set);
    }
    return preface;
}

} // namespace orv_h264
