#include "frame_totals.h"

#include <algorithm>

namespace orv_h264 {

void frame_totals::add(const frame& f)
{
    if (f.key())
        add_key();
    ++count;
    coded += f.coded_pictures;
    size += f.size;
    rate.add(f.size, f.seconds);
}

void frame_totals::add_key()
{
    if (keys == 0)
        first_key = count;
    else {
        between.least = std::min(between.least, count - last_key);
        between.most = std::max(between.most, count - last_key);
    }
    last_key = count;
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
