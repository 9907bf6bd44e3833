#include "frame_totals.h"

#include <algorithm>

namespace orv_h264 {

void frame_totals::add(const frame& f)
{
    if (is_key(f))
        add_key();
    const std::uint64_t pictures = shown_pictures(f);
    ++count;
    shown += pictures;
    coded += orv_h264::coded_pictures(f);
    joined += pictures > 1 ? 1 : 0;
    size += f.size;
    rate.add(f.size, f.seconds ? std::optional(*f.seconds * static_cast<double>(pictures)) : std::nullopt);
}

void frame_totals::add_key()
{
    if (keys == 0)
        first_key = shown;
    else {
        between.least = std::min(between.least, shown - last_key);
        between.most = std::max(between.most, shown - last_key);
    }
    last_key = shown;
    ++keys;
}

std::optional<frame_totals::distance> frame_totals::key_distance() const
{
    if (keys < 2)
        return {};
    distance known = between;
    known.mean = static_cast<double>(last_key - first_key) / static_cast<double>(keys - 1);
    return known;
}

} // namespace orv_h264
