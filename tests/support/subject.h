// What damaged bytes are parsed as: a structure in valid form, its real and its literal parse, and what must hold
// behind both whatever the bits were.
#pragma once

#include "support/element_writer.h"
#include "support/literal_parse.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace support {

/// What a parse is given to parse into: a new object, one that an earlier parse filled, or what the latest one left.
enum class object_state { fresh, fresh_and_valid, filled, filled_and_valid, as_left };
constexpr object_state object_states[] = {object_state::fresh, object_state::filled, object_state::filled_and_valid};
/// For allocations that fail; in the first two, all arrays begin empty.
constexpr object_state memory_states[] = {object_state::fresh, object_state::fresh_and_valid, object_state::filled,
                                          object_state::filled_and_valid};

struct subject {
    std::string name;
    element_writer valid;           ///< the structure as it should be
    std::optional<std::size_t> end; ///< where its parse ends, with true; nothing when the object says whether it does
    bytes first_bytes;              ///< of which one leads far into the structure
    bool typical;                   ///< false when others differ from it in widths or counts alone
    std::size_t most_entries;       ///< of an array
    bool legacy;                    ///< which throws nothing, asks for no memory, and has no `valid`
    bool grows;                     ///< has lists that grow with the data, and a failed allocation gets out

    /// Both parses.
    std::function<compared(const bit_range&, object_state)> parse;

    /// What was stored for the element; nothing for one that is not kept, as a delta is not.
    std::function<std::optional<std::int64_t>(const compared&, const element&)> kept_value;

    /// Whether 32 zero bits in place of the code are seen before it is read, and do not throw.
    std::function<bool(const element&)> looked_ahead;

    /// What does not hold behind both parses; "" when all does.
    std::string check(const bit_range& bits, object_state state) const
    {
        return fault_of(parse(bits, state), most_entries);
    }
};

/// A real parse that may have run out of memory.
struct parse_without_memory {
    std::string fault;   ///< what does not hold; "" when all does
    bool failed = false; ///< whether it asked for the allocation
};

/// Both parses where the allocation `k` of each fails, counted from 0. A list that grows has to begin empty.
parse_without_memory check_without_memory(const subject& what, const bit_range& bits, object_state state,
                                          std::size_t k);

/// Structures of one kind, in all their forms and surroundings.
struct subject_group {
    const char* name;
    std::vector<subject> (*make)();
};

const std::vector<subject_group>& subject_groups();

/// Those of all groups.
const std::vector<subject>& all_subjects();

std::vector<subject> scaling_list_subjects();
std::vector<subject> hrd_subjects();
std::vector<subject> vui_subjects();
std::vector<subject> sps_subjects();
std::vector<subject> pps_subjects();
std::vector<subject> slice_header_subjects();
std::vector<subject> pic_timing_subjects();
std::vector<subject> buffering_period_subjects();
std::vector<subject> pan_scan_rect_subjects();
std::vector<subject> recovery_point_subjects();
std::vector<subject> legacy_sps_subjects();
std::vector<subject> legacy_slice_subjects();
std::vector<subject> legacy_timing_subjects();

} // namespace support
