// mp4_to_annex_b FILE >OUT   writes the H.264 track of an MP4, MOV or Matroska file as an Annex B stream with the
// parameter sets before each IDR picture. libavformat finds the samples; the record is what it calls extradata.
#include <orv-utils-v4/h264_syntax.h>

extern "C" {
#include <libavformat/avformat.h>
}

#include <iostream>
#include <memory>

using namespace orv_utils_v4::h264;
using bytes = std::vector<unsigned char>;

static int fail(const char* what, const char* why)
{
    std::cerr << what << ": " << why << '\n';
    return 1;
}

// The units of one sample.
struct sample_units : split_sink {
    void unit(const split_unit& u) override
    {
        units.push_back({u.bytes, u.size});
        whole = whole && !u.cut;
    }
    void gap(const split_gap&) override { whole = false; }
    std::vector<unit_view> units;
    bool whole = true;
};

// One picture, with the parameter sets in force where it is an IDR picture without them.
static void put(parameter_set_store& sets, const std::vector<unit_view>& units)
{
    const auto write = [&](unsigned char* out, std::size_t room) {
        return sets.write_picture(units.data(), units.size(), framing::annex_b, in_band_sets::before_idr, out, room);
    };
    bytes out(write(nullptr, 0).bytes);
    write(out.data(), out.size());
    std::cout.write(reinterpret_cast<const char*>(out.data()), static_cast<std::streamsize>(out.size()));
}

int main(int argc, char** argv)
{
    AVFormatContext* opened = nullptr;
    if (argc != 2 || avformat_open_input(&opened, argv[1], nullptr, nullptr) != 0)
        return fail("usage: mp4_to_annex_b FILE", "there is none that libavformat can open");
    const auto close = [](AVFormatContext* file) { avformat_close_input(&file); };
    const std::unique_ptr<AVFormatContext, decltype(close)> file(opened, close);
    int track = 0;
    while (track < static_cast<int>(file->nb_streams) && file->streams[track]->codecpar->codec_id != AV_CODEC_ID_H264)
        ++track;
    if (track == static_cast<int>(file->nb_streams))
        return fail(argv[1], "no track of H.264");

    const AVCodecParameters& codec = *file->streams[track]->codecpar;
    AVCDecoderConfigurationRecord record;
    parameter_set_store sets;
    if (!read(record, codec.extradata, static_cast<std::size_t>(codec.extradata_size)).sound() ||
        sets.push(record) != 0)
        return fail(argv[1], "no sound decoder configuration record");
    const auto lengths = static_cast<framing>(record.lengthSizeMinusOne + 1);

    const auto free_packet = [](AVPacket* packet) { av_packet_free(&packet); };
    const std::unique_ptr<AVPacket, decltype(free_packet)> packet(av_packet_alloc(), free_packet);
    bool whole = true;
    for (; av_read_frame(file.get(), packet.get()) >= 0; av_packet_unref(packet.get())) {
        if (packet->stream_index != track)
            continue;
        sample_units sample;
        unit_splitter splitter(lengths); // a sample begins anew
        splitter.push(packet->data, static_cast<std::size_t>(packet->size), sample);
        splitter.flush(sample);
        put(sets, sample.units);
        whole = whole && sample.whole;
    }
    return whole ? 0 : fail(argv[1], "not all of it is units");
}
