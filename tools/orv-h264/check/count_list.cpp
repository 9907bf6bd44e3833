#include "check/count_list.h"

#include <algorithm>
#include <iterator>

namespace orv_h264 {

count_list::meeting count_list::add(const h264::picture& picture)
{
    const std::int64_t low = picture.count.lower();
    const std::int64_t high = picture.lone_field() ? low : std::max(picture.count.top, picture.count.bottom);
    meeting met;
    for (const std::int64_t count : {low, high})
        if (const auto same = pictures.find(count); same != pictures.end() && !met.shared)
            met.shared = same->first;
    met.parted = any_between(low, high) || lies_inside_another(low) || lies_inside_another(high);
    pictures.emplace(low, picture.number);
    pictures.emplace(high, picture.number);
    while (pictures.size() > most)
        pictures.erase(pictures.begin());
    return met;
}

bool count_list::any_between(std::int64_t low, std::int64_t high) const
{
    const auto next = pictures.upper_bound(low);
    return next != pictures.end() && next->first < high;
}

bool count_list::lies_inside_another(std::int64_t count) const
{
    const auto above = pictures.upper_bound(count);
    const auto not_below = pictures.lower_bound(count);
    return above != pictures.end() && not_below != pictures.begin() && std::prev(not_below)->second == above->second;
}

} // namespace orv_h264
