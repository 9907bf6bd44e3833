#include "problem_list.h"

#include <cctype>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// The message with a mark in place of each number.
std::string without_numbers(const std::string& message)
{
    std::string shape;
    for (const char c : message) {
        const char mark = std::isdigit(static_cast<unsigned char>(c)) != 0 ? '#' : c;
        if (mark != '#' || shape.empty() || shape.back() != '#')
            shape += mark;
    }
    return shape;
}

} // namespace

void problem_list::add(const problem_kind& more)
{
    const bool room = place.size() < most_kinds;
    const std::string shape = without_numbers(more.message);
    const bool known = place.contains(shape);
    const auto [found, is_new] = place.try_emplace(known || room ? shape : "", list.size());
    if (is_new)
        list.push_back({known || room ? more.message : "further problems", more.first_offset, 0, 0, 0});
    problem_kind& kind = list[found->second];
    kind.last_offset = more.last_offset;
    kind.bytes += more.bytes;
    kind.count += more.count;
}

void problem_list::add(const problem_list& others)
{
    for (const problem_kind& kind : others.list)
        add(kind);
}

std::string describe(const problem_kind& kind)
{
    return fmt::format("offset {}: {}", kind.first_offset, describe_without_offset(kind));
}

std::string describe_without_offset(const problem_kind& kind)
{
    std::string text = kind.message;
    if (kind.bytes > 0)
        text += fmt::format(", {} bytes", kind.bytes);
    if (kind.count > 1)
        text += fmt::format(" ({} times, the last at offset {})", kind.count, kind.last_offset);
    return text;
}

} // namespace orv_h264
