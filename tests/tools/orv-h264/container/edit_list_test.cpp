// The edit list of an MP4 track, out of boxes made by hand.
#include "container/edit_list.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace {

using orv_h264::edit_list;
using orv_h264::input_file;
using support::bytes;

bytes number(std::uint64_t value, unsigned size)
{
    bytes out;
    while (size-- > 0)
        out.push_back(static_cast<unsigned char>(value >> 8 * size));
    return out;
}

bytes operator+(bytes a, const bytes& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

bytes box(std::string_view type, const bytes& payload)
{
    return number(payload.size() + 8, 4) + bytes(type.begin(), type.end()) + payload;
}

/// mvhd or tkhd: version and flags, two times, and what follows.
bytes header(std::string_view type, unsigned version, std::uint32_t value)
{
    return box(type,
               number(std::uint64_t{version} << 24, 4) + bytes(version == 1 ? 16 : 8) + number(value, 4) + bytes(60));
}

bytes edits(unsigned version, const bytes& entries, std::uint32_t count)
{
    return box("edts", box("elst", number(std::uint64_t{version} << 24, 4) + number(count, 4) + entries));
}

bytes entry(std::uint64_t duration, std::uint64_t media_time, unsigned size)
{
    return number(duration, size) + number(media_time, size) + number(0x10000, 4);
}

bytes track(std::uint32_t id, const bytes& list)
{
    return box("trak", header("tkhd", 0, id) + list + box("mdia", {}));
}

edit_list read(const bytes& file, std::int64_t track_id = 2)
{
    static const support::temporary_folder folder; // for all of them
    return orv_h264::read_edit_list(input_file(folder.write("movie.mp4", file)), track_id);
}

const bytes brand = box("ftyp", bytes(8));

TEST(EditList, IsThatOfTheTrack)
{
    const bytes movie = header("mvhd", 0, 600) + track(1, edits(0, entry(1, 2, 4), 1)) +
                        track(2, edits(0, entry(300, 0xFFFFFFFF, 4) + entry(1200, 80, 4), 2));
    const edit_list list = read(brand + box("mdat", bytes(99)) + box("moov", movie));
    EXPECT_EQ(600U, list.movie_ticks);
    ASSERT_EQ(2U, list.edits.size());
    EXPECT_EQ(300U, list.edits[0].duration);
    EXPECT_EQ(-1, list.edits[0].media_time);
    EXPECT_EQ(1200U, list.edits[1].duration);
    EXPECT_EQ(80, list.edits[1].media_time);
    EXPECT_EQ(1, list.edits[1].rate);
    EXPECT_EQ(0U, list.further);
    EXPECT_TRUE(read(brand + box("moov", movie), 3).edits.empty());
}

TEST(EditList, HasWideNumbersInVersion1)
{
    const bytes movie = header("mvhd", 1, 1000) + track(2, edits(1, entry(std::uint64_t{1} << 40, 5, 8), 1));
    const bytes wide =
        number(1, 4) + bytes{'m', 'o', 'o', 'v'} + number(movie.size() + 16, 8) + movie; // a size of 64 bits
    for (const bytes& moov : {box("moov", movie), wide}) {
        const edit_list list = read(brand + moov);
        EXPECT_EQ(1000U, list.movie_ticks);
        ASSERT_EQ(1U, list.edits.size());
        EXPECT_EQ(std::uint64_t{1} << 40, list.edits[0].duration);
    }
}

TEST(EditList, IsBounded)
{
    bytes entries;
    for (unsigned i = 0; i < edit_list::most_edits + 3; ++i)
        entries = entries + entry(i, i, 4);
    const auto with_count = [&](std::uint32_t count) {
        return read(box("moov", header("mvhd", 0, 1) + track(2, edits(0, entries, count))));
    };
    const edit_list list = with_count(edit_list::most_edits + 3);
    EXPECT_EQ(+edit_list::most_edits, list.edits.size());
    EXPECT_EQ(3U, list.further);
    EXPECT_EQ(list.further, with_count(0xFFFFFFFF).further) << "as many as fit";
    EXPECT_EQ(1U, with_count(1).edits.size());
}

TEST(EditList, OfDamagedBoxesIsNone)
{
    const bytes movie = box("moov", header("mvhd", 0, 600) + track(2, edits(0, entry(1, 2, 4), 1)));
    for (std::size_t cut = 0; cut < movie.size(); ++cut)
        EXPECT_TRUE(read(bytes(movie.begin(), movie.begin() + static_cast<std::ptrdiff_t>(cut))).edits.empty()) << cut;
    for (std::size_t at = 0; at < movie.size(); ++at)
        for (const int damage : {0x00, 0x01, 0x7F, 0xFF}) {
            bytes damaged = movie;
            damaged[at] = static_cast<unsigned char>(damage);
            EXPECT_GE(1U, read(damaged).edits.size());
        }
}

TEST(EditList, SoManyBoxesAreLookedAtAndNoMore)
{
    const auto behind = [](std::size_t tracks) {
        bytes movie = header("mvhd", 0, 600);
        for (std::size_t i = 0; i < tracks; ++i) // one for itself, and one in it
            for (const bytes& empty :
                 {number(16, 4), bytes{'t', 'r', 'a', 'k'}, number(8, 4), bytes{'f', 'r', 'e', 'e'}})
                movie.insert(movie.end(), empty.begin(), empty.end());
        const bytes last = track(2, edits(0, entry(1, 2, 4), 1));
        movie.insert(movie.end(), last.begin(), last.end());
        return read(box("moov", movie)).edits.size();
    };
    EXPECT_EQ(1U, behind(49900));
    EXPECT_EQ(0U, behind(50001));
}

TEST(EditList, ABoxOfSize0GoesToTheEnd)
{
    bytes movie = box("moov", header("mvhd", 0, 600) + track(2, edits(0, entry(1, 2, 4), 1)));
    std::fill_n(movie.begin(), 4, static_cast<unsigned char>(0));
    EXPECT_EQ(1U, read(brand + movie).edits.size());
}

} // namespace
