// Everything that takes bytes from outside, as work over a block of them. No work allocates but what the library does:
// its room is made before.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bounded {

enum class kind {
    framing, ///< finds units, or copies them
    parsing, ///< reads one structure
    legacy   ///< reads structures through the legacy interface
};

/// The bytes, and room for what is made of them.
struct block {
    explicit block(std::vector<unsigned char> data);

    unsigned char* begin() { return content.data(); }
    unsigned char* end() { return content.data() + content.size(); }
    std::size_t size() const { return content.size(); }

    std::vector<unsigned char> content;
    std::vector<unsigned char> room;
};

struct work {
    std::string name;
    kind what;
    std::uint64_t (*run)(block&); ///< a number that depends on what was done
};

const std::vector<work>& all_works();

} // namespace bounded
