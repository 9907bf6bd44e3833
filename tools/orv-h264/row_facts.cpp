#include "row_facts.h"

#include <algorithm>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

row_structure structure_of(const h264::access_unit& unit)
{
    constexpr row_structure same[] = {row_structure::frame, row_structure::mbaff_frame, row_structure::top_field,
                                      row_structure::bottom_field};
    return same[static_cast<std::size_t>(unit.structure)];
}

bool is_damaged_sei(const h264::access_unit_part& part)
{
    return part.role == h264::unit_role::sei && part.failure;
}

void add_first_field(picture_row& row, const h264::access_unit& unit)
{
    row.structure = structure_of(unit);
    if (unit.whole)
        row.frame_num = unit.header->frame_num;
    if (unit.sps != nullptr)
        row.sps_id = unit.sps->seq_parameter_set_id;
    if (unit.pps != nullptr)
        row.pps_id = unit.pps->pic_parameter_set_id;
    const auto* const timing = unit.message<h264::pic_timing>();
    const bool sent = timing != nullptr && unit.sps != nullptr && unit.sps->vui_parameters.pic_struct_present_flag;
    if (sent && std::none_of(unit.parts.begin(), unit.parts.end(), is_damaged_sei))
        row.pic_struct = timing->pic_struct;
}

bool is_slice(const h264::access_unit_part& part)
{
    return part.role == h264::unit_role::primary || part.role == h264::unit_role::redundant ||
           part.role == h264::unit_role::layer;
}

/// Something tells the layer of the slice.
bool tells_layer(const h264::access_unit_part& part)
{
    return is_slice(part) && (part.prefixed || part.header.extended());
}

bool is_scalable(const h264::access_unit_part& part)
{
    return part.header.nal_unit_type != 21 && part.header.svc_extension_flag;
}

bool same_layer(const row_layer& a, const row_layer& b)
{
    return a.scalable == b.scalable && a.what.dependency_id == b.what.dependency_id &&
           a.what.quality_id == b.what.quality_id && a.what.temporal_id == b.what.temporal_id &&
           a.what.view_id == b.what.view_id && a.what.depth == b.what.depth;
}

// A base layer or view that nothing tells of is told with the others.
void add_layers(picture_row& row, const h264::access_unit& unit)
{
    const auto first = std::find_if(unit.parts.begin(), unit.parts.end(), tells_layer);
    if (first == unit.parts.end())
        return;
    for (const h264::access_unit_part& part : unit.parts) {
        if (!is_slice(part) || row.layers.size() == most_layers)
            continue;
        const row_layer layer = {is_scalable(tells_layer(part) ? part : *first), h264::layer_of(part)};
        const auto is_same = [&](const row_layer& other) { return same_layer(layer, other); };
        if (std::none_of(row.layers.begin(), row.layers.end(), is_same))
            row.layers.push_back(layer);
    }
}

} // namespace

void add_facts(picture_row& row, const h264::access_unit& unit)
{
    if (row.coded_pictures == 0)
        add_first_field(row, unit);
    else
        row.structure = row_structure::both_fields;
    ++row.coded_pictures;
    row.idr = row.idr || unit.idr;
    row.slice_kinds |= unit.slice_kinds;
    row.nal_ref_idc = std::max(row.nal_ref_idc, unit.nal_ref_idc);
    row.field_duration += h264::fields_shown(unit);
    row.cut = row.cut || unit.findings.has(h264::picture_finding::limit_reached);
    const auto* const point = unit.message<h264::recovery_point>();
    if (point != nullptr && !row.recovery_frame_cnt)
        row.recovery_frame_cnt = point->recovery_frame_cnt;
    add_layers(row, unit);
}

row_unit unit_of(const h264::access_unit_part& part)
{
    const std::uint8_t type = part.header.nal_unit_type;
    const bool with_header = part.role == h264::unit_role::primary && type != 3 && type != 4;
    row_unit unit = {type, {}};
    if (with_header && !part.failure)
        unit.slice = static_cast<h264::slice_kind>(part.slice_type % 5);
    return unit;
}

std::uint64_t filler_of(const h264::access_unit_part& part, std::uint64_t size)
{
    constexpr unsigned filler_data = 12;
    if (part.header.nal_unit_type == filler_data)
        return size;
    std::uint64_t filler = 0;
    const auto* const sei = part.content != nullptr ? std::get_if<h264::sei_rbsp>(&part.content->rbsp) : nullptr;
    for (std::size_t i = 0; sei != nullptr && i < sei->sei_messages.size(); ++i) {
        const h264::sei_message& message = sei->sei_messages[i];
        filler += std::holds_alternative<h264::filler_payload>(message.payload) ? message.payload_size : 0;
    }
    return std::min(filler, size);
}

std::vector<std::string> texts_of(h264::picture_findings findings)
{
    using h264::picture_finding;
    std::vector<std::string> texts;
    for (unsigned i = 0; i < h264::picture_findings::kinds; ++i) {
        const auto what = static_cast<picture_finding>(i);
        const bool told = what == picture_finding::no_parameter_sets || what == picture_finding::slice_damaged ||
                          what == picture_finding::limit_reached;
        if (findings.has(what) && !told)
            texts.emplace_back(h264::text_of(what));
    }
    return texts;
}

std::string describe_cut(const picture_row& row)
{
    return fmt::format("frame without an end in {} bytes and {} units, cut there", row.size, row.units.size());
}

} // namespace orv_h264
