// A stream of the syntax library, with and without somebody who is told: the same structures, and every element told
// lies where it says and has the value of its bits. Input: a byte for the framing, and the stream.
#include "syntax_units.h"

#include <memory>

namespace {

using namespace fuzz;

/// What a stream without a visitor reads.
class plain_units : public h264::unit_sink {
public:
    struct kept {
        h264::nal_unit unit;
        h264::outcome result;
        std::uint64_t number;
    };
    void take(const h264::unit_reading& reading) override
    {
        units.push_back({reading.unit, reading.result, reading.place.number});
    }
    std::vector<kept> units;
};

bool same_outcome(const h264::outcome& a, const h264::outcome& b)
{
    return a.failure.why == b.failure.why && a.failure.bit == b.failure.bit && a.finding_count == b.finding_count &&
           a.ending == b.ending && a.bits == b.bits;
}

/// Tells every unit, and holds the readings against those of the stream that told nobody.
class told_units : public h264::unit_sink {
public:
    explicit told_units(const plain_units& others) : plain(others) {}

    h264::visitor* before(const h264::unit_place& place) override
    {
        listener = std::make_unique<checked_trace>(place.bytes, place.size, false);
        return listener.get();
    }
    void take(const h264::unit_reading& reading) override
    {
        listener->expect_outcome(reading.result);
        expect(at < plain.units.size(), "telling hands on the same units");
        const plain_units::kept& other = plain.units[at++];
        expect(other.number == reading.place.number, "telling keeps the order");
        expect(same_outcome(other.result, reading.result), "telling does not change how it goes");
        expect(other.unit == reading.unit, "telling does not change what is read");
        read_alone(reading);
    }
    std::size_t at = 0;

private:
    // With the context that the stream gives, the whole unit is read the same.
    static void read_alone(const h264::unit_reading& reading)
    {
        const bytes data = unescaped(reading.place.bytes, reading.place.size);
        const exact_block block(data);
        h264::nal_unit unit;
        h264::outcome result;
        h264::read(unit, block.begin(), block.size(), reading.context, result);
        if (!is_slice(reading.unit.header.nal_unit_type))
            expect(result.ending == reading.result.ending, "alone it ends the same");
        result.ending = reading.result.ending;
        expect(same_outcome(result, reading.result), "alone it goes the same");
        expect(unit == reading.unit, "alone the same is read");
        h264::slice_header_of(unit);
    }

    const plain_units& plain;
    std::unique_ptr<checked_trace> listener;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const fuzz::unit_list list(input);
    plain_units plain;
    fuzz::h264::stream silent;
    list.push_to(silent, plain);
    fuzz::expect(plain.units.size() == list.units.size(), "every unit is handed on");
    told_units told(plain);
    fuzz::h264::stream telling;
    list.push_to(telling, told);
    fuzz::expect(told.at == plain.units.size(), "every unit is told");
    return 0;
}
