// Rules over the order of slices and partitions among themselves (H.264 7.4.1.2.5, 7.4.2.9.1, 7.4.2.12, G.7.4.1.2.3).
#include "check/access_unit_facts.h"

#include <algorithm>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

using h264::unit_role;

using enum severity;

verdict slice_behind_prefix(const ordered_unit_facts& f)
{
    if (f.unit().role != unit_role::prefix)
        return {};
    const unsigned next = f.at + 1 < f.of.parts.size() ? f.of.parts[f.at + 1].header.nal_unit_type : 0;
    if (next == 1 || next == 5)
        return {};
    return breach{"", next == 0 ? "no slice behind it" : fmt::format("nal_unit_type {} behind it", next),
                  "nal_unit_type 1 or 5"};
}

/// The partition of that type and slice in front of the unit, in its picture.
const sent_slice* partition_before(const ordered_unit_facts& f, const sent_slice& slice, unsigned type)
{
    for (std::size_t i = f.at; i > 0; --i) {
        const sent_slice* const other = f.slices.find(f.of.parts[i - 1].place.number);
        const bool same_picture = f.of.parts[i - 1].role == f.unit().role;
        if (same_picture && other != nullptr && other->nal_unit_type == type && other->slice_id == slice.slice_id)
            return other;
    }
    return nullptr;
}

verdict partitions_behind_a(const ordered_unit_facts& f)
{
    const sent_slice* const slice = f.slices.find(f.unit().place.number);
    if ((f.type() != 3 && f.type() != 4) || slice == nullptr || !slice->slice_id ||
        partition_before(f, *slice, 2) != nullptr)
        return {};
    return breach_of("slice_id", *slice->slice_id, "that of a partition A before it");
}

verdict partition_c_behind_b(const ordered_unit_facts& f)
{
    const sent_slice* const slice = f.slices.find(f.unit().place.number);
    if (f.type() != 3 || slice == nullptr || !slice->slice_id || partition_before(f, *slice, 4) == nullptr)
        return {};
    return breach_of("slice_id", *slice->slice_id, "one whose partition C has not come yet");
}

verdict slice_ids_differ(const ordered_unit_facts& f)
{
    const sent_slice* const slice = f.slices.find(f.unit().place.number);
    if (f.type() != 2 || f.unit().role != unit_role::primary || slice == nullptr || !slice->has_header ||
        partition_before(f, *slice, 2) == nullptr)
        return {};
    return breach_of("slice_id", slice->slice_id.value_or(0), "one that no slice of the picture has");
}

/// DQId, clause G.7.4.1.1: 16 * dependency_id + quality_id.
int layer_number(const h264::access_unit_part& part)
{
    const h264::slice_layer layer = h264::layer_of(part);
    return 16 * layer.dependency_id + layer.quality_id;
}

verdict layers_rise(const ordered_unit_facts& f)
{
    if (f.type() != 20 || !f.unit().header.scalable())
        return {};
    int highest = 0;
    for (std::size_t i = 0; i < f.at; ++i)
        if (f.of.parts[i].header.nal_unit_type == 20 && f.of.parts[i].header.scalable())
            highest = std::max(highest, layer_number(f.of.parts[i]));
    const int here = layer_number(f.unit());
    if (here >= highest)
        return {};
    return breach{"dependency_id", fmt::format("layer {}.{}", here / 16, here % 16),
                  fmt::format("layer {}.{} or above, which came before", highest / 16, highest % 16)};
}

constexpr rule_over<ordered_unit_facts> of_slice_order[] = {
    {{"order-partitions-behind-a", error, "7.4.1.2.5", "partitions B and C stand behind partition A of their slice",
      "Only partition A tells the slice header, by which the others are read.", "a partition B before its partition A"},
     partitions_behind_a},
    {{"order-partition-c-behind-b", error, "7.4.1.2.5", "partition C stands behind partition B of its slice",
      "The data of inter macroblocks need those of intra macroblocks.", "a partition B behind the C of its slice"},
     partition_c_behind_b},
    {{"order-slice-behind-prefix", warning, "7.4.2.12", "a prefix unit stands directly before a slice of the base",
      "It tells the layer or view of that slice, and else of none.", "a prefix unit before SEI"},
     slice_behind_prefix},
    {{"order-slice-ids-differ", error, "7.4.2.9.1", "slice_id is another one in each slice of a picture",
      "Partitions find their slice by it.", "two partitions A with slice_id 0 in a picture"},
     slice_ids_differ},
    {{"order-layers-rising", warning, "G.7.4.1.2.3", "layers of a scalable stream come in their order",
      "Each may be predicted from those below it, which a decoder has to have by then.",
      "a slice with quality_id 1 before one with quality_id 0"},
     layers_rise},
};

} // namespace

std::span<const rule_over<ordered_unit_facts>> slice_order_rules()
{
    return of_slice_order;
}

} // namespace orv_h264
