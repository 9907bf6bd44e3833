#include "rbsp_decoder.h"

#include <algorithm>
#include <limits>

namespace orv_h264 {

std::size_t rbsp_decoder::decoded::trusted() const noexcept
{
    constexpr std::size_t unexamined = 2;
    return whole ? bytes.size() : bytes.size() - std::min(bytes.size(), unexamined);
}

rbsp_decoder::decoded rbsp_decoder::head(brenik::h264_nal_reader& reader, std::size_t most)
{
    reader.rewind();
    const std::size_t room = std::min(most, brenik::range_size(reader.decode_ptr, reader.decode_fence));
    if (block.size() < room)
        block.resize(room);
    const std::size_t size = reader.block_decode(block.data(), room);
    return {{block.data(), size}, reader.decode_ptr == reader.decode_fence};
}

rbsp_bytes rbsp_decoder::whole(brenik::h264_nal_reader& reader)
{
    return head(reader, std::numeric_limits<std::size_t>::max()).bytes;
}

} // namespace orv_h264
