// The frames of every real stream: they follow on each other, and they are the same in every framing, in pieces of
// whole units, and by the literal scan.
#include "support/frame_notation.h"
#include "support/scanned_units.h"
#include "support/stream_files.h"

#include <orv-utils-v4/h264/nal_writer.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace support::frame_notation;
using support::bytes;
using support::frame_outcome;
using support::guarded_buffer;

using outcomes = std::vector<frame_outcome>;

constexpr unsigned int both_flags[] = {0U, split_fields};

outcomes scan_all(const bytes& data, int nal_length_size, unsigned int flags)
{
    support::frame_scanner<guarded_buffer> scanner(data, nal_length_size, data.size(), flags);
    return support::scan_frames(scanner);
}

literal::placed_units split(const bytes& data, int nal_length_size = 0)
{
    return support::scanned_units(guarded_buffer(data), nal_length_size, data.size());
}

/// The same with units in place of offsets; one past the last for the end of the input.
outcomes by_units(outcomes frames, const literal::placed_units& all)
{
    for (frame_outcome& f : frames)
        for (std::size_t* const offset : {&f.result, &f.start, &f.end})
            if (*offset != support::nowhere)
                *offset = literal::index_of(all, *offset);
    return frames;
}

/// The units once more, written by the newer writer.
bytes rewritten(const literal::placed_units& all, const bytes& data, brenik::h2645_common_nalfmt nalfmt)
{
    bytes out(brenik::h264_nal_writer::recommended_output_size(data.size()) + 2 * data.size());
    brenik::h264_nal_writer writer(out.data(), out.data(), out.data() + out.size(), nalfmt);
    for (literal::placed_unit u : all.units) {
        brenik::h264_nal nal;
        nal.decode_header(data[u.start + 3]);
        EXPECT_NE(0U, writer.block_encode(u.rbsp.data(), u.rbsp.size(), nal, 1));
    }
    out.resize(writer.data_length());
    return out;
}

bool begins_a_frame(const literal::placed_unit& u)
{
    return u.nal_unit_type == 1 || (u.nal_unit_type >= 5 && u.nal_unit_type <= 9);
}

/// What a caller does who has no more of the input than `ends` say, one after another.
outcomes scan_growing(const bytes& data, const std::vector<std::size_t>& ends, unsigned int flags)
{
    outcomes frames;
    h264_sps seq;
    std::size_t at = 0;
    for (const std::size_t end : ends) {
        for (bool complete = true; complete;) {
            const bytes seen(data.begin() + static_cast<std::ptrdiff_t>(at),
                             data.begin() + static_cast<std::ptrdiff_t>(end));
            support::frame_scanner<guarded_buffer> scanner(seen, 0, seen.size(), flags, seq);
            frame_outcome f = scanner.scan(0);
            seq = scanner.sps;
            for (std::size_t* const offset : {&f.result, &f.start, &f.end})
                if (*offset != support::nowhere)
                    *offset += at;
            complete = f.complete;
            at = f.result;
            if (complete || end == ends.back())
                frames.push_back(f);
        }
    }
    return frames;
}

class FrameScanStream : public testing::TestWithParam<std::filesystem::path> {
protected:
    bytes data = support::read_file(GetParam());
    literal::placed_units all = split(data);
};

INSTANTIATE_TEST_SUITE_P(Streams, FrameScanStream, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& stream) { return support::test_name(stream.param); });

} // namespace

TEST_P(FrameScanStream, FramesFollowOnEachOtherUpToTheEnd)
{
    const auto first = std::find_if(all.units.begin(), all.units.end(), begins_a_frame);
    ASSERT_NE(all.units.end(), first);
    for (const unsigned int flags : both_flags) {
        const outcomes frames = scan_all(data, 0, flags);
        EXPECT_EQ(first->start, frames.front().start);
        for (std::size_t i = 0; i + 1 < frames.size(); ++i) {
            EXPECT_TRUE(frames[i].complete);
            EXPECT_FALSE(frames[i].need_more_data);
            EXPECT_GT(frames[i].end, frames[i].start);
            EXPECT_EQ(frames[i].end, frames[i].result);
            const std::size_t next = frames[i + 1].start;
            if (next != support::nowhere) {
                // units of types that begin no frame may lie between
                for (std::size_t u = literal::index_of(all, frames[i].end); all.units[u].start < next; ++u)
                    EXPECT_FALSE(begins_a_frame(all.units[u])) << all.units[u].start;
            }
        }
        EXPECT_FALSE(frames.back().complete);
        EXPECT_EQ(frames.back().start != support::nowhere, frames.back().need_more_data);
    }
}

TEST_P(FrameScanStream, TheLiteralScanGivesTheSameFrames)
{
    for (const unsigned int flags : both_flags)
        EXPECT_EQ(literal::scan_frames(all, flags == split_fields), scan_all(data, 0, flags));
}

TEST_P(FrameScanStream, LengthPrefixesGiveTheSameFrames)
{
    for (const auto nalfmt : {brenik::nalfmt_length3, brenik::nalfmt_length4}) {
        const bytes prefixed = rewritten(all, data, nalfmt);
        const int size = nalfmt == brenik::nalfmt_length3 ? 3 : 4;
        const literal::placed_units again = split(prefixed, size);
        ASSERT_EQ(all.units.size(), again.units.size());
        for (const unsigned int flags : both_flags)
            EXPECT_EQ(by_units(scan_all(data, 0, flags), all), by_units(scan_all(prefixed, size, flags), again));
    }
}

TEST_P(FrameScanStream, PiecesOfWholeUnitsGiveTheSameFrames)
{
    for (const std::size_t step : {1U, 7U}) {
        const std::size_t count = std::min<std::size_t>(all.units.size(), 700);
        std::vector<std::size_t> ends;
        for (std::size_t i = step; i < count; i += step)
            ends.push_back(all.units[i].start);
        ends.push_back(count < all.units.size() ? all.units[count].start : data.size());
        const bytes seen(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(ends.back()));
        for (const unsigned int flags : both_flags)
            EXPECT_EQ(scan_all(seen, 0, flags), scan_growing(seen, ends, flags)) << "units at a time: " << step;
    }
}

TEST_P(FrameScanStream, TheFirstBytesCutAnywhereGiveTheFramesOfTheirUnits)
{
    const std::size_t most = std::min<std::size_t>(data.size(), 1500);
    for (std::size_t size = 0; size <= most; ++size) {
        const bytes cut(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(size));
        ASSERT_EQ(literal::scan_frames(split(cut), false), scan_all(cut, 0, 0)) << size;
    }
}

TEST(FrameScanCutStream, CutAtAnyByteGivesTheFramesOfTheUnits)
{
    const bytes data = support::read_file(std::filesystem::path(ORV_TEST_STREAMS) / "high444_lossless_odd.264");
    const bytes prefixed = rewritten(split(data), data, brenik::nalfmt_length4);
    for (std::size_t size = 0; size <= data.size(); size += size % 64 == 0 ? 17 : 1) {
        const bytes cut(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(size));
        ASSERT_EQ(literal::scan_frames(split(cut), false), scan_all(cut, 0, 0)) << size;
        const bytes cut_prefixed(prefixed.begin(), prefixed.begin() + static_cast<std::ptrdiff_t>(size));
        ASSERT_EQ(literal::scan_frames(split(cut_prefixed, 4), false), scan_all(cut_prefixed, 4, 0)) << size;
    }
}
