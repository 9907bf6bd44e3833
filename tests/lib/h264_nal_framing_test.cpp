// What the writer writes, the reader reads: the same headers and the same payloads.
#include "support/guarded_buffer.h"
#include "support/guarded_writer.h"
#include "support/literal_nal.h"
#include "support/zero_heavy.h"

#include <orv-utils-v4/h264/nal_reader.h>
#include <orv-utils-v4/h264/nal_writer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using brenik::h264_nal_reader;
using support::bytes;
using support::guarded_buffer;
using support::pick;
using support::random_source;

struct unit {
    unsigned char header;
    bytes payload;
    unsigned int zero_bytes;
};

/// Zero-heavy units. A payload of H.264 never ends in a zero byte (clause 7.4.1): in Annex B it would be taken for the
/// zeros before the next start code.
std::vector<unit> random_units(random_source& random, std::size_t largest_payload)
{
    std::vector<unit> units(1 + pick(random, 5));
    for (unit& u : units) {
        u = {static_cast<unsigned char>(pick(random, 128)), support::zero_heavy_up_to(random, largest_payload),
             static_cast<unsigned int>(pick(random, 4))};
        if (!u.payload.empty() && u.payload.back() == 0)
            u.payload.back() = 0x80;
    }
    return units;
}

/// `units` in `nalfmt`, at the end of `w`'s buffer: the reader meets the unmapped page.
support::guarded_writer written_units(brenik::h2645_common_nalfmt nalfmt, const std::vector<unit>& units)
{
    literal::nal_writer measure{nalfmt, bytes(10000), 0};
    for (const unit& u : units)
        measure.block_encode(u.payload, {u.header / 32U, u.header % 32U, true}, u.zero_bytes);
    return {nalfmt, measure.write};
}

void write_units(support::guarded_writer& w, const std::vector<unit>& units)
{
    for (const unit& u : units)
        EXPECT_NE(0U, w.encode(u.header, u.payload, u.zero_bytes));
    EXPECT_TRUE(w.writer.full());
}

/// Decodes the unit `reader` found in blocks of `size` bytes, into memory that ends with each block.
bytes decode_in_blocks(h264_nal_reader& reader, std::size_t size)
{
    const guarded_buffer block(size);
    bytes rbsp;
    while (const std::size_t count = reader.block_decode(block.begin(), size))
        rbsp.insert(rbsp.end(), block.begin(), block.begin() + count);
    return rbsp;
}

/// The same by the literal reader.
bytes literal_blocks(const support::guarded_writer& w, std::size_t start, std::size_t size)
{
    literal::nal_reader model;
    model.stream = w.output();
    model.nalfmt = w.writer.nalfmt;
    model.scan(start, model.stream.size());
    bytes rbsp;
    for (bytes part = model.block_decode(size); !part.empty(); part = model.block_decode(size))
        rbsp.insert(rbsp.end(), part.begin(), part.end());
    return rbsp;
}

/// Reads back every unit, each in every block size.
void expect_units(const support::guarded_writer& w, const std::vector<unit>& units)
{
    h264_nal_reader reader(w.writer.nalfmt);
    unsigned char* next = w.writer.buffer;
    for (const unit& u : units) {
        const auto start = static_cast<std::size_t>(next - w.writer.buffer);
        reader.scan(next, w.writer.write);
        ASSERT_TRUE(reader.found);
        ASSERT_FALSE(reader.incomplete);
        ASSERT_EQ(u.header, reader.nal.encode_header());
        for (std::size_t size = 1; size <= u.payload.size() + 3; ++size) {
            reader.rewind();
            const bytes rbsp = decode_in_blocks(reader, size);
            // With three bytes of room left the start code behind the unit is examined too.
            if (size >= u.payload.size() + 3) {
                ASSERT_EQ(u.payload, rbsp) << "blocks of " << size;
            }
            ASSERT_EQ(literal_blocks(w, start, size), rbsp) << "blocks of " << size;
        }
        next = reader.next;
    }
    reader.scan(next, w.writer.write);
    EXPECT_FALSE(reader.found);
}

} // namespace

TEST(Framing, UnitsOfEveryFramingAreReadBack)
{
    random_source random(9);
    for (unsigned int nalfmt = 1; nalfmt <= 5; ++nalfmt)
        for (int round = 0; round < 60 && !testing::Test::HasFatalFailure(); ++round) {
            SCOPED_TRACE(nalfmt);
            const std::vector<unit> units = random_units(random, 30);
            support::guarded_writer w = written_units(static_cast<brenik::h2645_common_nalfmt>(nalfmt), units);
            write_units(w, units);
            expect_units(w, units);
        }
}

TEST(Framing, PrefixedPayloadsMayEndInZeros)
{
    for (unsigned int nalfmt = 1; nalfmt <= 4; ++nalfmt)
        for (std::size_t zeros = 0; zeros <= 9; ++zeros) {
            SCOPED_TRACE(testing::Message() << zeros << " zeros in framing " << nalfmt);
            const std::vector<unit> units = {{support::sps, support::stream_builder().raw({7}).zeros(zeros), 0},
                                             {support::pps, bytes(zeros, 0), 0},
                                             {support::aud, {}, 0}};
            support::guarded_writer w = written_units(static_cast<brenik::h2645_common_nalfmt>(nalfmt), units);
            write_units(w, units);
            expect_units(w, units);
        }
}

TEST(Framing, AnnexBPayloadsMayEndInAnEvenNumberOfZeros)
{
    for (std::size_t zeros = 0; zeros <= 10; zeros += 2) {
        SCOPED_TRACE(zeros);
        const std::vector<unit> units = {{support::sps, support::stream_builder().raw({7}).zeros(zeros), 0},
                                         {support::pps, {1}, 2}};
        support::guarded_writer w = written_units(brenik::nalfmt_annexb, units);
        write_units(w, units);
        expect_units(w, units);
    }
}

TEST(Framing, ALargeUnitOfRandomBytesIsReadBack)
{
    random_source random(10);
    for (unsigned int nalfmt = 3; nalfmt <= 5; ++nalfmt) {
        const bytes payload = support::stream_builder().raw(support::zero_heavy(random, 200000)).raw({0x80});
        support::guarded_writer w(static_cast<brenik::h2645_common_nalfmt>(nalfmt),
                                  brenik::h264_nal_writer::recommended_output_size(payload.size()));
        ASSERT_NE(0U, w.encode(support::idr_slice, payload, 1));
        h264_nal_reader reader(w.writer.nalfmt);
        reader.scan(w.writer.buffer, w.writer.write);
        ASSERT_TRUE(reader.found);
        EXPECT_EQ(payload, decode_in_blocks(reader, payload.size() + 3));
        EXPECT_EQ(w.writer.write, reader.find_unit_end());
    }
}
