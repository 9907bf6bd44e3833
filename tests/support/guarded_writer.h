// A NAL writer over a buffer that ends at an unmapped page.
#pragma once

#include "support/guarded_buffer.h"
#include "support/stream_builder.h"

#include <orv-utils-v4/h264/nal_writer.h>

#include <cstddef>

namespace support {

/// A header to be written, from its byte.
inline brenik::h264_nal header(unsigned char byte)
{
    brenik::h264_nal nal;
    nal.decode_header(byte);
    return nal;
}

/// The buffer and the writer.
struct guarded_writer {
    guarded_buffer buffer;
    brenik::h264_nal_writer writer;

    guarded_writer(brenik::h2645_common_nalfmt nalfmt, std::size_t size)
        : buffer(size), writer(buffer.begin(), buffer.begin(), buffer.end(), nalfmt)
    {
    }

    /// block_encode of a payload that ends at an unmapped page.
    std::size_t encode(const brenik::h264_nal& nal, const bytes& payload, unsigned int zero_bytes = 0)
    {
        const guarded_buffer data(payload);
        return writer.block_encode(data.begin(), data.size(), nal, zero_bytes);
    }

    std::size_t encode(unsigned char header_byte, const bytes& payload, unsigned int zero_bytes = 0)
    {
        return encode(header(header_byte), payload, zero_bytes);
    }

    /// What lies between `buffer` and `write`.
    bytes output() const { return bytes(writer.buffer, writer.write); }
};

} // namespace support
