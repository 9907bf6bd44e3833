#include <orv-utils-v4/h2645_common/sei_vlu32.h>

#include "support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

struct vlu32_case {
    std::vector<unsigned char> data;
    std::uint32_t value;
    std::size_t consumed;
};

TEST(SeiVlu32, BytesOfFFAddUpUntilAnotherByteEndsTheNumber)
{
    const std::vector<vlu32_case> cases = {
        {{0x00}, 0, 1},         {{0x05, 0x07}, 5, 1},   {{0xFE}, 254, 1},
        {{0xFF, 0x00}, 255, 2}, {{0xFF, 0x0A}, 265, 2}, {{0xFF, 0xFF, 0xFF, 0x01, 0x02}, 766, 4},
    };
    for (const vlu32_case& c : cases) {
        const support::guarded_buffer data(c.data);
        unsigned char* p = data.begin();
        EXPECT_EQ(brenik::h2645_common_read_xostylesei_vlu32(p, data.end()), c.value);
        EXPECT_EQ(p, data.begin() + c.consumed);
    }
}

TEST(SeiVlu32, ARunOfFFThatReachesTheFenceFails)
{
    for (const std::size_t size : {0U, 1U, 2U, 1000U}) {
        const support::guarded_buffer data(std::vector<unsigned char>(size, 0xFF));
        unsigned char* p = data.begin();
        EXPECT_EQ(brenik::h2645_common_read_xostylesei_vlu32(p, data.end()), 0xFFFFFFFFU);
        EXPECT_EQ(p, data.end());
    }
}

TEST(SeiVlu32, AnEmptyRangeMayBeTwoNullPointers)
{
    unsigned char* p = nullptr;
    EXPECT_EQ(brenik::h2645_common_read_xostylesei_vlu32(p, nullptr), 0xFFFFFFFFU);
}

TEST(SeiVlu32, ASumAbove32BitsIsTheLargestNumberAndNoFailure)
{
    std::vector<unsigned char> run(0x1010102, 0xFF); // 0x1010102 * 255 is 2^32 + 254
    run.push_back(0);
    unsigned char* p = run.data();
    EXPECT_EQ(brenik::h2645_common_read_xostylesei_vlu32(p, run.data() + run.size()), 0xFFFFFFFEU);
    EXPECT_EQ(p, run.data() + run.size());
}

} // namespace
