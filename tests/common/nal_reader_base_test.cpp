#include <orv-utils-v4/h2645_common/nal_reader.h>

#include "support/guarded_buffer.h"

#include <gtest/gtest.h>

namespace {

using brenik::h2645_common_nal_reader_base;

/// A base over `buffer` that found a unit with its payload at `payload_at`.
h2645_common_nal_reader_base found_unit(const support::guarded_buffer& buffer, std::size_t payload_at)
{
    h2645_common_nal_reader_base base(brenik::nalfmt_length4);
    base.found = true;
    base.data = buffer.begin();
    base.data_fence = buffer.end();
    base.payload = buffer.begin() + payload_at;
    return base;
}

} // namespace

TEST(NalReaderBase, TheDefaultFramingIsNone)
{
    EXPECT_EQ(brenik::nalfmt_none, h2645_common_nal_reader_base().nalfmt);
}

TEST(NalReaderBase, RewindOfAUnitOfKnownLengthEndsWhereTheUnitOrTheDataDoes)
{
    const support::guarded_buffer buffer(20);
    auto base = found_unit(buffer, 5);
    base.length_known = true;
    for (std::uint32_t length : {0U, 1U, 14U, 15U, 16U, 1000U, 0x7FFFFFFFU, 0xFFFFFFFEU}) {
        base.payload_length = length;
        base.rewind();
        EXPECT_EQ(buffer.begin() + 5, base.decode_ptr);
        EXPECT_EQ(length < 15 ? buffer.begin() + 5 + length : buffer.end(), base.decode_fence) << length;
    }
}

TEST(NalReaderBase, RewindOfAUnitOfUnknownLengthEndsAtTheDatasFence)
{
    const support::guarded_buffer buffer(20);
    auto base = found_unit(buffer, 5);
    base.payload_length = 3; // means nothing without length_known
    base.rewind();
    EXPECT_EQ(buffer.begin() + 5, base.decode_ptr);
    EXPECT_EQ(buffer.end(), base.decode_fence);
}

TEST(NalReaderBase, RewindWithoutAUnitLeavesNothingToDecode)
{
    const support::guarded_buffer buffer(20);
    auto base = found_unit(buffer, 5);
    base.rewind();
    base.found = false;
    base.length_known = true;
    base.rewind();
    EXPECT_EQ(nullptr, base.decode_ptr);
    EXPECT_EQ(nullptr, base.decode_fence);
}

TEST(NalReaderBase, GivingUpIsRecordedAndChangesNothingElse)
{
    const support::guarded_buffer buffer(20);
    auto base = found_unit(buffer, 5);
    base.next = buffer.begin() + 9;
    base.incomplete = true;
    auto expected = base;
    expected.gave_up = true;
    base.do_give_up();
    EXPECT_TRUE(base.gave_up);
    EXPECT_EQ(expected.next, base.next);
    EXPECT_EQ(expected.found, base.found);
    EXPECT_EQ(expected.incomplete, base.incomplete);
    EXPECT_EQ(expected.payload, base.payload);
    EXPECT_EQ(expected.decode_ptr, base.decode_ptr);
    EXPECT_EQ(expected.decode_fence, base.decode_fence);
    EXPECT_EQ(expected.nalfmt, base.nalfmt);
}
