// orv-h264 edit: header elements with other values, units and messages that come and go; and the proof that nothing
// else has changed.
#pragma once

#include "edit/edit_plan.h"
#include "exit_status.h"
#include "stream_input.h"

#include <functional>
#include <string>

namespace orv_h264 {

struct edit_options {
    stream_options stream;
    std::string out; ///< - is the standard output
    edit_plan plan;
    bool dry_run = false; ///< proves, and writes nothing
    bool json = false;
    /// Called with the path of what was written, before it is proved: for those who look whether the proof can fail.
    std::function<void(const std::string&)> before_proof = {};
};

/// Writes the stream as the plan wants it, reads it back, compares it with the input and prints what it found. `out` is
/// there whole and proved, or as it was. Throws refusal for an edit that cannot be done and a proof that fails, and
/// std::system_error when reading or writing fails.
exit_status edit_stream(const edit_options& options);

} // namespace orv_h264
