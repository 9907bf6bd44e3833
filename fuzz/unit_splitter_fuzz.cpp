// The unit splitter: the same units and gaps for every cut of a stream, and together with zero bytes they are all of
// it; the unit search finds the same units. Input: a byte each for the framing, the bytes of a piece (modulo 32; above
// that, how much more the next one has) and the largest unit, and the stream.
#include "input.h"

#include <orv-utils-v4/h264_syntax/unit_search.h>
#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <algorithm>
#include <vector>

namespace {

using namespace fuzz;
using namespace orv_utils_v4::h264;

/// A unit or a gap.
struct part {
    int kind; ///< -1 of a unit, else the reason of the gap
    std::uint64_t offset;
    std::uint64_t size;
    unsigned framing_size;
    std::uint64_t stated_length;
    bool cut;

    friend bool operator==(const part&, const part&) = default;
};

/// Keeps the parts of a stream, and holds units against its bytes.
class parts_of : public split_sink {
public:
    explicit parts_of(const bytes& whole) : stream(whole) {}

    void unit(const split_unit& u) override
    {
        expect(u.offset <= stream.size() && u.size <= stream.size() - u.offset, "a unit lies in the stream");
        expect(std::equal(u.bytes, u.bytes + u.size, stream.begin() + static_cast<std::ptrdiff_t>(u.offset)),
               "a unit is the bytes at its offset");
        parts.push_back({-1, u.offset, u.size, u.framing_size, u.stated_length, u.cut});
    }
    void gap(const split_gap& g) override
    {
        parts.push_back({static_cast<int>(g.reason), g.offset, g.size, 0, 0, false});
    }
    std::vector<part> parts;

private:
    const bytes& stream;
};

std::vector<part> split(const bytes& stream, framing how, std::size_t most, std::size_t piece, std::size_t growth)
{
    parts_of sink(stream);
    unit_splitter splitter(how, most);
    for (std::size_t at = 0; at < stream.size(); piece += growth) {
        const std::size_t size = std::min(piece, stream.size() - at);
        const exact_block block(stream.data() + at, size);
        splitter.push(block.begin(), size, sink);
        at += size;
    }
    splitter.flush(sink);
    return sink.parts;
}

/// Every byte is of one unit, its framing, or one gap; in Annex B those that are of nothing are zero.
void expect_all(const bytes& stream, const std::vector<part>& parts, framing how, std::size_t most)
{
    std::vector<int> covered(stream.size(), 0);
    for (const part& p : parts) {
        const std::uint64_t begin = p.offset - p.framing_size;
        const std::uint64_t end = p.offset + p.size;
        expect(p.size > 0 && begin <= p.offset && end <= stream.size(), "a part lies in the stream");
        for (std::uint64_t i = begin; i < end; ++i)
            ++covered[static_cast<std::size_t>(i)];
        if (p.kind != -1)
            continue;
        expect(p.size <= most, "no unit is above the limit");
        expect(how == framing::annex_b || p.cut || p.stated_length == p.size, "a unit is as long as its prefix says");
    }
    for (std::size_t i = 0; i < stream.size(); ++i) {
        expect(covered[i] <= 1, "no byte is of two parts");
        expect(covered[i] == 1 || (how == framing::annex_b && stream[i] == 0), "no byte is lost");
    }
}

/// The units of the stream, searched for so many at a time, are those that the splitter hands on.
void expect_searched(const bytes& stream, std::size_t at_a_time)
{
    const exact_block block(stream);
    unit_search search(block.begin(), stream.size());
    std::vector<unit_range> places(at_a_time);
    std::size_t found = 0;
    std::size_t used = 0;
    const auto next = [&] {
        if (used == found) {
            found = search.next(places.data(), places.size());
            used = 0;
        }
        return used == found ? unit_range() : places[used++];
    };
    for (const part& p : split(stream, framing::annex_b, unit_splitter::usual_most_bytes, stream.size() + 1, 0)) {
        if (p.kind != -1)
            continue;
        const unit_range place = next();
        expect(place.offset == p.offset && place.size == p.size && place.framing_size == p.framing_size,
               "the search finds the splitter's unit");
    }
    expect(next().size == 0, "the search finds no other unit");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    input in(data, size);
    const auto how = static_cast<framing>(in.byte() % 5);
    const std::size_t pieces = in.byte();
    const std::size_t most = std::size_t{1} + in.byte();
    const bytes stream = in.rest();

    const std::vector<part> whole = split(stream, how, most, stream.size() + 1, 0);
    expect_all(stream, whole, how, most);
    expect(split(stream, how, most, 1 + pieces % 32, pieces / 32) == whole, "every cut gives the same");
    expect_searched(stream, 1 + pieces % 32);
    return 0;
}
