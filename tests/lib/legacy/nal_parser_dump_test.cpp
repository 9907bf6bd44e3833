// What the legacy dump prints, to the letter.
#include <orv-utils-v4/h264_legacy/nal_parser.h>

#include "support/guarded_buffer.h"
#include "support/stream_builder.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using support::bytes;
using support::guarded_buffer;
using support::stream_builder;

/// What a dump of `stream`, which ends at an unmapped page, prints.
std::string dumped(const bytes& stream, int dump_bytes = 0, unsigned int nal_length_size = 0)
{
    const guarded_buffer data(stream);
    char* text = nullptr;
    std::size_t size = 0;
    FILE* const f = open_memstream(&text, &size);
    h264_nal_dump_dbg(f, data.begin(), data.end(), nal_length_size, dump_bytes);
    static_cast<void>(std::fclose(f));
    std::string printed(text, size);
    std::free(text);
    return printed;
}

/// A unit of `size` bytes of payload: 10, 11, 12 and so on.
stream_builder counted_unit(std::size_t size)
{
    stream_builder unit;
    unit.annexb_unit(support::sps, {});
    for (std::size_t i = 0; i < size; ++i)
        unit.fill(1, static_cast<unsigned char>(0x10 + i));
    return unit;
}

std::string summary_of_counted(std::size_t size)
{
    return "NAL: ref_ide=3 unit_type=7(Sequence parameter set) len=" + std::to_string(size) + " of=0\n";
}

const std::string sixteen = "  10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 1f \n";

} // namespace

TEST(LegacyNalDump, ALineForEveryUnitUpToTheFirstScanThatFindsNothing)
{
    const struct {
        bytes stream;
        std::string text;
        unsigned int nal_length_size = 0;
    } cases[] = {
        {{0, 0, 1, 0x65, 0xAA, 0, 0, 3, 1, 0, 0, 1, 0x41},
         "NAL: ref_ide=3 unit_type=5(Coded slice of an IDR picture) len=4 of=0\n"
         "NAL: ref_ide=2 unit_type=1(Coded slice of a non-IDR picture) len=0 of=0\n"},
        {{0, 0, 1, 0x2D, 9}, "NAL: ref_ide=1 unit_type=13((null)) len=1 of=0\n"},
        {{0, 0, 1, 0}, "NAL: ref_ide=0 unit_type=0((null)) len=0 of=0\n"},
        {{0, 0, 1, 0x7F}, "NAL: ref_ide=3 unit_type=31((null)) len=0 of=0\n"},
        {counted_unit(1).start_code(), summary_of_counted(1)},
        {{1, support::pps, 1, support::forbidden, 1, support::sps},
         "NAL: ref_ide=3 unit_type=8(Picture parameter set) len=0 of=0\n",
         1},
        {{}, ""},
        {{0, 0}, ""},
        {bytes(40, 0xEE), ""},
        {{0, 0, 1}, ""},
        {{0, 0, 1, support::forbidden, 1}, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.text, dumped(c.stream, 0, c.nal_length_size));
}

TEST(LegacyNalDump, LinesOf16BytesUpToTheCountOrTheEndOfThePayload)
{
    const struct {
        std::size_t size;
        int dump_bytes;
        std::string lines;
    } cases[] = {
        {40, 20, sixteen + "  20 21 22 23 \n"},
        {40, 16, sixteen},
        {40, 17, sixteen + "  20 \n"},
        {17, 99, sixteen + "  20 \n"},
        {16, 99, sixteen},
        {16, 15, "  10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e \n"},
        {3, INT_MAX, "  10 11 12 \n"},
        {3, 4, "  10 11 12 \n"},
        {3, 3, "  10 11 12 \n"},
        {3, 2, "  10 11 \n"},
        {3, 1, "  10 \n"},
        {5, 0, ""},
        {5, -1, ""},
        {5, INT_MIN, ""},
        {0, 5, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(summary_of_counted(c.size) + c.lines, dumped(counted_unit(c.size), c.dump_bytes));
    EXPECT_EQ("NAL: ref_ide=3 unit_type=7(Sequence parameter set) len=3 of=0\n  00 0a ff \n",
              dumped(stream_builder().annexb_unit(support::sps, {0x00, 0x0A, 0xFF}), 9));
}

TEST(LegacyNalDump, ARangeThatEndsBeforeItStartsPrintsNothing)
{
    const bytes stream = counted_unit(3);
    char* text = nullptr;
    std::size_t size = 0;
    FILE* const f = open_memstream(&text, &size);
    h264_nal_dump_dbg(f, stream.data() + 4, stream.data(), 0, 9);
    h264_nal_dump_dbg(f, nullptr, nullptr, 0, 9);
    static_cast<void>(std::fclose(f));
    EXPECT_EQ(0U, size);
    std::free(text);
}

TEST(LegacyNalDump, PayloadsAbove64KiBOverflow)
{
    for (const std::size_t size : {65535U, 65536U, 65537U, 70000U}) {
        const std::string expected = size <= 65536 ? std::to_string(size) + " of=0\n" : "65536 of=1\n";
        const bytes stream = stream_builder().annexb_unit(support::sps, bytes(size, 2)).annexb_unit(support::aud, {});
        EXPECT_EQ("NAL: ref_ide=3 unit_type=7(Sequence parameter set) len=" + expected +
                      "NAL: ref_ide=0 unit_type=9(Access unit delimiter) len=0 of=0\n",
                  dumped(stream));
    }
}

TEST(LegacyNalDump, AllOfAFullBufferCanBeDumped)
{
    const std::string text = dumped(stream_builder().annexb_unit(support::sps, bytes(65540, 0xFE)), INT_MAX);
    const std::string summary = "NAL: ref_ide=3 unit_type=7(Sequence parameter set) len=";
    // the last byte of room goes to the third of three bytes whose first two did not fit
    std::string lines;
    for (int i = 0; i < 65536 / 16; ++i)
        lines += "  fe fe fe fe fe fe fe fe fe fe fe fe fe fe fe fe \n";
    EXPECT_EQ(summary + "65536 of=1\n" + lines, text);
}

TEST(LegacyNalDumpDeathTest, WithoutAFileItGoesToTheStandardErrorStream)
{
    const bytes stream = counted_unit(2);
    EXPECT_EXIT(
        {
            h264_nal_dump_dbg(nullptr, stream.data(), stream.data() + stream.size(), 0, 2);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^NAL: ref_ide=3 unit_type=7\\(Sequence parameter set\\) len=2 of=0\n  10 11 \n$");
}

TEST(LegacyNalDump, EveryNameStandsInItsLine)
{
    for (unsigned char type = 1; type <= 12; ++type)
        EXPECT_EQ("NAL: ref_ide=0 unit_type=" + std::to_string(type) + "(" + h264_nal_parser_unit_type_to_str(type) +
                      ") len=0 of=0\n",
                  dumped({0, 0, 1, type}));
}

TEST(LegacyNalDump, PrefixedUnits)
{
    const std::string lines = "NAL: ref_ide=3 unit_type=7(Sequence parameter set) len=4 of=0\n  07 00 00 01 \n"
                              "NAL: ref_ide=0 unit_type=9(Access unit delimiter) len=0 of=0\n";
    for (unsigned int k = 1; k <= 4; ++k)
        EXPECT_EQ(
            lines,
            dumped(stream_builder().prefixed_unit(k, support::sps, {7, 0, 0, 3, 1}).prefixed_unit(k, support::aud, {}),
                   16, k));
}
