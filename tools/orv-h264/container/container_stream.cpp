#include "container/container_stream.h"

#include "framing.h"
#include "record_file.h"
#include "stream_input.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

// Packets that were not found in the file, behind which none is looked for any more.
constexpr unsigned most_unfound = 8;

// A stream that is longer than its file so many times is not read further: its packets lie over one another.
constexpr std::uint64_t most_times_the_file = 64;

std::string list_of(const std::vector<container_track>& tracks)
{
    std::string text;
    for (const container_track& track : tracks)
        text += fmt::format("{}{} {} {}", text.empty() ? "track " : ", ", track.number, track.codec, track.media);
    return text.empty() ? "no track" : text;
}

/// A regular file is read anywhere, another one in order.
class opened_file final : public byte_source {
public:
    opened_file(const input_file& from, input_window& begin) : file(from), window(begin) {}

    std::size_t read(std::uint64_t from, unsigned char* out, std::size_t size) override
    {
        if (file.is_seekable())
            return file.read_at(from, out, size);
        window.fill(1);
        const std::size_t count = std::min(size, window.size());
        std::copy_n(window.start(), count, out);
        window.drop(count);
        return count;
    }
    std::optional<std::uint64_t> size() const override { return file.is_seekable() ? file.size() : std::nullopt; }

private:
    const input_file& file;
    input_window& window; // what was read already stands in it
};

class unit_list final : public h264::split_sink {
public:
    void unit(const h264::split_unit& unit) override { units.push_back(unit); }
    void gap(const h264::split_gap&) override {}

    std::vector<h264::split_unit> units;
};

/// The parameter sets of a record, where they lie in it; the offsets count from its first byte.
std::vector<h264::split_unit> sets_of(const h264::AVCDecoderConfigurationRecord& record, const unsigned char* begin)
{
    std::vector<h264::split_unit> sets;
    const auto add = [&](const auto& list) {
        for (const h264::unit_view& set : list)
            if (set.size != 0)
                sets.push_back({set.bytes, set.size, static_cast<std::uint64_t>(set.bytes - begin), 2, set.size});
    };
    add(record.sequenceParameterSetNALUnit);
    add(record.pictureParameterSetNALUnit);
    add(record.sequenceParameterSetExtNALUnit);
    return sets;
}

/// ISO/IEC 13818-1 2.4.3.2; with 4 bytes more on discs, and 16 in broadcasts.
bool holds_whole_packets(std::uint64_t size)
{
    return size % 188 == 0 || size % 192 == 0 || size % 204 == 0;
}

bool is_record(std::span<const unsigned char> bytes)
{
    return !bytes.empty() && bytes[0] == 1;
}

bool holds_parameter_set(const h264::split_unit& unit)
{
    const unsigned type = unit.bytes[0] & 0x1FU;
    return type == 7 || type == 8 || type == 13 || type == 15;
}

bool begins_with_start_code(std::span<const unsigned char> bytes)
{
    const std::size_t zeros = bytes.size() > 2 && bytes[2] == 0 ? 3 : 2;
    return bytes.size() > zeros && bytes[0] == 0 && bytes[1] == 0 && bytes[zeros] == 1;
}

} // namespace

container_stream::container_stream(input_file& in, input_window& window, container_kind which,
                                   std::optional<unsigned> number, std::uint64_t most_unit_bytes,
                                   open_container_function* open_container)
    : file(in),
      file_size(in.size()),
      format(which),
      bytes_of_file(std::make_unique<opened_file>(in, window)),
      most_bytes(most_unit_bytes),
      finder(in),
      splitter(h264::framing::annex_b, static_cast<std::size_t>(most_unit_bytes))
{
    open(open_container);
    choose(number);
    take_record(source->record());
    if (!is_record(record_bytes) && keeps_packets_whole(format))
        guess_framing();
    if (format == container_kind::mp4 && file.is_seekable())
        list_of_edits = read_edit_list(file, track().id);
    own_offsets = frames != h264::framing::annex_b &&
                  (format == container_kind::mp4 || (keeps_packets_whole(format) && file.is_seekable()));
}

void container_stream::open(open_container_function* open_container)
{
    if (open_container == nullptr) {
        const std::string why = why_no_demuxer();
        throw refusal(exit_not_supported,
                      fmt::format("{}: this is {}, and there is no libavformat here to read it with{}; "
                                  "take the H.264 stream out of it first",
                                  file.name(), name_of(format), why.empty() ? "" : fmt::format(" ({})", why)));
    }
    source.reset(open_container(*bytes_of_file, format, most_bytes));
    if (!source->is_open())
        throw refusal(exit_broken_stream, fmt::format("{}: offset {}: {} that cannot be opened: {}", file.name(),
                                                      source->position(), name_of(format), source->failure()));
}

void container_stream::choose(std::optional<unsigned> number)
{
    const bool found = source->choose(number);
    all_tracks = source->tracks();
    if (!found && number)
        throw refusal(exit_usage_or_io,
                      fmt::format("{}: there is no track {} ({})", file.name(), *number, list_of(all_tracks)));
    const auto first = std::find_if(all_tracks.begin(), all_tracks.end(), [&](const container_track& track) {
        return number ? track.number == *number : track.h264;
    });
    if (!found || !first->h264)
        throw refusal(exit_not_supported,
                      fmt::format("{}: this is {} without H.264 in {} ({})", file.name(), name_of(format),
                                  number ? "that track" : "any track", list_of(all_tracks)));
    chosen = static_cast<std::size_t>(first - all_tracks.begin());
}

void container_stream::take_record(std::span<const unsigned char> bytes)
{
    record_bytes.assign(bytes.begin(), bytes.end());
    current_record = record_bytes;
    find_record();
    if (is_record(bytes)) {
        sets = read_sets(record_bytes, log.shown(packet_log::record_begin));
    } else {
        unit_list units;
        h264::unit_splitter apart(h264::framing::annex_b);
        apart.push(record_bytes.data(), record_bytes.size(), units);
        apart.flush(units);
        for (h264::split_unit& unit : units.units) // the splitter may have had it in a buffer of its own
            unit.bytes = record_bytes.data() + unit.offset;
        std::erase_if(units.units, [](const h264::split_unit& u) { return !holds_parameter_set(u); });
        sets = std::move(units.units);
    }
    for (h264::split_unit& set : sets) {
        set.offset += packet_log::record_begin;
        record_store.push(h264::unit_view{set.bytes, set.size});
    }
}

/// These containers have a record. Where it is not there or damaged, packets have lengths of 4 bytes nearly everywhere;
/// some writers put start codes into them.
void container_stream::guess_framing()
{
    container_packet first;
    if (!source->next(first))
        return;
    ahead = first;
    if (begins_with_start_code(first.bytes))
        return;
    frames = h264::framing::length_4;
    problems.add(log.shown(packet_log::record_begin),
                 "no decoder configuration record that can be read: lengths of 4 bytes are assumed");
}

/// Takes the size of the length prefixes over.
std::vector<h264::split_unit> container_stream::read_sets(std::span<const unsigned char> bytes, std::uint64_t at)
{
    h264::AVCDecoderConfigurationRecord record;
    const h264::configuration_outcome result = h264::read(record, bytes.data(), bytes.size());
    frames = static_cast<h264::framing>(record.lengthSizeMinusOne + 1);
    if (!result.sound())
        problems.add(at, "decoder configuration record: " + describe(result));
    return sets_of(record, bytes.data());
}

/// It was read to open the file, and stands there as it is.
void container_stream::find_record()
{
    std::optional<std::uint64_t> place;
    if (file.is_seekable() && !record_bytes.empty())
        for (const file_stretch& read : source->head())
            if (!place && read.behind - read.first >= record_bytes.size())
                place = finder.find(record_bytes, read.first, read.behind - read.first - record_bytes.size());
    log.set_record(place);
}

/// Hands the units of a packet on with the offsets of their stream, and compares parameter sets with the record's.
class container_stream::packet_units final : public h264::split_sink {
public:
    packet_units(container_stream& of, std::uint64_t begin, h264::split_sink& to) : stream(of), shift(begin), next(to)
    {
    }

    void unit(const h264::split_unit& unit) override
    {
        h264::split_unit shifted = unit;
        shifted.offset += shift;
        stream.compare(shifted);
        next.unit(shifted);
    }
    void gap(const h264::split_gap& gap) override
    {
        h264::split_gap shifted = gap;
        shifted.offset += shift;
        next.gap(shifted);
    }

private:
    container_stream& stream;
    std::uint64_t shift;
    h264::split_sink& next;
};

bool container_stream::next(container_packet& packet)
{
    if (!ahead)
        return source->next(packet);
    packet = *ahead;
    ahead.reset();
    return true;
}

bool container_stream::read_packet(h264::split_sink& to)
{
    if (file_size && stream_end / most_times_the_file > *file_size) {
        problems.add(log.shown(stream_end - 1),
                     fmt::format("packets are {} times as long as the file and more: they lie over one "
                                 "another, and reading ends here",
                                 most_times_the_file));
        return false;
    }
    container_packet packet;
    const bool any = next(packet);
    for (const container_message& message : source->take_messages())
        problems.add(message.offset, "libavformat: " + message.text);
    if (!any)
        return false;
    logged_packet placed = place(packet);
    if (!packet.record.empty() && frames != h264::framing::annex_b)
        change_record(packet.record, placed, to);
    placed.begin = stream_end;
    log.add(placed);
    stream_end += placed.size;
    if (packet.damaged)
        problems.add(placed.position, "packet that is not whole in the file");
    if (frames == h264::framing::annex_b) {
        splitter.push(packet.bytes.data(), packet.bytes.size(), to);
        return true;
    }
    packet_units units(*this, placed.begin, to);
    h264::unit_splitter apart(frames, static_cast<std::size_t>(most_bytes));
    apart.push(packet.bytes.data(), packet.bytes.size(), units);
    apart.flush(units);
    return true;
}

void container_stream::finish(h264::split_sink& to)
{
    if (frames == h264::framing::annex_b)
        splitter.flush(to);
    if (const std::string why = source->failure(); !why.empty())
        problems.add(source->position(), "the container cannot be read further: " + why + hint());
    else if (const std::uint64_t missing = source->missing(); missing != 0)
        problems.add(source->position(), fmt::format("the container announces {} further packets", missing));
    if (format == container_kind::transport_stream && file.is_seekable() && !holds_whole_packets(*file.size()))
        problems.add(*file.size(), "the file begins or ends inside a packet of the transport stream");
}

/// The usual reason why an MP4 file cannot be read in order.
const char* container_stream::hint() const
{
    return format == container_kind::mp4 && !file.is_seekable() && packet_count == 0
               ? "; its tables (moov) may lie behind the media data, which cannot be read again here: give it as a file"
               : "";
}

std::vector<container_remark> container_stream::remarks() const
{
    std::vector<container_remark> all;
    for (const bool is_problem : {false, true})
        for (const problem_kind& kind : (is_problem ? problems : findings).kinds())
            all.push_back({kind.first_offset, describe_without_offset(kind), is_problem});
    return all;
}

logged_packet container_stream::place(const container_packet& packet)
{
    logged_packet placed;
    placed.number = packet_count++;
    placed.size = packet.bytes.size();
    placed.position = packet.position.value_or(searched);
    placed.whole = own_offsets && format == container_kind::mp4 && packet.position;
    placed.pts = packet.pts;
    placed.dts = packet.dts;
    placed.duration = packet.duration;
    placed.key = packet.key;
    if (own_offsets && !placed.whole)
        find(packet, placed);
    return placed;
}

/// The position is that of what the packet lies in.
void container_stream::find(const container_packet& packet, logged_packet& placed)
{
    std::optional<std::uint64_t> found;
    if (unfound < most_unfound)
        found = finder.find(packet.bytes, std::max(placed.position, searched));
    if (found) {
        placed.position = *found;
        placed.whole = true;
        searched = *found + placed.size;
        return;
    }
    ++unfound;
    findings.add(placed.position, "packet that does not lie in the file as it is: the offset is that of what holds it");
}

/// Another record holds from the packet on: its parameter sets come before it, as units of the stream.
void container_stream::change_record(std::span<const unsigned char> bytes, logged_packet placed, h264::split_sink& to)
{
    if (std::equal(bytes.begin(), bytes.end(), current_record.begin(), current_record.end()))
        return;
    current_record.assign(bytes.begin(), bytes.end());
    if (!is_record(bytes))
        return problems.add(placed.position, "another decoder configuration record, which cannot be read");
    findings.add(placed.position, "another decoder configuration record holds from here on");
    placed.begin = stream_end;
    placed.whole = false;
    log.add(placed);
    for (h264::split_unit set : read_sets(current_record, placed.position)) {
        set.offset = stream_end + set.framing_size;
        stream_end = set.offset + set.size;
        record_store.push(h264::unit_view{set.bytes, set.size});
        to.unit(set);
    }
}

void container_stream::compare(const h264::split_unit& unit)
{
    using h264::set_arrival;
    if (record_bytes.empty())
        return;
    const set_arrival arrival = record_store.push(h264::unit_view{unit.bytes, unit.size});
    if (arrival == set_arrival::no_memory)
        throw std::bad_alloc();
    if (arrival == set_arrival::changed)
        findings.add(log.shown(unit.offset),
                     "parameter set that differs from the one of its id in the record, or before");
    else if (arrival == set_arrival::added)
        findings.add(log.shown(unit.offset), "parameter set with an id that the record does not have");
}

} // namespace orv_h264
