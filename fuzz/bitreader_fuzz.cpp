// The bit reader against a reader of single bits. Input: a byte that says how many operations follow, two bytes an
// operation, and the data.
#include "input.h"

#include "support/literal_bits.h"

#include <orv-utils-v4/h2645_common/bitreader.h>

namespace {

using brenik::h2645_common_bitreader;

/// A read that may throw beside one that may give nothing; `code_start` is where the exception says the code begins.
template <typename Expected, typename Read>
void expect_code(const Expected& expected, std::size_t code_start, Read read)
{
    try {
        const auto value = read();
        fuzz::expect(expected.has_value(), "32 zero bits throw");
        fuzz::expect(value == *expected, "the code's value");
    } catch (const brenik::h2645_common_malformed_code& malformed) {
        fuzz::expect(!expected.has_value(), "fewer than 32 zero bits do not throw");
        fuzz::expect(malformed.bit_position() == code_start, "where the malformed code begins");
    }
}

void operate(unsigned int operation, unsigned char argument, h2645_common_bitreader& br, literal::bit_reader& model)
{
    const std::size_t start = model.position;
    const auto n = static_cast<unsigned char>(1 + argument % 25);
    switch (operation) {
    case 0:
        fuzz::expect(br.get<unsigned int>(n) == model.get(n), "get()");
        break;
    case 1:
        fuzz::expect(br.get_wide(argument) == model.get(argument), "get_wide()");
        break;
    case 2:
        fuzz::expect(br.peek24() == model.peek(24), "peek24()");
        break;
    case 3:
        br.byte_align();
        model.byte_align();
        break;
    case 4:
        expect_code(model.ue(), start, [&] { return br.ue(); });
        break;
    case 5:
        expect_code(model.se(), start, [&] { return br.se(); });
        break;
    case 6:
        fuzz::expect(h2645_common_more_rbsp_data(br) == model.more_rbsp_data(), "more_rbsp_data()");
        break;
    default:
        fuzz::expect(h2645_common_skip_rbsp_trailing_bits(br) == model.skip_rbsp_trailing_bits(),
                     "rbsp_trailing_bits()");
    }
}

/// The state between operations: the bits loaded are the stream's next ones, with zeros below.
void expect_sound(const h2645_common_bitreader& br, const literal::bit_reader& model)
{
    fuzz::expect(br.bits_consumed() == model.position, "bits_consumed()");
    fuzz::expect(br.reservoir.empty_count <= 32, "the empty count lies in 0 to 32");
    const unsigned int loaded = 32U - br.reservoir.empty_count;
    const std::uint64_t bits = std::uint64_t{model.peek(loaded)} << br.reservoir.empty_count;
    fuzz::expect(br.reservoir.bits == bits, "the reservoir holds the next bits");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const fuzz::bytes operations = input.take(std::size_t{2} * (input.byte() % 64));
    literal::bit_reader model{input.rest()};
    const fuzz::exact_block block(model.bytes);
    h2645_common_bitreader br(block.begin(), block.end());
    expect_sound(br, model);
    for (std::size_t i = 0; i + 1 < operations.size(); i += 2) {
        operate(operations[i] % 8, operations[i + 1], br, model);
        expect_sound(br, model);
    }
    return 0;
}
