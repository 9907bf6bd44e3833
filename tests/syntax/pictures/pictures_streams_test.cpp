// The pictures of every real stream: the same whatever the pieces, each output once, in one order in all modes.
#include "support/stream_files.h"
#include "support/told_pictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace {

using namespace orv_utils_v4::h264;
using namespace support;

class PicturesStream : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(PicturesStream, AreTheSameWhateverThePieces)
{
    const bytes stream = read_file(GetParam());
    const told_pictures whole = told_of(stream);
    ASSERT_FALSE(whole.output_order.empty());
    for (const std::size_t piece : {1, 7, 188, 1400}) {
        const told_pictures cut = told_of(stream, piece);
        EXPECT_EQ(cut.lines(), whole.lines()) << "pieces of " << piece;
        ASSERT_EQ(cut.access_units.size(), whole.access_units.size());
        for (std::size_t i = 0; i < cut.access_units.size(); ++i)
            EXPECT_EQ(cut.access_units[i].units, whole.access_units[i].units);
    }
}

TEST_P(PicturesStream, AreEachOutputOnce)
{
    const told_pictures told = told_of(read_file(GetParam()));
    std::vector<std::uint64_t> numbers = told.output_numbers();
    std::sort(numbers.begin(), numbers.end());
    std::vector<std::uint64_t> all(told.decoding_order.size());
    std::iota(all.begin(), all.end(), 0);
    EXPECT_EQ(numbers, all);
}

// The streams whose slices are noise break the limits that the order stands on.
TEST_P(PicturesStream, HaveOneOrderInAllModes)
{
    const std::string name = GetParam().filename().string();
    const bool noise = name == "d21_syntax.264" || name == "d22_paff.264";
    const bytes stream = read_file(GetParam());
    const told_pictures bumped = told_of(stream);
    EXPECT_EQ(told_of(stream, 0, output_mode::early).output_numbers() == bumped.output_numbers(), !noise);

    told_pictures sorted = told_of(stream, 0, output_mode::when_decoded);
    std::stable_sort(sorted.output_order.begin(), sorted.output_order.end(), [](const picture& a, const picture& b) {
        return a.sequence != b.sequence ? a.sequence < b.sequence : a.count.lower() < b.count.lower();
    });
    EXPECT_EQ(sorted.output_numbers() == bumped.output_numbers(), !noise);
}

INSTANTIATE_TEST_SUITE_P(Streams, PicturesStream, testing::ValuesIn(all_annexb_files()),
                         [](const auto& parameter) { return test_name(parameter.param); });

} // namespace
