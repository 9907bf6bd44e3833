#include "cut/cut_place.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <string_view>
#include <vector>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr std::int64_t nanoseconds = 1'000'000'000;

[[noreturn]] void fail(const std::string& text)
{
    throw std::invalid_argument(
        fmt::format("'{}' is no place (a picture 100, a time 12.5s or 0:01:02.5, an offset @4711 or @0x1267)", text));
}

bool is_number(std::string_view text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::optional<std::uint64_t> number_of(std::string_view text, int base = 10)
{
    std::uint64_t number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc() || stop != text.data() + text.size())
        return {};
    return number;
}

std::optional<std::uint64_t> offset_of(std::string_view text)
{
    return text.starts_with("0x") ? number_of(text.substr(2), 16) : number_of(text);
}

/// Of seconds with a fraction of up to nine digits.
std::optional<std::int64_t> nanoseconds_of(std::string_view text)
{
    constexpr std::size_t most_digits = 9;
    constexpr std::size_t most_whole_digits = 6; // so that hours fit 64 bits of nanoseconds
    const std::size_t point = text.find('.');
    const std::string_view whole = text.substr(0, point);
    std::string fraction(point == std::string_view::npos ? "0" : text.substr(point + 1));
    if (!is_number(whole) || !is_number(fraction) || whole.size() > most_whole_digits || fraction.size() > most_digits)
        return {};
    fraction.append(most_digits - fraction.size(), '0');
    return static_cast<std::int64_t>(*number_of(whole)) * nanoseconds + static_cast<std::int64_t>(*number_of(fraction));
}

/// Hours and minutes may lead, with colons behind them; those behind a colon are below 60.
std::optional<std::int64_t> clock_time_of(std::string_view text)
{
    std::int64_t minutes = 0;
    for (unsigned parts = 0; text.find(':') != std::string_view::npos; ++parts) {
        const std::string_view part = text.substr(0, text.find(':'));
        const auto value = part.find('.') == std::string_view::npos ? nanoseconds_of(part) : std::nullopt;
        if (parts == 2 || !value || (parts == 1 && *value >= 60 * nanoseconds))
            return {};
        minutes = minutes * 60 + *value / nanoseconds;
        text.remove_prefix(part.size() + 1);
    }
    const auto seconds = nanoseconds_of(text);
    if (!seconds || *seconds >= 60 * nanoseconds)
        return {};
    return minutes * 60 * nanoseconds + *seconds;
}

} // namespace

cut_place parse_cut_place(const std::string& text)
{
    if (text.starts_with('@')) {
        const auto offset = offset_of(std::string_view(text).substr(1));
        return offset ? cut_place{cut_place::kind::offset, *offset, {}, text} : (fail(text), cut_place());
    }
    if (is_number(text)) {
        const auto number = number_of(text);
        return number ? cut_place{cut_place::kind::picture, *number, {}, text} : (fail(text), cut_place());
    }
    const bool in_seconds = text.ends_with('s');
    const auto time = in_seconds                            ? nanoseconds_of({text.data(), text.size() - 1})
                      : text.find(':') != std::string::npos ? clock_time_of(text)
                                                            : std::nullopt;
    if (!time)
        fail(text);
    return {cut_place::kind::time, 0, {*time, nanoseconds}, text};
}

} // namespace orv_h264
