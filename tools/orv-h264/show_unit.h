// A NAL unit as the tool shows it: a line and its fields, or a JSON object.
#pragma once

#include "field_sink.h"
#include "piece_feeder.h"
#include "terminal.h"
#include "walked_unit.h"

#include <cstddef>
#include <cstdio>
#include <string>

namespace orv_h264 {

/// A unit whose turn it is to be shown.
struct shown_unit {
    unit where;
    brenik::h264_nal nal;
    std::size_t rbsp_size = 0;
    const walked_unit* walked = nullptr; ///< null when only the unit is shown, without its fields
};

/// Prints units to the standard output, for a person.
class unit_printer {
public:
    void print(const shown_unit& shown);

private:
    emphasis_marks marks = marks_of(stdout, emphasis::strong);
    std::string lines; // of the unit
};

/// Tells the members of the unit's JSON object to `sink`.
void tell_unit(field_sink& sink, const shown_unit& shown);

} // namespace orv_h264
