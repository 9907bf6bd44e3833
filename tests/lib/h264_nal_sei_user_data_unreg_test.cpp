#include <orv-utils-v4/h264/nal_sei_user_data_unreg.h>

#include "support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

namespace {

using brenik::h264_nal_sei_user_data_unreg;
using support::guarded_buffer;
using bytes = std::vector<unsigned char>;

const bytes debug_info = {0xDC, 0x45, 0xE9, 0xBD, 0xE6, 0xD9, 0x48, 0xB7,
                          0x96, 0x2C, 0xD8, 0x20, 0xD9, 0x23, 0xEE, 0xEF};

bool all_null(const h264_nal_sei_user_data_unreg& data)
{
    return data.uuid == nullptr && data.payload == nullptr && data.payload_fence == nullptr;
}

/// An object that points into another buffer.
h264_nal_sei_user_data_unreg used()
{
    static unsigned char other[20];
    return {std::begin(other), std::end(other)};
}

/// The payload by the constructor, and by set_ptr() into a new object and into a used one.
std::vector<h264_nal_sei_user_data_unreg> each_way(unsigned char* start, unsigned char* fence)
{
    std::vector<h264_nal_sei_user_data_unreg> made = {{start, fence}, {}, used()};
    made[1].set_ptr(start, fence);
    made[2].set_ptr(start, fence);
    return made;
}

iso_iec_11578_uuid uuid_of(const bytes& content)
{
    iso_iec_11578_uuid u;
    std::copy(content.begin(), content.end(), std::begin(u.bytes));
    return u;
}

} // namespace

TEST(UserDataUnreg, ANewOneIsNull)
{
    EXPECT_TRUE(all_null(h264_nal_sei_user_data_unreg()));
    EXPECT_FALSE(all_null(used()));
}

TEST(UserDataUnreg, FewerThan16BytesAreNull)
{
    for (std::size_t size = 0; size < 16; ++size) {
        const guarded_buffer buffer(size);
        for (const auto& data : each_way(buffer.begin(), buffer.end()))
            EXPECT_TRUE(all_null(data)) << size;
    }
}

TEST(UserDataUnreg, FewerThan16BytesAreNullWhateverLiesBehindThem)
{
    const guarded_buffer buffer(100);
    for (std::size_t size = 0; size < 16; ++size)
        for (const auto& data : each_way(buffer.begin() + 20, buffer.begin() + 20 + size))
            EXPECT_TRUE(all_null(data)) << size;
}

TEST(UserDataUnreg, From16BytesOnTheUserDataIsTheRest)
{
    for (std::size_t size = 16; size < 40; ++size) {
        const guarded_buffer buffer(size);
        for (const auto& data : each_way(buffer.begin(), buffer.end())) {
            EXPECT_EQ(static_cast<const void*>(buffer.begin()), data.uuid) << size;
            EXPECT_EQ(buffer.begin() + 16, data.payload) << size;
            EXPECT_EQ(buffer.end(), data.payload_fence) << size;
        }
        EXPECT_TRUE(guarded_buffer::untouched(buffer.begin(), buffer.end()));
    }
}

TEST(UserDataUnreg, ExactlySixteenBytesHaveNoUserData)
{
    const guarded_buffer buffer(debug_info);
    const h264_nal_sei_user_data_unreg data(buffer.begin(), buffer.end());
    ASSERT_NE(nullptr, data.uuid);
    EXPECT_EQ(data.payload_fence, data.payload);
    EXPECT_EQ(brenik::h264_c_uuid_libx264_debug_info, *data.uuid);
}

TEST(UserDataUnreg, AnyAddressWillDo)
{
    const guarded_buffer buffer(60);
    for (std::size_t offset = 0; offset < 16; ++offset) {
        std::copy(debug_info.begin(), debug_info.end(), buffer.begin() + offset);
        const h264_nal_sei_user_data_unreg data(buffer.begin() + offset, buffer.begin() + offset + 17);
        ASSERT_NE(nullptr, data.uuid);
        EXPECT_STREQ("libx264 debug info", brenik::h264_uuid_to_str(*data.uuid)) << offset;
        EXPECT_EQ(1, data.payload_fence - data.payload);
    }
}

TEST(UserDataUnreg, NullPointersAndABackwardRangeAreNull)
{
    const guarded_buffer buffer(60);
    for (const auto& data : each_way(nullptr, nullptr))
        EXPECT_TRUE(all_null(data));
    for (const auto& data : each_way(buffer.end(), buffer.begin()))
        EXPECT_TRUE(all_null(data));
}

TEST(UuidNames, TheDebugInformationHasItsBytes)
{
    const auto& constant = brenik::h264_c_uuid_libx264_debug_info;
    EXPECT_EQ(debug_info, bytes(std::begin(constant.bytes), std::end(constant.bytes)));
    EXPECT_STREQ("libx264 debug info", brenik::h264_uuid_to_str(uuid_of(debug_info)));
}

TEST(UuidNames, EveryOtherIsEmpty)
{
    for (std::size_t i = 0; i < debug_info.size(); ++i)
        for (unsigned int value = 0; value < 256; ++value) {
            if (value == debug_info[i])
                continue;
            bytes changed = debug_info;
            changed[i] = static_cast<unsigned char>(value);
            EXPECT_STREQ("", brenik::h264_uuid_to_str(uuid_of(changed))) << i << ' ' << value;
        }
    EXPECT_STREQ("", brenik::h264_uuid_to_str(iso_iec_11578_uuid{}));
}
