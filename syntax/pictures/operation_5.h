// has_operation_5() inline, for what is asked of every picture several times: most have no operations.
#pragma once

#include <orv-utils-v4/h264_syntax/picture_order_count.h>

namespace orv_utils_v4::h264 {

inline bool with_operation_5(const slice_header& header) noexcept
{
    return !header.dec_ref_pic_marking.operations.empty() && has_operation_5(header);
}

} // namespace orv_utils_v4::h264
