// One legacy write of a payload that ends at an unmapped page, into an output that does, too.
#pragma once

#include "support/guarded_buffer.h"
#include "support/literal_legacy_nal.h"
#include "support/stream_builder.h"

#include <orv-utils-v4/h264_legacy/nal_writer.h>

#include <cstddef>

namespace support {

/// The buffer and the result.
struct legacy_nal_written {
    guarded_buffer buffer;
    int result;

    legacy_nal_written(std::size_t out_size, unsigned int nal_length_size, unsigned char header, const bytes& payload)
        : buffer(out_size)
    {
        const guarded_buffer data(payload);
        result = h264_nal_write(buffer.begin(), out_size, data.begin(), data.size(), nal_length_size, header);
    }

    /// As many bytes as the result says.
    bytes output() const { return first(static_cast<std::size_t>(result < 0 ? 0 : result)); }

    bytes first(std::size_t count) const { return bytes(buffer.begin(), buffer.begin() + count); }

    /// Whether nothing was written from byte `count` on, nor beside the buffer.
    bool untouched_from(std::size_t count) const
    {
        return guarded_buffer::untouched(buffer.begin() + count, buffer.end()) && buffer.surroundings_untouched();
    }
};

} // namespace support
