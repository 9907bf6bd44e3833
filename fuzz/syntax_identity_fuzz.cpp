// What the syntax library reads soundly it writes to the same bits, which it reads as the same; and any unit can be put
// into a framing and taken out again. Input: a byte for the framing, and the stream.
#include "syntax_units.h"

namespace {

using namespace fuzz;

/// Bits [0, n) are the same.
bool same_bits(const bytes& a, const bytes& b, std::uint64_t n)
{
    const auto whole = static_cast<std::size_t>(n / 8);
    if (a.size() < (n + 7) / 8 || b.size() < (n + 7) / 8 ||
        !std::equal(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(whole), b.begin()))
        return false;
    return n % 8 == 0 || (a[whole] ^ b[whole]) >> (8 - n % 8) == 0;
}

class rewritten_units : public h264::unit_sink {
public:
    void take(const h264::unit_reading& reading) override
    {
        const bytes data = unescaped(reading.place.bytes, reading.place.size);
        check_framing(data);
        h264::outcome result;
        const bytes again = written(reading.unit, reading.context, result);
        if (!reading.result.sound())
            return;
        expect(!result.failure, "what is sound can be written");
        expect(result.bits == reading.result.bits, "as many bits are written as were read");
        expect(same_bits(again, data, result.bits), "the same bits are written");
        check_read_again(reading, again);
        if (reading.result.bits < 8 * data.size())
            check_data(reading, data);
    }

private:
    static void check_read_again(const h264::unit_reading& reading, const bytes& again)
    {
        const exact_block block(again);
        h264::nal_unit unit;
        h264::outcome result;
        h264::read(unit, block.begin(), block.size(), reading.context, result);
        expect(result.sound(), "what was written is sound");
        expect(unit == reading.unit, "what was written is read as the same");
    }
    // The data of a slice are taken over as they are.
    static void check_data(const h264::unit_reading& reading, const bytes& data)
    {
        const exact_block old(data);
        const exact_block room(data.size());
        h264::bit_writer bits(room.begin(), room.size());
        h264::outcome result;
        h264::write_before_data(reading.unit, reading.context, old.begin(), old.size(), reading.result.bits, bits,
                                result);
        expect(!result.failure, "with its data there is room for it");
        expect(bits.bytes() == data.size() && std::equal(data.begin(), data.end(), room.begin()),
               "with its data it is the same");
    }
    static void check_framing(const bytes& data)
    {
        if (data.empty())
            return;
        const exact_block block(data);
        const exact_block room(data.size() + data.size() / 2 + 40);
        for (unsigned prefix_size = 0; prefix_size <= 4; ++prefix_size) {
            const std::size_t size =
                h264::frame(block.begin(), block.size(), prefix_size, true, room.begin(), room.size());
            expect(size <= room.size(), "it fits the room");
            expect(size != 0 || prefix_size == 1, "it is framed");
            const std::size_t framing = prefix_size == 0 ? 4 : prefix_size;
            if (size != 0)
                expect(unescaped(room.begin() + framing, size - framing) == data, "taken out it is the same");
        }
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const fuzz::unit_list list(input);
    rewritten_units sink;
    fuzz::h264::stream reader;
    list.push_to(reader, sink);
    return 0;
}
