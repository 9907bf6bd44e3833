// The H.264 track of a container as a stream: its packets end to end. Its units are those of the track; where they lie
// in the file and when they are shown is in the log of the packets.
#pragma once

#include "container/byte_finder.h"
#include "container/demuxer.h"
#include "container/edit_list.h"
#include "container/packet_log.h"
#include "input_file.h"
#include "input_window.h"
#include "problem_list.h"

#include <orv-utils-v4/h264_syntax/decoder_configuration.h>
#include <orv-utils-v4/h264_syntax/parameter_set_store.h>
#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// What is wrong with a container, or odd about it, in a line.
struct container_remark {
    std::uint64_t offset = 0;
    std::string text;
    bool is_problem = false;
};

class container_stream {
public:
    /// Takes the track with this number, or the first one of H.264. Throws refusal when there is none, the file cannot
    /// be opened as what it is, or there is nobody to open it (null).
    container_stream(input_file& in, input_window& window, container_kind which, std::optional<unsigned> number,
                     std::uint64_t most_unit_bytes, open_container_function* open_container = load_demuxer());

    container_kind kind() const noexcept { return format; }
    const std::vector<container_track>& tracks() const noexcept { return all_tracks; }
    const container_track& track() const noexcept { return all_tracks[chosen]; }
    h264::framing framing() const noexcept { return frames; }
    /// Units have offsets of their own in the file; else they are known by those of their packets.
    bool has_own_offsets() const noexcept { return own_offsets; }

    /// The parameter sets of the record at the start, each behind its length of 2 bytes; none where there is no record.
    const std::vector<h264::split_unit>& record_sets() const noexcept { return sets; }
    /// Where the record lies in the file, if that is known.
    std::optional<std::uint64_t> record_place() const noexcept { return log.record_place(); }
    /// Of an MP4 file.
    const edit_list& edits() const noexcept { return list_of_edits; }
    /// The bytes of the record; empty where there is none.
    std::span<const unsigned char> record() const noexcept { return record_bytes; }

    /// Gives the units and gaps of the next packet. False behind the last.
    bool read_packet(h264::split_sink& to);
    /// There is no further packet: gives what is left.
    void finish(h264::split_sink& to);

    /// Bytes of the stream that were read.
    std::uint64_t bytes() const noexcept { return stream_end; }
    const packet_log& packets() const noexcept { return log; }

    /// The problems and findings so far.
    std::vector<container_remark> remarks() const;

    problem_list problems; ///< with which the container loses something
    problem_list findings; ///< what is odd about it

private:
    class packet_units;

    void open(open_container_function* open_container);
    void choose(std::optional<unsigned> number);
    bool next(container_packet& packet);
    void take_record(std::span<const unsigned char> bytes);
    void guess_framing();
    std::vector<h264::split_unit> read_sets(std::span<const unsigned char> bytes, std::uint64_t at);
    void find_record();
    const char* hint() const;
    void change_record(std::span<const unsigned char> bytes, logged_packet placed, h264::split_sink& to);
    logged_packet place(const container_packet& packet);
    void find(const container_packet& packet, logged_packet& placed);
    void compare(const h264::split_unit& unit);

    input_file& file;
    std::optional<std::uint64_t> file_size;
    container_kind format;
    std::unique_ptr<byte_source> bytes_of_file;
    std::unique_ptr<demuxer> source;
    std::vector<container_track> all_tracks;
    std::size_t chosen = 0;
    h264::framing frames = h264::framing::annex_b;
    bool own_offsets = false;
    std::uint64_t most_bytes;

    std::vector<unsigned char> record_bytes;
    std::vector<unsigned char> current_record; // it may change
    std::vector<h264::split_unit> sets;        // in record_bytes
    h264::parameter_set_store record_store;

    std::optional<container_packet> ahead; // that was read to tell the framing

    edit_list list_of_edits;
    packet_log log;
    byte_finder finder;
    std::uint64_t searched = 0; // of the file: up to the end of the packet before
    unsigned unfound = 0;
    h264::unit_splitter splitter;
    std::uint64_t packet_count = 0;
    std::uint64_t stream_end = 0;
};

} // namespace orv_h264
