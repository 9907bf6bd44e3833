// The module that takes containers apart with libavformat.
#include "container/demuxer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <exception>
#include <new>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/error.h>
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

namespace orv_h264 {

namespace {

// A sample table of ten million entries fits.
constexpr std::size_t usual_most_memory = std::size_t{512} << 20U;
// Packets of any track in which the one that is looked for has to begin.
constexpr unsigned most_packets_before = 20000;
constexpr std::size_t most_messages = 64;

const char* demuxer_of(container_kind kind)
{
    switch (kind) {
    case container_kind::mp4:
        return "mov";
    case container_kind::matroska:
        return "matroska";
    case container_kind::transport_stream:
        return "mpegts";
    default:
        return "flv";
    }
}

std::string text_of_error(int error)
{
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text = {};
    av_strerror(error, text.data(), text.size());
    return text.data();
}

/// A container may name other files.
int open_nothing(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**)
{
    return AVERROR(EPERM);
}

container_ratio ratio_of(AVRational value)
{
    return value.den > 0 && value.num > 0 ? container_ratio{value.num, value.den} : container_ratio{};
}

std::optional<std::int64_t> time_of(std::int64_t ticks)
{
    return ticks == AV_NOPTS_VALUE ? std::nullopt : std::optional<std::int64_t>(ticks);
}

struct free_format {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
struct free_io {
    void operator()(AVIOContext* io) const
    {
        av_freep(static_cast<void*>(&io->buffer));
        avio_context_free(&io);
    }
};
struct free_packet {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

class libavformat_demuxer final : public demuxer {
public:
    libavformat_demuxer(byte_source& from, container_kind kind, std::uint64_t most_bytes);

    bool is_open() const override { return format != nullptr; }
    std::vector<container_track> tracks() const override;
    bool choose(std::optional<unsigned> number) override;
    std::span<const unsigned char> record() const override;
    bool next(container_packet& to) override;
    std::string failure() const override { return why; }
    std::uint64_t missing() const override;
    std::uint64_t position() const override { return at; }
    std::vector<container_message> take_messages() override { return std::exchange(messages, {}); }
    std::vector<file_stretch> head() const override { return read_to_open; }

private:
    void open(container_kind kind);
    bool read();
    void find_track(std::optional<unsigned> number);

    static int read_bytes(void* opaque, std::uint8_t* out, int size);
    static std::int64_t seek(void* opaque, std::int64_t offset, int whence);
    static void take_log(void* object, int level, const char* format, va_list arguments);
    std::size_t read_here(std::uint8_t* out, std::size_t size);
    void fail(int error);

    byte_source& file;
    std::uint64_t at = 0; // in the file
    std::unique_ptr<AVIOContext, free_io> io;
    std::unique_ptr<AVFormatContext, free_format> format;
    std::unique_ptr<AVPacket, free_packet> packet{av_packet_alloc()};
    std::exception_ptr broken; // by reading; it cannot be thrown through C
    bool tells_keys;
    bool opening = true;
    std::vector<file_stretch> read_to_open;
    std::vector<container_message> messages;
    std::string why;
    int chosen = -1;
    bool pending = false; // the packet was read by choose()
    std::uint64_t taken = 0;
};

// What is read to open the file is noted, for the record is in it.
std::size_t libavformat_demuxer::read_here(std::uint8_t* out, std::size_t size)
{
    const std::size_t count = file.read(at, out, size);
    if (opening && (read_to_open.empty() || read_to_open.back().behind != at))
        read_to_open.push_back({at, at});
    at += count;
    if (opening)
        read_to_open.back().behind = at;
    return count;
}

int libavformat_demuxer::read_bytes(void* opaque, std::uint8_t* out, int size)
{
    auto& own = *static_cast<libavformat_demuxer*>(opaque);
    try {
        const std::size_t count = own.read_here(out, static_cast<std::size_t>(size));
        return count == 0 ? AVERROR_EOF : static_cast<int>(count);
    } catch (...) {
        own.broken = std::current_exception();
        return AVERROR(EIO);
    }
}

std::int64_t libavformat_demuxer::seek(void* opaque, std::int64_t offset, int whence)
{
    auto& own = *static_cast<libavformat_demuxer*>(opaque);
    const auto size = static_cast<std::int64_t>(own.file.size().value_or(0));
    switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
        return size;
    case SEEK_CUR:
        offset += static_cast<std::int64_t>(own.at);
        break;
    case SEEK_END:
        offset += size;
        break;
    default:
        break;
    }
    if (offset < 0)
        return AVERROR(EINVAL);
    own.at = static_cast<std::uint64_t>(offset);
    return offset;
}

/// Of errors, those that name the file.
void libavformat_demuxer::take_log(void* object, int level, const char* format, va_list arguments)
{
    if (level > AV_LOG_ERROR || object == nullptr || *static_cast<const AVClass**>(object) != avformat_get_class())
        return;
    auto* const own = static_cast<libavformat_demuxer*>(static_cast<AVFormatContext*>(object)->opaque);
    if (own == nullptr || own->messages.size() == most_messages)
        return;
    std::array<char, 256> text = {};
    static_cast<void>(std::vsnprintf(text.data(), text.size(), format, arguments));
    try {
        std::string line = text.data();
        line.erase(line.find_last_not_of(" \n") + 1);
        own->messages.push_back({own->at, std::move(line)});
    } catch (...) { // it is only a message
    }
}

void libavformat_demuxer::open(container_kind kind)
{
    constexpr int buffer_size = 64 * 1024;
    auto* const buffer = static_cast<unsigned char*>(av_malloc(buffer_size));
    io.reset(avio_alloc_context(buffer, buffer_size, 0, this, read_bytes, nullptr, file.size() ? seek : nullptr));
    AVFormatContext* context = avformat_alloc_context();
    if (!io || context == nullptr || !packet)
        throw std::bad_alloc();
    context->pb = io.get();
    context->opaque = this;
    context->io_open = open_nothing;
    // As it stands in the file: no parser, no times that are guessed, no edit that is made.
    context->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_NOPARSE | AVFMT_FLAG_NOFILLIN;
    AVDictionary* options = nullptr;
    if (kind == container_kind::mp4 && av_dict_set(&options, "ignore_editlist", "1", 0) < 0) {
        avformat_free_context(context);
        throw std::bad_alloc();
    }
    const int result = avformat_open_input(&context, nullptr, av_find_input_format(demuxer_of(kind)), &options);
    av_dict_free(&options);
    if (result < 0)
        return fail(result); // the context is gone
    format.reset(context);
    opening = false;
}

void libavformat_demuxer::fail(int error)
{
    if (broken)
        std::rethrow_exception(std::exchange(broken, nullptr));
    if (error == AVERROR(ENOMEM) && !opening) // what is there has no end here
        throw std::bad_alloc();
    if (error != AVERROR_EOF || opening)
        why = error == AVERROR_EOF ? "it ends before it has told what it holds" : text_of_error(error);
    if (opening && !messages.empty())
        why += " (" + messages.back().text + ")";
}

bool libavformat_demuxer::read()
{
    if (pending) {
        pending = false;
        return true;
    }
    do {
        av_packet_unref(packet.get());
        const int result = av_read_frame(format.get(), packet.get());
        if (result < 0) {
            fail(result);
            return false;
        }
    } while (chosen >= 0 && packet->stream_index != chosen);
    return true;
}

void libavformat_demuxer::find_track(std::optional<unsigned> number)
{
    for (unsigned i = 0; i < format->nb_streams && chosen < 0; ++i)
        if (number ? *number == i + 1 : format->streams[i]->codecpar->codec_id == AV_CODEC_ID_H264)
            chosen = static_cast<int>(i);
}

libavformat_demuxer::libavformat_demuxer(byte_source& from, container_kind kind, std::uint64_t most_bytes)
    : file(from), tells_keys(kind != container_kind::transport_stream)
{
    av_max_alloc(usual_most_memory + most_bytes);
    av_log_set_callback(take_log);
    open(kind);
}

std::vector<container_track> libavformat_demuxer::tracks() const
{
    std::vector<container_track> all;
    for (unsigned i = 0; i < format->nb_streams; ++i) {
        AVStream& stream = *format->streams[i];
        container_track& track = all.emplace_back();
        const char* const media = av_get_media_type_string(stream.codecpar->codec_type);
        track.number = i + 1;
        track.id = stream.id;
        track.media = media == nullptr ? "data" : media;
        track.codec = avcodec_get_name(stream.codecpar->codec_id);
        track.h264 = stream.codecpar->codec_id == AV_CODEC_ID_H264;
        track.tick = ratio_of(stream.time_base);
    }
    return all;
}

bool libavformat_demuxer::choose(std::optional<unsigned> number)
{
    find_track(number);
    bool ended = false;
    for (unsigned i = 0; chosen < 0 && i < most_packets_before && !ended; ++i) {
        ended = !read();
        find_track(number);
        pending = !ended && packet->stream_index == chosen;
    }
    if (chosen < 0)
        return false;
    for (unsigned i = 0; i < format->nb_streams; ++i)
        if (static_cast<int>(i) != chosen)
            format->streams[i]->discard = AVDISCARD_ALL;
    if (!pending)
        pending = read(); // its record may come with it
    return true;
}

std::span<const unsigned char> libavformat_demuxer::record() const
{
    const AVCodecParameters& parameters = *format->streams[chosen]->codecpar;
    return {parameters.extradata, static_cast<std::size_t>(std::max(parameters.extradata_size, 0))};
}

bool libavformat_demuxer::next(container_packet& to)
{
    if (!read())
        return false;
    const AVPacket& from = *packet;
    std::size_t record_size = 0;
    const unsigned char* const record = av_packet_get_side_data(&from, AV_PKT_DATA_NEW_EXTRADATA, &record_size);
    to.bytes = {from.data, static_cast<std::size_t>(std::max(from.size, 0))};
    to.record = {record, record == nullptr ? 0 : record_size};
    to.position = from.pos < 0 ? std::nullopt : std::optional(static_cast<std::uint64_t>(from.pos));
    to.pts = time_of(from.pts);
    to.dts = time_of(from.dts);
    to.duration = from.duration;
    to.key = tells_keys ? std::optional((from.flags & AV_PKT_FLAG_KEY) != 0) : std::nullopt;
    to.damaged = (from.flags & AV_PKT_FLAG_CORRUPT) != 0;
    ++taken;
    return true;
}

std::uint64_t libavformat_demuxer::missing() const
{
    const AVStream& stream = *format->streams[chosen];
    const std::int64_t announced = stream.nb_frames;
    return announced > 0 && static_cast<std::uint64_t>(announced) > taken
               ? static_cast<std::uint64_t>(announced) - taken
               : 0;
}

} // namespace

} // namespace orv_h264

extern "C" __attribute__((visibility("default"))) orv_h264::demuxer*
orv_h264_open_container(orv_h264::byte_source& file, orv_h264::container_kind kind, std::uint64_t most_bytes)
{
    return new orv_h264::libavformat_demuxer(file, kind, most_bytes);
}
