#include "type_set.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace orv_h264 {

namespace {

/// Units that people call by a name, and their types.
struct named_types {
    std::string_view name;
    std::uint32_t types; // a bit each
};

constexpr std::uint32_t bits_of(std::initializer_list<unsigned> types)
{
    std::uint32_t bits = 0;
    for (const unsigned type : types)
        bits |= std::uint32_t{1} << type;
    return bits;
}

constexpr named_types names[] = {
    {"slice", bits_of({1, 2, 3, 4, 5})},
    {"idr", bits_of({5})},
    {"partition", bits_of({2, 3, 4})},
    {"sei", bits_of({6})},
    {"sps", bits_of({7})},
    {"pps", bits_of({8})},
    {"aud", bits_of({9})},
    {"end", bits_of({10, 11})},
    {"filler", bits_of({12})},
    {"sps-ext", bits_of({13})},
    {"prefix", bits_of({14})},
    {"subset-sps", bits_of({15})},
    {"dps", bits_of({16})},
    {"auxiliary", bits_of({19})},
    {"extension", bits_of({20, 21})},
};

std::size_t parse_type(std::string_view text)
{
    std::size_t type = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), type);
    if (error != std::errc() || end != text.data() + text.size() || type > 31)
        throw std::invalid_argument("'" + std::string(text) + "' is no NAL unit type (0 to 31, or one of " +
                                    type_names() + ")");
    return type;
}

std::bitset<32> parse_types(std::string_view range)
{
    const std::size_t dash = range.find('-');
    const std::size_t first = parse_type(range.substr(0, dash));
    const std::size_t last = dash == std::string_view::npos ? first : parse_type(range.substr(dash + 1));
    if (first > last)
        throw std::invalid_argument("'" + std::string(range) + "' runs backwards");
    std::bitset<32> types;
    for (std::size_t type = first; type <= last; ++type)
        types.set(type);
    return types;
}

} // namespace

std::string type_names()
{
    std::string all;
    for (const named_types& row : names)
        all.append(all.empty() ? "" : ", ").append(row.name);
    return all;
}

std::bitset<32> parse_type_set(const std::string& text)
{
    std::bitset<32> types;
    std::string_view rest = text;
    for (bool more = true; more;) {
        const std::size_t comma = rest.find(',');
        const std::string_view part = rest.substr(0, comma);
        const auto* const named = std::find_if(std::begin(names), std::end(names),
                                               [part](const named_types& row) { return row.name == part; });
        types |= named != std::end(names) ? std::bitset<32>(named->types) : parse_types(part);
        more = comma != std::string_view::npos;
        if (more)
            rest.remove_prefix(comma + 1);
    }
    return types;
}

} // namespace orv_h264
