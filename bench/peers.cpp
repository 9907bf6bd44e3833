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

} // namespace bench::peers
