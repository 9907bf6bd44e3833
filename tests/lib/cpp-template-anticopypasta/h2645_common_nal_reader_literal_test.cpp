// The NAL reader against the literal one, on zero-heavy random bytes: every member after every call.
#include "support/guarded_buffer.h"
#include "support/literal_walk.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

namespace {

using support::bytes;
using support::guarded_buffer;
using support::literal_walk;
using support::pick;
using support::random_source;
using support::stream_builder;

constexpr std::size_t largest_stream = 120;

/// Streams at the end of one guarded buffer, blocks at the end of another.
class LiteralNalReader : public testing::Test {
protected:
    guarded_buffer input{largest_stream};
    guarded_buffer output{largest_stream};
    random_source random{5};

    unsigned char* place(const bytes& stream)
    {
        unsigned char* const start = input.last(stream.size());
        if (!stream.empty())
            std::memcpy(start, stream.data(), stream.size());
        return start;
    }

    /// One block, into memory that ends with it.
    std::string decode(literal_walk& walk, std::size_t size) { return walk.decode(output.last(size), size); }

    /// Decodes in blocks of random sizes until one comes back empty.
    void decode_in_blocks(literal_walk& walk)
    {
        do
            ASSERT_EQ("", decode(walk, 1 + pick(random, pick(random, 2) == 0 ? 6 : largest_stream)));
        while (walk.decoded() != 0);
    }

    /// Decodes the whole unit at once, after a rewind.
    void decode_again(literal_walk& walk)
    {
        ASSERT_EQ("", walk.rewind());
        ASSERT_EQ("", decode(walk, largest_stream));
        ASSERT_EQ("", decode(walk, largest_stream));
        ASSERT_EQ(0U, walk.decoded());
    }

    /// Scans [`start`, `end`) unit after unit.
    void read_units(literal_walk& walk, std::size_t start, std::size_t end)
    {
        ASSERT_EQ("", walk.scan(start, end));
        while (!walk.model.incomplete && walk.model.next <= end) {
            decode_in_blocks(walk);
            decode_again(walk);
            if (walk.model.next == end)
                break;
            ASSERT_EQ("", walk.scan(walk.model.next, end));
        }
        decode_again(walk);
        ASSERT_TRUE(walk.input_unchanged());
    }
};

/// Units of every kind in one framing.
bytes mixed_stream(unsigned int nalfmt)
{
    const bytes payloads[] = {{1, 0, 0, 3, 1, 2}, {}, {0, 0, 3}, {9, 0, 0}, {0, 0, 4, 0, 0, 3, 3}, {7, 0, 0, 0, 5}};
    const unsigned char headers[] = {support::sps, support::aud, support::forbidden, support::idr_slice};
    stream_builder stream;
    for (std::size_t i = 0; i < std::size(payloads); ++i) {
        const unsigned char header = headers[i % std::size(headers)];
        if (nalfmt == brenik::nalfmt_annexb)
            stream.zeros(i % 3).annexb_unit(header, payloads[i]);
        else
            stream.prefixed_unit(nalfmt, header, payloads[i]);
    }
    return stream;
}

} // namespace

TEST_F(LiteralNalReader, RandomBytesInEveryFraming)
{
    for (unsigned int nalfmt = 0; nalfmt <= 5; ++nalfmt)
        for (int round = 0; round < 3000 && !HasFatalFailure(); ++round) {
            SCOPED_TRACE(nalfmt);
            const bytes stream = support::zero_heavy_up_to(random, largest_stream);
            literal_walk walk(nalfmt, place(stream), stream.size());
            read_units(walk, 0, stream.size());
        }
}

TEST_F(LiteralNalReader, RandomBytesBehindAnUnmappedPage)
{
    const guarded_buffer after_page(largest_stream, guarded_buffer::touching::start);
    for (unsigned int nalfmt = 0; nalfmt <= 5; ++nalfmt)
        for (int round = 0; round < 300 && !HasFatalFailure(); ++round) {
            SCOPED_TRACE(nalfmt);
            const bytes stream = support::zero_heavy_up_to(random, largest_stream);
            std::copy(stream.begin(), stream.end(), after_page.begin());
            literal_walk walk(nalfmt, after_page.begin(), stream.size());
            read_units(walk, 0, stream.size());
        }
}

TEST_F(LiteralNalReader, RandomUnitsWithSmallPrefixes)
{
    for (unsigned int nalfmt = 1; nalfmt <= 4; ++nalfmt)
        for (int round = 0; round < 2000 && !HasFatalFailure(); ++round) {
            SCOPED_TRACE(nalfmt);
            stream_builder stream;
            while (stream.here() < 60)
                stream.prefix(nalfmt, static_cast<std::uint32_t>(pick(random, 20)))
                    .raw(support::zero_heavy_up_to(random, 19));
            const bytes whole = stream;
            literal_walk walk(nalfmt, place(whole), whole.size());
            read_units(walk, 0, whole.size());
        }
}

TEST_F(LiteralNalReader, DataCutAtEveryByte)
{
    for (unsigned int nalfmt = 1; nalfmt <= 5; ++nalfmt) {
        const bytes whole = mixed_stream(nalfmt);
        for (std::size_t cut = 0; cut <= whole.size() && !HasFatalFailure(); ++cut) {
            SCOPED_TRACE(testing::Message() << "framing " << nalfmt << ", cut at " << cut);
            const bytes part(whole.data(), whole.data() + cut);
            literal_walk walk(nalfmt, place(part), cut);
            read_units(walk, 0, cut);
        }
    }
}

TEST_F(LiteralNalReader, DataCutAtEveryByteAndContinued)
{
    for (unsigned int nalfmt = 1; nalfmt <= 5; ++nalfmt) {
        const bytes whole = mixed_stream(nalfmt);
        for (std::size_t cut = 0; cut <= whole.size() && !HasFatalFailure(); ++cut) {
            SCOPED_TRACE(testing::Message() << "framing " << nalfmt << ", cut at " << cut);
            literal_walk walk(nalfmt, place(whole), whole.size());
            read_units(walk, 0, cut);
            if (walk.model.next <= whole.size())
                read_units(walk, walk.model.next, whole.size());
        }
    }
}

TEST_F(LiteralNalReader, ScanAnnexBByItselfOnWhateverStateAScanLeft)
{
    for (int round = 0; round < 3000; ++round) {
        const bytes stream = support::zero_heavy_up_to(random, 30);
        literal_walk walk(brenik::nalfmt_annexb, place(stream), stream.size());
        ASSERT_EQ("", walk.scan(0, stream.size()));
        ASSERT_EQ("", walk.scan_annex_b(pick(random, stream.size() + 1), stream.size()));
    }
}

TEST_F(LiteralNalReader, EveryStringOfEightSmallBytesInEveryBlockSize)
{
    static constexpr unsigned char alphabet[] = {0, 1, 3, 4};
    for (unsigned int number = 0; number < 65536; ++number) {
        bytes stream = stream_builder().annexb_unit(support::sps, bytes(8));
        for (std::size_t i = 0; i < 8; ++i)
            stream[4 + i] = alphabet[number >> 2 * i & 3];
        literal_walk walk(brenik::nalfmt_annexb, place(stream), stream.size());
        ASSERT_EQ("", walk.scan(0, stream.size()));
        for (std::size_t size = 1; size <= 9; ++size) {
            walk.real.rewind();
            walk.model.rewind();
            ASSERT_EQ("", decode(walk, size)) << number << " into " << size;
        }
    }
}

TEST_F(LiteralNalReader, RandomUnitsDecodedInPlace)
{
    for (int round = 0; round < 3000; ++round) {
        const bytes stream =
            stream_builder().annexb_unit(support::sps, support::zero_heavy_up_to(random, largest_stream - 4));
        literal_walk walk(brenik::nalfmt_annexb, place(stream), stream.size());
        ASSERT_EQ("", walk.scan(0, stream.size()));
        unsigned char* out = walk.real.payload;
        for (std::size_t size = 1; size != 0;
             size = walk.model.decode_ptr < walk.model.decode_fence ? 1 + pick(random, 20) : 0) {
            const bytes expected = walk.model.block_decode(size);
            ASSERT_EQ(expected.size(), walk.real.block_decode(out, size));
            ASSERT_EQ(expected, bytes(out, out + expected.size()));
            out += expected.size();
        }
    }
}
