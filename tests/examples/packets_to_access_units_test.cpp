// examples/packets_to_access_units: what it prints of packets.
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

/// The first `size` bytes of a bundled stream in packets of 1400 bytes, 3000 ticks one after another from `first` on.
std::string packets(const std::string& name, std::size_t size, std::uint32_t first)
{
    const support::bytes stream = support::read_file(std::string(ORV_TEST_STREAMS "/") + name);
    std::ostringstream text;
    for (std::size_t at = 0; at < size; at += 1400, first += 3000) {
        text << first << ' ' << std::hex;
        for (std::size_t i = at; i < std::min({at + 1400, size, stream.size()}); ++i)
            text << stream[i] / 16 << stream[i] % 16;
        text << std::dec << '\n';
    }
    return text.str();
}

std::string printed(const std::string& text)
{
    return support::run_tool({}, {.piped = support::bytes(text.begin(), text.end())}).out;
}

TEST(PacketsToAccessUnits, GivesEachTheTimeOfThePacketItBeginsIn)
{
    EXPECT_EQ("access unit 0: 4 units, 763 bytes, at 1.000 s, IDR\n"
              "access unit 1: 1 units, 963 bytes\n"
              "access unit 2: 1 units, 147 bytes, at 1.033 s\n",
              printed(packets("main_bpyramid_weighted.264", 1895, 90000)));
}

TEST(PacketsToAccessUnits, GoesOnWhereTimestampsBeginAgain)
{
    const std::string text = printed(packets("main_bpyramid_weighted.264", 1895, 0xFFFFFFFFU - 999));
    EXPECT_NE(std::string::npos, text.find("at 47721.848 s, IDR\n")) << text;
    EXPECT_NE(std::string::npos, text.find("at 47721.881 s\n")) << text;
}

TEST(PacketsToAccessUnits, PassesOverWhatIsNoPacket)
{
    EXPECT_EQ("", printed("no packet\n\n17\n"));
}

} // namespace
