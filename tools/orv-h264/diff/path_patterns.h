// What --ignore names: ends of paths, with * for anything.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orv_h264 {

/// The path without the indices in its brackets: "offset_for_ref_frame[]".
std::string without_indices(std::string_view path);

class path_patterns {
public:
    /// Patterns with commas between them.
    void add(const std::string& list);
    bool empty() const noexcept { return patterns.empty(); }

    /// One of the patterns is the path, or its end from a dot on; with indices, or [] for any.
    bool match(const std::string& path) const;

private:
    static constexpr std::size_t most_known = 65536;

    std::vector<std::string> patterns;
    mutable std::unordered_map<std::string, bool> known;
};

} // namespace orv_h264
