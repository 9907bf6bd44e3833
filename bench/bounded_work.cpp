// The entry points of both interfaces.
#include "bounded_work.h"

#include "support/legacy_parse.h"
#include "support/literal_sei_parse.h"
#include "support/slice_context.h"

#include <orv-utils-v4/h264.h>
#include <orv-utils-v4/h264_legacy.h>

#include <utility>

namespace bounded {

namespace {

using brenik::h2645_common_bitreader;
using brenik::h264_nal_reader;

/// Every unit of an Annex B stream; `take(reader)` does something with each.
template <typename Take>
std::uint64_t read_units(block& data, Take take)
{
    h264_nal_reader reader(brenik::nalfmt_annexb);
    std::uint64_t done = 0;
    for (reader.scan(data.begin(), data.end()); reader.found; reader.scan(reader.next, data.end()))
        done += 1 + take(reader);
    return done;
}

std::uint64_t find_units(block& data)
{
    return read_units(data, [](h264_nal_reader&) { return 0U; });
}

std::uint64_t copy_units(block& data)
{
    return read_units(data,
                      [&](h264_nal_reader& reader) { return reader.block_decode(data.room.data(), data.room.size()); });
}

/// In blocks as a program reads that has little room.
std::uint64_t copy_units_in_blocks(block& data)
{
    constexpr std::size_t little_room = 1024;
    return read_units(data, [&](h264_nal_reader& reader) {
        std::uint64_t total = 0;
        while (const std::size_t count = reader.block_decode(data.room.data(), little_room))
            total += count;
        return total;
    });
}

std::uint64_t find_unit_ends(block& data)
{
    return read_units(data, [](h264_nal_reader& reader) {
        return static_cast<std::size_t>(reader.find_unit_end() - reader.payload);
    });
}

/// One unit of all the data, behind a length.
std::uint64_t copy_one_unit(block& data)
{
    h264_nal_reader reader(brenik::nalfmt_length4);
    reader.data = data.begin();
    reader.data_fence = data.end();
    reader.decode_ptr = data.begin();
    reader.decode_fence = data.end();
    return reader.block_decode(data.room.data(), data.room.size());
}

std::uint64_t write_unit(block& data)
{
    brenik::h264_nal_writer writer(data.room.data(), data.room.data(), data.room.data() + data.room.size(),
                                   brenik::nalfmt_annexb);
    return writer.block_encode(data.begin(), data.size(), {3, brenik::h264_nal_unit_type_sps, true}, 1);
}

std::uint64_t legacy_units(block& data, std::size_t room)
{
    h264_nal_parser_state st;
    std::uint64_t done = 0;
    const unsigned char* at = data.begin();
    do {
        at = h264_nal_parser_scan(&st, data.room.data(), room, at, data.end(), 0);
        done += st.found;
    } while (st.found != 0);
    return done;
}

std::uint64_t legacy_copy_units(block& data)
{
    return legacy_units(data, data.room.size());
}

std::uint64_t legacy_copy_with_little_room(block& data)
{
    return legacy_units(data, 64);
}

std::uint64_t legacy_write_unit(block& data)
{
    return static_cast<std::uint64_t>(
        h264_nal_write(data.room.data(), data.room.size(), data.begin(), data.size(), 0, support::sps));
}

std::uint64_t find_frames(block& data)
{
    h264_sps sps;
    h264_common_frame_scan_info frame;
    std::uint64_t frames = 0;
    const unsigned char* at = data.begin();
    do {
        bool sps_updated = false;
        at = h264_common_frame_scan(frame, sps_updated, sps, at, data.end(), 0, data.room.data(), data.room.size(), 0);
        frames += frame.complete;
    } while (frame.complete != 0);
    return frames;
}

std::uint64_t read_messages(block& data)
{
    brenik::h264_nal_sei_reader reader(data.begin(), data.end());
    std::uint64_t messages = 0;
    while (reader.next_message())
        ++messages;
    return messages;
}

std::uint64_t legacy_read_messages(block& data)
{
    h264_sps sps;
    return static_cast<std::uint64_t>(h264_sei_get_field_duration(sps, data.begin(), data.end()));
}

/// `parse(reader)` of all the data: how far it came, and whether it threw.
template <typename Parse>
std::uint64_t parsed(block& data, Parse parse)
{
    h2645_common_bitreader br(data.begin(), data.end());
    try {
        const bool whole = parse(br);
        return 2 * br.bits_consumed() + (whole ? 1 : 0);
    } catch (const brenik::h2645_common_malformed_code& malformed) {
        return malformed.bit_position();
    }
}

template <typename Structure>
std::uint64_t parse_alone(block& data)
{
    return parsed(data, [](h2645_common_bitreader& br) {
        Structure object;
        return object.parse(br);
    });
}

/// Parameter sets under id 0.
const support::slice_context& context()
{
    static const support::slice_context made;
    return made;
}

std::uint64_t parse_pps(block& data)
{
    static const auto store = [] {
        brenik::h2645_common_base_store<brenik::h264_nal_sps> made;
        made.insert_or_assign(0, context().sps);
        return made;
    }();
    return parsed(data, [](h2645_common_bitreader& br) {
        brenik::h264_nal_pps pps;
        return pps.parse(br, store);
    });
}

std::uint64_t parse_slice(block& data)
{
    static const auto sps_store = context().sps_store();
    static const auto pps_store = context().pps_store();
    return parsed(data, [](h2645_common_bitreader& br) {
        brenik::h264_nal_slice_header slice;
        return slice.parse(br, sps_store, pps_store, context().nal);
    });
}

const brenik::h264_nal_sps& sps_of_payloads()
{
    static const brenik::h264_nal_sps made = support::sps_with({{true, 127}, {true, 127}, true});
    return made;
}

std::uint64_t parse_pic_timing(block& data)
{
    return parsed(data, [](h2645_common_bitreader& br) {
        brenik::h264_nal_sei_pic_timing timing;
        return timing.parse(br, sps_of_payloads());
    });
}

std::uint64_t parse_buffering_period(block& data)
{
    static const auto store = [] {
        brenik::h2645_common_base_store<brenik::h264_nal_sps> made;
        made.insert_or_assign(0, sps_of_payloads());
        return made;
    }();
    return parsed(data, [](h2645_common_bitreader& br) {
        brenik::h264_nal_sei_buffering_period period;
        return period.parse(br, store);
    });
}

std::uint64_t legacy_parse_sps(block& data)
{
    h264_sps sps;
    support::parse_fenced(sps, data.begin(), data.end());
    return sps.frame_mbs_only_flag;
}

std::uint64_t legacy_parse_slice(block& data)
{
    h264_sps sps;
    h264_nal_slice_info slice;
    return static_cast<std::uint64_t>(support::parse_slice(slice, {data.begin(), data.end()}, sps));
}

std::uint64_t legacy_parse_record(block& data)
{
    h264_AVCDecoderConfigurationRecord record;
    return h264_AVCDecoderConfigurationRecord_parse(&record, data.begin(), data.end()) == 0 ? 1 : 0;
}

} // namespace

block::block(std::vector<unsigned char> data) : content(std::move(data)), room(content.size() / 2 * 3 + 64) {}

const std::vector<work>& all_works()
{
    static const std::vector<work> all = {
        {"reader.scan", kind::framing, find_units},
        {"reader.find_unit_end", kind::framing, find_unit_ends},
        {"reader.block_decode", kind::framing, copy_units},
        {"reader.block_decode, 1 KiB", kind::framing, copy_units_in_blocks},
        {"reader.block_decode, one unit", kind::framing, copy_one_unit},
        {"writer.block_encode", kind::framing, write_unit},
        {"nal_parser_scan", kind::framing, legacy_copy_units},
        {"nal_parser_scan, 64 bytes", kind::framing, legacy_copy_with_little_room},
        {"nal_write", kind::framing, legacy_write_unit},
        {"frame_scan", kind::framing, find_frames},
        {"sei_reader", kind::framing, read_messages},
        {"sei_get_field_duration", kind::framing, legacy_read_messages},
        {"sps", kind::parsing, parse_alone<brenik::h264_nal_sps>},
        {"vui", kind::parsing, parse_alone<brenik::h264_vui_parameters>},
        {"hrd", kind::parsing, parse_alone<brenik::h264_hrd_parameters>},
        {"pps", kind::parsing, parse_pps},
        {"slice header", kind::parsing, parse_slice},
        {"pic_timing", kind::parsing, parse_pic_timing},
        {"buffering_period", kind::parsing, parse_buffering_period},
        {"pan_scan_rect", kind::parsing, parse_alone<brenik::h264_nal_sei_pan_scan_rect>},
        {"recovery_point", kind::parsing, parse_alone<brenik::h264_nal_sei_recovery_point>},
        {"legacy sps", kind::legacy, legacy_parse_sps},
        {"legacy slice", kind::legacy, legacy_parse_slice},
        {"legacy record", kind::legacy, legacy_parse_record},
    };
    return all;
}

} // namespace bounded
