// Units with what they hold, for a person or as JSON.
#pragma once

#include "annotated_trace.h"
#include "unit_run.h"

#include <memory>
#include <string_view>

namespace orv_h264 {

struct unit_style {
    bool positions = false;  ///< where each element lies
    bool long_names = false; ///< of units
};

class unit_printer {
public:
    unit_printer() = default;
    unit_printer(const unit_printer&) = delete;
    unit_printer& operator=(const unit_printer&) = delete;
    virtual ~unit_printer() = default;

    /// The unit is about to be read: whom its elements are told to.
    virtual h264::visitor* begin(const listed_unit& unit) = 0;
    /// The lines of the unit, as many as have not been put out, until the next one begins; `reading` is null where it
    /// was not read.
    virtual std::string_view end(const listed_unit& unit, const h264::unit_reading* reading) = 0;
};

/// One whose lines go to the standard output.
std::unique_ptr<unit_printer> make_unit_printer(bool as_json, const unit_style& style);

} // namespace orv_h264
