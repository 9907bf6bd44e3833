// Rules over units by themselves: their headers and how they end (H.264 7.3.1, 7.4.1, 7.3.2.11).
#include "check/facts.h"

#include <fmt/format.h>

namespace orv_h264 {

namespace {

bool is_set(unsigned type)
{
    return type == 7 || type == 8 || type == 13 || type == 15;
}

verdict sets_are_kept(const unit_facts& f)
{
    if (!is_set(f.type()) || f.reading.unit.header.nal_ref_idc != 0)
        return {};
    return breach_of("nal_ref_idc", 0, fmt::format("above 0 for nal_unit_type {}", f.type()));
}

verdict others_are_not(const unit_facts& f)
{
    const bool may = f.type() != 6 && (f.type() < 9 || f.type() > 12);
    if (may || f.reading.unit.header.nal_ref_idc == 0)
        return {};
    return breach_of("nal_ref_idc", f.reading.unit.header.nal_ref_idc, fmt::format("0 for nal_unit_type {}", f.type()));
}

verdict type_is_specified(const unit_facts& f)
{
    if (f.type() != 17 && f.type() != 18 && f.type() != 22 && f.type() != 23)
        return {};
    return breach_of("nal_unit_type", f.type(), "a type that is not reserved");
}

/// What it names is not there; nothing is wrong with the unit itself.
bool lacks_another_unit(h264::reason why)
{
    return why == h264::reason::no_sps || why == h264::reason::no_pps || why == h264::reason::no_partition_a;
}

verdict can_be_read(const unit_facts& f)
{
    const h264::failure& failure = f.reading.result.failure;
    if (!failure || lacks_another_unit(failure.why)) // other rules are about that
        return {};
    return breach{failure.element.name(), h264::text_of(failure.why), "the syntax of the unit, whole"};
}

verdict ends_with_stop_bit(const unit_facts& f)
{
    if (f.reading.result.ending != h264::ending::no_stop_bit)
        return {};
    return breach{"rbsp_stop_one_bit", "none", "1, and zero bits to the end of the byte"};
}

verdict nothing_behind_the_end(const unit_facts& f)
{
    if (f.reading.result.ending != h264::ending::bytes_behind)
        return {};
    return breach{"", "bytes behind the trailing bits", "none"};
}

verdict zero_words_where_cabac(const unit_facts& f)
{
    const bool cabac = f.is_slice() && f.reading.pps != nullptr && f.reading.pps->entropy_coding_mode_flag;
    if (f.reading.result.ending != h264::ending::cabac_zero_words || cabac)
        return {};
    return breach{"", "cabac_zero_words", "none but behind slices with entropy_coding_mode_flag 1"};
}

using enum severity;

constexpr rule_over<unit_facts> of_units[] = {
    {{"unit-can-be-read", error, "7.3", "a unit holds its syntax to the end",
      "What comes behind the place cannot be told, and decoders drop the unit or worse.",
      "an SPS that ends in its VUI"},
     can_be_read},
    {{"unit-zero-words-of-cabac", error, "7.3.2.10", "cabac_zero_words stand behind slices coded with CABAC",
      "They fill up what the least compression asks for; elsewhere they are no syntax.", "00 00 03 behind an SPS"},
     zero_words_where_cabac},
    {{"unit-ends-with-stop-bit", error, "7.3.2.11", "a unit ends with a stop bit and zero bits",
      "Readers find the end of the syntax by it.", "a PPS that ends in 00"},
     ends_with_stop_bit},
    {{"unit-ends-there", error, "7.3.2.11", "nothing stands behind the trailing bits",
      "Decoders that count bytes read on.", "a PPS with a byte more"},
     nothing_behind_the_end},
    {{"unit-set-is-kept", error, "7.4.1", "parameter sets have a nal_ref_idc above 0",
      "0 says that the unit may be dropped.", "an SPS with nal_ref_idc 0"},
     sets_are_kept},
    {{"unit-other-is-not-kept", error, "7.4.1", "delimiters, SEI, ends and filler have nal_ref_idc 0",
      "Nothing is predicted from them.", "an SEI unit with nal_ref_idc 1"},
     others_are_not},
    {{"unit-type-specified", warning, "7.4.1", "nal_unit_type is none of those that are reserved",
      "Decoders of today ignore such a unit, decoders to come may not.", "nal_unit_type 23"},
     type_is_specified},
};

} // namespace

std::span<const rule_over<unit_facts>> unit_rules()
{
    return of_units;
}

} // namespace orv_h264
