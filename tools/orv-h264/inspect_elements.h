// orv-h264 inspect --tsv: every syntax element of a stream, a line each.
#pragma once

#include "inspect.h"

namespace orv_h264 {

/// As inspect(), with the lines of element_rows.
exit_status inspect_elements(const inspect_options& options);

} // namespace orv_h264
