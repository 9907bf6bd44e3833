// The texts with the coder that edits.
#include "coders/editor.h"
#include "texts/nal_unit.h"

#include <charconv>
#include <utility>

namespace orv_utils_v4::h264 {

namespace {

/// Takes `text` off the end of `path`; false when it does not end so.
bool take_off(std::string_view& path, std::string_view text)
{
    if (path.size() < text.size() || path.substr(path.size() - text.size()) != text)
        return false;
    path.remove_suffix(text.size());
    return true;
}

bool take_off_index(std::string_view& path, std::uint32_t index)
{
    char digits[10];
    const char* const end = std::to_chars(digits, digits + sizeof digits, index).ptr;
    return take_off(path, "]") && take_off(path, {digits, static_cast<std::size_t>(end - digits)}) &&
           take_off(path, "[");
}

} // namespace

bool editor::matches(label name) const
{
    std::string_view left = path;
    for (unsigned i = name.depth(); i > 0; --i) {
        if (!take_off_index(left, name.index(i - 1)))
            return false;
    }
    if (!take_off(left, name.name()))
        return false;
    for (std::size_t i = std::min(depth, deepest); i > 0 && !left.empty(); --i) {
        if (!take_off(left, ".") || !take_off(left, names[i - 1]))
            return false;
    }
    return left.empty();
}

bool edit(nal_unit& unit, const unit_context& context, std::string_view path, std::int64_t value,
          outcome& result) noexcept
{
    result = outcome();
    try {
        nal_unit changed = unit;
        editor c(path, value, result);
        code(c, changed, context);
        if (!result.failure && c.named() != 1)
            result.failure = {c.named() == 0 ? reason::no_such_element : reason::ambiguous, "nal_unit", 0,
                              static_cast<std::int64_t>(c.named()), 1};
        if (result.failure)
            return false;
        unit = std::move(changed);
        return true;
    } catch (...) { // bad_alloc: the copy of a growing list
        result.failure = {reason::no_memory, "nal_unit", 0, 0, 0};
        return false;
    }
}

} // namespace orv_utils_v4::h264
