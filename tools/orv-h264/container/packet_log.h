// Where the bytes of a stream lie in its file: the packets of a container that the stream was put together from. A
// stream that is its file itself has none, and every offset is the file's.
#pragma once

#include "container/demuxer.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

namespace orv_h264 {

/// A packet without its bytes.
struct logged_packet {
    std::uint64_t number = 0;   ///< in the track, from 0
    std::uint64_t begin = 0;    ///< in the stream
    std::uint64_t size = 0;     ///< bytes
    std::uint64_t position = 0; ///< in the file: of its first byte, or else of what carries it
    bool whole = false;         ///< it lies in one piece there, from its first byte on
    std::optional<std::int64_t> pts;
    std::optional<std::int64_t> dts;
    std::int64_t duration = 0;
    std::optional<bool> key;
};

class packet_log {
public:
    /// So many are kept; what asks later than that gets the oldest.
    static constexpr std::size_t most_packets = std::size_t{272} * 1024;

    /// Offsets from here on are those of the parameter sets of the record, which the stream does not hold.
    static constexpr std::uint64_t record_begin = std::uint64_t{1} << 63U;

    /// The next packet; `begin` goes up. Throws std::bad_alloc.
    void add(const logged_packet& packet);
    /// Where the record lies, if that is known.
    void set_record(std::optional<std::uint64_t> position) { record = position; }
    std::optional<std::uint64_t> record_place() const noexcept { return record; }

    /// The packet that holds the byte of the stream; null in a stream that is its file, and for the record.
    const logged_packet* find(std::uint64_t offset) const;

    /// The byte is known by its own place in the file: not by its packet's.
    bool is_own(std::uint64_t offset) const { return is_file(offset) || is_in_whole_packet(offset); }

    /// For a person: the byte's own place in the file, or its packet's.
    std::uint64_t shown(std::uint64_t offset) const { return is_file(offset) ? offset : place_of(offset); }

    /// To count on from: the byte's own place in the file, or else in the stream.
    std::uint64_t counted(std::uint64_t offset) const { return is_own(offset) ? shown(offset) : offset; }

private:
    /// The stream is its file: asked for several times a unit.
    bool is_file(std::uint64_t offset) const { return packets.empty() && offset < record_begin; }
    bool is_in_whole_packet(std::uint64_t offset) const;
    std::uint64_t place_of(std::uint64_t offset) const;

    std::deque<logged_packet> packets;
    std::optional<std::uint64_t> record = 0;
};

} // namespace orv_h264
