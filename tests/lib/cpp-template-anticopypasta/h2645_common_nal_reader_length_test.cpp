// The NAL reader over length-prefixed units.
#include "support/scanned.h"

#include <orv-utils-v4/h264/nal_reader.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

namespace {

using brenik::h2645_common_nalfmt;
using brenik::h264_nal_reader;
using support::bytes;
using support::null_offset;
using support::scanned;
using support::stream_builder;

constexpr h2645_common_nalfmt length_framings[] = {brenik::nalfmt_length1, brenik::nalfmt_length2,
                                                   brenik::nalfmt_length3, brenik::nalfmt_length4};

/// Runs `claim` for each length-prefixed framing.
template <typename Claim>
void for_each_length_framing(Claim claim)
{
    for (const h2645_common_nalfmt nalfmt : length_framings) {
        SCOPED_TRACE(nalfmt);
        claim(nalfmt, std::size_t{nalfmt});
    }
}

} // namespace

TEST(NalReader, PrefixedUnitsAreFoundOneAfterAnother)
{
    for_each_length_framing([](h2645_common_nalfmt nalfmt, std::size_t k) {
        const bytes payload = {1, 2, 3, 4};
        scanned s(nalfmt,
                  stream_builder().prefixed_unit(k, support::sps, payload).prefixed_unit(k, support::idr_slice, {}));
        EXPECT_TRUE(s.reader.found);
        EXPECT_FALSE(s.reader.incomplete);
        EXPECT_FALSE(s.reader.gave_up);
        EXPECT_TRUE(s.reader.length_known);
        EXPECT_EQ(brenik::h264_nal_unit_type_sps, s.reader.nal.nal_unit_type);
        EXPECT_EQ(3, s.reader.nal.nal_ref_idc);
        EXPECT_EQ(0U, s.offset(s.reader.nal_start));
        EXPECT_EQ(k, s.offset(s.reader.nal_header));
        EXPECT_EQ(k + 1, s.offset(s.reader.payload));
        EXPECT_EQ(k + 5, s.next());
        EXPECT_EQ(5U, s.reader.nal_length);
        EXPECT_EQ(4U, s.reader.payload_length);
        EXPECT_EQ(k + 1, s.offset(s.reader.decode_ptr));
        EXPECT_EQ(k + 5, s.offset(s.reader.decode_fence));
        EXPECT_EQ(payload, s.decode_all());

        s.scan_from(s.next());
        EXPECT_TRUE(s.reader.found);
        EXPECT_FALSE(s.reader.incomplete);
        EXPECT_EQ(brenik::h264_nal_unit_type_slice_idr, s.reader.nal.nal_unit_type);
        EXPECT_EQ(0U, s.reader.payload_length);
        EXPECT_EQ(s.size(), s.next());
        EXPECT_EQ(bytes{}, s.decode_all());

        s.scan_from(s.next());
        EXPECT_FALSE(s.reader.found);
        EXPECT_TRUE(s.reader.incomplete);
        EXPECT_EQ(s.size(), s.next());
    });
}

TEST(NalReader, APrefixAndAHeaderByteAreTheLeastThatIsLookedAt)
{
    for_each_length_framing([](h2645_common_nalfmt nalfmt, std::size_t k) {
        const bytes whole = stream_builder().prefixed_unit(k, support::sps, {});
        for (std::size_t size = 0; size <= k; ++size) {
            scanned s(nalfmt, bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
            EXPECT_FALSE(s.reader.found) << size;
            EXPECT_TRUE(s.reader.incomplete) << size;
            EXPECT_FALSE(s.reader.gave_up) << size;
            EXPECT_EQ(0U, s.next()) << size;
            EXPECT_EQ(nullptr, s.reader.nal_start) << size;
            support::expect_nothing_to_decode(s);
        }
        EXPECT_TRUE(scanned(nalfmt, whole).reader.found);
        EXPECT_FALSE(scanned(nalfmt, whole).reader.incomplete);
    });
}

TEST(NalReader, AUnitCutShortIsFoundAndIncompleteWithNextAtItsPrefix)
{
    scanned s(brenik::nalfmt_length4, {0x00, 0x00, 0x00, 0x05, 0x67, 0x01, 0x02});
    EXPECT_TRUE(s.reader.found);
    EXPECT_TRUE(s.reader.incomplete);
    EXPECT_FALSE(s.reader.gave_up);
    EXPECT_TRUE(s.reader.length_known);
    EXPECT_EQ(0U, s.next());
    EXPECT_EQ(5U, s.reader.nal_length);
    EXPECT_EQ(s.size(), s.offset(s.reader.decode_fence));
    EXPECT_EQ((bytes{0x01, 0x02}), s.decode_all());
}

TEST(NalReader, TheLargestPrefixIsJustAnIncompleteUnit)
{
    for_each_length_framing([](h2645_common_nalfmt nalfmt, std::size_t k) {
        scanned s(nalfmt, stream_builder().fill(k, 0xFF).unit(support::sps, {7}));
        EXPECT_TRUE(s.reader.found);
        EXPECT_TRUE(s.reader.incomplete);
        EXPECT_EQ(0U, s.next());
        EXPECT_EQ((std::uint64_t{1} << 8 * k) - 1, s.reader.nal_length);
        EXPECT_EQ((bytes{7}), s.decode_all());
    });
}

TEST(NalReader, APrefixOfZeroIsGivenUpOnWithTheRestOfTheData)
{
    for_each_length_framing([](h2645_common_nalfmt nalfmt, std::size_t k) {
        scanned s(nalfmt, stream_builder().prefix(k, 0).prefixed_unit(k, support::sps, {1, 2}));
        EXPECT_FALSE(s.reader.found);
        EXPECT_TRUE(s.reader.gave_up);
        EXPECT_FALSE(s.reader.incomplete);
        EXPECT_FALSE(s.reader.length_known);
        EXPECT_FALSE(s.reader.nal.valid);
        EXPECT_EQ(s.size(), s.next());
        EXPECT_EQ(0U, s.reader.nal_length);
        EXPECT_EQ(0U, s.offset(s.reader.nal_start));
        EXPECT_EQ(nullptr, s.reader.payload);
        support::expect_nothing_to_decode(s);
    });
}

TEST(NalReader, APrefixedUnitWithAForbiddenHeaderIsSkipped)
{
    for_each_length_framing([](h2645_common_nalfmt nalfmt, std::size_t k) {
        scanned s(nalfmt, stream_builder()
                              .prefixed_unit(k, support::idr_slice, {9})
                              .prefixed_unit(k, support::forbidden, {1, 2})
                              .prefixed_unit(k, support::pps, {3}));
        s.scan_from(k + 2);
        EXPECT_FALSE(s.reader.found);
        EXPECT_TRUE(s.reader.gave_up);
        EXPECT_FALSE(s.reader.incomplete);
        EXPECT_FALSE(s.reader.nal.valid);
        EXPECT_EQ(brenik::h264_nal_unit_type_slice_idr, s.reader.nal.nal_unit_type) << "kept from the unit before";
        EXPECT_TRUE(s.reader.length_known);
        EXPECT_EQ(2 * k + 3, s.offset(s.reader.payload));
        EXPECT_EQ(2 * k + 5, s.next());
        support::expect_nothing_to_decode(s);

        s.scan_from(s.next());
        EXPECT_TRUE(s.reader.found);
        EXPECT_FALSE(s.reader.gave_up);
        EXPECT_EQ(brenik::h264_nal_unit_type_pps, s.reader.nal.nal_unit_type);
        EXPECT_EQ((bytes{3}), s.decode_all());
    });
}

TEST(NalReader, AForbiddenUnitCutShortLeavesNextBehindTheUnit)
{
    scanned s(brenik::nalfmt_length4, stream_builder().prefix(4, 0xFFFFFFFF).unit(support::forbidden, {1}));
    EXPECT_FALSE(s.reader.found);
    EXPECT_TRUE(s.reader.gave_up);
    EXPECT_FALSE(s.reader.incomplete);
    EXPECT_EQ(4 + std::size_t{0xFFFFFFFF}, s.next());
    support::expect_nothing_to_decode(s);
}

TEST(NalReader, PrefixedScansOfTooLittleDataKeepTheLengthsOfTheLastUnit)
{
    scanned s(brenik::nalfmt_length2, stream_builder().prefixed_unit(2, support::sps, {1, 2}).fill(1, 0));
    s.scan_from(s.next());
    EXPECT_TRUE(s.reader.incomplete);
    EXPECT_EQ(3U, s.reader.nal_length);
    EXPECT_EQ(2U, s.reader.payload_length);
    EXPECT_EQ(2U, s.offset(s.reader.nal_header));
    EXPECT_EQ(null_offset, s.offset(s.reader.payload));
    support::expect_nothing_to_decode(s);
}

TEST(NalReader, PrefixedScansLeaveTheZeroCountAtZero)
{
    scanned s(brenik::nalfmt_length1, stream_builder().prefixed_unit(1, support::sps, {0, 0, 0}));
    s.reader.zero_count = 5;
    s.scan_from(0);
    EXPECT_EQ(0U, s.reader.zero_count);
}

TEST(NalReader, ARangeThatEndsBeforeItsStartHasTooLittleData)
{
    const support::guarded_buffer buffer(stream_builder().prefixed_unit(1, support::sps, {1, 2}));
    h264_nal_reader reader(brenik::nalfmt_length1);
    reader.scan(buffer.end(), buffer.begin());
    EXPECT_TRUE(reader.incomplete);
    EXPECT_EQ(buffer.end(), reader.next);
}
