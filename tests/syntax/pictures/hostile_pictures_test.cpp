// What pictures promise of damaged streams: real ones with bytes changed and units lost, twice or exchanged.
#include "support/damage.h"
#include "support/stream_files.h"
#include "support/told_pictures.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

using namespace orv_utils_v4::h264;
using support::pick;
using support::random_source;
using bytes = std::vector<unsigned char>;

constexpr std::size_t bytes_taken = 24 << 10; // of the beginning of a stream
constexpr unsigned char start_code[] = {0, 0, 0, 1};

class unit_list : public split_sink {
public:
    explicit unit_list(const bytes& stream)
    {
        unit_splitter splitter(framing::annex_b);
        splitter.push(stream.data(), std::min(stream.size(), bytes_taken), *this);
        splitter.flush(*this);
    }
    void unit(const split_unit& u) override { units.emplace_back(u.bytes, u.bytes + u.size); }
    void gap(const split_gap&) override {}
    bytes stream() const
    {
        bytes all;
        for (const bytes& u : units) {
            all.insert(all.end(), start_code, start_code + sizeof start_code);
            all.insert(all.end(), u.begin(), u.end());
        }
        return all;
    }
    std::vector<bytes> units;
};

/// A few of the units damaged; most often in their first bytes, where the headers are.
bytes damaged(unit_list list, random_source& random)
{
    for (std::size_t n = 1 + pick(random, 6); n > 0 && list.units.size() > 2; --n) {
        const auto at = list.units.begin() + static_cast<std::ptrdiff_t>(pick(random, list.units.size()));
        const auto to = list.units.begin() + static_cast<std::ptrdiff_t>(pick(random, list.units.size()));
        const std::size_t head = std::min<std::size_t>(at->size(), pick(random, 2) == 0 ? 8 : 40);
        switch (pick(random, 5)) {
        case 0:
            list.units.erase(at);
            break;
        case 1:
            list.units.insert(to, bytes(*at));
            break;
        case 2:
            std::swap(*at, *to);
            break;
        case 3:
            at->resize(head);
            break;
        default:
            *at = support::with_flipped_bit(*at, pick(random, 8 * head));
        }
    }
    return list.stream();
}

/// Counts what waits, and what is told of whom.
class waiting_pictures : public told_pictures {
public:
    void access_unit_came(const access_unit& unit, const picture* of) override
    {
        for (const access_unit_part& part : unit.parts) {
            units.insert(units.end(), start_code, start_code + sizeof start_code);
            units.insert(units.end(), part.place.bytes, part.place.bytes + part.place.size);
        }
        if (of != nullptr) {
            EXPECT_LE(of->number, decoding_order.size());
        }
    }
    void decoded(const picture& picture) override
    {
        told_pictures::decoded(picture);
        EXPECT_EQ(picture.number, decoding_order.size() - 1);
        most_waiting = std::max(most_waiting, decoding_order.size() - output_order.size());
    }
    void output(const picture& picture) override
    {
        told_pictures::output(picture);
        EXPECT_EQ(picture.output_number, output_order.size() - 1);
        EXPECT_LT(picture.number, decoding_order.size()); // decoded before
    }
    std::size_t most_waiting = 0;
    bytes units; ///< of all access units, framed
};

void expect_promises(const bytes& stream, output_mode mode)
{
    waiting_pictures told;
    picture_reader reader(framing::annex_b, mode);
    reader.push(stream.data(), stream.size(), told);
    reader.flush(told);
    std::vector<std::uint64_t> numbers = told.output_numbers();
    std::sort(numbers.begin(), numbers.end());
    std::vector<std::uint64_t> all(told.decoding_order.size());
    std::iota(all.begin(), all.end(), 0);
    EXPECT_EQ(numbers, all);
    EXPECT_LE(told.most_waiting, mode == output_mode::when_decoded ? 1U : output_order::most_waiting + 1U);
    EXPECT_EQ(told.units, unit_list(stream).stream()); // each unit once, in order
    std::uint64_t sequence = 0;
    for (const picture& p : told.output_order) {
        EXPECT_GE(p.sequence, sequence);
        sequence = p.sequence;
        EXPECT_GE(p.fields_shown, 1);
        EXPECT_LE(p.clock_count, picture::most_clocks);
        EXPECT_LE(p.offset, p.end);
    }
}

class HostilePictures : public testing::TestWithParam<std::filesystem::path> {};
TEST_P(HostilePictures, AreEachOutputOnceInBoundedRoom)
{
    const unit_list list(support::read_file(GetParam()));
    random_source random(21);
    for (int i = 0; i < 12; ++i) {
        const bytes stream = damaged(list, random);
        const unit_list again(stream); // what 24 KiB of it hold
        for (const output_mode mode : {output_mode::bumping, output_mode::early, output_mode::when_decoded})
            expect_promises(again.stream(), mode);
    }
}
INSTANTIATE_TEST_SUITE_P(Streams, HostilePictures, testing::ValuesIn(support::annexb_files(ORV_TEST_STREAMS)),
                         [](const auto& parameter) { return support::test_name(parameter.param); });

} // namespace
