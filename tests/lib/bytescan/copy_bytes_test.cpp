#include "bytescan/copy_bytes.h"

#include "support/guarded_buffer.h"
#include "support/stream_builder.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

using brenik::bytescan::copy_bytes;
using support::bytes;
using support::guarded_buffer;

bytes rising(std::size_t size)
{
    bytes data(size);
    std::iota(data.begin(), data.end(), static_cast<unsigned char>(1));
    return data;
}

} // namespace

TEST(CopyBytes, EverySizeIsCopiedAndNothingElseIsTouched)
{
    for (std::size_t size = 0; size <= 100; ++size) {
        const bytes data = rising(size);
        for (const auto touching : {guarded_buffer::touching::start, guarded_buffer::touching::end}) {
            const guarded_buffer from(data, touching);
            const guarded_buffer out(bytes(size, 0xEE), touching);
            copy_bytes(out.begin(), from.begin(), size);
            EXPECT_EQ(data, bytes(out.begin(), out.end())) << size;
        }
        bytes wide(size + 2, 0xEE);
        copy_bytes(wide.data() + 1, data.data(), size);
        EXPECT_EQ(0xEE, wide.front()) << size;
        EXPECT_EQ(0xEE, wide.back()) << size;
    }
}

TEST(CopyBytes, RangesMayOverlapBothWays)
{
    for (std::size_t size = 1; size <= 80; ++size)
        for (std::size_t distance = 0; distance <= 40; ++distance) {
            bytes down = rising(size + distance);
            const bytes moved_down(down.begin() + static_cast<std::ptrdiff_t>(distance), down.end());
            copy_bytes(down.data(), down.data() + distance, size);
            EXPECT_EQ(moved_down, bytes(down.begin(), down.begin() + static_cast<std::ptrdiff_t>(size)));

            bytes up = rising(size + distance);
            const bytes moved_up(up.begin(), up.begin() + static_cast<std::ptrdiff_t>(size));
            copy_bytes(up.data() + distance, up.data(), size);
            EXPECT_EQ(moved_up, bytes(up.begin() + static_cast<std::ptrdiff_t>(distance), up.end()));
        }
}

TEST(CopyBytes, NothingIsCopiedFromNowhere)
{
    copy_bytes(nullptr, nullptr, 0);
}
