#include "edit/unit_editor.h"

#include "edit/unit_bytes.h"
#include "element_text.h"
#include "stream_input.h"

#include <algorithm>

#include <fmt/format.h>

namespace orv_h264::editing {

namespace {

struct nobody final : h264::unit_sink {
    void take(const h264::unit_reading& reading) override { static_cast<void>(reading); }
};

bool is_slice_type(unsigned type)
{
    return (type >= 1 && type <= 5) || (type >= 19 && type <= 21);
}

h264::slice_header* header_of(h264::nal_unit& unit)
{
    return const_cast<h264::slice_header*>(h264::slice_header_of(unit)); // of a unit that may be changed
}

std::uint32_t renamed(const std::map<std::uint32_t, std::uint32_t>& ids, std::uint32_t id)
{
    const auto place = ids.find(id);
    return place == ids.end() ? id : place->second;
}

/// Of an SPS, a subset SPS or a PPS.
std::uint32_t set_id_of(const h264::nal_unit& unit)
{
    if (const auto* const pps = std::get_if<h264::pic_parameter_set_rbsp>(&unit.rbsp))
        return pps->pic_parameter_set_id;
    if (const auto* const sps = std::get_if<h264::seq_parameter_set_rbsp>(&unit.rbsp))
        return sps->seq_parameter_set_data.seq_parameter_set_id;
    const auto* const subset = std::get_if<h264::subset_seq_parameter_set_rbsp>(&unit.rbsp);
    return subset == nullptr ? 0 : subset->seq_parameter_set_data.seq_parameter_set_id;
}

/// The unit names the sets that it stands on by the ids that they have now.
void rename_sets(h264::nal_unit& unit, const std::map<std::uint32_t, std::uint32_t>& sps_ids,
                 const std::map<std::uint32_t, std::uint32_t>& pps_ids)
{
    if (h264::slice_header* const slice = header_of(unit))
        slice->pic_parameter_set_id = renamed(pps_ids, slice->pic_parameter_set_id);
    else if (auto* const extension = std::get_if<h264::slice_layer_extension_rbsp>(&unit.rbsp))
        std::visit([&](auto& header) { header.pic_parameter_set_id = renamed(pps_ids, header.pic_parameter_set_id); },
                   extension->header);
    else if (auto* const pps = std::get_if<h264::pic_parameter_set_rbsp>(&unit.rbsp))
        pps->seq_parameter_set_id = renamed(sps_ids, pps->seq_parameter_set_id);
    else if (auto* const sei = std::get_if<h264::sei_rbsp>(&unit.rbsp)) {
        for (h264::sei_message& message : sei->sei_messages)
            if (auto* const period = std::get_if<h264::buffering_period>(&message.payload))
                period->seq_parameter_set_id = renamed(sps_ids, period->seq_parameter_set_id);
    }
}

unsigned type_in(const planned_unit& unit)
{
    return unit.reading.place.bytes[0] & 0x1FU;
}

/// The number of active references stays, whatever the PPS has for it (7.4.3).
void keep_references(h264::slice_header& slice, const h264::pic_parameter_set_rbsp& pps)
{
    const bool is_b = slice.kind() == h264::slice_kind::B;
    if (slice.kind() == h264::slice_kind::I || slice.kind() == h264::slice_kind::SI)
        return;
    if (slice.num_ref_idx_l0_active_minus1 != pps.num_ref_idx_l0_default_active_minus1 ||
        (is_b && slice.num_ref_idx_l1_active_minus1 != pps.num_ref_idx_l1_default_active_minus1))
        slice.num_ref_idx_active_override_flag = true;
}

void remove_messages(h264::nal_unit& unit, const std::vector<bool>& removed)
{
    auto* const sei = std::get_if<h264::sei_rbsp>(&unit.rbsp);
    if (sei == nullptr || removed.empty())
        return;
    std::vector<h264::sei_message> left;
    for (std::size_t i = 0; i < sei->sei_messages.size(); ++i)
        if (!removed[i + 1])
            left.push_back(std::move(sei->sei_messages[i]));
    sei->sei_messages = std::move(left);
}

std::string candidates(const planned_unit& unit, const std::string& path)
{
    constexpr std::size_t most = 20;
    std::string list;
    std::size_t count = 0;
    for (const listed_element& e : unit.elements.elements())
        if (unit.elements.ends_with(e, path) && ++count <= most)
            list += fmt::format("{} {} {}", count == 1 ? "" : ";", unit.elements.path_of(e), e.value);
    return count > most ? list + fmt::format("; and {} more", count - most) : list;
}

} // namespace

bool is_parameter_set(unsigned nal_unit_type)
{
    return nal_unit_type == 7 || nal_unit_type == 8 || nal_unit_type == 13 || nal_unit_type == 15 ||
           nal_unit_type == 16;
}

bool stands_on_sets(unsigned nal_unit_type)
{
    return is_slice_type(nal_unit_type) || nal_unit_type == 6 || nal_unit_type == 8;
}

const char* why_not_renumbered(const h264::nal_unit& unit, const h264::parameter_sets& before,
                               const h264::parameter_sets& after)
{
    const auto counts_alike = [](const h264::seq_parameter_set_data* a, const h264::seq_parameter_set_data* b) {
        return a == nullptr || b == nullptr ||
               (a->log2_max_frame_num_minus4 == b->log2_max_frame_num_minus4 &&
                a->pic_order_cnt_type == b->pic_order_cnt_type &&
                a->log2_max_pic_order_cnt_lsb_minus4 == b->log2_max_pic_order_cnt_lsb_minus4);
    };
    if (h264::slice_header_of(unit) == nullptr && !counts_alike(h264::sps_of(unit, before), h264::sps_of(unit, after)))
        return "slices of scalable and 3D-AVC layers are not given other numbers";
    const auto* const sei = std::get_if<h264::sei_rbsp>(&unit.rbsp);
    const bool names_frames =
        sei != nullptr &&
        std::any_of(sei->sei_messages.begin(), sei->sei_messages.end(), [](const h264::sei_message& message) {
            return message.payload_type == 7 || message.payload_type == 8;
        });
    for (std::uint32_t id = 0; names_frames && id < h264::parameter_sets::sps_ids; ++id)
        if (!counts_alike(before.find_sps(id), after.find_sps(id)))
            return "an SEI message names pictures by frame_num, and is not given other numbers";
    return "";
}

std::uint32_t layer_key(const h264::nal_unit_header& header)
{
    if (!header.extended())
        return 0;
    if (header.scalable())
        return 0x10000U | header.nal_unit_header_svc_extension.dependency_id;
    if (header.avc_3d())
        return 0x20000U | header.nal_unit_header_3davc_extension.view_idx |
               (header.nal_unit_header_3davc_extension.depth_flag ? 0x100U : 0U);
    return 0x40000U | header.nal_unit_header_mvc_extension.view_id | (header.nal_unit_type == 21 ? 0x1000U : 0U);
}

bool can_be_numbered(const h264::nal_unit& unit, const h264::parameter_sets& sets)
{
    return h264::slice_header_of(unit) != nullptr && h264::pps_of(unit, sets) != nullptr &&
           h264::sps_of(unit, sets) != nullptr;
}

numbered_slice numbered(const h264::nal_unit& unit, const h264::unit_context& context)
{
    const bool idr = unit.header.nal_unit_type == 19 ? context.primary_idr : h264::IdrPicFlag(unit.header);
    return {*h264::sps_of(unit, *context.sets), *h264::pps_of(unit, *context.sets), *h264::slice_header_of(unit),
            unit.header.nal_ref_idc, idr};
}

const decoding_fact* first_difference(const h264::nal_unit& before, const h264::parameter_sets& sets_before,
                                      const h264::nal_unit& after, const h264::parameter_sets& sets_after)
{
    const auto* const old_pps = h264::pps_of(before, sets_before);
    const auto* const old_sps = h264::sps_of(before, sets_before);
    const auto* const new_pps = h264::pps_of(after, sets_after);
    const auto* const new_sps = h264::sps_of(after, sets_after);
    if (old_pps == nullptr || old_sps == nullptr || new_pps == nullptr || new_sps == nullptr)
        return nullptr;
    const h264::slice_header* const old_slice = h264::slice_header_of(before);
    const h264::slice_header* const new_slice = h264::slice_header_of(after);
    if (old_slice == nullptr || new_slice == nullptr)
        return first_difference(*old_pps, *old_sps, *new_pps, *new_sps);
    return first_difference({before.header, *old_slice, *old_pps, *old_sps},
                            {after.header, *new_slice, *new_pps, *new_sps});
}

edited_unit unit_editor::take(const h264::unit_reading& reading, std::uint64_t number, std::uint64_t picture)
{
    element_list elements(paths);
    const bool looked_at = !plan.sets.empty() || !plan.deletions.empty() || plan.sps.any();
    if (looked_at || sets_differ || plan.removes_messages())
        retrace(reading, elements);
    const planned_unit unit = {reading, elements, number};
    edited_unit result = edited(unit, picture);
    if (is_parameter_set(type_in(unit)))
        keep_set(reading, result);
    return result;
}

edited_unit unit_editor::edited(const planned_unit& unit, std::uint64_t picture)
{
    const h264::unit_reading& reading = unit.reading;
    if (wishes.deletes(unit))
        return {unit_fate::deleted, {}};
    if (reading.result.failure) {
        if (sets_differ && stands_on_sets(type_in(unit)))
            tell(reading.place.offset, "unit that cannot be read is copied as it is, though its parameter sets change");
        return {};
    }
    if (can_be_numbered(reading.unit, *reading.context.sets))
        numbers[layer_key(reading.unit.header)].see(numbered(reading.unit, reading.context), picture);
    const std::vector<bool> removed = wishes.removed_messages(reading.unit);
    const auto gone = std::count(removed.begin(), removed.end(), true);
    if (gone != 0 && static_cast<std::size_t>(gone) + 1 == removed.size())
        return {unit_fate::deleted, {}};
    return rewritten(unit, removed);
}

edited_unit unit_editor::rewritten(const planned_unit& unit, const std::vector<bool>& removed_messages)
{
    const h264::unit_reading& reading = unit.reading;
    std::vector<int> indices;
    const std::vector<element_value> wanted = wishes.of(unit, &indices);
    const bool other_sets = sets_differ && stands_on_sets(type_in(unit));
    const h264::unit_context context = context_now(reading.context);
    const bool any_removed =
        std::find(removed_messages.begin(), removed_messages.end(), true) != removed_messages.end();
    edited_unit result;
    if (!wanted.empty() || other_sets || any_removed) {
        h264::nal_unit changed = reading.unit;
        remove_messages(changed, removed_messages);
        if (other_sets)
            take_over(changed, unit, context);
        for (std::size_t i = 0; i < wanted.size(); ++i)
            apply(changed, context, wanted[i], indices[i], unit);
        const std::vector<unsigned char> clean = write(changed, context, unit);
        // The same bytes may say something else: bits that were a header's are alignment now.
        if (check(clean, context, unit, removed_messages, wanted) || clean != unescaped(reading.place)) {
            result.fate = unit_fate::rewritten;
            result.bytes = escaped(clean);
        }
    }
    if (result.fate == unit_fate::copied)
        compare_numbers(reading.unit, context, unit);
    return result;
}

/// What the unit is written with: the sets as they have become, under the ids that they have now.
h264::unit_context unit_editor::context_now(const h264::unit_context& before) const
{
    h264::unit_context context = before;
    context.sets = &now.sets();
    if (before.active_sps != nullptr)
        context.active_sps = context.sets->find_sps(renamed(sps_ids, before.active_sps->seq_parameter_set_id));
    if (before.active_pps != nullptr)
        context.active_pps = context.sets->find_pps(renamed(pps_ids, before.active_pps->pic_parameter_set_id));
    if (before.mvcd_sps != nullptr)
        context.mvcd_sps = context.sets->find_subset_sps(
            renamed(sps_ids, before.mvcd_sps->seq_parameter_set_data.seq_parameter_set_id));
    if (before.partition_a_pps >= 0)
        context.partition_a_pps =
            static_cast<std::int32_t>(renamed(pps_ids, static_cast<std::uint32_t>(before.partition_a_pps)));
    return context;
}

/// The unit in the new parameter sets, saying the same.
void unit_editor::take_over(h264::nal_unit& unit, const planned_unit& from, const h264::unit_context& context) const
{
    rename_sets(unit, sps_ids, pps_ids);
    h264::slice_header* const slice = header_of(unit);
    const h264::parameter_sets& old_sets = *from.reading.context.sets;
    if (slice != nullptr && can_be_numbered(from.reading.unit, old_sets)) {
        const auto* const pps = context.sets->find_pps(slice->pic_parameter_set_id);
        const auto* const sps = pps == nullptr ? nullptr : h264::sps_of(unit.header, *pps, *context.sets);
        if (sps != nullptr) {
            numbers.at(layer_key(unit.header))
                .renumber(*slice, numbered(from.reading.unit, from.reading.context), *pps, *sps);
            keep_references(*slice, *pps);
        }
    }
    // Lists get the number of entries that the new sets want, and what they do not send is inferred.
    h264::outcome ignored;
    h264::edit(unit, context, "nal_unit.nal_unit_type", unit.header.nal_unit_type, ignored);
}

void unit_editor::apply(h264::nal_unit& unit, const h264::unit_context& context, const element_value& change, int index,
                        const planned_unit& from)
{
    h264::outcome result;
    if (change.path == "nal_unit_type" || change.path.ends_with(".nal_unit_type"))
        refuse(from, "nal_unit_type cannot be set: the unit would hold another structure");
    if (h264::edit(unit, context, change.path, change.value, result)) {
        if (index >= 0)
            wishes.note_applied(index);
        return;
    }
    const h264::failure& why = result.failure;
    if (why.why == h264::reason::no_such_element && index >= 0)
        return; // another unit may have it
    if (why.why == h264::reason::ambiguous)
        refuse(from, fmt::format("{} names several elements:{}", change.path, candidates(from, change.path)));
    std::string text =
        fmt::format("{} cannot be {}: {} {}", change.path, change.value, text_of(why.element), h264::text_of(why.why));
    if (why.why == h264::reason::too_large || why.why == h264::reason::too_small)
        text += fmt::format(" {}", why.bound);
    refuse(from, text);
}

std::vector<unsigned char> unit_editor::write(const h264::nal_unit& unit, const h264::unit_context& context,
                                              const planned_unit& from) const
{
    const std::vector<unsigned char> old = unescaped(from.reading.place);
    h264::outcome result;
    const auto put = [&](h264::bit_writer& to) {
        if (is_slice_type(type_in(from)))
            return h264::write_before_data(unit, context, old.data(), old.size(), from.reading.result.bits, to, result);
        return h264::write(unit, context, to, result);
    };
    h264::bit_writer measure;
    put(measure);
    if (result.failure && result.failure.why != h264::reason::no_room)
        refuse(from, fmt::format("it cannot be written any more: {}", text_of(result.failure)));
    std::vector<unsigned char> clean(measure.bytes());
    h264::bit_writer to(clean.data(), clean.size());
    put(to);
    clean[0] = static_cast<unsigned char>(clean[0] | (old[0] & 0x80U)); // a forbidden bit is carried
    if (!is_slice_type(type_in(from))) { // what stood behind its trailing bits stays there
        const auto end =
            static_cast<std::ptrdiff_t>(std::min<std::uint64_t>((from.reading.result.bits + 7) / 8, old.size()));
        clean.insert(clean.end(), old.begin() + end, old.end());
    }
    return clean;
}

/// Reads the unit back as it will be, and refuses one that says something else than is wanted. False when it says the
/// same as before.
bool unit_editor::check(const std::vector<unsigned char>& clean, const h264::unit_context& context,
                        const planned_unit& from, const std::vector<bool>& removed_messages,
                        std::vector<element_value> wanted)
{
    h264::nal_unit unit;
    h264::outcome result;
    element_list elements(paths);
    h264::trace(unit, clean.data(), clean.size(), context, result, elements);
    elements.check();
    if (result.failure)
        refuse(from, fmt::format("it could not be read any more: {}", text_of(result.failure)));
    tell_values_outside(elements, wanted, from.reading.place.offset);
    const unsigned type = type_in(from);
    const comparison_terms terms = {std::move(wanted), sets_differ && stands_on_sets(type), is_slice_type(type),
                                    plan.force};
    const comparison compared = compare_units(from.elements, elements, removed_messages, terms);
    check_decoding(unit, context, from);
    if (const difference* const wrong = compared.forbidden())
        refuse(from, text_of(*wrong));
    compare_numbers(unit, context, from);
    return !compared.differences.empty();
}

void unit_editor::check_decoding(const h264::nal_unit& unit, const h264::unit_context& context,
                                 const planned_unit& from) const
{
    const decoding_fact* const fact =
        plan.force ? nullptr : first_difference(from.reading.unit, *from.reading.context.sets, unit, *context.sets);
    const char* const numbers_stay =
        plan.force ? "" : why_not_renumbered(from.reading.unit, *from.reading.context.sets, *context.sets);
    if (*numbers_stay != '\0')
        refuse(from, numbers_stay);
    if (fact != nullptr)
        refuse(from, fmt::format("{} would be another one, and slice data would be {} otherwise (H.264 {}); --force "
                                 "writes it all the same",
                                 fact->name, fact->parsing ? "read" : "decoded", fact->clause));
}

void unit_editor::compare_numbers(const h264::nal_unit& unit, const h264::unit_context& context,
                                  const planned_unit& from)
{
    if (!can_be_numbered(unit, *context.sets) || !can_be_numbered(from.reading.unit, *from.reading.context.sets))
        return;
    const auto wrong = numbers[layer_key(unit.header)].compare(numbered(unit, context));
    if (wrong && !plan.force)
        refuse(from, *wrong + "; --force writes it all the same");
}

void unit_editor::keep_set(const h264::unit_reading& reading, const edited_unit& unit)
{
    nobody ignores;
    const unsigned type = reading.place.bytes[0] & 0x1FU;
    const bool has_id = type == 7 || type == 8 || type == 15;
    std::map<std::uint32_t, std::uint32_t>& ids = type == 8 ? pps_ids : sps_ids;
    if (unit.fate != unit_fate::rewritten) {
        if (has_id && !reading.result.failure)
            ids.erase(set_id_of(reading.unit));
        now.push(reading.place, ignores); // a set that is deleted still holds
        return;
    }
    sets_differ = true;
    now.push({unit.bytes.data(), unit.bytes.size(), 0, 0}, ignores);
    h264::nal_unit read_back;
    h264::outcome result;
    const std::vector<unsigned char> clean = unescaped({unit.bytes.data(), unit.bytes.size(), 0, 0});
    h264::unit_context context;
    context.sets = &now.sets();
    h264::read(read_back, clean.data(), clean.size(), context, result);
    if (has_id)
        ids[set_id_of(reading.unit)] = set_id_of(read_back);
}

/// Of values that were asked for, each once.
void unit_editor::tell_values_outside(const element_list& elements, const std::vector<element_value>& wanted,
                                      std::uint64_t offset)
{
    for (const listed_element& e : elements.elements()) {
        if (e.inside || std::none_of(wanted.begin(), wanted.end(), [&](const element_value& w) {
                return w.value == e.value && elements.ends_with(e, w.path);
            }))
            continue;
        std::string text = fmt::format("{} {}: outside of {} to {}", text_of(e.name), e.value, e.lowest, e.highest);
        if (std::find(told_outside.begin(), told_outside.end(), text) != told_outside.end())
            continue;
        tell(offset, text);
        told_outside.push_back(std::move(text));
    }
}

void unit_editor::finish()
{
    wishes.check_all_applied();
    for (const std::string& text : wishes.remarks())
        tell(0, text);
}

void unit_editor::refuse(const planned_unit& unit, const std::string& why) const
{
    throw refusal(exit_usage_or_io,
                  fmt::format("{}: unit {}, offset {}: {}", input_name, unit.number, unit.reading.place.offset, why));
}

} // namespace orv_h264::editing
