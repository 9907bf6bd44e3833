// The legacy NAL scanner against the literal one: every member and every byte of the output after every scan.
#include "support/guarded_buffer.h"
#include "support/legacy_nal_walk.h"
#include "support/stream_files.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace {

using support::bytes;
using support::guarded_buffer;
using support::legacy_nal_walk;
using support::pick;
using support::random_source;
using support::stream_builder;

constexpr std::size_t largest_stream = 120;

/// Streams at the end of one guarded buffer, outputs at the end of another.
class LegacyNalLiteral : public testing::Test {
protected:
    guarded_buffer input{largest_stream};
    guarded_buffer output{largest_stream};
    random_source random{63};

    unsigned char* place(const bytes& stream) const
    {
        return std::copy_backward(stream.begin(), stream.end(), input.end());
    }

    /// Scans [`start`, `end`) unit after unit into outputs of `room` bytes, until a scan finds nothing.
    void read_units(legacy_nal_walk& walk, std::size_t start, std::size_t end, unsigned int nal_length_size,
                    std::size_t room) const
    {
        do {
            ASSERT_EQ("", walk.scan(start, end, nal_length_size, output.last(room), room));
            start = walk.next;
        } while (walk.model.found != 0);
        ASSERT_TRUE(walk.input_unchanged());
        ASSERT_TRUE(output.surroundings_untouched());
    }

    /// Every unit of `stream`, whole and cut anywhere.
    void read_whole_and_cut(const bytes& stream, unsigned int nal_length_size) const
    {
        for (std::size_t cut = 0; cut <= stream.size() && !HasFatalFailure(); ++cut) {
            SCOPED_TRACE(testing::Message() << "prefixes of " << nal_length_size << ", cut at " << cut);
            const bytes part(stream.data(), stream.data() + cut);
            legacy_nal_walk walk(place(part), cut);
            read_units(walk, 0, cut, nal_length_size, largest_stream);
        }
    }
};

/// Every string of `size` bytes out of 0, 1, 3 and 4.
bytes small_bytes(unsigned int number, std::size_t size)
{
    static constexpr unsigned char alphabet[] = {0, 1, 3, 4};
    bytes made(size);
    for (std::size_t i = 0; i < size; ++i)
        made[i] = alphabet[number >> 2 * i & 3];
    return made;
}

} // namespace

TEST_F(LegacyNalLiteral, RandomBytesInEveryFraming)
{
    for (unsigned int k = 0; k <= 4; ++k)
        for (int round = 0; round < 2000 && !HasFatalFailure(); ++round) {
            SCOPED_TRACE(k);
            const bytes stream = support::zero_heavy_up_to(random, largest_stream);
            const guarded_buffer behind_page(stream, guarded_buffer::touching::start);
            for (const unsigned char* const start : {place(stream), behind_page.begin()}) {
                legacy_nal_walk walk(start, stream.size());
                read_units(walk, 0, stream.size(), k, pick(random, largest_stream));
            }
        }
}

TEST_F(LegacyNalLiteral, RandomUnitsWithSmallPrefixes)
{
    for (unsigned int k = 1; k <= 4; ++k)
        for (int round = 0; round < 3000 && !HasFatalFailure(); ++round) {
            SCOPED_TRACE(k);
            stream_builder stream;
            while (stream.here() < 60) {
                const bytes unit = support::zero_heavy_up_to(random, 19);
                const std::size_t length = pick(random, 12) == 0 ? pick(random, 20) : unit.size();
                stream.prefix(k, static_cast<std::uint32_t>(length)).raw(unit);
            }
            legacy_nal_walk walk(place(stream), stream.here());
            read_units(walk, 0, stream.here(), k, pick(random, 30));
        }
}

TEST_F(LegacyNalLiteral, StreamsCutAtEveryByte)
{
    const bytes payload = {1, 0, 0, 3, 1, 2, 0, 0, 3};
    for (unsigned int k = 1; k <= 4; ++k)
        read_whole_and_cut(stream_builder()
                               .prefixed_unit(k, support::sps, payload)
                               .prefixed_unit(k, support::forbidden, payload)
                               .prefixed_unit(k, support::pps, {})
                               .prefixed_unit(k, support::aud, {9, 0, 0, 1, 1, 1}),
                           k);
    read_whole_and_cut(stream_builder()
                           .zeros(2)
                           .annexb_unit(support::sps, payload)
                           .annexb_unit(support::forbidden, payload)
                           .zeros(1)
                           .annexb_unit(support::pps, {})
                           .annexb_unit(support::aud, {9, 0, 0, 2, 7}),
                       0);
}

TEST_F(LegacyNalLiteral, EveryPayloadOfSevenSmallBytesInEveryRoom)
{
    for (const unsigned int k : {0U, 2U})
        for (unsigned int number = 0; number < 16384 && !HasFatalFailure(); ++number) {
            const bytes payload = small_bytes(number, 7);
            const stream_builder stream = k == 0 ? stream_builder().annexb_unit(support::sps, payload)
                                                 : stream_builder().prefixed_unit(k, support::sps, payload);
            legacy_nal_walk walk(place(stream), stream.here());
            for (std::size_t room = 0; room <= 10; ++room)
                ASSERT_EQ("", walk.scan(0, stream.here(), k, output.last(room), room)) << number << " into " << room;
        }
}

TEST_F(LegacyNalLiteral, LongerRandomPayloadsInEveryRoom)
{
    for (int round = 0; round < 400 && !HasFatalFailure(); ++round) {
        const bytes payload = support::zero_heavy(random, pick(random, 40));
        const bytes stream = stream_builder().annexb_unit(support::sps, payload);
        legacy_nal_walk walk(place(stream), stream.size());
        for (std::size_t room = 0; room <= payload.size() + 3; ++room)
            ASSERT_EQ("", walk.scan(0, stream.size(), 0, output.last(room), room)) << room;
    }
}

TEST_F(LegacyNalLiteral, EveryStreamOfNineSmallBytesAsAnnexB)
{
    for (unsigned int number = 0; number < 262144 && !HasFatalFailure(); ++number) {
        const bytes stream = small_bytes(number, 9);
        legacy_nal_walk walk(place(stream), stream.size());
        ASSERT_EQ("", walk.scan(0, stream.size(), 0, output.last(8), 8)) << number;
    }
}

TEST_F(LegacyNalLiteral, RealStreams)
{
    for (const auto& path : support::all_annexb_files()) {
        SCOPED_TRACE(path);
        const guarded_buffer stream(support::read_file(path));
        const guarded_buffer out(stream.size());
        legacy_nal_walk walk(stream.begin(), stream.size());
        std::size_t units = 0;
        for (std::size_t start = 0;; start = walk.next, ++units) {
            // what is left is the most that a unit can have
            const std::size_t room = units % 5 == 4 ? 100 : std::min<std::size_t>(stream.size() - start, 1 << 16);
            ASSERT_EQ("", walk.scan(start, stream.size(), 0, out.last(room), room));
            if (walk.model.found == 0)
                break;
        }
        EXPECT_GT(units, 3U);
    }
}
