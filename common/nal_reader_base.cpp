// The part of the NAL reader that knows nothing of the header class: the scanning state, and the bounds of decoding.
#include <orv-utils-v4/h2645_common/nal_reader.h>

#include <orv-utils-v4/h2645_common/advance_past.h>

#include <algorithm>

namespace brenik {

h2645_common_nal_reader_base::h2645_common_nal_reader_base(h2645_common_nalfmt format) noexcept : nalfmt(format) {}

void h2645_common_nal_reader_base::rewind() noexcept
{
    if (!found) {
        decode_ptr = decode_fence = nullptr;
        return;
    }
    decode_ptr = payload;
    decode_fence = data_fence;
    if (length_known)
        decode_fence = payload + std::min<std::size_t>(payload_length, range_size(payload, data_fence));
}

void h2645_common_nal_reader_base::do_give_up() noexcept
{
    gave_up = true;
}

} // namespace brenik
