#include "stream_walker.h"

#include "pic_timing_lengths.h"

#include <iterator>

namespace orv_h264 {

namespace {

using bitreader = brenik::h2645_common_bitreader;

/// Runs `parse` on `bytes`, of which the first `trusted` are known for sure, and tells how it went.
template <typename Parse>
parse_outcome attempt(rbsp_bytes bytes, std::size_t trusted, Parse parse)
{
    parse_outcome outcome;
    bitreader br(bytes.data(), bytes.data() + bytes.size());
    try {
        outcome.parsed = parse(br);
    } catch (const brenik::h2645_common_malformed_code& malformed) {
        outcome.malformed_code = malformed.bit_position();
    }
    outcome.bits = 8 * trusted;
    outcome.bits_consumed = br.bits_consumed();
    return outcome;
}

template <typename Parse>
parse_outcome attempt(rbsp_bytes bytes, Parse parse)
{
    return attempt(bytes, bytes.size(), parse);
}

/// Stores `set`; of more than `most` sets, the one with the highest id goes.
template <typename T>
void store_bounded(brenik::h2645_common_base_store<T>& store, std::uint32_t id, const T& set, std::size_t most)
{
    store.insert_or_assign(id, set);
    if (store.size() > most)
        store.erase(std::prev(store.end())->first);
}

walked_unit walk_aud(rbsp_bytes rbsp)
{
    walked_unit unit;
    auto& aud = unit.syntax.emplace<brenik::h264_nal_aud>();
    unit.outcome = attempt(rbsp, [&](bitreader& br) { return aud.parse(br); });
    return unit;
}

/// The messages of an SEI RBSP, their payloads not yet parsed.
walked_sei split_messages(rbsp_bytes rbsp)
{
    walked_sei sei;
    sei.rest = rbsp;
    brenik::h264_nal_sei_reader reader(rbsp.data(), rbsp.data() + rbsp.size());
    while (reader.next_message()) {
        sei.more_messages = sei.messages.size() == stream_walker::most_messages;
        if (sei.more_messages)
            break;
        walked_message& message = sei.messages.emplace_back();
        message.type = reader.payloadType;
        message.stated_size = reader.payloadSize;
        message.truncated = reader.truncated;
        message.payload = {reader.payload, reader.payload_fence};
        sei.rest = {reader.payload_fence, reader.fence};
    }
    return sei;
}

/// Parses the payload as a `Payload`; `more` are further arguments of its parse.
template <typename Payload, typename... Arguments>
const Payload& read_payload(walked_message& message, const Arguments&... more)
{
    auto& payload = message.syntax.emplace<Payload>();
    message.outcome = attempt(message.payload, [&](bitreader& br) { return payload.parse(br, more...); });
    return payload;
}

void read_user_data(walked_message& message)
{
    const rbsp_bytes payload = message.payload;
    const auto& user_data =
        message.syntax.emplace<brenik::h264_nal_sei_user_data_unreg>(payload.data(), payload.data() + payload.size());
    message.outcome.parsed = user_data.uuid != nullptr;
}

/// The picture timing as the standard reads it; nothing when the library does the same.
std::optional<walked_pic_timing::standard_reading> standard_reading(const walked_message& message)
{
    const brenik::h264_nal_sei_pic_timing& read = std::get<walked_pic_timing>(message.syntax).read;
    walked_pic_timing::standard_reading standard;
    standard.outcome =
        attempt(message.payload, [&](bitreader& br) { return parse_by_standard(standard.read, br, message.sps->vui); });
    const bool same_delays = standard.read.cpb_removal_delay == read.cpb_removal_delay &&
                             standard.read.dpb_output_delay == read.dpb_output_delay;
    if (same_delays && standard.outcome.bits_consumed == message.outcome.bits_consumed)
        return {};
    return standard;
}

} // namespace

walked_unit stream_walker::walk(brenik::h264_nal_reader& reader)
{
    switch (reader.nal.nal_unit_type) {
    case brenik::h264_nal_unit_type_slice_non_idr:
    case brenik::h264_nal_unit_type_slice_data_partition_a:
    case brenik::h264_nal_unit_type_slice_idr:
    case brenik::h264_nal_unit_type_slice_auxiliary:
        return walk_slice(reader);
    case brenik::h264_nal_unit_type_sei:
        return walk_sei(decoder.whole(reader));
    case brenik::h264_nal_unit_type_sps:
        return walk_sps(decoder.whole(reader));
    case brenik::h264_nal_unit_type_pps:
        return walk_pps(decoder.whole(reader));
    case brenik::h264_nal_unit_type_aud:
        return walk_aud(decoder.whole(reader));
    default:
        return {};
    }
}

walked_unit stream_walker::walk_sps(rbsp_bytes rbsp)
{
    walked_unit unit;
    auto& sps = unit.syntax.emplace<brenik::h264_nal_sps>();
    unit.outcome = attempt(rbsp, [&](bitreader& br) { return sps.parse(br); });
    if (unit.outcome.parsed) {
        store_bounded(spss, sps.seq_parameter_set_id, sps, most_sps);
        if (!activated)
            spss.set_current_id(sps.seq_parameter_set_id);
    }
    return unit;
}

walked_unit stream_walker::walk_pps(rbsp_bytes rbsp)
{
    walked_unit unit;
    auto& pps = unit.syntax.emplace<brenik::h264_nal_pps>();
    unit.outcome = attempt(rbsp, [&](bitreader& br) { return pps.parse(br, spss); });
    unit.sps = spss.find(pps.seq_parameter_set_id);
    if (unit.outcome.parsed)
        store_bounded(ppss, pps.pic_parameter_set_id, pps, most_pps);
    return unit;
}

walked_unit stream_walker::walk_slice(brenik::h264_nal_reader& reader)
{
    constexpr std::size_t first_size = 96; // bytes; few slice headers are longer
    constexpr std::size_t growth = 4;
    for (std::size_t size = first_size;; size *= growth) {
        const rbsp_decoder::decoded head = decoder.head(reader, size);
        walked_unit unit;
        auto& slice = unit.syntax.emplace<brenik::h264_nal_slice_header>();
        unit.outcome =
            attempt(head.bytes, head.trusted(), [&](bitreader& br) { return slice.parse(br, spss, ppss, reader.nal); });
        unit.pps = ppss.find(slice.pic_parameter_set_id);
        unit.sps = unit.pps == nullptr ? nullptr : spss.find(unit.pps->seq_parameter_set_id);
        const bool may_need_more = !head.whole && (!unit.outcome.parsed || unit.outcome.truncated());
        if (may_need_more && size < most_slice_header)
            continue;
        unit.header_goes_on = may_need_more;
        if (unit.sps != nullptr && !unit.outcome.malformed_code)
            activate(unit.pps->seq_parameter_set_id);
        return unit;
    }
}

walked_unit stream_walker::walk_sei(rbsp_bytes rbsp)
{
    walked_unit unit;
    auto& sei = unit.syntax.emplace<walked_sei>(split_messages(rbsp));
    for (walked_message& message : sei.messages)
        walk_payload(message);
    return unit;
}

void stream_walker::walk_payload(walked_message& message)
{
    switch (message.type) {
    case brenik::h264_nal_sei_payload_type_buffering_period:
        walk_buffering_period(message);
        break;
    case brenik::h264_nal_sei_payload_type_pic_timing:
        walk_pic_timing(message);
        break;
    case brenik::h264_nal_sei_payload_type_pan_scan_rect:
        read_payload<brenik::h264_nal_sei_pan_scan_rect>(message);
        break;
    case brenik::h264_nal_sei_payload_type_user_data_unregistered:
        read_user_data(message);
        break;
    case brenik::h264_nal_sei_payload_type_recovery_point:
        read_payload<brenik::h264_nal_sei_recovery_point>(message);
        break;
    default:
        break;
    }
}

void stream_walker::walk_buffering_period(walked_message& message)
{
    const auto& period = read_payload<brenik::h264_nal_sei_buffering_period>(message, spss);
    message.sps = spss.find(period.seq_parameter_set_id);
    if (message.sps != nullptr && !message.outcome.malformed_code)
        activate(period.seq_parameter_set_id);
}

void stream_walker::walk_pic_timing(walked_message& message)
{
    auto& timing = message.syntax.emplace<walked_pic_timing>();
    message.outcome = attempt(message.payload, [&](bitreader& br) { return timing.read.parse(br, spss); });
    message.sps = spss.find(spss.current_id());
    if (message.sps != nullptr)
        timing.standard = standard_reading(message);
}

void stream_walker::activate(std::uint32_t sps_id)
{
    spss.set_current_id(sps_id);
    activated = true;
}

} // namespace orv_h264
