// H.264 clause 9.1: the Exp-Golomb codes of the legacy interface.
#include <orv-utils-v4/h264_legacy/golomb.h>

#include "legacy_bits.h"

#include <algorithm>
#include <bit>

namespace orv_utils_v4::legacy {

unsigned int legacy_bits::ue() const
{
    constexpr unsigned char longest_prefix = 24;
    be_bitfield_refill(&bf, fence); // 25 bits at least
    const int zeros_loaded = std::countl_zero(bf.word << bf.bits);
    const auto zeros = static_cast<unsigned char>(std::min<int>(zeros_loaded, longest_prefix));
    u(zeros);
    if (zeros < longest_prefix)
        u(1);
    return (1U << zeros) - 1 + u(zeros);
}

int legacy_bits::se() const
{
    const unsigned int k = ue();
    const int magnitude = static_cast<int>((k + 1) >> 1);
    return k % 2 == 1 ? magnitude : -magnitude;
}

} // namespace orv_utils_v4::legacy

using orv_utils_v4::legacy::legacy_bits;

unsigned int h264_ue_golomb_read(be_bitfield* b)
{
    return legacy_bits{*b, nullptr}.ue();
}

int h264_se_golomb_read(be_bitfield* b)
{
    return legacy_bits{*b, nullptr}.se();
}
