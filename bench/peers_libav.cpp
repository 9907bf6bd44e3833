// The same tasks by libavcodec and libavformat, a picture a packet, without a copy of what goes in.
#include "peers.h"

#include <algorithm>
#include <memory>
#include <stdexcept>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
}

namespace bench::peers {

namespace {

void must(bool holds, const char* what)
{
    if (!holds)
        throw std::runtime_error(what);
}

// NOLINTNEXTLINE(readability-non-const-parameter): libavutil asks for this signature
void keep_bytes(void* opaque, std::uint8_t* data)
{
    static_cast<void>(opaque);
    static_cast<void>(data);
}

/// The pictures of a stream as packets that point into it.
class packets {
public:
    packets(std::vector<unsigned char>& stream, const std::vector<std::size_t>& picture_starts)
        : bytes(stream.data()),
          starts(picture_starts),
          buffer(av_buffer_create(stream.data(), stream.size(), keep_bytes, nullptr, AV_BUFFER_FLAG_READONLY)),
          packet(av_packet_alloc())
    {
        must(buffer != nullptr && packet != nullptr, "no memory for packets");
    }
    packets(const packets&) = delete;
    packets& operator=(const packets&) = delete;
    ~packets()
    {
        av_packet_free(&packet);
        av_buffer_unref(&buffer);
    }

    template <typename Use>
    void each(Use use)
    {
        for (std::size_t i = 0; i + 1 < starts.size(); ++i) {
            packet->buf = av_buffer_ref(buffer);
            packet->data = bytes + starts[i];
            packet->size = static_cast<int>(starts[i + 1] - starts[i]);
            packet->pts = packet->dts = static_cast<std::int64_t>(i);
            packet->duration = 1;
            use(packet);
            av_packet_unref(packet);
        }
    }

private:
    unsigned char* bytes;
    const std::vector<std::size_t>& starts;
    AVBufferRef* buffer;
    AVPacket* packet;
};

void set_extradata(AVCodecParameters& parameters, const std::vector<unsigned char>& bytes)
{
    parameters.codec_type = AVMEDIA_TYPE_VIDEO;
    parameters.codec_id = AV_CODEC_ID_H264;
    parameters.width = 1920;
    parameters.height = 1088;
    parameters.extradata = static_cast<std::uint8_t*>(av_mallocz(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE));
    parameters.extradata_size = static_cast<int>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), parameters.extradata);
}

/// A bitstream filter over every picture of a stream; how many bytes come out.
std::uint64_t filtered(const char* filter, const char* option, const char* value,
                       const std::vector<unsigned char>& extradata, std::vector<unsigned char>& stream,
                       const std::vector<std::size_t>& picture_starts)
{
    av_log_set_level(AV_LOG_QUIET);
    AVBSFContext* bsf = nullptr;
    must(av_bsf_alloc(av_bsf_get_by_name(filter), &bsf) >= 0, "no such bitstream filter");
    const auto freed = [](AVBSFContext* p) { av_bsf_free(&p); };
    const std::unique_ptr<AVBSFContext, decltype(freed)> owner(bsf, freed);
    set_extradata(*bsf->par_in, extradata);
    bsf->time_base_in = {1, 25};
    if (option != nullptr)
        must(av_opt_set(bsf->priv_data, option, value, 0) >= 0, "no such option");
    must(av_bsf_init(bsf) >= 0, "the bitstream filter does not start");

    std::uint64_t bytes = 0;
    AVPacket* result = av_packet_alloc();
    packets(stream, picture_starts).each([&](AVPacket* packet) {
        must(av_bsf_send_packet(bsf, packet) >= 0, "the bitstream filter takes no packet");
        while (av_bsf_receive_packet(bsf, result) >= 0) {
            bytes += static_cast<std::uint64_t>(result->size);
            av_packet_unref(result);
        }
    });
    av_packet_free(&result);
    return bytes;
}

/// Splits and unescapes every unit, and then drops it.
std::uint64_t read_and_drop(data_set& set)
{
    return filtered("filter_units", "pass_types", "31", {}, set.annex_b, set.annex_b_pictures);
}

std::uint64_t parse_frames(data_set& set)
{
    av_log_set_level(AV_LOG_QUIET);
    AVCodecParserContext* const parser = av_parser_init(AV_CODEC_ID_H264);
    AVCodecContext* codec = avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_H264));
    must(parser != nullptr && codec != nullptr, "no parser for H.264");
    std::uint64_t frames = 0;
    std::uint8_t* frame = nullptr;
    int size = 0;
    for (std::size_t at = 0; at < set.annex_b_size;) {
        const int taken = av_parser_parse2(parser, codec, &frame, &size, set.annex_b.data() + at,
                                           static_cast<int>(set.annex_b_size - at), 0, 0, 0);
        frames += size > 0 ? 1U : 0U;
        at += static_cast<std::size_t>(taken);
    }
    av_parser_parse2(parser, codec, &frame, &size, nullptr, 0, 0, 0, 0);
    frames += size > 0 ? 1U : 0U;
    av_parser_close(parser);
    avcodec_free_context(&codec);
    return frames;
}

/// The parameter sets that the stream begins with, behind its first delimiter.
std::vector<unsigned char> parameter_sets(const data_set& set)
{
    std::vector<unsigned char> bytes;
    for (std::size_t i = 1; i <= 2; ++i) {
        const unit_place& unit = set.units[i];
        const unsigned char head[] = {0, 0, 0, 1, unit.header};
        bytes.insert(bytes.end(), head, head + sizeof head);
        bytes.insert(bytes.end(), set.payloads.data() + unit.offset, set.payloads.data() + unit.offset + unit.size);
    }
    return bytes;
}

// NOLINTNEXTLINE(readability-non-const-parameter): libavformat asks for this signature
int drop(void* opaque, std::uint8_t* bytes, int count)
{
    static_cast<void>(bytes);
    *static_cast<std::uint64_t*>(opaque) += static_cast<std::uint64_t>(count);
    return count;
}

std::int64_t seek_nowhere(void* opaque, std::int64_t offset, int whence)
{
    static_cast<void>(opaque);
    static_cast<void>(whence);
    return offset;
}

/// The muxer of MP4, which wants lengths; what it writes goes nowhere.
std::uint64_t muxed(data_set& set)
{
    constexpr int buffer_size = 1 << 16;
    av_log_set_level(AV_LOG_QUIET);
    std::uint64_t written = 0;
    AVFormatContext* mux = nullptr;
    must(avformat_alloc_output_context2(&mux, nullptr, "mp4", nullptr) >= 0, "no muxer for MP4");
    mux->pb = avio_alloc_context(static_cast<unsigned char*>(av_malloc(buffer_size)), buffer_size, 1, &written, nullptr,
                                 drop, seek_nowhere);
    AVStream* const track = avformat_new_stream(mux, nullptr);
    set_extradata(*track->codecpar, parameter_sets(set));
    track->time_base = {1, 25};
    must(avformat_write_header(mux, nullptr) >= 0, "the muxer does not start");
    const std::uint64_t before = written;
    packets(set.annex_b, set.annex_b_pictures).each([&](AVPacket* packet) {
        must(av_write_frame(mux, packet) >= 0, "the muxer takes no packet");
    });
    avio_flush(mux->pb);
    av_freep(&mux->pb->buffer);
    avio_context_free(&mux->pb);
    avformat_free_context(mux);
    return written - before == 0 ? 1 : 0; // how much it writes of its own is not known
}

std::uint64_t to_start_codes(data_set& set)
{
    // avcC: version, profile, compatibility, level, lengths of 4 bytes, no SPS, no PPS
    const std::vector<unsigned char> record = {1, 66, 0, 30, 0xFF, 0xE0, 0};
    filtered("h264_mp4toannexb", nullptr, nullptr, record, set.length4, set.length4_pictures);
    return 0; // its start codes have other sizes
}

} // namespace

std::vector<contender> libav_decode()
{
    return {{side::peer, "libavcodec", [](data_set& set) { return read_and_drop(set); }}};
}

std::vector<contender> libav_frames()
{
    return {{side::peer, "libavcodec", parse_frames}};
}

std::vector<contender> libav_to_length4()
{
    return {{side::peer, "libavformat", muxed}};
}

std::vector<contender> libav_to_annex_b()
{
    return {{side::peer, "libavcodec", to_start_codes}};
}

std::string libav_version()
{
    const unsigned int number = avcodec_version();
    return std::to_string(number >> 16) + '.' + std::to_string(number >> 8 & 0xFF) + '.' +
           std::to_string(number & 0xFF) + " of FFmpeg " + av_version_info();
}

} // namespace bench::peers
