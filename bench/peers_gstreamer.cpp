// The same tasks by GStreamer's library of codec parsers.
#include "peers.h"

#define GST_USE_UNSTABLE_API
#include <gst/base/gstbytereader.h>
#include <gst/codecparsers/gsth264parser.h>
#include <gst/codecparsers/gstmpegvideoparser.h>
#include <gst/gst.h>

#include <memory>

namespace bench::peers {

namespace {

struct parser_deleter {
    void operator()(GstH264NalParser* parser) const { gst_h264_nal_parser_free(parser); }
};

std::unique_ptr<GstH264NalParser, parser_deleter> new_parser()
{
    if (gst_is_initialized() == FALSE)
        gst_init(nullptr, nullptr);
    return std::unique_ptr<GstH264NalParser, parser_deleter>(gst_h264_nal_parser_new());
}

std::uint64_t split_units(data_set& set)
{
    const auto parser = new_parser();
    std::uint64_t units = 0;
    GstH264NalUnit unit;
    for (guint at = 0;; at = unit.offset + unit.size) {
        const GstH264ParserResult result =
            gst_h264_parser_identify_nalu(parser.get(), set.annex_b.data(), at, set.annex_b_size, &unit);
        if (result == GST_H264_PARSER_OK)
            ++units;
        else
            return units + (result == GST_H264_PARSER_NO_NAL_END ? 1U : 0U);
    }
}

/// The call that finds where a unit begins, and leaves its end to the next.
std::uint64_t find_units(data_set& set)
{
    const auto parser = new_parser();
    std::uint64_t units = 0;
    GstH264NalUnit unit;
    for (guint at = 0; gst_h264_parser_identify_nalu_unchecked(parser.get(), set.annex_b.data(), at, set.annex_b_size,
                                                               &unit) == GST_H264_PARSER_OK;
         at = unit.offset)
        ++units;
    return units;
}

constexpr guint32 start_code_mask = 0xFFFFFF00;
constexpr guint32 start_code_and_any = 0x00000100;

/// The search of the byte reader for four bytes of which some may be any.
std::uint64_t scan_bytes(data_set& set)
{
    const auto size = static_cast<guint>(set.annex_b_size);
    const GstByteReader reader = GST_BYTE_READER_INIT(set.annex_b.data(), size);
    std::uint64_t units = 0;
    for (guint at = 0; size - at >= 4; at += 4, ++units) {
        const guint found =
            gst_byte_reader_masked_scan_uint32(&reader, start_code_mask, start_code_and_any, at, size - at);
        if (found == G_MAXUINT)
            break;
        at = found;
    }
    return units;
}

/// The same, which also tells the bytes found.
std::uint64_t scan_and_peek(data_set& set)
{
    const auto size = static_cast<guint>(set.annex_b_size);
    const GstByteReader reader = GST_BYTE_READER_INIT(set.annex_b.data(), size);
    std::uint64_t units = 0;
    for (guint at = 0; size - at >= 4; at += 4, ++units) {
        guint32 value = 0;
        const guint found = gst_byte_reader_masked_scan_uint32_peek(&reader, start_code_mask, start_code_and_any, at,
                                                                    size - at, &value);
        if (found == G_MAXUINT)
            break;
        at = found;
    }
    return units;
}

/// MPEG-1 and MPEG-2 video have the same start codes.
std::uint64_t split_as_mpeg_video(data_set& set)
{
    const auto size = static_cast<guint>(set.annex_b_size);
    std::uint64_t units = 0;
    GstMpegVideoPacket packet;
    for (guint at = 0; gst_mpeg_video_parse(&packet, set.annex_b.data(), size, at) != FALSE; at = packet.offset)
        ++units;
    return units;
}

std::uint64_t parse_headers(data_set& set)
{
    constexpr guint8 prefix_size = 4;
    const auto parser = new_parser();
    std::uint64_t sound = 0;
    GstH264NalUnit unit;
    GstH264SliceHdr slice;
    for (std::size_t at = 0; at < set.length4_size; at = unit.offset + unit.size) {
        if (gst_h264_parser_identify_nalu_avc(parser.get(), set.length4.data(), static_cast<guint>(at),
                                              set.length4_size, prefix_size, &unit) != GST_H264_PARSER_OK)
            return sound;
        GstH264ParserResult result = GST_H264_PARSER_ERROR;
        if (unit.type == GST_H264_NAL_SPS || unit.type == GST_H264_NAL_PPS)
            result = gst_h264_parser_parse_nal(parser.get(), &unit);
        else if (unit.type == GST_H264_NAL_SLICE || unit.type == GST_H264_NAL_SLICE_IDR)
            result = gst_h264_parser_parse_slice_hdr(parser.get(), &unit, &slice, TRUE, TRUE);
        sound += result == GST_H264_PARSER_OK ? 1U : 0U;
    }
    return sound;
}

/// The one call that escapes: it makes a SEI unit whose one message is the payload.
std::uint64_t make_sei_units(data_set& set)
{
    constexpr guint8 start_code_size = 3;
    new_parser();
    for (const unit_place& unit : set.units) {
        GArray* const messages = g_array_new(FALSE, TRUE, sizeof(GstH264SEIMessage));
        GstH264SEIMessage message = {};
        message.payloadType = GST_H264_SEI_REGISTERED_USER_DATA;
        message.payload.registered_user_data.data = set.payloads.data() + unit.offset;
        message.payload.registered_user_data.size = static_cast<guint>(unit.size);
        g_array_append_val(messages, message);
        gst_memory_unref(gst_h264_create_sei_memory(start_code_size, messages));
        g_array_free(messages, TRUE);
    }
    return 0;
}

} // namespace

std::vector<contender> gstreamer_split()
{
    return {{side::peer, "identify_nalu", split_units},
            {side::peer, "identify_nalu_unchecked", find_units},
            {side::peer, "masked_scan", scan_bytes},
            {side::peer, "masked_scan_peek", scan_and_peek},
            {side::peer, "mpeg_video_parse", split_as_mpeg_video}};
}

std::vector<contender> gstreamer_encode()
{
    return {{side::peer, "gstreamer", make_sei_units}};
}

std::vector<contender> gstreamer_headers()
{
    return {{side::peer, "gstreamer", parse_headers}};
}

std::string gstreamer_version()
{
    guint parts[4] = {};
    gst_version(&parts[0], &parts[1], &parts[2], &parts[3]);
    return std::to_string(parts[0]) + '.' + std::to_string(parts[1]) + '.' + std::to_string(parts[2]);
}

} // namespace bench::peers
