// The descriptors 0, 1 and 2, some of which whoever starts the tool may have closed.
#pragma once

namespace orv_h264 {

/// Occupies those that are closed, so that no file which is opened later is read as the standard input, or gets the
/// output or the messages. Reading and writing them fail as before. To be called before any file is opened.
void occupy_closed_descriptors();

} // namespace orv_h264
