// The NAL reader made, without framing, and with a framing there is none for.
#include "support/scanned.h"
#include "support/whole_message.h"

#include <orv-utils-v4/h264/nal_reader.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

namespace {

using brenik::h2645_common_nalfmt;
using brenik::h264_nal_reader;
using support::scanned;
using support::stream_builder;

} // namespace

TEST(NalReader, ANewReaderIsZeroButForItsFraming)
{
    h264_nal_reader reader(brenik::nalfmt_length3);
    EXPECT_EQ(brenik::nalfmt_length3, reader.nalfmt);
    EXPECT_EQ(nullptr, reader.next);
    EXPECT_EQ(nullptr, reader.data);
    EXPECT_EQ(nullptr, reader.data_fence);
    EXPECT_EQ(nullptr, reader.nal_header);
    EXPECT_EQ(nullptr, reader.nal_start);
    EXPECT_EQ(nullptr, reader.payload);
    EXPECT_EQ(0U, reader.nal_length);
    EXPECT_EQ(0U, reader.payload_length);
    EXPECT_EQ(0U, reader.zero_count);
    EXPECT_FALSE(reader.found);
    EXPECT_FALSE(reader.gave_up);
    EXPECT_FALSE(reader.incomplete);
    EXPECT_FALSE(reader.length_known);
    EXPECT_EQ(nullptr, reader.decode_ptr);
    EXPECT_EQ(nullptr, reader.decode_fence);
    EXPECT_EQ(0, reader.nal.nal_ref_idc);
    EXPECT_EQ(brenik::h264_nal_unit_type_unspecified_0, reader.nal.nal_unit_type);
    EXPECT_FALSE(reader.nal.valid);
}

TEST(NalReader, ANewReaderHasNothingToDecode)
{
    h264_nal_reader reader{};
    EXPECT_EQ(brenik::nalfmt_none, reader.nalfmt);
    unsigned char out = 0x77;
    EXPECT_EQ(0U, reader.block_decode(&out, 1));
    EXPECT_EQ(0U, reader.block_decode(nullptr, 0));
    EXPECT_EQ(0x77, out);
    EXPECT_EQ(nullptr, reader.find_unit_end());
}

TEST(NalReader, WithoutFramingNothingIsFoundAndTheDataIsPassedOver)
{
    scanned s(brenik::nalfmt_none, stream_builder().annexb_unit(support::sps, {1, 2, 3}));
    EXPECT_FALSE(s.reader.found);
    EXPECT_FALSE(s.reader.gave_up);
    EXPECT_FALSE(s.reader.incomplete);
    EXPECT_FALSE(s.reader.nal.valid);
    EXPECT_EQ(s.size(), s.next());
    EXPECT_EQ(nullptr, s.reader.nal_start);
    EXPECT_EQ(s.buffer.begin(), s.reader.data);
    EXPECT_EQ(s.buffer.end(), s.reader.data_fence);
    support::expect_nothing_to_decode(s);
}

TEST(NalReader, WithoutFramingBothLengthsOfTheLastUnitAreForgotten)
{
    scanned s(brenik::nalfmt_length2, stream_builder().prefixed_unit(2, support::sps, {1, 2}));
    ASSERT_TRUE(s.reader.found);
    s.reader.incomplete = true;
    s.reader.gave_up = true;
    s.reader.zero_count = 9;
    s.reader.nalfmt = brenik::nalfmt_none;
    s.scan_from(0);
    EXPECT_EQ(0U, s.reader.nal_length);
    EXPECT_EQ(0U, s.reader.payload_length);
    EXPECT_EQ(0U, s.reader.zero_count);
    EXPECT_FALSE(s.reader.incomplete);
    EXPECT_FALSE(s.reader.gave_up);
    EXPECT_FALSE(s.reader.length_known);
    EXPECT_EQ(nullptr, s.reader.payload);
    EXPECT_EQ(nullptr, s.reader.nal_start);
    support::expect_nothing_to_decode(s);
}

TEST(NalReader, AnEmptyRangeMayBeTwoNullPointers)
{
    for (unsigned int nalfmt = 0; nalfmt <= 5; ++nalfmt) {
        h264_nal_reader reader(static_cast<h2645_common_nalfmt>(nalfmt));
        reader.scan(nullptr, nullptr);
        EXPECT_FALSE(reader.found);
        EXPECT_EQ(nalfmt != brenik::nalfmt_none, reader.incomplete) << nalfmt;
        EXPECT_EQ(nullptr, reader.next);
        EXPECT_EQ(0U, reader.block_decode(nullptr, 0));
    }
}

namespace {

h264_nal_reader aborting_reader;
unsigned char aborting_data[] = {0, 0, 1, 0x67};

/// Ends the process by 42 when the reader was left as it should be before abort().
void judge_aborting_reader(int)
{
    const bool as_stated = aborting_reader.nal_start == nullptr && aborting_reader.next == aborting_data + 4 &&
                           aborting_reader.data == aborting_data && aborting_reader.data_fence == aborting_data + 4 &&
                           !aborting_reader.found && !aborting_reader.gave_up && !aborting_reader.nal.valid;
    std::_Exit(as_stated ? 42 : 43);
}

} // namespace

TEST(NalReaderDeathTest, AFramingAbove5Aborts)
{
    for (unsigned int nalfmt : {6U, 255U, 256U, 0xFFFFFFFFU}) {
        h264_nal_reader reader(static_cast<h2645_common_nalfmt>(nalfmt));
        EXPECT_EXIT(reader.scan(aborting_data, aborting_data + 4), testing::KilledBySignal(SIGABRT),
                    support::whole_message(""))
            << nalfmt;
    }
}

TEST(NalReaderDeathTest, BeforeTheAbortNextStandsAtTheEnd)
{
    aborting_reader.nalfmt = brenik::nalfmt_annexb;
    aborting_reader.scan(aborting_data, aborting_data + 4);
    ASSERT_TRUE(aborting_reader.found);
    aborting_reader.nalfmt = static_cast<h2645_common_nalfmt>(6);
    EXPECT_EXIT(
        {
            std::signal(SIGABRT, judge_aborting_reader);
            aborting_reader.next = nullptr;
            aborting_reader.scan(aborting_data, aborting_data + 4);
        },
        testing::ExitedWithCode(42), "");
}
