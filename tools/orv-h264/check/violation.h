// A rule that was broken at a place of the stream, and who is told.
#pragma once

#include "check/rule.h"

#include <cstdint>
#include <optional>
#include <string>

namespace orv_h264 {

/// The unit that breaks it.
struct unit_of_violation {
    std::uint64_t number = 0; ///< from 0
    unsigned nal_unit_type = 0;
};

/// The element that breaks it, in its unit.
struct element_place {
    std::uint64_t byte = 0; ///< as the offset of the violation counts
    std::uint64_t bit = 0;  ///< of the unit header's first bit on, emulation-prevention bytes removed
};

struct violation {
    const rule* broken = nullptr;
    severity level = severity::error; ///< that of the rule, or less where it says so of a value
    std::uint64_t offset = 0;         ///< of the framing of its unit, or of what belongs to no unit
    std::optional<unit_of_violation> unit = {};
    std::optional<element_place> place = {};
    std::string element = {}; ///< with its indices
    std::string found = {};
    std::string allowed = {};
    std::string clause = {}; ///< the rule's, or that of the structure where the rule is about any element
};

class violation_sink {
public:
    virtual ~violation_sink() = default;
    virtual void take(const violation& what) = 0;

protected:
    violation_sink() = default;
    violation_sink(const violation_sink&) = default;
    violation_sink& operator=(const violation_sink&) = default;
};

} // namespace orv_h264
