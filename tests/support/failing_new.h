// The operator new of a program that links failing_new.cpp: it counts, and its k-th call while armed fails.
#pragma once

#include <cstddef>
#include <limits>

namespace support {

/// While it lives, allocations are counted, and the one with the index `k` fails.
class armed_new {
public:
    static constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

    explicit armed_new(std::size_t k = never);
    armed_new(const armed_new&) = delete;
    armed_new& operator=(const armed_new&) = delete;
    ~armed_new();

    /// How many allocations the latest armed stretch made, a failed one among them.
    static std::size_t made();
};

} // namespace support
