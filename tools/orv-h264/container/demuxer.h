// A container taken apart: its tracks, and the packets of one of them as they stand in the file. libavformat does it in
// a module of its own, which is loaded when a container comes: the libraries that it brings take longer to load than
// most streams to read. Nothing is decoded or parsed further.
#pragma once

#include "container_kind.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orv_h264 {

/// The bytes of a file, for the demuxer.
class byte_source {
public:
    byte_source() = default;
    byte_source(const byte_source&) = delete;
    byte_source& operator=(const byte_source&) = delete;
    virtual ~byte_source() = default;

    /// Reads up to `size` bytes from `from` on: anywhere, or where it stands when it cannot be read anywhere. 0 at the
    /// end. May throw.
    virtual std::size_t read(std::uint64_t from, unsigned char* out, std::size_t size) = 0;
    /// The bytes of a file that can be read anywhere.
    virtual std::optional<std::uint64_t> size() const = 0;
};

/// Seconds; 0 in `denominator` where it is not told.
struct container_ratio {
    std::int64_t numerator = 0;
    std::int64_t denominator = 0;
};

struct container_track {
    unsigned number = 0; ///< in the order of the file, from 1
    std::int64_t id = 0; ///< as the container numbers it: track_ID, TrackNumber, PID
    std::string media;   ///< "video", "audio"
    std::string codec;   ///< a name for people: "h264", "aac"
    bool h264 = false;
    container_ratio tick; ///< seconds: the unit of its timestamps
};

struct container_packet {
    std::span<const unsigned char> bytes;  ///< good until the next packet
    std::span<const unsigned char> record; ///< the decoder configuration that holds from here on, if it is another
    std::optional<std::uint64_t> position; ///< in the file: its first byte, or that of what carries it
    std::optional<std::int64_t> pts;       ///< in ticks
    std::optional<std::int64_t> dts;
    std::int64_t duration = 0; ///< in ticks; 0 where it is not told
    std::optional<bool> key;   ///< marked as a place to begin, or not; not told by transport streams
    bool damaged = false;      ///< the file has not all of it
};

/// What the demuxer says on its way, in its own words.
struct container_message {
    std::uint64_t offset = 0; ///< of the file, up to where it has read
    std::string text;
};

/// Bytes of the file from `first` on, up to `behind`.
struct file_stretch {
    std::uint64_t first = 0;
    std::uint64_t behind = 0;
};

class demuxer {
public:
    demuxer() = default;
    demuxer(const demuxer&) = delete;
    demuxer& operator=(const demuxer&) = delete;
    virtual ~demuxer() = default;

    /// The file was opened as what it is; failure() says why not, and nothing else may be asked then.
    virtual bool is_open() const = 0;

    /// Those that are known: further ones may come with the first packets.
    virtual std::vector<container_track> tracks() const = 0;

    /// Gives the packets of this track alone from now on; without a number those of the first track of H.264. Reads on
    /// until it has come. False when there is none.
    virtual bool choose(std::optional<unsigned> number) = 0;

    /// The decoder configuration of the chosen track as it was at its first packet; may be empty.
    virtual std::span<const unsigned char> record() const = 0;

    /// The next packet of the chosen track. False at the end, or where the file cannot be read further.
    virtual bool next(container_packet& packet) = 0;

    /// Why opening or reading has ended before the end; "" where it has not.
    virtual std::string failure() const = 0;

    /// How many packets of the track the container announces that have not come; 0 where it does not say.
    virtual std::uint64_t missing() const = 0;

    /// Up to where the file was read.
    virtual std::uint64_t position() const = 0;

    /// What it has said since it was asked last.
    virtual std::vector<container_message> take_messages() = 0;

    /// What was read of the file to open it.
    virtual std::vector<file_stretch> head() const = 0;
};

/// What the module has: a demuxer that reads the file from its start. `most_bytes` is the size of the largest packet
/// that needs to be read.
using open_container_function = demuxer*(byte_source& file, container_kind kind, std::uint64_t most_bytes);
constexpr const char* open_container_name = "orv_h264_open_container";

/// Loads the module, if it is there.
/// @return null where it is not
open_container_function* load_demuxer();

/// What the loader says of the last one that was not loaded; "" where it says nothing.
std::string why_no_demuxer();

} // namespace orv_h264
