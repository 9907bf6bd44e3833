#include "frame_totals.h"

#include <algorithm>

namespace orv_h264 {

void frame_totals::add(const picture_row& row)
{
    if (picture_count == 0 || row.picture != latest) {
        ++picture_count;
        latest_is_key = false;
    }
    latest = row.picture;
    if (row.key() && !latest_is_key)
        add_key();
    ++row_count;
    coded += row.coded_pictures;
    size += row.size;
    of_units += row.unit_bytes;
    of_padding += row.padding;
    of_filler += row.filler;
    rate.add(row.unit_bytes + row.padding, row.duration);
    timed += row.duration ? 1 : 0;
    timed_unit_bytes += row.duration ? row.unit_bytes : 0;
}

void frame_totals::add_key()
{
    const std::uint64_t place = picture_count - 1;
    if (key_count == 0)
        first_key = place;
    else {
        between.least = std::min(between.least, place - last_key);
        between.most = std::max(between.most, place - last_key);
    }
    last_key = place;
    latest_is_key = true;
    ++key_count;
}

std::optional<double> frame_totals::unit_bit_rate() const noexcept
{
    const double seconds = rate.seconds();
    return seconds > 0 ? std::optional(8.0 * static_cast<double>(timed_unit_bytes) / seconds) : std::nullopt;
}

std::optional<frame_totals::distance> frame_totals::key_distance() const
{
    if (key_count < 2)
        return {};
    distance known = between;
    known.mean = static_cast<double>(last_key - first_key) / static_cast<double>(key_count - 1);
    return known;
}

} // namespace orv_h264
