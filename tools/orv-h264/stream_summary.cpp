#include "stream_summary.h"

#include "same_sequence.h"

#include <algorithm>
#include <utility>

namespace orv_h264 {

namespace {

/// The name and version at the start of what an encoder writes of itself: two parts of those between " - ".
std::string encoder_name(const brenik::h264_nal_sei_user_data_unreg& user_data)
{
    constexpr std::size_t longest = 100;
    const std::string_view bytes(reinterpret_cast<const char*>(user_data.payload),
                                 brenik::range_size(user_data.payload, user_data.payload_fence));
    const auto* const end = std::find_if_not(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; });
    const std::string_view text = bytes.substr(0, static_cast<std::size_t>(end - bytes.begin()));
    const std::size_t first_dash = text.find(" - ");
    const std::size_t second_dash =
        first_dash == std::string_view::npos ? first_dash : text.find(" - ", first_dash + 1);
    return std::string(text.substr(0, std::min(second_dash, longest)));
}

bool is_read(const walked_message& message)
{
    return message.outcome.parsed && !message.truncated;
}

} // namespace

void stream_summary::add(const unit& where, brenik::h264_nal nal, const walked_unit& walked)
{
    type_count& count = types[nal.nal_unit_type];
    ++count.units;
    count.bytes += where.framing_size + where.length;
    for (const std::string& problem : problems_of(walked))
        problems.add(where.offset, problem);
    if (std::holds_alternative<brenik::h264_nal_sps>(walked.syntax))
        add_sps(where.offset, walked);
    else if (std::holds_alternative<brenik::h264_nal_slice_header>(walked.syntax))
        add_slice(where.offset, walked);
    else if (const auto* const sei = std::get_if<walked_sei>(&walked.syntax))
        add_sei(*sei);
}

void stream_summary::add(const frame& f)
{
    frames.add(f);
}

void stream_summary::add_sps(std::uint64_t offset, const walked_unit& walked)
{
    if (!walked.outcome.parsed)
        return;
    sps_changed = true;
    if (!any_picture)
        find_sequence(offset, std::get<brenik::h264_nal_sps>(walked.syntax));
}

void stream_summary::add_slice(std::uint64_t offset, const walked_unit& walked)
{
    if (walked.sps == nullptr || !walked.outcome.parsed)
        return;
    if (!any_picture) { // parameter sets that no picture used do not count
        sequences.clear();
        further_sequences = 0;
        last_further.reset();
    }
    any_picture = true;
    if (sps_changed || sequences.empty() || walked.sps->seq_parameter_set_id != current_id)
        find_sequence(offset, *walked.sps);
    sps_changed = false;
    const auto picture_timing = std::exchange(timing, std::nullopt);
    if (current == sequences.size())
        return;
    if (picture_timing)
        add_pic_timing(sequences[current], *picture_timing);
    orv_h264::add_slice(sequences[current], std::get<brenik::h264_nal_slice_header>(walked.syntax), *walked.pps);
}

void stream_summary::add_sei(const walked_sei& sei)
{
    for (const walked_message& message : sei.messages) {
        if (!is_read(message))
            continue;
        if (const auto* const pic_timing = std::get_if<walked_pic_timing>(&message.syntax))
            timing = pic_timing->standard ? pic_timing->standard->read : pic_timing->read;
        const auto* const user_data = std::get_if<brenik::h264_nal_sei_user_data_unreg>(&message.syntax);
        if (user_data != nullptr && encoder.empty())
            encoder = encoder_name(*user_data);
    }
}

/// Makes the sequence of `sps` the current one, a new one if need be; none when there are too many.
void stream_summary::find_sequence(std::uint64_t offset, const brenik::h264_nal_sps& sps)
{
    const auto found = std::find_if(sequences.begin(), sequences.end(),
                                    [&](const sequence_summary& sequence) { return same_sequence(sequence.sps, sps); });
    current_id = sps.seq_parameter_set_id;
    current = static_cast<std::size_t>(found - sequences.begin());
    if (found != sequences.end())
        return;
    if (sequences.size() == most_sequences)
        return count_further(sps);
    sequence_summary& added = sequences.emplace_back();
    added.offset = offset;
    added.sps = sps;
}

void stream_summary::count_further(const brenik::h264_nal_sps& sps)
{
    if (last_further && same_sequence(*last_further, sps))
        return;
    last_further = sps;
    ++further_sequences;
}

} // namespace orv_h264
