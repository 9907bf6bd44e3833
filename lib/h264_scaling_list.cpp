// H.264 clause 7.3.2.1.1.1: scaling lists.
#include <orv-utils-v4/h264/scaling_list.h>

#include "resize_counted.h"
#include "wrapping.h"

namespace brenik {

// H.264 7.3.2.1.1.1, scaling_list()
bool h264_scaling_list::parse(h2645_common_bitreader& br, unsigned size)
{
    if (!resize_counted(size, values))
        return false;
    std::uint8_t lastScale = 8;
    std::uint8_t nextScale = 8;
    for (std::size_t j = 0; j < values.size(); ++j) {
        if (nextScale != 0) {
            const int delta_scale = br.se();
            nextScale = static_cast<std::uint8_t>(wrapping_add(lastScale, static_cast<std::uint32_t>(delta_scale)));
            useDefaultScalingMatrixFlag = j == 0 && nextScale == 0;
        }
        values[j] = nextScale == 0 ? lastScale : nextScale;
        lastScale = values[j];
    }
    return valid = true;
}

} // namespace brenik
