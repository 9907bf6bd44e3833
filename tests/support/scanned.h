// A NAL reader after one scan of bytes that end at an unmapped page.
#pragma once

#include "support/guarded_buffer.h"
#include "support/stream_builder.h"

#include <orv-utils-v4/h264/nal_reader.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

namespace support {

constexpr std::size_t null_offset = SIZE_MAX;

/// The buffer, the reader, and pointers as offsets into the buffer.
struct scanned {
    guarded_buffer buffer;
    brenik::h264_nal_reader reader;

    scanned(brenik::h2645_common_nalfmt nalfmt, const bytes& stream) : buffer(stream), reader(nalfmt)
    {
        reader.scan(buffer.begin(), buffer.end());
    }

    void scan_from(std::size_t start) { reader.scan(buffer.begin() + start, buffer.end()); }

    std::size_t offset(const unsigned char* pointer) const
    {
        const auto address = reinterpret_cast<std::uintptr_t>(pointer);
        return pointer == nullptr ? null_offset : address - reinterpret_cast<std::uintptr_t>(buffer.begin());
    }

    std::size_t next() const { return offset(reader.next); }
    std::size_t size() const { return buffer.size(); }

    /// One block_decode into a block of exactly `size` bytes.
    bytes decode(std::size_t size)
    {
        guarded_buffer block(size);
        const std::size_t count = reader.block_decode(block.begin(), size);
        return bytes(block.begin(), block.begin() + count);
    }

    /// block_decode into a block that holds any unit of the buffer.
    bytes decode_all() { return decode(buffer.size() + 3); }
};

/// Before a rewind and after it.
inline void expect_nothing_to_decode(scanned& s)
{
    EXPECT_EQ(nullptr, s.reader.decode_ptr);
    EXPECT_EQ(nullptr, s.reader.decode_fence);
    s.reader.rewind();
    EXPECT_EQ(nullptr, s.reader.decode_ptr);
    EXPECT_EQ(nullptr, s.reader.decode_fence);
    EXPECT_EQ(nullptr, s.reader.find_unit_end());
    EXPECT_EQ(bytes{}, s.decode_all());
}

} // namespace support
