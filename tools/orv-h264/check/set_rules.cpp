// Rules over the activation of parameter sets (H.264 7.4.1.2.1).
#include "check/set_facts.h"

#include <fmt/format.h>

namespace orv_h264 {

namespace {

using enum severity;

bool names_missing_set(const h264::failure& failure)
{
    return failure.why == h264::reason::no_sps || failure.why == h264::reason::no_pps;
}

verdict named_set_is_there(const naming_facts& f)
{
    const h264::failure& failure = f.reading.result.failure;
    if (!names_missing_set(failure) || f.reading.unit.header.nal_unit_type == 8)
        return {};
    const bool pps = failure.why == h264::reason::no_pps;
    return breach_of(pps ? "pic_parameter_set_id" : failure.element.name(), failure.value,
                     fmt::format("the id of {} that came before", pps ? "a PPS" : "an SPS"));
}

verdict pps_behind_sps(const naming_facts& f)
{
    const auto* const pps = std::get_if<h264::pic_parameter_set_rbsp>(&f.reading.unit.rbsp);
    const bool read = !f.reading.result.failure || names_missing_set(f.reading.result.failure);
    if (pps == nullptr || !read || f.reading.context.sets == nullptr ||
        h264::sps_of(*pps, *f.reading.context.sets) != nullptr)
        return {};
    return breach_of("seq_parameter_set_id", pps->seq_parameter_set_id, "the id of an SPS that came before");
}

verdict sps_content_stays(const set_content_facts& f)
{
    if (!f.sps || !f.differs || f.may_change)
        return {};
    return breach_of("seq_parameter_set_id", f.id,
                     "the content of the active SPS of this id, up to the next IDR picture");
}

verdict pps_content_stays(const set_content_facts& f)
{
    if (f.sps || !f.differs || f.may_change)
        return {};
    return breach_of("pic_parameter_set_id", f.id, "the content of the PPS of this id, up to the end of the picture");
}

verdict idr_activates_sps(const activation_facts& f)
{
    if (f.idr || f.id == f.active_id)
        return {};
    return breach{"pic_parameter_set_id", fmt::format("that of a PPS with SPS {}", f.id),
                  fmt::format("one with SPS {}, which is active", f.active_id)};
}

verdict auxiliary_as_announced(const auxiliary_facts& f)
{
    if (f.sent == (f.aux_format_idc != 0))
        return {};
    return breach{"", f.sent ? "an auxiliary picture" : "no auxiliary picture",
                  f.sent ? "none without an SPS extension that has an aux_format_idc above 0"
                         : fmt::format("one, for aux_format_idc is {}", f.aux_format_idc)};
}

constexpr rule_over<naming_facts> rules_of_names[] = {
    {{"set-is-there", error, "7.4.1.2.1", "a parameter set comes before what names it",
      "Without it the unit cannot be read, and the picture not be decoded.", "a slice with the id of no PPS"},
     named_set_is_there},
    {{"set-pps-behind-sps", warning, "7.4.1.2.1", "an SPS comes before the PPSs that name it",
      "It need not come before a picture activates them, but many decoders read a PPS when it comes, and drop it.",
      "a PPS before its SPS"},
     pps_behind_sps},
};

constexpr rule_over<set_content_facts> rules_of_content[] = {
    {{"set-sps-content-stays", error, "7.4.1.2.1", "the active SPS changes before an IDR picture alone",
      "Pictures that refer to each other are of one size and one kind.",
      "an SPS of another level between two P pictures"},
     sps_content_stays},
    {{"set-pps-content-stays", error, "7.4.1.2.1", "the PPS of a picture does not change inside of the picture",
      "Its slices would be decoded in two ways.", "a PPS of another pic_init_qp_minus26 between two slices"},
     pps_content_stays},
};

constexpr rule_over<activation_facts> rules_of_activation[] = {
    {{"set-idr-activates-sps", error, "7.4.1.2.1", "another SPS becomes active with an IDR picture alone",
      "Pictures that refer to each other are of one size and one kind.",
      "a P picture whose PPS names another SPS than that of the picture before"},
     idr_activates_sps},
};

constexpr rule_over<auxiliary_facts> rules_of_auxiliaries[] = {
    {{"set-announces-auxiliary", error, "7.4.2.1.2",
      "pictures have an auxiliary picture each where aux_format_idc is above 0, and none elsewhere",
      "Nothing else tells what its samples mean, and how many bits they have.",
      "a unit of type 19 without an SPS extension"},
     auxiliary_as_announced},
};

} // namespace

std::span<const rule_over<auxiliary_facts>> auxiliary_rules()
{
    return rules_of_auxiliaries;
}

std::span<const rule_over<naming_facts>> naming_rules()
{
    return rules_of_names;
}

std::span<const rule_over<set_content_facts>> set_content_rules()
{
    return rules_of_content;
}

std::span<const rule_over<activation_facts>> activation_rules()
{
    return rules_of_activation;
}

} // namespace orv_h264
