// What the piece feeder hands on for a stream, remembered, so that whole and in pieces can be compared.
#pragma once

#include "piece_feeder.h"
#include "support/stream_builder.h"

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <vector>

namespace support {

/// A unit or a gap, with everything that a caller of the feeder can see of it.
struct fed {
    bool is_unit = false;
    std::uint64_t offset = 0;
    std::uint64_t size = 0; ///< a unit's framing and length, or a gap's bytes
    unsigned int framing_size = 0;
    std::uint64_t stated_length = 0;
    bool cut = false;
    int header = -1;
    bytes rbsp;
    orv_h264::gap_reason reason = {};

    bool operator==(const fed&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const fed& item)
{
    return out << (item.is_unit ? "unit" : "gap") << " at " << item.offset << " size " << item.size << " framing "
               << item.framing_size << " header " << item.header << " rbsp " << item.rbsp.size() << " reason "
               << static_cast<int>(item.reason) << (item.cut ? " cut" : "");
}

inline fed remember(const orv_h264::unit& u, brenik::h264_nal_reader& reader)
{
    fed item{true, u.offset, u.framing_size + u.length, u.framing_size, u.stated_length, u.cut, 0, {}, {}};
    item.header = reader.nal.encode_header();
    item.rbsp.resize(u.length);
    item.rbsp.resize(reader.block_decode(item.rbsp.data(), item.rbsp.size()));
    return item;
}

inline fed remember(const orv_h264::gap& g)
{
    return {false, g.offset, g.size, 0, 0, false, -1, {}, g.reason};
}

struct feed_options {
    std::size_t piece = orv_h264::input_window::usual_piece; ///< the most bytes one read gives
    std::size_t max_unit = orv_h264::piece_feeder::usual_max_unit;
    std::size_t step = 0; ///< when not 0, reads give 1, 1 + step, 1 + 2 * step ... bytes, modulo `piece`
};

/// An input that reads `stream`, which has to outlive it.
inline orv_h264::input_window window_of(const bytes& stream, feed_options options = {})
{
    return orv_h264::input_window(
        [&stream, options, at = std::size_t{0}, reads = std::size_t{0}](unsigned char* out, std::size_t size) mutable {
            const std::size_t most = options.step == 0 ? size : 1 + reads++ * options.step % options.piece;
            const std::size_t count = std::min({size, most, stream.size() - at});
            std::copy_n(stream.data() + at, count, out);
            at += count;
            return count;
        },
        options.piece);
}

/// Everything the feeder hands on for `stream`.
inline std::vector<fed> feed(const bytes& stream, brenik::h2645_common_nalfmt nalfmt, feed_options options = {})
{
    orv_h264::piece_feeder feeder(window_of(stream, options), nalfmt, options.max_unit);
    std::vector<fed> items;
    for (;;) {
        const orv_h264::fed_item item = feeder.next();
        if (const auto* u = std::get_if<orv_h264::unit>(&item))
            items.push_back(remember(*u, feeder.reader()));
        else if (const auto* g = std::get_if<orv_h264::gap>(&item))
            items.push_back(remember(*g));
        else
            return items;
    }
}

/// Whether the items lie in order within `stream`, without overlap, and every byte beside them is zero. That there is
/// no unit is said at its end, by an item without bytes.
inline bool tiles(const std::vector<fed>& items, const bytes& stream)
{
    const auto all_zero = [&](std::uint64_t start, std::uint64_t fence) {
        return start <= fence && fence <= stream.size() &&
               std::all_of(stream.begin() + static_cast<std::ptrdiff_t>(start),
                           stream.begin() + static_cast<std::ptrdiff_t>(fence),
                           [](unsigned char byte) { return byte == 0; });
    };
    std::uint64_t at = 0;
    for (const fed& item : items) {
        const bool without_bytes = item.reason == orv_h264::gap_reason::no_unit;
        if (!all_zero(at, item.offset) || (item.size == 0) != without_bytes ||
            (without_bytes && item.offset != stream.size()))
            return false;
        at = item.offset + item.size;
    }
    return all_zero(at, stream.size());
}

} // namespace support
