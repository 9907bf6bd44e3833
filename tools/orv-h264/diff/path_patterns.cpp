#include "diff/path_patterns.h"

#include <algorithm>

namespace orv_h264 {

namespace {

/// Goes back to the last star alone, so that the time is the product of both lengths at the most.
bool is_like(std::string_view text, std::string_view pattern)
{
    std::size_t t = 0;
    std::size_t p = 0;
    std::size_t star = std::string_view::npos;
    std::size_t behind_star = 0; // of the text
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            behind_star = t;
        } else if (p < pattern.size() && pattern[p] == text[t]) {
            ++p;
            ++t;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = ++behind_star;
        } else {
            return false;
        }
    }
    return std::all_of(pattern.begin() + static_cast<std::ptrdiff_t>(p), pattern.end(),
                       [](char c) { return c == '*'; });
}

bool ends_like(std::string_view path, std::string_view pattern)
{
    if (is_like(path, pattern))
        return true;
    for (std::size_t dot = path.find('.'); dot != std::string_view::npos; dot = path.find('.', dot + 1))
        if (is_like(path.substr(dot + 1), pattern))
            return true;
    return false;
}

} // namespace

std::string without_indices(std::string_view path)
{
    std::string plain;
    bool inside = false;
    for (const char c : path) {
        inside = inside && c != ']';
        if (!inside)
            plain += c;
        inside = inside || c == '[';
    }
    return plain;
}

void path_patterns::add(const std::string& list)
{
    for (std::size_t at = 0; at <= list.size();) {
        const std::size_t comma = std::min(list.find(',', at), list.size());
        if (comma != at)
            patterns.push_back(list.substr(at, comma - at));
        at = comma + 1;
    }
}

bool path_patterns::match(const std::string& path) const
{
    if (patterns.empty())
        return false;
    const auto found = known.find(path);
    if (found != known.end())
        return found->second;
    const std::string plain = without_indices(path);
    const bool matches = std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
        return ends_like(path, pattern) || ends_like(plain, pattern);
    });
    if (known.size() < most_known)
        known.emplace(path, matches);
    return matches;
}

} // namespace orv_h264
