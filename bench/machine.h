// What the figures depend on.
#pragma once

#include <string>

namespace bench {

/// Processor, caches, vector extensions, compiler, and the versions of the peers, in one line.
std::string machine();

} // namespace bench
