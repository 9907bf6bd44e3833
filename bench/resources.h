// What a piece of work takes: memory from the heap, and exceptions thrown. The program that has this has its own
// operator new, and stands before the runtime's throw.
#pragma once

#include <cstddef>

namespace bounded {

struct resources {
    std::size_t allocations = 0;
    std::size_t most_bytes = 0; ///< at one time
    std::size_t exceptions = 0;
};

/// Since the call before.
resources resources_taken();

} // namespace bounded
