#include "frame_totals.h"

#include <algorithm>

namespace orv_h264 {

namespace {

/// How long all pictures of the frame are shown. The scan times one; those that it joined have no picture timing of
/// their own, as an SEI unit would have kept them apart, and last two fields each (H.264 E.2.1).
std::optional<double> seconds_of_all(const frame& f)
{
    const std::uint64_t pictures = shown_pictures(f);
    if (!f.seconds || f.field_duration == 0 || pictures == 1)
        return f.seconds;
    const std::uint64_t fields = pictures == 0 ? 0 : f.field_duration + 2 * (pictures - 1);
    return *f.seconds / f.field_duration * static_cast<double>(fields);
}

} // namespace

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
    rate.add(f.size, seconds_of_all(f));
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
