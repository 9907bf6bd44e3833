#include "frame_finder.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr std::array<unsigned char, 3> start_code = {0, 0, 1};
constexpr unsigned char end_of_stream = brenik::h264_nal_unit_type_end_of_stream;

// What most frames are smaller than; and a stretch that is not worth a scan of its own.
constexpr std::size_t usual_scratch = std::size_t{64} * 1024;
constexpr std::size_t smallest_scan = std::size_t{32} * 1024;

// The scan reads SEI and sequence parameter sets to their ends. Of a slice it reads the header up to bottom_field_flag,
// 24 bytes with all codes as long as it takes them, 36 when they are full of escapes; of other units nothing.
constexpr std::size_t most_slice_bytes = 64;

std::size_t bytes_read(brenik::h264_nal_unit_type type, std::size_t length)
{
    const bool whole = type == brenik::h264_nal_unit_type_sei || type == brenik::h264_nal_unit_type_sps;
    return whole ? length : std::min(length, most_slice_bytes);
}

std::optional<std::uint32_t> find_recovery_point(const walked_unit& walked)
{
    const auto* const sei = std::get_if<walked_sei>(&walked.syntax);
    if (sei == nullptr)
        return {};
    for (const walked_message& message : sei->messages)
        if (const auto* point = std::get_if<brenik::h264_nal_sei_recovery_point>(&message.syntax))
            if (message.outcome.parsed && !message.outcome.truncated())
                return point->recovery_frame_cnt;
    return {};
}

bool is_primary_slice(brenik::h264_nal_unit_type type)
{
    return type == brenik::h264_nal_unit_type_slice_non_idr || type == brenik::h264_nal_unit_type_slice_idr ||
           type == brenik::h264_nal_unit_type_slice_data_partition_a;
}

// The rate of the SPS that the frame's own slices name. The SPS that the scan keeps is another one at times: it has the
// rate of an earlier SPS where the latest tells none, and is that of the next frame when the scan had to look ahead.
std::optional<double> seconds_of(const frame& f)
{
    for (const frame_unit& u : f.units)
        if (u.rate)
            return static_cast<double>(f.field_duration * u.rate->denominator) / static_cast<double>(u.rate->numerator);
    return {};
}

} // namespace

frame_unit make_frame_unit(const unit& where, brenik::h264_nal nal, const walked_unit& walked)
{
    frame_unit made;
    made.where = where;
    made.nal = nal;
    made.recovery_frame_cnt = find_recovery_point(walked);
    const auto* const slice = std::get_if<brenik::h264_nal_slice_header>(&walked.syntax);
    if (slice != nullptr && walked.sps != nullptr)
        made.rate = field_rate(*walked.sps);
    if (slice != nullptr && is_primary_slice(nal.nal_unit_type) && walked.outcome.parsed &&
        !walked.outcome.truncated()) {
        made.slice_type = slice->getSliceType();
        made.begins_picture = begins_picture(*slice);
        made.field = slice->field_pic_flag;
    }
    return made;
}

std::string describe_cut(const frame& f)
{
    return fmt::format("frame without an end in {} bytes and {} units, cut there", f.size, f.units.size());
}

std::uint64_t coded_pictures(const frame& f)
{
    return static_cast<std::uint64_t>(
        std::count_if(f.units.begin(), f.units.end(), [](const frame_unit& u) { return u.begins_picture; }));
}

bool has_slice(const frame& f)
{
    return std::any_of(f.units.begin(), f.units.end(),
                       [](const frame_unit& u) { return is_primary_slice(u.nal.nal_unit_type); });
}

std::uint64_t shown_pictures(const frame& f)
{
    const auto fields = static_cast<std::uint64_t>(
        std::count_if(f.units.begin(), f.units.end(), [](const frame_unit& u) { return u.begins_picture && u.field; }));
    return std::max<std::uint64_t>(coded_pictures(f) - fields + (fields + 1) / 2, has_slice(f) ? 1 : 0);
}

bool has_idr(const frame& f)
{
    return std::any_of(f.units.begin(), f.units.end(),
                       [](const frame_unit& u) { return u.nal.nal_unit_type == brenik::h264_nal_unit_type_slice_idr; });
}

std::optional<std::uint32_t> recovery_frame_cnt(const frame& f)
{
    for (const frame_unit& u : f.units)
        if (u.recovery_frame_cnt)
            return u.recovery_frame_cnt;
    return {};
}

bool is_key(const frame& f)
{
    return has_idr(f) || recovery_frame_cnt(f).has_value();
}

void frame_finder::add(const frame_unit& added, std::span<const unsigned char> bytes)
{
    compact();
    units.push_back({stream.size(), added});
    stream.insert(stream.end(), start_code.begin(), start_code.end());
    const std::span<const unsigned char> head = bytes.first(bytes_read(added.nal.nal_unit_type, bytes.size()));
    stream.insert(stream.end(), head.begin(), head.end());
    held_bytes += start_code.size() + bytes.size();
}

// As a decoder does, the scan takes the end of the stream as the end of its last frame.
void frame_finder::finish()
{
    stream.insert(stream.end(), start_code.begin(), start_code.end());
    stream.push_back(end_of_stream);
    held_bytes += start_code.size() + 1;
    finished = true;
}

bool frame_finder::next(frame& found)
{
    if (!finished && !is_full() && held_bytes < worth_scanning)
        return false;
    scratch.resize(std::max(scratch.size(), usual_scratch));
    for (;;) {
        const unsigned char* const start = stream.data() + first_byte;
        const unsigned char* const fence = stream.data() + stream.size();
        h264_common_frame_scan_info info;
        h264_sps scanned_sps = sps;
        bool sps_updated = false;
        const unsigned char* const behind = h264_common_frame_scan(info, sps_updated, scanned_sps, start, fence, 0,
                                                                   scratch.data(), scratch.size(), flags);
        if (info.complete != 0) {
            sps = scanned_sps;
            drop(static_cast<std::size_t>(info.frame_start - stream.data()));
            found = {};
            found.field_duration = info.field_duration;
            take(static_cast<std::size_t>(info.frame_end - stream.data()), found);
            found.last = finished && held_units() == 0;
            worth_scanning = 1;
            return true;
        }
        if (info.need_more_data == 0) {
            if (grow_scratch())
                continue;
            drop(stream.size()); // no unit that may begin a frame
            return false;
        }
        drop(static_cast<std::size_t>(behind - stream.data()));
        if (is_full()) {
            found = {};
            found.field_duration = info.field_duration;
            found.cut = true;
            sps = scanned_sps;
            take(stream.size(), found);
            return true;
        }
        worth_scanning = std::max(2 * held_bytes, smallest_scan);
        return false;
    }
}

bool frame_finder::is_full() const noexcept
{
    return held_bytes >= most_bytes || held_units() >= most_units;
}

/// Makes room for the largest unit; false when there is.
bool frame_finder::grow_scratch()
{
    std::size_t largest = 0;
    for (std::size_t i = first_unit; i < units.size(); ++i)
        largest = std::max(largest, bytes_read(units[i].what.nal.nal_unit_type, units[i].what.where.length));
    if (scratch.size() >= largest)
        return false;
    scratch.resize(largest);
    return true;
}

/// Moves the units before `position` to the frame, whose duration is known.
void frame_finder::take(std::size_t position, frame& found)
{
    for (; first_unit < units.size() && units[first_unit].position < position; ++first_unit) {
        found.units.push_back(units[first_unit].what);
        held_bytes -= start_code.size() + static_cast<std::size_t>(units[first_unit].what.where.length);
    }
    first_byte = position;
    if (found.units.empty())
        return;
    const unit& last_unit = found.units.back().where;
    found.offset = found.units.front().where.offset;
    found.size = last_unit.offset + last_unit.framing_size + last_unit.length - found.offset;
    found.seconds = seconds_of(found);
}

void frame_finder::drop(std::size_t position)
{
    frame dropped;
    take(position, dropped);
}

// Bytes move to the front only when at least as many were taken, so that each moves once on average.
void frame_finder::compact()
{
    if (first_byte < stream.size() - first_byte || first_byte == 0)
        return;
    stream.erase(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(first_byte));
    units.erase(units.begin(), units.begin() + static_cast<std::ptrdiff_t>(first_unit));
    for (held_unit& held : units)
        held.position -= first_byte;
    first_byte = 0;
    first_unit = 0;
}

} // namespace orv_h264
