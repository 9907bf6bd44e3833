// Rules over the order of the units of an access unit (H.264 7.4.1.2.3, 7.4.1.2.5, 7.4.2.4).
#include "check/access_unit_facts.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

namespace orv_h264 {

bool ordered_unit_facts::any_before(h264::unit_role role) const
{
    const auto here = of.parts.begin() + static_cast<std::ptrdiff_t>(at);
    return std::any_of(of.parts.begin(), here, [&](const h264::access_unit_part& p) { return p.role == role; });
}

bool ordered_unit_facts::any_behind(h264::unit_role role) const
{
    const auto here = of.parts.begin() + static_cast<std::ptrdiff_t>(at);
    return std::any_of(here + 1, of.parts.end(), [&](const h264::access_unit_part& p) { return p.role == role; });
}

namespace {

using h264::unit_role;

using enum severity;

verdict delimiter_is_first(const ordered_unit_facts& f)
{
    if (f.unit().role != unit_role::delimiter || f.at == 0)
        return {};
    return breach{"", fmt::format("{} unit{} before it", f.at, f.at == 1 ? "" : "s"), "none"};
}

constexpr unsigned bit_of(h264::slice_kind kind)
{
    return 1U << static_cast<unsigned>(kind);
}

/// Table 7-5, as bits of slice kinds.
constexpr unsigned P = bit_of(h264::slice_kind::P), B = bit_of(h264::slice_kind::B), I = bit_of(h264::slice_kind::I),
                   SP = bit_of(h264::slice_kind::SP), SI = bit_of(h264::slice_kind::SI);
constexpr std::array<unsigned, 8> kinds_of_pic_type = {I,       I | P,  I | P | B,       SI,
                                                       SI | SP, I | SI, I | SI | P | SP, I | SI | P | SP | B};
constexpr std::array<const char*, 8> names_of_pic_type = {
    "I", "I and P", "I, P and B", "SI", "SI and SP", "I and SI", "I, SI, P and SP", "I, SI, P, SP and B"};

verdict delimiter_names_kinds(const ordered_unit_facts& f)
{
    const auto* const delimiter =
        f.unit().content == nullptr ? nullptr : std::get_if<h264::access_unit_delimiter_rbsp>(&f.unit().content->rbsp);
    if (delimiter == nullptr || f.unit().failure || delimiter->primary_pic_type >= kinds_of_pic_type.size() ||
        (f.of.slice_kinds & ~kinds_of_pic_type[delimiter->primary_pic_type]) == 0)
        return {};
    const auto fits = [&](unsigned kinds) { return (f.of.slice_kinds & ~kinds) == 0; };
    const auto enough = std::find_if(kinds_of_pic_type.begin(), kinds_of_pic_type.end(), fits);
    return breach{"primary_pic_type",
                  fmt::format("{} ({} slices alone)", delimiter->primary_pic_type,
                              names_of_pic_type[delimiter->primary_pic_type]),
                  fmt::format("{}, or more", enough - kinds_of_pic_type.begin())};
}

bool inside_primary_picture(const ordered_unit_facts& f)
{
    return f.any_before(unit_role::primary) && f.any_behind(unit_role::primary);
}

verdict sei_before_slices(const ordered_unit_facts& f)
{
    if (f.unit().role != unit_role::sei || !inside_primary_picture(f))
        return {};
    return breach{"", "SEI between the slices of a picture", "before the first one"};
}

verdict sets_before_slices(const ordered_unit_facts& f)
{
    const bool meant = f.unit().role == unit_role::parameter_set || f.type() == 17 || f.type() == 18;
    if (!meant || f.type() == 13 || !inside_primary_picture(f))
        return {};
    return breach{"", fmt::format("nal_unit_type {} between the slices of a picture", f.type()),
                  "before the first one"};
}

verdict extension_behind_its_sps(const ordered_unit_facts& f)
{
    const h264::nal_unit* const unit = f.unit().content;
    const auto* const extension =
        unit == nullptr ? nullptr : std::get_if<h264::seq_parameter_set_extension_rbsp>(&unit->rbsp);
    if (extension == nullptr || f.unit().failure)
        return {};
    const h264::nal_unit* const before = f.at == 0 ? nullptr : f.of.parts[f.at - 1].content;
    const auto* const sps = before == nullptr ? nullptr : std::get_if<h264::seq_parameter_set_rbsp>(&before->rbsp);
    if (sps != nullptr && sps->seq_parameter_set_data.seq_parameter_set_id == extension->seq_parameter_set_id)
        return {};
    return breach_of(
        "seq_parameter_set_id", extension->seq_parameter_set_id,
        fmt::format("that of an SPS right before{}",
                    sps == nullptr ? "" : fmt::format(" ({})", sps->seq_parameter_set_data.seq_parameter_set_id)));
}

verdict primary_before_redundant(const ordered_unit_facts& f)
{
    if (f.unit().role != unit_role::redundant || !f.any_behind(unit_role::primary))
        return {};
    return breach_of("redundant_pic_cnt", f.unit().redundant_pic_cnt, "0 before the last slice of the primary picture");
}

verdict redundant_in_order(const ordered_unit_facts& f)
{
    const auto higher = [&](const h264::access_unit_part& p) {
        return p.role == unit_role::redundant && p.redundant_pic_cnt > f.unit().redundant_pic_cnt;
    };
    const bool meant = f.unit().role == unit_role::redundant && f.type() != 3 && f.type() != 4;
    const auto here = f.of.parts.begin() + static_cast<std::ptrdiff_t>(f.at);
    const auto found = std::find_if(f.of.parts.begin(), here, higher);
    if (!meant || found == here)
        return {};
    return breach_of("redundant_pic_cnt", f.unit().redundant_pic_cnt,
                     fmt::format("at least {}, which came before", found->redundant_pic_cnt));
}

verdict auxiliary_last(const ordered_unit_facts& f)
{
    if (f.unit().role != unit_role::auxiliary ||
        (!f.any_behind(unit_role::primary) && !f.any_behind(unit_role::redundant)))
        return {};
    return breach{"", "slices of the primary or a redundant picture behind it", "none"};
}

/// Types 0, 12 and 20 to 31.
verdict others_behind_first_slice(const ordered_unit_facts& f)
{
    const bool meant = f.type() == 0 || f.type() == 12 || f.type() >= 20;
    if (!meant || f.any_before(unit_role::primary) || !f.any_behind(unit_role::primary))
        return {};
    return breach{"", fmt::format("nal_unit_type {} before the first slice", f.type()), "behind it"};
}

verdict end_behind_slices(const ordered_unit_facts& f)
{
    if (f.unit().role != unit_role::end || f.before.stream_ended || f.any_before(unit_role::primary) ||
        (f.at > 0 && f.of.parts[f.at - 1].role == unit_role::end))
        return {};
    return breach{"", "no picture before it in its access unit", "one"};
}

constexpr rule_over<ordered_unit_facts> of_unit_order[] = {
    {{"order-delimiter-first", error, "7.4.1.2.3", "an access unit delimiter is the first unit of its access unit",
      "Readers cut the stream there: what stands before it goes to the picture before.",
      "an access unit delimiter behind an SPS"},
     delimiter_is_first},
    {{"order-sei-before-slices", error, "7.4.1.2.3", "SEI stands before the slices of its picture",
      "Behind a slice it begins another access unit, and the slices behind it are taken for another picture.",
      "SEI between two slices of a picture"},
     sei_before_slices},
    {{"order-sets-before-slices", warning, "7.4.1.2.3", "parameter sets stand before the slices of a picture",
      "Behind the last slice they begin another access unit: readers that look no further cut the picture in two.",
      "a PPS between two slices of a picture"},
     sets_before_slices},
    {{"order-extension-behind-sps", error, "7.4.1.2.3", "an SPS extension stands directly behind the SPS of its id",
      "It is lost where the SPS is moved without it.", "an SPS extension behind a PPS"},
     extension_behind_its_sps},
    {{"order-redundant-behind-primary", error, "7.4.1.2.3", "redundant pictures stand behind the primary coded picture",
      "Decoders that pass over them look for the primary picture first.",
      "a slice with redundant_pic_cnt 1 between slices with 0"},
     primary_before_redundant},
    {{"order-redundant-rising", error, "7.4.1.2.3", "redundant pictures come in the order of redundant_pic_cnt",
      "The first one that can be decoded is taken.", "redundant_pic_cnt 1 behind 2"},
     redundant_in_order},
    {{"order-auxiliary-last", error, "7.4.1.2.3", "auxiliary pictures stand behind the primary and redundant ones",
      "Decoders that have no use for them stop there.", "a unit of type 19 before the second slice of a picture"},
     auxiliary_last},
    {{"order-others-behind-slice", error, "7.4.1.2.3",
      "units of types 0, 12 and 20 to 31 stand behind the first slice of the primary coded picture",
      "Filler data before it counts for the picture before.", "filler data between an SPS and the slice"},
     others_behind_first_slice},
    {{"order-end-behind-picture", error, "7.4.1.2.3", "an end of sequence or stream stands behind a picture",
      "It belongs to the access unit that it ends.", "two ends of sequence in a row"},
     end_behind_slices},
    {{"order-delimiter-names-kinds", error, "7.4.2.4", "a delimiter admits the slice types of its picture",
      "Splitters and indexes take the picture for another kind by it.", "primary_pic_type 0 (I) before a P slice"},
     delimiter_names_kinds},
};

} // namespace

std::span<const rule_over<ordered_unit_facts>> unit_order_rules()
{
    return of_unit_order;
}

} // namespace orv_h264
