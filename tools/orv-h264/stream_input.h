// A stream as the user names it: opened, its framing told or recognised, and fed in pieces; or the H.264 track of a
// container. Offsets count in the stream; packets() tells where that is in the file.
#pragma once

#include "container/container_stream.h"
#include "exit_status.h"
#include "input_file.h"
#include "recognise.h"

#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

struct stream_options {
    std::string path;                    ///< - is the standard input
    std::optional<h264::framing> format; ///< where the user tells it
    std::uint64_t max_unit = h264::unit_splitter::usual_most_bytes;
    std::optional<unsigned> track; ///< of a container, counted from 1; the first of H.264 where it is not told
    std::string name = {};         ///< for messages, where it is not that of the path
};

/// Why the tool does not go on; main() tells the user and ends with `status`.
class refusal : public std::runtime_error {
public:
    refusal(exit_status with, const std::string& reason) : std::runtime_error(reason), status(with) {}

    exit_status status;
};

/// Throws refusal when an input is of another format that is known. `advice` says what to do where that is wrong.
void refuse_other_formats(const std::string& name, const recognition& what, const char* advice = "");

class stream_input {
public:
    /// Throws std::system_error when the file cannot be read, and refusal when its framing is not told and it is
    /// recognised as something else, or not at all. An input that holds nothing passes for Annex B without a unit.
    explicit stream_input(const stream_options& options);

    const std::string& name() const noexcept { return file.name(); }
    /// Of the stream.
    std::uint64_t bytes_read() const noexcept { return container ? container->bytes() : file.bytes_read(); }
    /// Not a byte was there to read; a container holds some.
    bool is_empty() const noexcept { return !container && file.bytes_read() == 0; }
    /// The bytes of the whole input, where it is a file.
    std::optional<std::uint64_t> size() const { return file.size(); }
    h264::framing framing() const noexcept { return frames; }
    /// The user did not tell the framing, and it is not the usual Annex B: its length prefixes were recognised.
    bool framing_recognised() const noexcept { return recognised; }
    /// The largest unit that is read, bytes.
    std::uint64_t max_unit() const noexcept { return most; }

    /// The container that the stream is a track of; null where it is a file of its own.
    container_stream* in_container() const noexcept { return container.get(); }
    /// Where the bytes of the stream lie in the file.
    const packet_log& packets() const noexcept { return container ? container->packets() : no_packets; }
    /// The parameter sets that hold before the first unit, with offsets from packet_log::record_begin on.
    std::span<const h264::split_unit> record_sets() const noexcept;

    /// Gives every unit and gap to `to`, in order, until the input ends or there were enough of them: none behind.
    /// @return false when the input has ended without any unit
    bool read_units(
        h264::split_sink& to, const std::function<bool()>& enough = [] { return false; });

    /// Gives the units and gaps of the next piece of it, for who reads several inputs side by side.
    /// @return false when the input has ended, and all were given
    bool read_piece(h264::split_sink& to);

private:
    h264::framing find_framing(const stream_options& options);

    input_file file;
    input_window window;
    std::uint64_t most;
    packet_log no_packets;
    std::unique_ptr<container_stream> container;
    h264::framing frames;
    bool recognised;
    std::optional<h264::unit_splitter> splitter; // of what is no container
    bool ended = false;
};

} // namespace orv_h264
