// Data that are meant to cost a reader more than they should, of any size.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace bounded {

/// A pattern; `make(size)` makes `size` bytes of it.
struct adversary {
    std::string name;
    std::vector<unsigned char> (*make)(std::size_t size);
};

const std::vector<adversary>& all_adversaries();

} // namespace bounded
