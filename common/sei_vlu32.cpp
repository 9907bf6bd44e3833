// H.264 clause 7.3.2.3.1: the payload type and size of an SEI message.
#include <orv-utils-v4/h2645_common/sei_vlu32.h>

#include <algorithm>

namespace brenik {

// NOLINTNEXTLINE(readability-non-const-parameter): the exported signature
std::uint32_t h2645_common_read_xostylesei_vlu32(unsigned char*& p, unsigned char* fence)
{
    constexpr std::uint32_t failed = 0xFFFFFFFF;
    constexpr std::uint64_t largest = failed - 1;
    std::uint64_t sum = 0;
    while (p < fence) {
        const unsigned char byte = *p++;
        sum += byte;
        if (byte != 0xFF)
            return static_cast<std::uint32_t>(std::min(sum, largest));
    }
    return failed;
}

} // namespace brenik
