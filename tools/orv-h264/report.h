// orv-h264 report: one stream as a page that a browser opens without a network.
#pragma once

#include "exit_status.h"
#include "stream_input.h"

#include <string>

namespace orv_h264 {

struct report_options {
    stream_options stream;
    std::string out = "report.html"; ///< - is the standard output
};

/// Writes the page, of a broken stream too. Throws refusal where the tool was built without what draws plots, else as
/// inspect() does.
exit_status report(const report_options& options);

} // namespace orv_h264
