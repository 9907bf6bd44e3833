// What the figures depend on and the benchmark library does not tell.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace bench {

/// Names and values: processor, vector extensions, compiler, and the versions of the peers.
std::vector<std::pair<std::string, std::string>> machine_facts();

} // namespace bench
