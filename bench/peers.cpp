#include "peers.h"

namespace bench::peers {

#if defined(BENCH_WITH_GSTREAMER)
std::vector<contender> split()
{
    return gstreamer_split();
}
std::vector<contender> encode()
{
    return gstreamer_encode();
}
std::vector<contender> headers()
{
    return gstreamer_headers();
}
#else
std::vector<contender> split()
{
    return {};
}
std::vector<contender> encode()
{
    return {};
}
std::vector<contender> headers()
{
    return {};
}
#endif

#if defined(BENCH_WITH_LIBAV)
std::vector<contender> decode()
{
    return libav_decode();
}
std::vector<contender> frames()
{
    return libav_frames();
}
std::vector<contender> to_length4()
{
    return libav_to_length4();
}
std::vector<contender> to_annex_b()
{
    return libav_to_annex_b();
}
#else
std::vector<contender> decode()
{
    return {};
}
std::vector<contender> frames()
{
    return {};
}
std::vector<contender> to_length4()
{
    return {};
}
std::vector<contender> to_annex_b()
{
    return {};
}
#endif

std::vector<std::pair<std::string, std::string>> versions()
{
    std::vector<std::pair<std::string, std::string>> all;
#if defined(BENCH_WITH_LIBAV)
    all.emplace_back("libavcodec", libav_version());
#endif
#if defined(BENCH_WITH_GSTREAMER)
    all.emplace_back("GStreamer", gstreamer_version());
#endif
    return all;
}

} // namespace bench::peers
