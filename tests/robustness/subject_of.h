// Makes a subject of one of the pairs of parses in tests/support.
#pragma once

#include "subject.h"

#include "support/failing_new.h"

#include <new>
#include <utility>

namespace robustness {

/// Whether a structure says if it is valid; those of the legacy interface do not, and never allocate.
template <typename Structure>
concept has_valid = requires(Structure object)
{
    object.valid = true;
};

template <typename Structure>
Structure object_in(object_state state, const Structure& filled)
{
    Structure object{};
    if (state != object_state::fresh)
        object = filled;
    if constexpr (has_valid<Structure>)
        object.valid = state == object_state::filled_and_valid;
    return object;
}

/// Parses into `object` while the allocation `k` fails: what came out that is not documented, "" when nothing did.
template <typename Structure, typename Real>
std::string parse_armed(Structure& object, const support::bit_range& bits, const Real& real, std::size_t k)
{
    try {
        const support::armed_new memory(k);
        real(object, bits);
    } catch (const std::bad_alloc&) {
        return has_valid<Structure> ? "" : "the legacy interface threw";
    } catch (const brenik::h2645_common_malformed_code&) {
        return has_valid<Structure> ? "" : "the legacy interface threw";
    } catch (...) {
        return "an exception that is not documented came out";
    }
    return "";
}

/// `filled` is left by an earlier parse; `real` is the real parse alone.
template <typename Parses, typename Real>
subject subject_of(std::string name, const Parses& parses, const support::element_writer& valid,
                   const typename Parses::structure& filled, const Real& real)
{
    using structure = typename Parses::structure;
    constexpr std::size_t most_entries = support::most_entries<Parses>();
    const auto check = [parses, filled](const support::bit_range& bits, object_state state) {
        structure object = object_in(state, filled);
        return support::fault_of(parses(object, bits), most_entries);
    };
    const auto without_memory = [parses, filled, real, valid](const support::bit_range& bits, object_state state,
                                                              std::size_t k) {
        structure object = object_in(state, filled);
        std::string fault = parse_armed(object, bits, real, k);
        const std::size_t requests = support::armed_new::made();
        if (!has_valid<structure> && requests != 0)
            fault += "the legacy interface asked for memory";
        if (support::largest_array(support::fields_of(object)) > most_entries)
            fault += "an array has too many entries";
        // What ran out of memory is as good as any other object.
        const support::bytes& whole = valid.made();
        fault += support::fault_of(parses(object, {whole.data(), whole.data() + whole.size()}), most_entries);
        return parse_without_memory{std::move(fault), requests};
    };
    return {std::move(name), valid, check, without_memory};
}

} // namespace robustness
