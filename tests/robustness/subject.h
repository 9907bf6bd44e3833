// What bad inputs are parsed as: a structure in valid form, its real and its literal parse, and what must hold behind
// them whatever the bits were.
#pragma once

#include "support/element_writer.h"
#include "support/literal_parse.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace robustness {

/// What a parse is given to parse into.
enum class object_state { fresh, filled, filled_and_valid };
constexpr object_state object_states[] = {object_state::fresh, object_state::filled, object_state::filled_and_valid};

/// A parse that may run out of memory.
struct parse_without_memory {
    std::string fault;        ///< what does not hold; "" when all does
    std::size_t requests = 0; ///< how many allocations were asked for
};

struct subject {
    std::string name;
    support::element_writer valid; ///< the structure as it should be

    /// Both parses: what does not hold; "" when all does.
    std::function<std::string(const support::bit_range&, object_state)> check;

    /// The real parse, whose allocation with the index `k` fails.
    std::function<parse_without_memory(const support::bit_range&, object_state, std::size_t k)> check_without_memory;
};

/// A valid form of every structure of both interfaces; of those with parts, several.
const std::vector<subject>& all_subjects();

} // namespace robustness
