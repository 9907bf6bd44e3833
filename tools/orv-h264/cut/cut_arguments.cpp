#include "cut/cut_arguments.h"

#include "cut/exact_order.h"

#include <charconv>
#include <stdexcept>
#include <vector>

namespace orv_h264 {

namespace {

/// Numbers with commas between them, none above the bound of its place; none at all where the text has others.
std::vector<unsigned> numbers_of(const std::string& text, const std::vector<unsigned>& highest)
{
    std::vector<unsigned> numbers;
    const char* at = text.data();
    const char* const end = at + text.size();
    for (const unsigned bound : highest) {
        unsigned number = 0;
        const auto [stop, error] = std::from_chars(at, end, number);
        if (error != std::errc() || number > bound || (stop != end && *stop != ','))
            return {};
        numbers.push_back(number);
        if (stop == end)
            return numbers;
        at = stop + 1;
    }
    return {};
}

} // namespace

layer_target parse_layer(const std::string& text)
{
    const std::vector<unsigned> ids = numbers_of(text, {7, 15, 7});
    if (ids.empty())
        throw std::invalid_argument("'" + text + "' is no layer D[,Q[,T]], up to 7,15,7");
    layer_target target;
    target.dependency_id = static_cast<std::uint8_t>(ids[0]);
    if (ids.size() > 1)
        target.quality_id = static_cast<std::uint8_t>(ids[1]);
    if (ids.size() > 2)
        target.temporal_id = static_cast<std::uint8_t>(ids[2]);
    return target;
}

std::uint16_t parse_view(const std::string& text)
{
    const std::vector<unsigned> ids = numbers_of(text, {1023});
    if (ids.empty())
        throw std::invalid_argument("'" + text + "' is no view_id, up to 1023");
    return static_cast<std::uint16_t>(ids[0]);
}

bool is_surely_empty(const cut_range& range)
{
    if (!range.from || !range.to || range.from->what != range.to->what)
        return false;
    if (range.from->what == cut_place::kind::time)
        return !is_before(range.from->time, range.to->time);
    return range.from->number >= range.to->number;
}

} // namespace orv_h264
