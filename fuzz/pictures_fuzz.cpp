// Pictures of a stream: every unit is in one access unit, every picture is output once and does not wait longer than it
// may, and pieces give what the whole gives. Input: a byte each for the framing, the mode of output and the bytes of a
// piece (modulo 32; above that, how much more the next one has), and the stream.
#include "input.h"

#include <orv-utils-v4/h264_syntax.h>

#include <tuple>

namespace {

using namespace fuzz;
using namespace orv_utils_v4::h264;

/// The units of a stream, as the splitter gives them.
class units_of : public split_sink {
public:
    units_of(framing how, const bytes& stream)
    {
        unit_splitter splitter(how);
        splitter.push(stream.data(), stream.size(), *this);
        splitter.flush(*this);
    }
    void unit(const split_unit& u) override { units.emplace_back(u.bytes, u.bytes + u.size); }
    void gap(const split_gap&) override {}

    std::vector<bytes> units;
};

void expect_texts(picture_findings findings)
{
    for (int i = 0; i < 32; ++i) {
        const auto what = static_cast<picture_finding>(i);
        expect(!findings.has(what) || *text_of(what) != '\0', "a finding has a text");
    }
}

/// What came, as it is compared. (An access unit is held against its units as it comes.)
struct told {
    enum class kind { decoded, output, gap };

    kind what;
    picture of;          ///< unless it is a gap
    split_gap lost = {}; ///< a gap

    static auto numbers(const picture& p)
    {
        return std::tuple(p.number, p.offset, p.end, p.structure, p.both_fields, p.nal_ref_idc, p.slice_kinds, p.idr,
                          p.recovery_point, p.sequence, p.count.top, p.count.bottom, p.fields_shown);
    }
    static bool same(const picture_times& a, const picture_times& b)
    {
        return a.source == b.source && same(a.decoding, b.decoding) && same(a.presentation, b.presentation);
    }
    static bool same(exact_time a, exact_time b)
    {
        return a.numerator == b.numerator && a.denominator == b.denominator;
    }
    friend bool operator==(const told& a, const told& b)
    {
        return a.what == b.what && a.lost.offset == b.lost.offset && a.lost.size == b.lost.size &&
               numbers(a.of) == numbers(b.of) && same(a.of.times, b.of.times);
    }
};

/// Holds what is told against the units, and keeps it.
class checked_pictures : public picture_sink {
public:
    checked_pictures(const std::vector<bytes>& of, output_mode how) : units(of), mode(how) {}

    void access_unit_came(const access_unit& unit, const picture* of) override
    {
        expect(unit.number == access_units++, "access units are counted");
        for (const access_unit_part& part : unit.parts) {
            expect(next_unit < units.size(), "a unit comes once");
            const bytes& wanted = units[next_unit];
            expect(part.place.size == wanted.size() && std::equal(wanted.begin(), wanted.end(), part.place.bytes),
                   "units come in order, with their bytes");
            expect(part.place.number == next_unit++, "units are counted");
            expect(part.content == nullptr || part.content->header.nal_unit_type == part.header.nal_unit_type,
                   "a content is that of its unit");
        }
        expect((of != nullptr) == (unit.header != nullptr), "a primary coded picture is of a picture");
        expect_texts(unit.findings);
    }
    void decoded(const picture& picture) override
    {
        expect(picture.number == decoded_count++, "pictures are counted in decoding order");
        outputs.push_back(0);
        const std::size_t most = mode == output_mode::when_decoded ? 1 : output_order::most_waiting + std::size_t{1};
        expect(decoded_count - output_count <= most, "no more pictures wait than may");
        all_told.push_back({told::kind::decoded, picture});
    }
    void output(const picture& picture) override
    {
        expect(picture.number < outputs.size() && outputs[picture.number]++ == 0, "a picture is output once");
        expect(picture.output_number == output_count++, "pictures are counted in output order");
        expect(picture.fields_shown >= 1 && picture.fields_shown <= 12, "a picture is shown");
        expect(picture.offset < picture.end, "a picture has units");
        expect_texts(picture.findings);
        all_told.push_back({told::kind::output, picture});
    }
    void gap(const split_gap& gap) override { all_told.push_back({told::kind::gap, {}, gap}); }

    /// Behind the stream.
    std::vector<told> all() &&
    {
        expect(next_unit == units.size(), "every unit comes");
        expect(output_count == decoded_count, "every picture is output");
        return std::move(all_told);
    }

private:
    const std::vector<bytes>& units;
    output_mode mode;
    std::size_t next_unit = 0;
    std::uint64_t access_units = 0;
    std::uint64_t decoded_count = 0;
    std::uint64_t output_count = 0;
    std::vector<int> outputs; // of each picture, how often
    std::vector<told> all_told;
};

struct options {
    framing how;
    output_mode mode;
    std::size_t piece;
    std::size_t growth;
};

/// In pieces of a block that stays.
std::vector<told> in_place(const bytes& stream, const units_of& split, options o)
{
    const exact_block block(stream);
    checked_pictures sink(split.units, o.mode);
    picture_reader reader(o.how, o.mode);
    for (std::size_t at = 0; at < block.size(); o.piece += o.growth) {
        const std::size_t size = std::min(o.piece, block.size() - at);
        reader.push(block.begin() + at, size, sink, {nullptr, true});
        at += size;
    }
    reader.flush(sink);
    return std::move(sink).all();
}

/// In pieces that are gone when the next one comes; with stamps that wrap, or without.
std::vector<told> in_pieces(const bytes& stream, const units_of& split, options o, bool with_stamps)
{
    checked_pictures sink(split.units, o.mode);
    picture_reader reader(o.how, o.mode);
    timestamp stamp;
    stamp.bits = 33;
    stamp.has_decoding = true;
    for (std::size_t at = 0; at < stream.size(); o.piece += o.growth) {
        const std::size_t size = std::min(o.piece, stream.size() - at);
        const exact_block block(stream.data() + at, size);
        stamp.presentation = (stamp.presentation + (std::int64_t{1} << 31)) % (std::int64_t{1} << 33);
        stamp.decoding = stamp.presentation / 2;
        reader.push(block.begin(), size, sink, {with_stamps ? &stamp : nullptr, false});
        at += size;
    }
    reader.flush(sink);
    return std::move(sink).all();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    input in(data, size);
    const auto how = static_cast<framing>(in.byte() % 3);
    const auto mode = static_cast<output_mode>(in.byte() % 3);
    const std::size_t pieces = in.byte();
    const bytes stream = in.rest();
    const options o = {how, mode, 1 + pieces % 32, pieces / 32};
    const units_of split(how, stream);
    const std::vector<told> whole = in_place(stream, split, {how, mode, stream.size(), 0});
    expect(in_place(stream, split, o) == whole, "pieces that stay give what the whole gives");
    expect(in_pieces(stream, split, o, false) == whole, "pieces give what the whole gives");
    in_pieces(stream, split, o, true);
    return 0;
}
