#include <orv-utils-v4/h264_legacy/decoder_configuration_record.h>

#include "support/compared_record.h"
#include "support/guarded_buffer.h"
#include "support/stream_builder.h"
#include "support/zero_heavy.h"

#include <orv-utils-v4/h264/nal_reader.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

namespace {

using support::bytes;
using support::guarded_buffer;
using support::pick;
using support::stream_builder;

/// A record, filled with other values before its parse.
struct parsed_record {
    guarded_buffer data;
    h264_AVCDecoderConfigurationRecord r;
    int result;

    explicit parsed_record(const bytes& content)
        : data(content),
          r(support::unset_record(data.begin())),
          result(h264_AVCDecoderConfigurationRecord_parse(&r, data.begin(), data.end()))
    {
    }

    /// The place of a pointer in the record, support::unset_place when it was not set.
    std::size_t offset(const unsigned char* pointer) const { return brenik::range_size(data.begin(), pointer); }
};

/// The six fixed bytes of a record with `sps_count` SPSs.
stream_builder head(unsigned int sps_count)
{
    return stream_builder().raw({1, 0x64, 0, 0x1F, 0xFF, static_cast<unsigned char>(0xE0 | sps_count)});
}

const bytes sps_entry = {0, 2, 0x67, 0x64};
const bytes pps_entry = {0, 2, 0x68, 0xEE};

/// Three SPSs and two PPSs, among them an empty one and one of more than 255 bytes, and an extension.
bytes several_sets()
{
    return head(3)
        .raw(sps_entry)
        .raw({0, 0})
        .raw({1, 4})
        .fill(260, 0x67)
        .raw({2})
        .raw(pps_entry)
        .raw({0, 1, 0x68})
        .raw({0xFD, 0xF8, 0xF8, 0});
}

} // namespace

TEST(DecoderConfigurationRecord, OneSetOfEachKind)
{
    const parsed_record p(head(1).raw(sps_entry).raw({1}).raw(pps_entry));
    EXPECT_EQ(0, p.result);
    EXPECT_EQ(1, p.r.configurationVersion);
    EXPECT_EQ(0x64, p.r.AVCProfileIndication);
    EXPECT_EQ(0, p.r.profile_compatibility);
    EXPECT_EQ(0x1F, p.r.AVCLevelIndication);
    EXPECT_EQ(3, p.r.lengthSizeMinusOne);
    EXPECT_EQ(1, p.r.numOfSequenceParameterSets);
    EXPECT_EQ(6U, p.offset(p.r.sps_list));
    EXPECT_EQ(10U, p.offset(p.r.sps_list_end));
    EXPECT_EQ(1, p.r.numOfPictureParameterSets);
    EXPECT_EQ(11U, p.offset(p.r.pps_list));
    EXPECT_EQ(p.data.end(), p.r.pps_list_end);
}

TEST(DecoderConfigurationRecord, ARecordThatEndsBehindAPpsCountOfZeroIsRefused)
{
    const parsed_record p(head(1).raw(sps_entry).raw({0}));
    EXPECT_EQ(-1, p.result);
    EXPECT_EQ(10U, p.offset(p.r.sps_list_end));
    EXPECT_EQ(0, p.r.numOfPictureParameterSets);
    EXPECT_EQ(11U, p.offset(p.r.pps_list));
    EXPECT_EQ(support::unset_place, p.offset(p.r.pps_list_end));
}

TEST(DecoderConfigurationRecord, ReservedBitsAreNotLookedAt)
{
    for (unsigned int byte = 0; byte < 256; ++byte) {
        const auto as_is = static_cast<unsigned char>(byte);
        const parsed_record p(stream_builder().raw({as_is, as_is, as_is, as_is, as_is, as_is}));
        EXPECT_EQ(-1, p.result);
        EXPECT_EQ(byte, p.r.configurationVersion);
        EXPECT_EQ(byte, p.r.AVCProfileIndication);
        EXPECT_EQ(byte, p.r.profile_compatibility);
        EXPECT_EQ(byte, p.r.AVCLevelIndication);
        EXPECT_EQ(byte % 4, p.r.lengthSizeMinusOne);
        EXPECT_EQ(byte % 32, p.r.numOfSequenceParameterSets);
        const parsed_record whole(stream_builder().raw({1, 2, 3, 4, as_is, 0, 0, 0}));
        EXPECT_EQ(0, whole.result);
    }
}

TEST(DecoderConfigurationRecord, ARangeOfNothingIsRefused)
{
    const bytes record = head(0).raw({0, 0});
    h264_AVCDecoderConfigurationRecord r;
    EXPECT_EQ(-1, h264_AVCDecoderConfigurationRecord_parse(&r, nullptr, nullptr));
    EXPECT_EQ(-1, h264_AVCDecoderConfigurationRecord_parse(&r, record.data() + 8, record.data()));
    EXPECT_EQ(nullptr, r.sps_list);
}

TEST(DecoderConfigurationRecord, ARecordWithoutAPpsCountIsRefused)
{
    const parsed_record p(head(1).raw(sps_entry));
    EXPECT_EQ(-1, p.result);
    EXPECT_EQ(p.data.end(), p.r.sps_list_end);
    EXPECT_EQ(0xA5, p.r.numOfPictureParameterSets);
    EXPECT_EQ(support::unset_place, p.offset(p.r.pps_list));
}

TEST(DecoderConfigurationRecord, AnEntryThatIsCutIsRefused)
{
    const parsed_record sps(head(1).raw({0, 3, 0x67, 0x64}));
    EXPECT_EQ(-1, sps.result);
    EXPECT_EQ(6U, sps.offset(sps.r.sps_list));
    EXPECT_EQ(support::unset_place, sps.offset(sps.r.sps_list_end));
    const parsed_record pps(head(0).raw({2}).raw(pps_entry).raw({0}));
    EXPECT_EQ(-1, pps.result);
    EXPECT_EQ(2, pps.r.numOfPictureParameterSets);
    EXPECT_EQ(7U, pps.offset(pps.r.pps_list));
    EXPECT_EQ(support::unset_place, pps.offset(pps.r.pps_list_end));
}

TEST(DecoderConfigurationRecord, TheLargestCounts)
{
    stream_builder record = head(31);
    for (int i = 0; i < 31; ++i)
        record.raw(sps_entry);
    record.raw({255});
    for (int i = 0; i < 255; ++i)
        record.raw({0, 0});
    const parsed_record p(record);
    EXPECT_EQ(0, p.result);
    EXPECT_EQ(31, p.r.numOfSequenceParameterSets);
    EXPECT_EQ(6U + 31 * 4, p.offset(p.r.sps_list_end));
    EXPECT_EQ(255, p.r.numOfPictureParameterSets);
    EXPECT_EQ(p.data.end(), p.r.pps_list_end);
}

TEST(DecoderConfigurationRecord, AnExtensionLiesBehindThePpsList)
{
    const bytes record = several_sets();
    const parsed_record p(record);
    EXPECT_EQ(0, p.result);
    EXPECT_EQ(6U + 4 + 2 + 262, p.offset(p.r.sps_list_end));
    EXPECT_EQ(record.size() - 4, p.offset(p.r.pps_list_end));
}

TEST(DecoderConfigurationRecord, EveryTruncationAgainstTheLiteralParse)
{
    const bytes whole = several_sets();
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const guarded_buffer part(bytes(whole.data(), whole.data() + size));
        EXPECT_EQ("", support::difference_of_records(part.begin(), size)) << size;
        EXPECT_EQ(size < whole.size() - 4, parsed_record(bytes(whole.data(), whole.data() + size)).result != 0);
    }
}

TEST(DecoderConfigurationRecord, RandomRecordsAgainstTheLiteralParse)
{
    support::random_source random(67);
    for (int round = 0; round < 20000; ++round) {
        stream_builder record = head(static_cast<unsigned int>(pick(random, 4)));
        record.raw(support::zero_heavy_up_to(random, 30));
        const guarded_buffer data(record);
        ASSERT_EQ("", support::difference_of_records(data.begin(), data.size()));
    }
}

TEST(DecoderConfigurationRecord, TheReaderWalksBothListsWithLengthsOfTwoBytes)
{
    const parsed_record p(head(2).raw(sps_entry).raw({0, 1, 0x67}).raw({1}).raw(pps_entry));
    ASSERT_EQ(0, p.result);
    const auto units = [](const unsigned char* start, const unsigned char* end) {
        auto* const first = const_cast<unsigned char*>(start);
        auto* const fence = const_cast<unsigned char*>(end);
        std::vector<bytes> all;
        brenik::h264_nal_reader reader(brenik::nalfmt_length2);
        for (reader.scan(first, fence); reader.found && !reader.incomplete; reader.scan(reader.next, fence))
            all.emplace_back(reader.nal_header, reader.next);
        return all;
    };
    EXPECT_EQ((std::vector<bytes>{{0x67, 0x64}, {0x67}}), units(p.r.sps_list, p.r.sps_list_end));
    EXPECT_EQ((std::vector<bytes>{{0x68, 0xEE}}), units(p.r.pps_list, p.r.pps_list_end));
}
