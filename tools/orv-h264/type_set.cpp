#include "type_set.h"

#include <charconv>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace orv_h264 {

namespace {

std::size_t parse_type(std::string_view text)
{
    std::size_t type = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), type);
    if (error != std::errc() || end != text.data() + text.size() || type > 31)
        throw std::invalid_argument("'" + std::string(text) + "' is no NAL unit type (0 to 31)");
    return type;
}

} // namespace

std::bitset<32> parse_type_set(const std::string& text)
{
    std::bitset<32> types;
    std::string_view rest = text;
    for (bool more = true; more;) {
        const std::size_t comma = rest.find(',');
        const std::string_view range = rest.substr(0, comma);
        const std::size_t dash = range.find('-');
        const std::size_t first = parse_type(range.substr(0, dash));
        const std::size_t last = dash == std::string_view::npos ? first : parse_type(range.substr(dash + 1));
        if (first > last)
            throw std::invalid_argument("'" + std::string(range) + "' runs backwards");
        for (std::size_t type = first; type <= last; ++type)
            types.set(type);
        more = comma != std::string_view::npos;
        if (more)
            rest.remove_prefix(comma + 1);
    }
    return types;
}

} // namespace orv_h264
