// The NAL reader over Annex B.
#include "support/scanned.h"
#include "support/whole_message.h"

#include <orv-utils-v4/h264/nal_reader.h>

#include <gtest/gtest.h>

#include <csignal>

namespace {

using brenik::h264_nal_reader;
using support::bytes;
using support::scanned;
using support::stream_builder;

struct scanned_annexb : scanned {
    explicit scanned_annexb(const bytes& stream) : scanned(brenik::nalfmt_annexb, stream) {}
};

void expect_not_found(scanned& s, std::size_t next)
{
    EXPECT_FALSE(s.reader.found);
    EXPECT_TRUE(s.reader.incomplete);
    EXPECT_FALSE(s.reader.gave_up);
    EXPECT_FALSE(s.reader.nal.valid);
    EXPECT_EQ(next, s.next());
    EXPECT_EQ(nullptr, s.reader.nal_start);
    EXPECT_EQ(nullptr, s.reader.payload);
    support::expect_nothing_to_decode(s);
}

} // namespace

TEST(NalReader, AnnexBUnitWithAFourByteStartCode)
{
    const scanned_annexb s({0x00, 0x00, 0x00, 0x01, 0x67, 0x42, 0x00});
    EXPECT_TRUE(s.reader.found);
    EXPECT_FALSE(s.reader.incomplete);
    EXPECT_FALSE(s.reader.gave_up);
    EXPECT_FALSE(s.reader.length_known);
    EXPECT_EQ(1U, s.offset(s.reader.nal_start));
    EXPECT_EQ(1U, s.reader.zero_count);
    EXPECT_EQ(brenik::h264_nal_unit_type_sps, s.reader.nal.nal_unit_type);
    EXPECT_EQ(3, s.reader.nal.nal_ref_idc);
    EXPECT_TRUE(s.reader.nal.valid);
    EXPECT_EQ(4U, s.offset(s.reader.nal_header));
    EXPECT_EQ(5U, s.offset(s.reader.payload));
    EXPECT_EQ(5U, s.next());
    EXPECT_EQ(0U, s.reader.nal_length);
    EXPECT_EQ(0U, s.reader.payload_length);
    EXPECT_EQ(5U, s.offset(s.reader.decode_ptr));
    EXPECT_EQ(s.size(), s.offset(s.reader.decode_fence));
    EXPECT_EQ(s.buffer.begin(), s.reader.data);
    EXPECT_EQ(s.buffer.end(), s.reader.data_fence);
}

TEST(NalReader, AnnexBUnitsAreFoundOneAfterAnother)
{
    scanned_annexb s(stream_builder()
                         .annexb_unit(support::sps, {1, 2, 3})
                         .zeros(1)
                         .annexb_unit(support::pps, {})
                         .annexb_unit(support::idr_slice, {4, 5}));
    EXPECT_EQ(brenik::h264_nal_unit_type_sps, s.reader.nal.nal_unit_type);
    EXPECT_EQ((bytes{1, 2, 3}), s.decode_all());
    s.scan_from(s.next());
    EXPECT_EQ(brenik::h264_nal_unit_type_pps, s.reader.nal.nal_unit_type);
    EXPECT_EQ(1U, s.reader.zero_count);
    EXPECT_EQ(bytes{}, s.decode_all());
    s.scan_from(s.next());
    EXPECT_EQ(brenik::h264_nal_unit_type_slice_idr, s.reader.nal.nal_unit_type);
    EXPECT_EQ(0U, s.reader.zero_count);
    EXPECT_EQ((bytes{4, 5}), s.decode_all());
    s.scan_from(s.next());
    expect_not_found(s, s.size());
}

TEST(NalReader, AnnexBZeroCountIsTheNumberOfZerosBeforeTheStartCode)
{
    for (std::size_t zeros = 0; zeros <= 300; zeros += zeros < 10 ? 1 : 29)
        for (std::size_t junk = 0; junk <= 4; ++junk) {
            const scanned_annexb s(stream_builder().junk(junk).zeros(zeros).annexb_unit(support::aud, {}));
            ASSERT_TRUE(s.reader.found);
            EXPECT_EQ(zeros, s.reader.zero_count) << junk << " bytes of junk";
            EXPECT_EQ(junk + zeros, s.offset(s.reader.nal_start));
        }
}

TEST(NalReader, AnnexBDataWithoutAUnitIsIncompleteWithNextFourBytesBeforeTheEnd)
{
    for (std::size_t size = 0; size <= 20; ++size) {
        const std::size_t next = size < 4 ? size : size - 4;
        scanned_annexb junk(stream_builder().junk(size));
        EXPECT_EQ(0U, junk.reader.zero_count);
        expect_not_found(junk, next);
        scanned_annexb zeros(bytes(size, 0));
        EXPECT_EQ(size < 4 ? 0 : size - 3, zeros.reader.zero_count) << "one per probe";
        expect_not_found(zeros, next);
        scanned_annexb no_header(stream_builder().junk(size).start_code());
        expect_not_found(no_header, size == 0 ? 3 : size - 1);
    }
}

TEST(NalReader, AnnexBForbiddenHeaderIsPassedOver)
{
    scanned_annexb s(stream_builder()
                         .annexb_unit(support::forbidden, {1, 2})
                         .zeros(2)
                         .annexb_unit(support::forbidden, {})
                         .annexb_unit(support::pps, {3}));
    EXPECT_TRUE(s.reader.found);
    EXPECT_FALSE(s.reader.gave_up);
    EXPECT_FALSE(s.reader.incomplete);
    EXPECT_EQ(brenik::h264_nal_unit_type_pps, s.reader.nal.nal_unit_type);
    EXPECT_EQ(12U, s.offset(s.reader.nal_start));
    EXPECT_EQ(0U, s.reader.zero_count);
    EXPECT_EQ((bytes{3}), s.decode_all());
}

TEST(NalReader, AnnexBForbiddenHeaderAloneIsIncompleteAndKeepsTheFieldsOfTheLastUnit)
{
    scanned_annexb s(stream_builder().annexb_unit(support::idr_slice, {}).annexb_unit(support::forbidden, {}));
    s.scan_from(4);
    EXPECT_EQ(3, s.reader.nal.nal_ref_idc);
    EXPECT_EQ(brenik::h264_nal_unit_type_slice_idr, s.reader.nal.nal_unit_type);
    EXPECT_EQ(3U, s.offset(s.reader.nal_header));
    expect_not_found(s, 4);
}

TEST(NalReader, AnnexBScanForgetsTheLengthsOfAPrefixedUnit)
{
    scanned s(brenik::nalfmt_length1, stream_builder().prefixed_unit(1, support::sps, {0, 0, 1, support::pps}));
    ASSERT_EQ(5U, s.reader.nal_length);
    s.reader.nalfmt = brenik::nalfmt_annexb;
    s.scan_from(0);
    EXPECT_TRUE(s.reader.found);
    EXPECT_FALSE(s.reader.length_known);
    EXPECT_EQ(0U, s.reader.nal_length);
    EXPECT_EQ(0U, s.reader.payload_length);
    EXPECT_EQ(2U, s.offset(s.reader.nal_start));
}

TEST(NalReader, AnnexBScanThatFindsNothingClearsWhatTheLastScanFound)
{
    scanned_annexb s(stream_builder().zeros(3).annexb_unit(support::sps, {1, 2, 3, 4, 5}));
    ASSERT_TRUE(s.reader.found);
    s.reader.gave_up = true;
    s.scan_from(s.next());
    EXPECT_EQ(0U, s.reader.zero_count);
    expect_not_found(s, s.size() - 4);
}

TEST(NalReader, ScanAnnexBByItselfContinuesTheZeroCountAndKnowsNoLength)
{
    const support::guarded_buffer buffer(stream_builder().zeros(2).annexb_unit(support::sps, {}));
    h264_nal_reader reader;
    reader.zero_count = 40;
    reader.length_known = true;
    reader.scan_annex_b(buffer.begin(), buffer.end());
    EXPECT_TRUE(reader.found);
    EXPECT_EQ(42U, reader.zero_count);
    EXPECT_FALSE(reader.length_known);
    EXPECT_EQ(buffer.end(), reader.next);
    EXPECT_EQ(nullptr, reader.data) << "the range is stored by scan()";
    EXPECT_EQ(nullptr, reader.decode_ptr) << "rewinding is scan()'s";
}

TEST(NalReader, ScanAnnexBIsNotIncompleteWhileTheHeaderIsValid)
{
    const support::guarded_buffer buffer(bytes(2, 0));
    h264_nal_reader reader;
    reader.nal.valid = true;
    reader.scan_annex_b(buffer.begin(), buffer.end());
    EXPECT_FALSE(reader.incomplete);
    EXPECT_EQ(nullptr, reader.next) << "no probe fitted";
    reader.nal.valid = false;
    reader.scan_annex_b(buffer.begin(), buffer.end());
    EXPECT_TRUE(reader.incomplete);
}

TEST(NalReader, AnnexBScanOfAnEmptyRangeIsNoAssertion)
{
    scanned_annexb s(bytes{});
    s.reader.scan_annex_b(s.buffer.begin(), s.buffer.begin());
    expect_not_found(s, 0);
}

TEST(NalReaderDeathTest, AnnexBRangeThatEndsBeforeItsStartIsAnAssertion)
{
    const support::guarded_buffer buffer(8);
    h264_nal_reader reader(brenik::nalfmt_annexb);
    const std::string text = support::whole_message(
        "lib/cpp-template-anticopypasta/h2645_common_nal_reader\\.template:[0-9]+: assertion failed: "
        "data_ptr <= fence\n");
    EXPECT_EXIT(reader.scan(buffer.begin() + 1, buffer.begin()), testing::KilledBySignal(SIGABRT), text);
    EXPECT_EXIT(reader.scan_annex_b(buffer.end(), buffer.begin()), testing::KilledBySignal(SIGABRT), text);
}
