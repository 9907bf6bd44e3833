// Where the bytes of a stream lie in its file.
#include "container/packet_log.h"

#include <gtest/gtest.h>

namespace {

using orv_h264::logged_packet;
using orv_h264::packet_log;

logged_packet packet(std::uint64_t begin, std::uint64_t size, std::uint64_t position, bool whole)
{
    logged_packet made;
    made.begin = begin;
    made.size = size;
    made.position = position;
    made.whole = whole;
    return made;
}

TEST(PacketLog, WithoutPacketsEveryOffsetIsTheFiles)
{
    const packet_log log;
    for (const std::uint64_t offset : {std::uint64_t{0}, std::uint64_t{77}, packet_log::record_begin - 1}) {
        EXPECT_EQ(nullptr, log.find(offset));
        EXPECT_TRUE(log.is_own(offset));
        EXPECT_EQ(offset, log.shown(offset));
        EXPECT_EQ(offset, log.counted(offset));
    }
}

TEST(PacketLog, InAWholePacketEachByteHasAPlaceOfItsOwn)
{
    packet_log log;
    log.add(packet(0, 10, 1000, true));
    log.add(packet(10, 5, 500, true)); // they may lie in any order
    const std::uint64_t places[] = {1000, 1009, 500, 504};
    const std::uint64_t offsets[] = {0, 9, 10, 14};
    for (std::size_t i = 0; i < std::size(offsets); ++i) {
        EXPECT_TRUE(log.is_own(offsets[i]));
        EXPECT_EQ(places[i], log.shown(offsets[i]));
        EXPECT_EQ(places[i], log.counted(offsets[i]));
    }
    EXPECT_EQ(505U, log.shown(15)) << "the end of the last one";
}

TEST(PacketLog, OfAPacketInPiecesTheBytesAreShownAsItAndCountedInTheStream)
{
    packet_log log;
    log.add(packet(0, 10, 1000, true));
    log.add(packet(10, 300, 564, false));
    log.add(packet(310, 5, 2000, false));
    for (const std::uint64_t offset : {10U, 309U}) {
        EXPECT_FALSE(log.is_own(offset));
        EXPECT_EQ(564U, log.shown(offset));
        EXPECT_EQ(offset, log.counted(offset));
    }
    EXPECT_EQ(2000U, log.shown(310));
    EXPECT_EQ(1009U, log.shown(9)) << "whole";
}

TEST(PacketLog, FindsTheLastPacketThatBeginsAtAByte)
{
    packet_log log;
    logged_packet empty = packet(4, 0, 50, true);
    empty.number = 1;
    logged_packet holds = packet(4, 9, 90, true);
    holds.number = 2;
    log.add(packet(0, 4, 10, true));
    log.add(empty);
    log.add(holds);
    EXPECT_EQ(0U, log.find(3)->number);
    EXPECT_EQ(2U, log.find(4)->number) << "the empty one has no byte";
    EXPECT_EQ(90U, log.shown(4));
}

TEST(PacketLog, FindsEachPacketFromBothOfItsEnds)
{
    packet_log log;
    for (std::uint64_t i = 0; i < 300; ++i) {
        logged_packet next = packet(10 * i, 10, 7 * i, true);
        next.number = i;
        log.add(next);
        for (std::uint64_t n = 0; n <= i; ++n) {
            ASSERT_EQ(n, log.find(10 * n)->number) << "of " << i;
            ASSERT_EQ(n, log.find(10 * n + 9)->number) << "of " << i;
        }
    }
}

TEST(PacketLog, TheRecordLiesBesideTheStream)
{
    packet_log log;
    log.add(packet(0, 10, 1000, true));
    log.set_record(300);
    EXPECT_EQ(nullptr, log.find(packet_log::record_begin + 6));
    EXPECT_TRUE(log.is_own(packet_log::record_begin + 6));
    EXPECT_EQ(306U, log.shown(packet_log::record_begin + 6));
    EXPECT_EQ(306U, log.counted(packet_log::record_begin + 6));
}

TEST(PacketLog, ARecordThatIsNotFoundIsShownAtTheBegin)
{
    packet_log log;
    log.set_record({});
    EXPECT_FALSE(log.is_own(packet_log::record_begin + 6));
    EXPECT_EQ(0U, log.shown(packet_log::record_begin + 6));
}

TEST(PacketLog, KeepsSoManyAndShowsWhatIsOlderAsTheOldest)
{
    packet_log log;
    for (std::uint64_t i = 0; i < packet_log::most_packets + 2; ++i)
        log.add(packet(10 * i, 10, 100 + 20 * i, true));
    EXPECT_EQ(140U, log.shown(20)) << "the oldest that is kept";
    EXPECT_TRUE(log.is_own(20));
    for (const std::uint64_t forgotten : {0U, 19U}) {
        EXPECT_FALSE(log.is_own(forgotten));
        EXPECT_EQ(140U, log.shown(forgotten));
    }
    const std::uint64_t last = packet_log::most_packets + 1;
    EXPECT_EQ(100 + 20 * last, log.shown(10 * last));
}

} // namespace
