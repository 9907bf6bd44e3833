// Bytes that go from one range to another.
#pragma once

#include "bytescan/block.h"

#include <orv-utils-v4/h2645_common/advance_past.h>

#include <cstddef>
#include <cstdint>

namespace brenik::bytescan {

/// Bytes on their way from one range to another.
struct passage {
    const unsigned char* read;
    const unsigned char* read_fence;
    unsigned char* write;
    unsigned char* write_fence;

    /// Whether a byte may be written before it is read, when they are more than one at a time.
    bool runs_into_itself() const noexcept
    {
        const auto address = [](const unsigned char* p) { return reinterpret_cast<std::uintptr_t>(p); };
        return address(read) < address(write) && address(write) < address(read_fence);
    }

    /// Whether there is a block and what is read of the bytes behind it, and room for `most_written`.
    bool holds_block(std::size_t most_written) const noexcept
    {
        return range_size(read, read_fence) >= 2 * block_bytes && range_size(write, write_fence) >= most_written;
    }

    void advance(std::size_t bytes_read, std::size_t bytes_written) noexcept
    {
        read += bytes_read;
        write += bytes_written;
    }
};

} // namespace brenik::bytescan
