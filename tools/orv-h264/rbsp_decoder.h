// The RBSP of the unit that a reader stands on, decoded as far as it is asked for.
#pragma once

#include <orv-utils-v4/h264.h>

#include <cstddef>
#include <span>
#include <vector>

namespace orv_h264 {

/// Bytes of an RBSP, from behind the NAL unit header. They are to be read, not written; the type is not const because
/// the library's SEI reader takes no pointers to const.
using rbsp_bytes = std::span<unsigned char>;

class rbsp_decoder {
public:
    /// What was decoded is valid until the next call.
    struct decoded {
        rbsp_bytes bytes;
        bool whole = false; ///< the unit ends with them

        /// How many of the bytes are the unit's for sure: the last two of a part were not examined for escapes.
        std::size_t trusted() const noexcept;
    };

    /// The first bytes of the unit, `most` or fewer.
    decoded head(brenik::h264_nal_reader& reader, std::size_t most);

    rbsp_bytes whole(brenik::h264_nal_reader& reader);

private:
    std::vector<unsigned char> block;
};

} // namespace orv_h264
