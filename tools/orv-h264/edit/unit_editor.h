// Edits the units of a stream one by one: each is read with the parameter sets that it stands on, and written with
// those that they have become. A unit that comes out as it was keeps its bytes.
#pragma once

#include "edit/decoding_facts.h"
#include "edit/picture_numbers.h"
#include "edit/unit_comparison.h"
#include "edit/wanted_changes.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace orv_h264::editing {

/// What becomes of a unit.
enum class unit_fate : std::uint8_t { copied, rewritten, deleted, inserted };

struct edited_unit {
    unit_fate fate = unit_fate::copied;
    std::vector<unsigned char> bytes; ///< of a unit that is rewritten: as it stands behind its framing
};

/// Tells what is odd: the offset of the unit, and what.
using remark_taker = std::function<void(std::uint64_t, const std::string&)>;

class unit_editor {
public:
    /// @param name of the input, for messages
    unit_editor(const edit_plan& with, std::string name, remark_taker remarks)
        : plan(with), input_name(std::move(name)), wishes(with), tell(std::move(remarks))
    {
    }

    /// The next unit. Throws refusal, with the unit, when it cannot be written as wanted.
    /// @param number of the unit
    /// @param picture grows with each access unit
    edited_unit take(const h264::unit_reading& reading, std::uint64_t number, std::uint64_t picture);

    /// Throws refusal when a --set has changed nothing.
    void finish();

private:
    edited_unit edited(const planned_unit& unit, std::uint64_t picture);
    edited_unit rewritten(const planned_unit& unit, const std::vector<bool>& removed_messages);
    h264::unit_context context_now(const h264::unit_context& before) const;
    void take_over(h264::nal_unit& unit, const planned_unit& from, const h264::unit_context& context) const;
    void apply(h264::nal_unit& unit, const h264::unit_context& context, const element_value& change, int index,
               const planned_unit& from);
    std::vector<unsigned char> write(const h264::nal_unit& unit, const h264::unit_context& context,
                                     const planned_unit& from) const;
    bool check(const std::vector<unsigned char>& clean, const h264::unit_context& context, const planned_unit& from,
               const std::vector<bool>& removed_messages, std::vector<element_value> wanted);
    void check_decoding(const h264::nal_unit& unit, const h264::unit_context& context, const planned_unit& from) const;
    void compare_numbers(const h264::nal_unit& unit, const h264::unit_context& context, const planned_unit& from);
    void keep_set(const h264::unit_reading& reading, const edited_unit& unit);
    void tell_values_outside(const element_list& elements, const std::vector<element_value>& wanted,
                             std::uint64_t offset);
    [[noreturn]] void refuse(const planned_unit& unit, const std::string& why) const;

    const edit_plan& plan;
    std::string input_name;
    wanted_changes wishes;
    remark_taker tell;
    path_table paths;
    h264::stream now; // the parameter sets as they have become
    bool sets_differ = false;
    std::map<std::uint32_t, std::uint32_t> sps_ids; // what an id has become, where it is another one
    std::map<std::uint32_t, std::uint32_t> pps_ids;
    std::map<std::uint32_t, picture_numbers> numbers; // by layer or view
    std::vector<std::string> told_outside;
};

/// Of types 7, 8, 13, 15 and 16.
bool is_parameter_set(unsigned nal_unit_type);

/// The table of units of this type takes something from parameter sets.
bool stands_on_sets(unsigned nal_unit_type);

/// Why the unit cannot be taken over to parameter sets that count pictures otherwise, though others can; "" where it
/// can be.
const char* why_not_renumbered(const h264::nal_unit& unit, const h264::parameter_sets& before,
                               const h264::parameter_sets& after);

/// By layer or view: the base has 0.
std::uint32_t layer_key(const h264::nal_unit_header& header);

/// A slice as its picture numbers see it; false of a unit without slice_header(), or without its parameter sets.
bool can_be_numbered(const h264::nal_unit& unit, const h264::parameter_sets& sets);
numbered_slice numbered(const h264::nal_unit& unit, const h264::unit_context& context);

/// What of the slices differs that their data stand on, or null.
const decoding_fact* first_difference(const h264::nal_unit& before, const h264::parameter_sets& sets_before,
                                      const h264::nal_unit& after, const h264::parameter_sets& sets_after);

} // namespace orv_h264::editing
