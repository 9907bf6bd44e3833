// What two streams have otherwise, added up: by element and unit, how often, the first place in each, and some values.
#pragma once

#include "diff/path_patterns.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace orv_h264 {

enum class stream_difference : std::uint8_t {
    changed, ///< other values
    only_a,
    only_b,
    moved, ///< a unit that is the same, at another place
};

/// One element, structure or unit, wherever it differs in one way.
struct told_difference {
    static constexpr std::size_t most_examples = 3;

    stream_difference what = stream_difference::changed;
    bool of_unit = false;
    std::string path; ///< without indices
    std::uint64_t count = 0;
    std::uint64_t offset_a = 0; ///< of the units where it was first
    std::uint64_t offset_b = 0;
    std::vector<std::pair<std::string, std::string>> examples; ///< values of both, each once
};

/// Places in both streams; of a unit that one of them lacks, where it would stand.
struct place_pair {
    std::uint64_t a = 0;
    std::uint64_t b = 0;
};

class difference_log {
public:
    /// So many kinds are told apart.
    static constexpr std::size_t most_kinds = 4096;

    explicit difference_log(const path_patterns& not_counted) : ignored(not_counted) {}

    bool ignores(const std::string& path) const { return ignored.match(path); }
    void add_changed(const std::string& path, const std::string& a, const std::string& b, const place_pair& at);
    void add(stream_difference what, bool of_unit, const std::string& path, const place_pair& at);

    /// As they came.
    const std::vector<told_difference>& kinds() const noexcept { return list; }
    std::uint64_t count() const noexcept { return total; }
    /// Of kinds that are not told apart.
    std::uint64_t further() const noexcept { return not_told; }

private:
    told_difference* kind_of(stream_difference what, bool of_unit, const std::string& path, const place_pair& at);

    const path_patterns& ignored;
    std::vector<told_difference> list;
    std::unordered_map<std::string, std::size_t> places; // in the list, by what it is and its path
    std::uint64_t total = 0;
    std::uint64_t not_told = 0;
};

} // namespace orv_h264
