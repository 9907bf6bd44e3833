// What the fuzz entry points of the syntax library share: units out of an input, and what a trace has to be.
#pragma once

#include "input.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

namespace h264 = orv_utils_v4::h264;

/// Units of a stream whose framing the first byte tells: Annex B, or length prefixes of one or two bytes.
class unit_list : public h264::split_sink {
public:
    explicit unit_list(input& from)
    {
        const auto framing = static_cast<h264::framing>(from.byte() % 3);
        const bytes stream = from.rest();
        h264::unit_splitter splitter(framing);
        splitter.push(stream.data(), stream.size(), *this);
        splitter.flush(*this);
    }
    void unit(const h264::split_unit& unit) override { units.emplace_back(unit.bytes, unit.bytes + unit.size); }
    void gap(const h264::split_gap&) override {}

    /// Pushes every unit, out of memory of its own.
    void push_to(h264::stream& reader, h264::unit_sink& sink) const
    {
        std::uint64_t number = 0;
        for (const bytes& unit : units) {
            const exact_block block(unit);
            reader.push({block.begin(), block.size(), 0, number++}, sink);
        }
        reader.flush(sink);
    }

    std::vector<bytes> units;
};

/// The unit without its emulation-prevention bytes, in memory of exactly its size.
inline bytes unescaped(const unsigned char* unit, std::size_t size)
{
    bytes out(size);
    out.resize(h264::unescape(unit, size, out.data(), out.size()));
    return out;
}

inline bool is_slice(unsigned type)
{
    return (type >= 1 && type <= 5) || type == 19 || type == 20 || type == 21;
}

/// The number of `bits` bits from `bit` on.
inline std::uint64_t bits_at(const bytes& data, std::uint64_t bit, std::uint64_t bits)
{
    std::uint64_t value = 0;
    for (std::uint64_t end = bit + bits; bit != end; ++bit)
        value = (value & (~std::uint64_t{0} >> 1)) << 1 | (data[bit / 8] >> (7 - bit % 8) & 1U);
    return value;
}

/// What the bits of an element stand for, read again without the library.
inline std::int64_t value_in(const bytes& data, const h264::traced_element& e)
{
    const std::uint64_t number = bits_at(data, e.bit, e.bits);
    switch (e.how) {
    case h264::coding::ue:
        return static_cast<std::int64_t>(number - 1);
    case h264::coding::se:
        return number % 2 == 0 ? static_cast<std::int64_t>(number / 2) : -static_cast<std::int64_t>(number / 2);
    case h264::coding::i:
    case h264::coding::i_v:
        return number >> (e.bits - 1) == 0 ? static_cast<std::int64_t>(number)
                                           : static_cast<std::int64_t>(number) - (std::int64_t{1} << e.bits);
    default:
        return static_cast<std::int64_t>(number);
    }
}

/// An element as it is compared later.
struct kept_element {
    std::string path;
    std::uint64_t bit;
    std::int64_t value;

    friend bool operator==(const kept_element&, const kept_element&) = default;
};

/// Holds what a trace tells against the bits of the unit.
class checked_trace : public h264::visitor {
public:
    checked_trace() = default;
    /// @param with_paths the elements are kept
    checked_trace(const unsigned char* unit, std::size_t size, bool with_paths)
        : data(unescaped(unit, size)), escaped(unit, unit + size), places(escaped.data(), size), paths(with_paths)
    {
    }
    checked_trace(const checked_trace&) = delete;
    checked_trace& operator=(const checked_trace&) = delete;

    void open(const char* name) override
    {
        ++depth;
        if (!paths)
            return;
        lengths.push_back(path.size());
        path.append(name).append(1, '.');
    }
    void close() override
    {
        expect(depth > 0, "a structure closes that is open");
        --depth;
        if (!paths)
            return;
        path.resize(lengths.back());
        lengths.pop_back();
    }
    void element(const h264::traced_element& e) override
    {
        expect(depth > 0, "an element lies in a structure");
        expect(e.bits > 0 && e.bit + e.bits <= 8 * data.size(), "an element lies in the unit");
        expect(e.bit >= end, "elements do not overlap");
        contiguous = contiguous && e.bit == end;
        end = e.bit + e.bits;
        if (e.bytes == nullptr) {
            expect(e.value == value_in(data, e), "the value is that of the bits");
            expect(e.inside == (e.value >= e.lowest && e.value <= e.highest), "inside is inside");
        } else
            expect(e.how == h264::coding::st || e.bits == 8 * e.size, "bytes have their bits");
        outside += e.inside ? 0 : 1;
        const std::size_t place = places(e.bit / 8);
        expect(place < escaped.size() && escaped[place] == data[e.bit / 8], "the place has the byte");
        expect(place >= latest_place, "places rise");
        latest_place = place;
        if (paths)
            keep(e);
    }

    /// Behind the unit: what was told against how it went.
    void expect_outcome(const h264::outcome& result) const
    {
        expect(depth == 0, "every structure closes");
        expect(result.findings.size() == std::min(result.finding_count, h264::outcome::most_findings),
               "findings are kept up to a number");
        expect(outside >= result.finding_count, "a finding is told");
        expect(result.bits >= end || result.failure, "the end is behind the last element");
        if (result.failure) {
            expect(*h264::text_of(result.failure.why) != '\0', "a failure has a text");
            return;
        }
        expect(contiguous && result.bits == end, "every bit is of an element");
        expect(outside == result.finding_count, "a value outside is a finding");
    }

    std::vector<kept_element> elements;

private:
    void keep(const h264::traced_element& e)
    {
        std::string name = path + e.name.name();
        for (unsigned n = 0; n < e.name.depth(); ++n)
            name += "[" + std::to_string(e.name.index(n)) + "]";
        elements.push_back({name, e.bit, e.bytes == nullptr ? e.value : 0});
    }

    bytes data;
    bytes escaped;
    h264::byte_map places = {nullptr, 0};
    bool paths = false;
    std::string path;
    std::vector<std::size_t> lengths;
    std::size_t depth = 0;
    std::uint64_t end = 0;
    std::size_t latest_place = 0;
    std::size_t outside = 0;
    bool contiguous = true;
};

/// The unit as write() puts it; nothing when it is refused.
inline bytes written(const h264::nal_unit& unit, const h264::unit_context& context, h264::outcome& result)
{
    h264::bit_writer counted;
    h264::write(unit, context, counted, result);
    const exact_block room(static_cast<std::size_t>(counted.bytes()));
    h264::bit_writer bits(room.begin(), room.size());
    if (!h264::write(unit, context, bits, result))
        return {};
    expect(bits.bits() == counted.bits(), "counting counts what is written");
    return {room.begin(), room.end()};
}

} // namespace fuzz
