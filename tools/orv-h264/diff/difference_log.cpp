#include "diff/difference_log.h"

#include <algorithm>

namespace orv_h264 {

namespace {

std::string clipped(const std::string& value)
{
    constexpr std::size_t most = 24;
    if (value.size() <= most)
        return value;
    std::string start = value;
    start.resize(most - 3);
    start.append(3, '.');
    return start;
}

} // namespace

told_difference* difference_log::kind_of(stream_difference what, bool of_unit, const std::string& path,
                                         const place_pair& at)
{
    if (ignored.match(path))
        return nullptr;
    ++total;
    const std::string plain = without_indices(path);
    const std::string key = static_cast<char>('0' + 2 * static_cast<int>(what) + (of_unit ? 1 : 0)) + plain;
    const auto found = places.find(key);
    if (found != places.end())
        return &list[found->second];
    if (list.size() == most_kinds) {
        ++not_told;
        return nullptr;
    }
    places.emplace(key, list.size());
    list.push_back({what, of_unit, plain, 0, at.a, at.b, {}});
    return &list.back();
}

void difference_log::add(stream_difference what, bool of_unit, const std::string& path, const place_pair& at)
{
    if (told_difference* const kind = kind_of(what, of_unit, path, at))
        ++kind->count;
}

void difference_log::add_changed(const std::string& path, const std::string& a, const std::string& b,
                                 const place_pair& at)
{
    told_difference* const kind = kind_of(stream_difference::changed, false, path, at);
    if (kind == nullptr)
        return;
    ++kind->count;
    const std::pair<std::string, std::string> values = {clipped(a), clipped(b)};
    const bool known = std::find(kind->examples.begin(), kind->examples.end(), values) != kind->examples.end();
    if (!known && kind->examples.size() < told_difference::most_examples)
        kind->examples.push_back(values);
}

} // namespace orv_h264
