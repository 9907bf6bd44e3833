// Files that stand in no folder, and go when they are closed, however the tool ends.
#pragma once

#include <string>

namespace orv_h264 {

/// Makes one for reading and writing on the file system of the folder, which may be given a name by linkat(2).
/// @return -1, with errno, where that has no such files
int open_linkable(const std::string& folder);

/// Makes one in any folder, if need be with a name for a moment.
/// @return -1, with errno, where it cannot be made
int open_nameless(const std::string& folder);

/// Where an open file can be opened again.
std::string path_of(int descriptor);

} // namespace orv_h264
