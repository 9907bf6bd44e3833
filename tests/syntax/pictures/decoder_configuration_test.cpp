// The AVC decoder configuration record: read, written, cut, damaged, and at its limits.
#include "support/guarded_buffer.h"
#include "support/literal_decoder_configuration_record.h"
#include "support/stream_builder.h"

#include <orv-utils-v4/h264_syntax.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using namespace orv_utils_v4::h264;
using support::bytes;
using support::guarded_buffer;
using support::stream_builder;
using record = AVCDecoderConfigurationRecord;
using why = configuration_reason;

/// An SPS of High, two PPSs and an SPS extension, none of them whole: 30 bytes up to the extension.
const bytes head = {1, 100, 8, 31, 0xFF, 0xE1, 0, 5, 0x67, 100, 8, 31, 9, 2, 0, 3, 0x68, 1, 2, 0, 1, 0x68};
const bytes extension = {0xFE, 0xFA, 0xF9, 1, 0, 2, 0x6D, 7};
const bytes whole = stream_builder().raw(head).raw(extension);

bytes content(const unit_view& unit)
{
    return {unit.bytes, unit.bytes + unit.size};
}

/// How the reading went, as text.
std::string told(const configuration_outcome& result)
{
    std::string text = result.element.name();
    if (result.element.depth() != 0)
        text += "[" + std::to_string(result.element.index(0)) + "]";
    return text + (text.empty() ? "" : ": ") + text_of(result.why) + " at " + std::to_string(result.bytes);
}

/// What is written, into room that ends where nothing may be written.
bytes written(const record& x)
{
    const configuration_outcome counted = write(x, nullptr, 0);
    EXPECT_EQ(counted.why, why::no_room) << told(counted);
    const guarded_buffer room(counted.bytes);
    const configuration_outcome result = write(x, room.begin(), room.size());
    EXPECT_EQ(told(result), " at " + std::to_string(room.size()));
    EXPECT_TRUE(room.surroundings_untouched());
    return {room.begin(), room.end()};
}

TEST(DecoderConfiguration, EveryElementIsReadFromItsPlace)
{
    const guarded_buffer in(whole);
    record x;
    EXPECT_EQ(told(read(x, in.begin(), in.size())), " at 30");
    EXPECT_EQ(x.configurationVersion, 1);
    EXPECT_EQ(x.AVCProfileIndication, 100);
    EXPECT_EQ(x.profile_compatibility, 8);
    EXPECT_EQ(x.AVCLevelIndication, 31);
    EXPECT_EQ(x.lengthSizeMinusOne, 3);
    ASSERT_EQ(x.sequenceParameterSetNALUnit.size(), 1U);
    EXPECT_EQ(content(x.sequenceParameterSetNALUnit[0]), (bytes{0x67, 100, 8, 31, 9}));
    EXPECT_EQ(x.sequenceParameterSetNALUnit[0].bytes, in.begin() + 8);
    ASSERT_EQ(x.pictureParameterSetNALUnit.size(), 2U);
    EXPECT_EQ(content(x.pictureParameterSetNALUnit[0]), (bytes{0x68, 1, 2}));
    EXPECT_EQ(content(x.pictureParameterSetNALUnit[1]), (bytes{0x68}));
    EXPECT_TRUE(x.extension_present);
    EXPECT_EQ(x.chroma_format, 2);
    EXPECT_EQ(x.bit_depth_luma_minus8, 2);
    EXPECT_EQ(x.bit_depth_chroma_minus8, 1);
    ASSERT_EQ(x.sequenceParameterSetExtNALUnit.size(), 1U);
    EXPECT_EQ(content(x.sequenceParameterSetExtNALUnit[0]), (bytes{0x6D, 7}));
    EXPECT_EQ(x.behind.size, 0U);
}

TEST(DecoderConfiguration, WhatWasReadIsWrittenAsTheSameBytes)
{
    for (const bytes& in : {whole, head, bytes{1, 66, 0, 30, 0xFD, 0xE0, 0}, bytes{1, 44, 0, 30, 0xFC, 0xE0, 0}}) {
        record x;
        ASSERT_TRUE(read(x, in.data(), in.size()).sound());
        EXPECT_EQ(written(x), in);
    }
}

TEST(DecoderConfiguration, AHighRecordWithoutExtensionIsSound)
{
    for (const unsigned char profile : bytes{100, 110, 122, 144, 244, 44, 118, 128}) {
        bytes in = head;
        in[1] = profile;
        record x;
        EXPECT_EQ(told(read(x, in.data(), in.size())), " at 22") << int{profile};
        EXPECT_FALSE(x.extension_present);
        EXPECT_EQ(x.chroma_format, 1);
    }
}

TEST(DecoderConfiguration, ProfilesWithoutAnExtensionLeaveItsBytesBehind)
{
    for (const unsigned char profile : bytes{66, 77, 88}) {
        bytes in = whole;
        in[1] = profile;
        record x;
        EXPECT_EQ(told(read(x, in.data(), in.size())), " at 22") << int{profile};
        EXPECT_FALSE(x.extension_present);
        EXPECT_EQ(content(x.behind), extension);
        in.resize(head.size());
        EXPECT_EQ(written(x), in);
    }
}

TEST(DecoderConfiguration, BytesBehindTheExtensionAreTold)
{
    const bytes in = stream_builder().raw(whole).raw({7, 8, 9});
    record x;
    EXPECT_EQ(told(read(x, in.data(), in.size())), " at 30");
    EXPECT_EQ(content(x.behind), (bytes{7, 8, 9}));
    EXPECT_EQ(written(x), whole);
}

TEST(DecoderConfiguration, ReservedBitsArePassedOverAndWrittenAsOnes)
{
    bytes in = whole;
    for (const std::size_t at : {4U, 5U, 22U, 23U, 24U})
        in[at] = static_cast<unsigned char>(in[at] & (at == 5 ? 0x1F : at < 23 ? 0x03 : 0x07));
    record x;
    ASSERT_TRUE(read(x, in.data(), in.size()).sound());
    EXPECT_EQ(written(x), whole);
}

TEST(DecoderConfiguration, AnotherVersionIsNotRead)
{
    for (const unsigned char version : bytes{0, 2, 255}) {
        bytes in = whole;
        in[0] = version;
        record x;
        EXPECT_EQ(told(read(x, in.data(), in.size())),
                  "configurationVersion: not 1, so that the record cannot be read at 0");
        EXPECT_EQ(x.configurationVersion, version);
        EXPECT_EQ(x.AVCProfileIndication, 0);
        EXPECT_TRUE(x.sequenceParameterSetNALUnit.empty());
        EXPECT_EQ(write(x, nullptr, 0).why, why::unknown_version);
    }
}

TEST(DecoderConfiguration, ACutRecordTellsTheElementWhereItEnds)
{
    const std::vector<std::pair<std::size_t, const char*>> ends = {
        {0, "configurationVersion: the record ends at 0"},
        {1, "AVCProfileIndication: the record ends at 1"},
        {2, "profile_compatibility: the record ends at 2"},
        {3, "AVCLevelIndication: the record ends at 3"},
        {4, "lengthSizeMinusOne: the record ends at 4"},
        {5, "numOfSequenceParameterSets: the record ends at 5"},
        {7, "sequenceParameterSetLength[0]: the record ends at 6"},
        {12, "sequenceParameterSetNALUnit[0]: the record ends at 8"},
        {13, "numOfPictureParameterSets: the record ends at 13"},
        {15, "pictureParameterSetLength[0]: the record ends at 14"},
        {18, "pictureParameterSetNALUnit[0]: the record ends at 16"},
        {20, "pictureParameterSetLength[1]: the record ends at 19"},
        {21, "pictureParameterSetNALUnit[1]: the record ends at 21"},
        {22, " at 22"},
        {23, "bit_depth_luma_minus8: the record ends at 23"},
        {24, "bit_depth_chroma_minus8: the record ends at 24"},
        {25, "numOfSequenceParameterSetExt: the record ends at 25"},
        {27, "sequenceParameterSetExtLength[0]: the record ends at 26"},
        {29, "sequenceParameterSetExtNALUnit[0]: the record ends at 28"},
        {30, " at 30"},
    };
    for (const auto& [size, message] : ends) {
        const guarded_buffer in(bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        record x;
        EXPECT_EQ(told(read(x, in.begin(), in.size())), message) << size;
    }
}

TEST(DecoderConfiguration, WhatWasReadBeforeTheEndStays)
{
    record all;
    ASSERT_TRUE(read(all, whole.data(), whole.size()).sound());
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const guarded_buffer in(bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        record x;
        x.behind = all.behind; // of an earlier reading
        read(x, in.begin(), in.size());
        EXPECT_EQ(x.AVCProfileIndication, size > 1 ? 100 : 0) << size;
        EXPECT_EQ(x.sequenceParameterSetNALUnit.size(), size >= 13 ? 1U : 0U) << size;
        EXPECT_EQ(x.pictureParameterSetNALUnit.size(), size >= 22 ? 2U : size >= 19 ? 1U : 0U) << size;
        EXPECT_EQ(x.chroma_format, size > 22 ? 2 : 1) << size;
        EXPECT_EQ(x.extension_present, size >= 25) << size;
        EXPECT_EQ(x.behind.bytes == nullptr, size != 22) << size;
    }
}

/// What has to hold of any bytes: nothing is read outside of them, the views lie in them, and what is sound is written
/// as it was, reserved bits aside.
void expect_sound_reading(const bytes& from)
{
    const guarded_buffer in(from);
    record x;
    const configuration_outcome result = read(x, in.begin(), in.size());
    EXPECT_LE(result.bytes, in.size());
    const auto inside = [&](const auto& list) {
        return std::all_of(list.begin(), list.end(), [&](const unit_view& unit) {
            return unit.bytes >= in.begin() && unit.bytes + unit.size <= in.end();
        });
    };
    EXPECT_TRUE(inside(x.sequenceParameterSetNALUnit) && inside(x.pictureParameterSetNALUnit) &&
                inside(x.sequenceParameterSetExtNALUnit));
    if (!result.sound())
        return;
    const bytes again = written(x);
    EXPECT_EQ(again.size(), result.bytes);
    record of_again;
    EXPECT_TRUE(read(of_again, again.data(), again.size()).sound());
    x.behind = {};
    of_again.behind = {};
    EXPECT_TRUE(of_again == x);
}

TEST(DecoderConfiguration, AnyByteMayHaveAnyValue)
{
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (unsigned value = 0; value < 256; ++value) {
            bytes in = whole;
            in[at] = static_cast<unsigned char>(value);
            expect_sound_reading(in);
        }
    }
}

TEST(DecoderConfiguration, RandomBytesReadAsTheLiteralModelReadsThem)
{
    std::mt19937 random(14496);
    constexpr unsigned char soup[] = {0, 0, 0, 1, 2, 3, 0xE1, 0xFF, 100};
    for (int round = 0; round < 3000 && !HasFailure(); ++round) {
        bytes in(random() % 40);
        for (unsigned char& byte : in)
            byte = soup[random() % std::size(soup)];
        if (!in.empty())
            in[0] = 1;
        expect_sound_reading(in);
        literal::decoder_configuration_record model = {};
        const bool model_reads = model.parse(in);
        record x;
        read(x, in.data(), in.size());
        if (!model_reads) // it fails where the PPSs end with their number 0, too
            continue;
        EXPECT_EQ(x.AVCProfileIndication, model.AVCProfileIndication);
        EXPECT_EQ(x.lengthSizeMinusOne, model.lengthSizeMinusOne);
        EXPECT_EQ(x.sequenceParameterSetNALUnit.size(), model.numOfSequenceParameterSets);
        EXPECT_EQ(x.pictureParameterSetNALUnit.size(), model.numOfPictureParameterSets);
        if (!x.pictureParameterSetNALUnit.empty()) {
            const unit_view& last = x.pictureParameterSetNALUnit.back();
            EXPECT_EQ(last.bytes + last.size, in.data() + model.pps_list_end);
        }
    }
}

/// A record with as many sets as it may have.
record fullest(const bytes& unit)
{
    record x;
    x.AVCProfileIndication = 100;
    x.extension_present = true;
    x.sequenceParameterSetNALUnit.resize(record::most_sps);
    x.pictureParameterSetNALUnit.resize(record::most_pps);
    x.sequenceParameterSetExtNALUnit.resize(record::most_sps_extensions);
    const auto fill = [&](auto& list) {
        for (unit_view& view : list)
            view = {unit.data(), unit.size()};
    };
    fill(x.sequenceParameterSetNALUnit);
    fill(x.pictureParameterSetNALUnit);
    fill(x.sequenceParameterSetExtNALUnit);
    return x;
}

TEST(DecoderConfiguration, TheMostSetsAreWrittenAndReadAgain)
{
    const bytes unit = {0x67, 1, 2};
    const record x = fullest(unit);
    const bytes made = written(x);
    EXPECT_EQ(made.size(), 11U + (31 + 255 + 255) * 5);
    record again;
    EXPECT_EQ(told(read(again, made.data(), made.size())), " at " + std::to_string(made.size()));
    again.behind = {};
    EXPECT_TRUE(again == x);
    again.pictureParameterSetNALUnit[254].size = 2;
    EXPECT_FALSE(again == x);
}

TEST(DecoderConfiguration, ASetOf65535BytesIsWrittenAndALongerOneIsRefused)
{
    const bytes longest(record::most_set_bytes, 0x68);
    const bytes longer(record::most_set_bytes + 1, 0x68);
    record x;
    x.pictureParameterSetNALUnit.resize(2);
    x.pictureParameterSetNALUnit[0] = {longest.data(), longest.size()};
    const bytes made = written(x);
    record again;
    ASSERT_TRUE(read(again, made.data(), made.size()).sound());
    EXPECT_EQ(content(again.pictureParameterSetNALUnit[0]), longest);

    x.pictureParameterSetNALUnit[1] = {longer.data(), longer.size()};
    EXPECT_EQ(told(write(x, nullptr, 0)), "pictureParameterSetLength[1]: more than 65535 bytes at 65544");
    bytes room(200000);
    EXPECT_EQ(write(x, room.data(), room.size()).why, why::set_too_long);
}

TEST(DecoderConfiguration, ValuesAboveTheirBitsAreRefused)
{
    record x;
    x.AVCProfileIndication = 100;
    x.extension_present = true;
    x.lengthSizeMinusOne = 4;
    EXPECT_EQ(told(write(x, nullptr, 0)), "lengthSizeMinusOne: more than its bits hold at 4");
    x.lengthSizeMinusOne = 2; // no value of the standard, but it can be told
    x.chroma_format = 4;
    EXPECT_EQ(told(write(x, nullptr, 0)), "chroma_format: more than its bits hold at 7");
    x.chroma_format = 3;
    x.bit_depth_luma_minus8 = 8;
    EXPECT_EQ(told(write(x, nullptr, 0)), "bit_depth_luma_minus8: more than its bits hold at 8");
    x.bit_depth_luma_minus8 = 7;
    x.bit_depth_chroma_minus8 = 255;
    EXPECT_EQ(told(write(x, nullptr, 0)), "bit_depth_chroma_minus8: more than its bits hold at 9");
    x.bit_depth_chroma_minus8 = 7;
    EXPECT_EQ(written(x), (bytes{1, 100, 0, 0, 0xFE, 0xE0, 0, 0xFF, 0xFF, 0xFF, 0}));
}

TEST(DecoderConfiguration, AnExtensionInAProfileWithoutOneIsRefused)
{
    record x;
    x.extension_present = true;
    for (const std::uint8_t profile : bytes{66, 77, 88}) {
        x.AVCProfileIndication = profile;
        EXPECT_EQ(told(write(x, nullptr, 0)), "chroma_format: the profile has no extension at 7");
    }
}

TEST(DecoderConfiguration, NothingIsWrittenOutsideOfAnyRoom)
{
    record x;
    ASSERT_TRUE(read(x, whole.data(), whole.size()).sound());
    for (std::size_t size = 0; size <= whole.size() + 2; ++size) {
        const guarded_buffer room(size);
        const configuration_outcome result = write(x, room.begin(), room.size());
        EXPECT_EQ(result.why, size < whole.size() ? why::no_room : why::none) << size;
        EXPECT_EQ(result.bytes, whole.size());
        const std::size_t used = std::min(size, whole.size());
        EXPECT_TRUE(std::equal(room.begin(), room.begin() + used, whole.begin())) << size;
        EXPECT_TRUE(guarded_buffer::untouched(room.begin() + used, room.end())) << size;
        EXPECT_TRUE(room.surroundings_untouched()) << size;
    }
}

TEST(DecoderConfiguration, EveryReasonHasAText)
{
    for (int reason = 1; reason <= static_cast<int>(why::no_memory); ++reason)
        EXPECT_STRNE(text_of(static_cast<why>(reason)), "") << reason;
    EXPECT_STREQ(text_of(why::none), "");
    EXPECT_STREQ(text_of(static_cast<why>(static_cast<int>(why::no_memory) + 1)), "");
}

} // namespace
