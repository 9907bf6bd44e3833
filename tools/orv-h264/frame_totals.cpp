#include "frame_totals.h"

#include <algorithm>

namespace orv_h264 {

void frame_totals::add(const frame& f)
{
    if (is_key(f)) {
        if (keys > 0) {
            between.least = std::min(between.least, count - last_key);
            between.most = std::max(between.most, count - last_key);
        } else {
            first_key = count;
        }
        last_key = count;
        ++keys;
    }
    ++count;
    coded += coded_pictures(f);
    joined += is_joined(f) ? 1 : 0;
    size += f.size;
    rate.add(f.size, f.seconds);
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
