#include "stream_summary.h"

#include "row_facts.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orv_h264 {

namespace {

constexpr std::uint32_t parameter_set_types = 1U << 7 | 1U << 8 | 1U << 13 | 1U << 15 | 1U << 16;

/// Slices of all kinds and filler data: what VCL HRD parameters are about, H.264 C.1.
bool is_of_vcl_hrd(unsigned nal_unit_type)
{
    return (nal_unit_type >= 1 && nal_unit_type <= 5) || nal_unit_type == 12 ||
           (nal_unit_type >= 19 && nal_unit_type <= 21);
}

std::uint64_t vcl_bytes_of(const h264::access_unit& unit)
{
    std::uint64_t bytes = 0;
    for (const h264::access_unit_part& part : unit.parts)
        bytes += is_of_vcl_hrd(part.header.nal_unit_type) ? part.place.size : 0;
    return bytes;
}

} // namespace

std::optional<std::uint64_t> bit_rate_of(const layer_summary& layer, const frame_totals& frames)
{
    const double seconds = frames.bit_rate().seconds();
    if (seconds <= 0 || frames.timed_frames() < frames.frames())
        return {};
    return static_cast<std::uint64_t>(std::llround(8.0 * static_cast<double>(layer.bytes) / seconds));
}

void stream_survey::unit(const h264::split_unit& unit)
{
    const unsigned type = unit.bytes[0] & 0x1FU;
    stream_summary::type_count& count = summary.types[type];
    sets_came = sets_came || (parameter_set_types >> type & 1) != 0;
    ++count.units;
    count.bytes += unit.framing_size + unit.size;
    rows.unit(unit);
}

void stream_survey::gap(const h264::split_gap& gap)
{
    rows.gap(gap);
}

void stream_survey::access_unit_came(const h264::access_unit& unit)
{
    sets_came = sets_came || std::any_of(unit.parts.begin(), unit.parts.end(), [](const h264::access_unit_part& part) {
                    return part.role == h264::unit_role::parameter_set;
                });
    add_sets(unit);
    summary.sei.add(unit);
    summary.layers.add(unit, rows.sets());
    find_encoder(unit);
    add_slices(unit);
    if (next != nullptr)
        next->access_unit_came(unit);
    if (unit.header != nullptr)
        add_picture(unit);
}

// Without a picture every parameter set makes a sequence; with one, those that pictures use.
void stream_survey::add_sets(const h264::access_unit& unit)
{
    if (any_picture)
        return;
    for (const h264::access_unit_part& part : unit.parts)
        if (part.content != nullptr && !part.failure)
            if (const auto* const sps = std::get_if<h264::seq_parameter_set_rbsp>(&part.content->rbsp))
                find_sequence(part.place.offset, sps->seq_parameter_set_data);
}

void stream_survey::add_picture(const h264::access_unit& unit)
{
    if (unit.sps != nullptr) {
        if (!any_picture) {
            summary.sequences.clear();
            summary.further_sequences = 0;
            last_further.reset();
        }
        any_picture = true;
        find_sequence_of(unit);
        if (current < summary.sequences.size())
            summary.sequences[current].add(unit, rows.sets());
    }
    coded.push_back({unit.sps != nullptr ? current : stream_summary::most_sequences, vcl_bytes_of(unit)});
}

// An SPS is compared with the one before where it may be another: it stands elsewhere, or parameter sets have come,
// into the splitter or out of the stream, which keeps units back.
void stream_survey::find_sequence_of(const h264::access_unit& unit)
{
    if (unit.sps == latest_sps && !sets_came)
        return;
    latest_sps = unit.sps;
    sets_came = false;
    const auto first = std::find_if(unit.parts.begin(), unit.parts.end(), [](const h264::access_unit_part& part) {
        return part.role == h264::unit_role::primary;
    });
    if (current >= summary.sequences.size() || !same_sequence(summary.sequences[current].sps, *unit.sps))
        find_sequence(first->place.offset, *unit.sps);
}

void stream_survey::find_encoder(const h264::access_unit& unit)
{
    for (const h264::access_unit_part& part : unit.parts) {
        const auto* const sei = part.content != nullptr ? std::get_if<h264::sei_rbsp>(&part.content->rbsp) : nullptr;
        for (std::size_t i = 0; sei != nullptr && i < sei->sei_messages.size() && !summary.encoder; ++i)
            if (const auto* const data = std::get_if<h264::user_data_unregistered>(&sei->sei_messages[i].payload))
                summary.encoder = encoder_of(*data);
    }
}

void stream_survey::add_slices(const h264::access_unit& unit)
{
    for (const h264::access_unit_part& part : unit.parts)
        if (const auto kind = unit_of(part).slice) {
            stream_summary::type_count& count = summary.slices[static_cast<std::size_t>(*kind)];
            ++count.units;
            count.bytes += part.place.size;
        }
}

/// Makes the sequence of `sps` the current one, a new one if need be; none when there are too many.
void stream_survey::find_sequence(std::uint64_t offset, const h264::seq_parameter_set_data& sps)
{
    std::vector<sequence_summary>& list = summary.sequences;
    const auto found =
        std::find_if(list.begin(), list.end(), [&](const sequence_summary& s) { return same_sequence(s.sps, sps); });
    current = static_cast<std::size_t>(found - list.begin());
    if (found != list.end())
        return;
    if (list.size() == stream_summary::most_sequences)
        return count_further(sps);
    sequence_summary& added = list.emplace_back();
    added.offset = offset;
    added.sps = sps;
}

void stream_survey::count_further(const h264::seq_parameter_set_data& sps)
{
    if (last_further && same_sequence(*last_further, sps))
        return;
    last_further = sps;
    ++summary.further_sequences;
}

void stream_survey::row(picture_row&& row)
{
    coded_picture of = {stream_summary::most_sequences, 0};
    for (std::uint32_t i = 0; i < row.coded_pictures && !coded.empty(); ++i) {
        of = {coded.front().sequence, of.vcl_bytes + coded.front().vcl_bytes};
        coded.pop_front();
    }
    for (const row_problem& found : row.problems)
        count_problem(found);
    summary.frames.add(row);
    if (summary.container)
        summary.container->add(row);
    summary.groups.add(row);
    add_seconds(row, of);
    const std::uint32_t depth = reordering.add(row);
    if (of.sequence < summary.sequences.size()) {
        sequence_summary& sequence = summary.sequences[of.sequence];
        sequence.reorder_depth = std::max(sequence.reorder_depth, depth);
        if (sequence.pictures++ == 0)
            sequence.offset = row.offset;
    }
    if (next != nullptr)
        next->row(std::move(row));
}

// Start codes and zero bytes belong to the bit stream of a NAL HRD (clause C.1); length prefixes do not.
void stream_survey::add_seconds(const picture_row& row, const coded_picture& of)
{
    const std::uint64_t nal_bytes = row.unit_bytes + row.padding - prefix_size * row.units.size();
    sequence_summary* const sequence =
        of.sequence < summary.sequences.size() ? &summary.sequences[of.sequence] : nullptr;
    nal_rate.add(nal_bytes, row.duration, [&](double bits, std::uint64_t count) {
        if (sequence != nullptr)
            sequence->nal_seconds.add(sequence->sps.vui_parameters.nal_hrd_parameters, bits, count);
    });
    vcl_rate.add(of.vcl_bytes, row.duration, [&](double bits, std::uint64_t count) {
        if (sequence != nullptr)
            sequence->vcl_seconds.add(sequence->sps.vui_parameters.vcl_hrd_parameters, bits, count);
    });
}

void stream_survey::problem(const row_problem& problem)
{
    count_problem(problem);
    if (next != nullptr)
        next->problem(problem);
}

void stream_survey::count_problem(const row_problem& problem)
{
    (problem.finding ? summary.findings : summary.problems).add(problem.offset, problem.message, problem.bytes);
}

} // namespace orv_h264
