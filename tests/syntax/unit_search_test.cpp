// The unit search: where units lie, however many are asked for in a call.
#include "support/guarded_buffer.h"
#include "support/stream_builder.h"
#include "support/zero_heavy.h"

#include <orv-utils-v4/h264_syntax/unit_search.h>
#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace orv_utils_v4::h264;
using support::bytes;
using support::guarded_buffer;

using rows = std::vector<std::string>;

std::string row(std::uint64_t offset, std::uint64_t size, unsigned framing_size)
{
    return std::to_string(size) + " at " + std::to_string(offset) + " behind " + std::to_string(framing_size);
}

/// The units, so many a call.
rows searched(const bytes& stream, std::size_t most)
{
    const guarded_buffer buffer(stream);
    unit_search search(buffer.begin(), buffer.size());
    std::vector<unit_range> places(most);
    rows found;
    for (std::size_t count = most; count == most;) {
        count = search.next(places.data(), most);
        for (std::size_t i = 0; i < count; ++i)
            found.push_back(row(places[i].offset, places[i].size, places[i].framing_size));
    }
    EXPECT_EQ(0U, search.next(places.data(), most)) << "nothing is behind the end";
    return found;
}

class unit_rows : public split_sink {
public:
    void unit(const split_unit& u) override { all.push_back(row(u.offset, u.size, u.framing_size)); }
    void gap(const split_gap&) override {}

    rows all;
};

rows split(const bytes& stream)
{
    unit_rows to;
    unit_splitter splitter(framing::annex_b);
    splitter.push(stream.data(), stream.size(), to);
    splitter.flush(to);
    return to.all;
}

} // namespace

TEST(UnitSearch, StartCodesOfThreeAndFourBytes)
{
    EXPECT_EQ((rows{"2 at 3 behind 3", "1 at 9 behind 4", "3 at 13 behind 3"}),
              searched({0, 0, 1, 0x67, 9, 0, 0, 0, 1, 0x0A, 0, 0, 1, 0x68, 0, 7}, 8));
}

TEST(UnitSearch, ZerosAroundUnitsBelongToNone)
{
    EXPECT_EQ((rows{"1 at 5 behind 4", "2 at 11 behind 4"}),
              searched({0, 0, 0, 0, 1, 0x67, 0, 0, 0, 0, 1, 0x68, 5, 0, 0, 0, 0}, 1));
    EXPECT_EQ((rows{"1 at 3 behind 3"}), searched({0, 0, 1, 0x67, 0, 0}, 1));
}

TEST(UnitSearch, WhatIsNoUnitIsPassedOver)
{
    EXPECT_EQ((rows{"1 at 5 behind 3"}), searched({7, 9, 0, 0, 1, 0x67}, 3));
    EXPECT_EQ((rows{"1 at 6 behind 3"}), searched({0, 0, 1, 0, 0, 1, 0x67}, 3));
    EXPECT_EQ((rows{"1 at 3 behind 3", "1 at 12 behind 3"}),
              searched({0, 0, 1, 0x67, 0, 0, 0, 9, 9, 0, 0, 1, 0x68}, 3));
    EXPECT_EQ(rows(), searched({}, 1));
    EXPECT_EQ(rows(), searched({0, 0, 1}, 1));
    EXPECT_EQ(rows(), searched(bytes(300, 0), 1));
}

TEST(UnitSearch, NoRoomFindsNothingAndLosesNothing)
{
    const bytes stream = {0, 0, 1, 0x67};
    unit_search search(stream.data(), stream.size());
    EXPECT_EQ(0U, search.next(nullptr, 0));
    unit_range place;
    EXPECT_EQ(1U, search.next(&place, 1));
}

TEST(UnitSearch, FindsWhatTheSplitterHandsOn)
{
    support::random_source random(21);
    for (int round = 0; round < 2000; ++round) {
        bytes stream = support::zero_heavy_up_to(random, 700);
        for (std::size_t i = 0; i + 1 < stream.size(); i += 1 + support::pick(random, 40))
            stream[i] = 1; // start codes among the zeros
        const rows expected = split(stream);
        for (const std::size_t most : {1U, 2U, 7U, 1000U})
            ASSERT_EQ(expected, searched(stream, most)) << testing::PrintToString(stream);
    }
}

TEST(UnitSearch, FindsSmallUnitsAtEveryPlaceOfABlock)
{
    for (std::size_t size = 1; size < 140; ++size)
        for (unsigned zeros = 2; zeros <= 3; ++zeros) {
            bytes stream;
            for (unsigned i = 0; i < 12; ++i) {
                stream.insert(stream.end(), zeros, 0);
                stream.push_back(1);
                stream.insert(stream.end(), size, static_cast<unsigned char>(0x41 + i));
            }
            const rows found = searched(stream, 5);
            ASSERT_EQ(12U, found.size()) << size;
            ASSERT_EQ(split(stream), found) << size;
        }
}
