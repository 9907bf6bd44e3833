// What the figures depend on.
#pragma once

#include <string>

namespace bench {

/// The widest vectors of this machine that the libraries have code for.
std::string vectors_taken();

/// Processor, caches, vectors, compiler, and the versions of the peers, in one line.
std::string machine();

} // namespace bench
