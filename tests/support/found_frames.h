// The frames of a stream twice: as the frame finder gives them unit by unit, and as one run of the frame scan over the
// whole stream in memory finds them.
#pragma once

#include "frame_finder.h"
#include "stream_walker.h"
#include "support/stream_builder.h"

#include <orv-utils-v4/h264_legacy.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <utility>
#include <vector>

namespace support {

/// Where a frame lies, and how long it is shown.
struct placed_frame {
    std::size_t start = 0; ///< of the 00 00 01 of its first unit
    std::size_t end = 0;   ///< of the 00 00 01 behind its last unit, or that of the stream
    std::uint32_t field_duration = 0;

    bool operator==(const placed_frame&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const placed_frame& f)
{
    return out << "frame " << f.start << " to " << f.end << " fields " << f.field_duration;
}

/// The frames of an Annex B stream behind which an end of stream unit follows.
inline std::vector<placed_frame> scan_whole(bytes stream, bool split_fields)
{
    const std::size_t size = stream.size();
    const bytes end = {0, 0, 0, 0, 1, brenik::h264_nal_unit_type_end_of_stream};
    stream.insert(stream.end(), end.begin(), end.end());
    bytes scratch(stream.size());
    std::vector<placed_frame> frames;
    h264_sps seq{};
    const unsigned char* const fence = stream.data() + stream.size();
    for (const unsigned char* at = stream.data();;) {
        h264_common_frame_scan_info info;
        bool updated = false;
        at = h264_common_frame_scan(info, updated, seq, at, fence, 0, scratch.data(), scratch.size(),
                                    split_fields ? h264_common_frame_scan_split_fields : 0U);
        if (info.complete == 0)
            return frames;
        frames.push_back({static_cast<std::size_t>(info.frame_start - stream.data()),
                          std::min(static_cast<std::size_t>(info.frame_end - stream.data()), size),
                          info.field_duration});
    }
}

/// What a frame finder makes of a stream.
class found_frames {
public:
    found_frames(const bytes& stream, brenik::h2645_common_nalfmt nalfmt, bool split_fields,
                 std::size_t piece = orv_h264::input_window::usual_piece)
        : finder(split_fields)
    {
        std::size_t at = 0;
        orv_h264::piece_feeder feeder(orv_h264::input_window(
                                          [&](unsigned char* out, std::size_t size) {
                                              const std::size_t count = std::min(size, stream.size() - at);
                                              std::copy_n(stream.data() + at, count, out);
                                              at += count;
                                              return count;
                                          },
                                          piece),
                                      nalfmt);
        for (;;) {
            const orv_h264::fed_item item = feeder.next();
            if (std::holds_alternative<orv_h264::end_of_input>(item))
                break;
            if (const auto* u = std::get_if<orv_h264::unit>(&item))
                add(*u, feeder.reader());
        }
        finder.finish();
        take();
    }

    /// The frames in `joined`.
    std::vector<placed_frame> placed() const
    {
        std::vector<placed_frame> all;
        for (const orv_h264::frame& f : frames) {
            const orv_h264::unit& last = f.units.back().where;
            all.push_back({position(f.units.front().where), position(last) + 3 + static_cast<std::size_t>(last.length),
                           f.field_duration});
        }
        return all;
    }

    std::vector<orv_h264::frame> frames;
    bytes joined;   ///< the units as Annex B, without anything between them
    bytes prefixed; ///< the units behind lengths of 4 bytes

private:
    void add(const orv_h264::unit& where, brenik::h264_nal_reader& reader)
    {
        const brenik::h264_nal nal = reader.nal;
        const orv_h264::walked_unit walked = walker.walk(reader);
        const std::span<const unsigned char> content(reader.nal_header, static_cast<std::size_t>(where.length));
        positions.emplace_back(where.offset, joined.size());
        joined.insert(joined.end(), {0, 0, 1});
        joined.insert(joined.end(), content.begin(), content.end());
        const bytes length = stream_builder().prefix(4, static_cast<std::uint32_t>(where.length));
        prefixed.insert(prefixed.end(), length.begin(), length.end());
        prefixed.insert(prefixed.end(), content.begin(), content.end());
        finder.add(orv_h264::make_frame_unit(where, nal, walked), content);
        take();
    }

    void take()
    {
        for (orv_h264::frame f; finder.next(f);)
            frames.push_back(f);
    }

    /// Of the unit's start code in `joined`.
    std::size_t position(const orv_h264::unit& where) const
    {
        return std::lower_bound(positions.begin(), positions.end(), std::pair{where.offset, std::size_t{0}})->second;
    }

    orv_h264::stream_walker walker;
    orv_h264::frame_finder finder;
    std::vector<std::pair<std::uint64_t, std::size_t>> positions;
};

} // namespace support
