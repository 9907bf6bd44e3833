// Input in pieces, as the head of h2645_common/nal_reader.h says to read it: the same units as from the whole.
#include "support/guarded_buffer.h"
#include "support/stream_files.h"
#include "support/zero_heavy.h"

#include <orv-utils-v4/h264/nal_reader.h>
#include <orv-utils-v4/h2645_common/advance_past.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace {

using brenik::h2645_common_nalfmt;
using brenik::h264_nal_reader;
using brenik::range_size;
using support::bytes;
using support::guarded_buffer;
using support::stream_builder;

const std::string a_stream = ORV_TEST_STREAMS "/main_bpyramid_weighted";

struct read_unit {
    int header;
    bytes rbsp;
    bool operator==(const read_unit&) const = default;
};

std::ostream& operator<<(std::ostream& out, const read_unit& u)
{
    return out << "unit " << u.header << " of " << u.rbsp.size() << " bytes";
}

using read_units = std::vector<read_unit>;

read_unit decoded(h264_nal_reader& reader)
{
    bytes block(range_size(reader.nal_start, reader.data_fence) + 3);
    block.resize(reader.block_decode(block.data(), block.size()));
    return {reader.nal.encode_header(), block};
}

/// Whether there is more to find from `next` on in a buffer that ends at `fence`.
bool goes_on(const h264_nal_reader& reader, const unsigned char* fence)
{
    const bool skipped = reader.gave_up && reader.nal_length != 0;
    return (reader.found || skipped) && !reader.incomplete && range_size(reader.next, fence) != 0;
}

read_units units_of_whole(const bytes& stream, h2645_common_nalfmt nalfmt)
{
    const guarded_buffer buffer(stream);
    read_units units;
    h264_nal_reader reader(nalfmt);
    unsigned char* start = buffer.begin();
    do {
        reader.scan(start, buffer.end());
        if (reader.found)
            units.push_back(decoded(reader));
        start = reader.next;
    } while (goes_on(reader, buffer.end()));
    return units;
}

/// A caller who gets its input piece by piece.
class piecewise {
public:
    explicit piecewise(h2645_common_nalfmt nalfmt) : reader(nalfmt) {}

    void take(const bytes& piece, bool last)
    {
        if (stopped)
            return;
        kept.insert(kept.end(), piece.begin(), piece.end());
        const guarded_buffer buffer(kept);
        const std::size_t skipped = std::min(to_skip, kept.size());
        to_skip -= skipped;
        const unsigned char* const first_kept = find_units(buffer.begin() + skipped, buffer.end(), last);
        kept.assign(first_kept, static_cast<const unsigned char*>(buffer.end()));
    }

    read_units units;

private:
    /// The units that are whole; the result is the first byte to keep.
    const unsigned char* find_units(unsigned char* start, unsigned char* end, bool last)
    {
        for (;; start = reader.next) {
            reader.scan(start, end);
            if (const unsigned char* const keep = last ? nullptr : first_to_keep(start, end))
                return keep;
            if (reader.found)
                units.push_back(decoded(reader));
            stopped = last ? !goes_on(reader, end) : reader.gave_up && reader.nal_length == 0;
            if (stopped)
                return end;
            if (range_size(start, end) < range_size(start, reader.next)) {
                to_skip = range_size(end, reader.next);
                return end;
            }
        }
    }

    /// Null when what the scan found is whole.
    const unsigned char* first_to_keep(const unsigned char* start, const unsigned char* end) const
    {
        if (reader.nalfmt != brenik::nalfmt_annexb)
            return reader.incomplete ? reader.next : nullptr;
        if (!reader.found)
            return end - std::min<std::size_t>(3, range_size(start, end));
        return reader.find_unit_end() == reader.data_fence ? reader.nal_start : nullptr;
    }

    h264_nal_reader reader;
    bytes kept;
    std::size_t to_skip = 0; // bytes of the input to come
    bool stopped = false;    // at a length of 0
};

read_units units_in_pieces(const bytes& stream, h2645_common_nalfmt nalfmt, std::size_t piece)
{
    piecewise caller(nalfmt);
    std::size_t at = 0;
    for (; stream.size() - at > piece; at += piece)
        caller.take(bytes(stream.data() + at, stream.data() + at + piece), false);
    caller.take(bytes(stream.data() + at, stream.data() + stream.size()), true);
    return caller.units;
}

void expect_same_in_pieces(const bytes& stream, h2645_common_nalfmt nalfmt)
{
    const read_units whole = units_of_whole(stream, nalfmt);
    for (const std::size_t piece : {1U, 7U, 188U, 1400U})
        EXPECT_EQ(whole, units_in_pieces(stream, nalfmt, piece)) << "pieces of " << piece;
}

TEST(NalReaderPieces, AnAnnexBStreamGivesTheSameUnits)
{
    const bytes stream = support::read_file(a_stream + ".264");
    EXPECT_EQ(63U, units_of_whole(stream, brenik::nalfmt_annexb).size());
    expect_same_in_pieces(stream, brenik::nalfmt_annexb);
}

TEST(NalReaderPieces, ALengthPrefixedStreamGivesTheSameUnits)
{
    const bytes stream = support::read_file(a_stream + ".length4");
    EXPECT_EQ(63U, units_of_whole(stream, brenik::nalfmt_length4).size());
    expect_same_in_pieces(stream, brenik::nalfmt_length4);
}

TEST(NalReaderPieces, ForbiddenHeadersPaddingAndACutEndGiveTheSameUnits)
{
    const stream_builder annexb = stream_builder()
                                      .junk(5)
                                      .annexb_unit(support::forbidden, bytes(10, 5))
                                      .zeros(9)
                                      .annexb_unit(support::sps, {0x42, 0, 0, 3, 1})
                                      .zeros(3)
                                      .annexb_unit(support::aud, {})
                                      .annexb_unit(support::idr_slice, bytes(3000, 7))
                                      .zeros(2);
    EXPECT_EQ(3U, units_of_whole(annexb, brenik::nalfmt_annexb).size());
    expect_same_in_pieces(annexb, brenik::nalfmt_annexb);

    const stream_builder prefixed = stream_builder()
                                        .prefixed_unit(4, support::forbidden, bytes(2000, 5))
                                        .prefixed_unit(4, support::sps, {0x42, 0, 0, 3, 1})
                                        .prefixed_unit(4, support::idr_slice, {1, 0, 0, 1, 2, 3})
                                        .prefix(4, 5000)
                                        .unit(support::idr_slice, bytes(3000, 7));
    EXPECT_EQ(3U, units_of_whole(prefixed, brenik::nalfmt_length4).size());
    expect_same_in_pieces(prefixed, brenik::nalfmt_length4);
}

TEST(NalReaderPieces, RandomBytesGiveTheSameUnits)
{
    support::random_source random(1);
    for (int round = 0; round < 200; ++round) {
        const bytes stream = support::zero_heavy_up_to(random, 300);
        SCOPED_TRACE(round);
        expect_same_in_pieces(stream, brenik::nalfmt_annexb);
        expect_same_in_pieces(stream, brenik::nalfmt_length1);
    }
}

TEST(NalReaderPieces, ALengthOfZeroEndsAReadingOfFoundUnitsAlone)
{
    const bytes stream =
        stream_builder().prefixed_unit(4, support::aud, {0x10}).prefix(4, 0).prefixed_unit(4, support::sps, {0x42});
    const guarded_buffer buffer(stream);
    h264_nal_reader reader(brenik::nalfmt_length4);
    reader.scan(buffer.begin(), buffer.end());
    ASSERT_TRUE(reader.found);
    reader.scan(reader.next, buffer.end());
    EXPECT_FALSE(reader.found);
    EXPECT_FALSE(reader.incomplete);
    EXPECT_TRUE(reader.gave_up);
    EXPECT_EQ(0U, reader.nal_length);
    EXPECT_EQ(buffer.end(), reader.next);
    reader.scan(reader.nal_start + 4, buffer.end()); // behind the prefix
    ASSERT_TRUE(reader.found);
    EXPECT_EQ(brenik::h264_nal_unit_type_sps, reader.nal.nal_unit_type);
}

} // namespace
