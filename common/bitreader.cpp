// H.264 clauses 7.2 and 9.1: Exp-Golomb codes and the RBSP trailer over the bit reader. Every parse of the newer
// interface calls these; nothing here reads at or past the fence.
#include <orv-utils-v4/h2645_common/bitreader.h>

#include <algorithm>
#include <bit>

namespace brenik {

namespace bit_io {

template class reader<reservoir<unsigned int, 0>, data_source_memory_alt1<unsigned char, const unsigned char*>>;
template unsigned int
reader<reservoir<unsigned int, 0>, data_source_memory_alt1<unsigned char, const unsigned char*>>::get<unsigned int>(
    unsigned char) noexcept;

} // namespace bit_io

h2645_common_malformed_code::h2645_common_malformed_code(std::size_t bit_position)
    : std::runtime_error("malformed Exp-Golomb code: 32 or more leading zero bits"), position(bit_position)
{
}

h2645_common_malformed_code::~h2645_common_malformed_code() = default;

std::size_t h2645_common_malformed_code::bit_position() const noexcept
{
    return position;
}

h2645_common_bitreader::h2645_common_bitreader(const unsigned char* data, const unsigned char* fence) noexcept
    : reader({data, data, fence})
{
}

// H.264 9.1
unsigned int h2645_common_bitreader::ue()
{
    constexpr int most_zeros_loaded = 12; // a code with these is 25 bits long, as many as are loaded for sure
    refill();
    const int zeros_loaded = std::countl_zero(reservoir.bits);
    if (zeros_loaded <= most_zeros_loaded)
        return get<unsigned int>(static_cast<unsigned char>(2 * zeros_loaded + 1)) - 1;

    constexpr unsigned char too_many_zeros = 32;
    const std::size_t code_start = bits_consumed();
    unsigned char leading_zeros = 0;
    while (get<unsigned int>(1) == 0) {
        ++leading_zeros;
        if (leading_zeros == too_many_zeros)
            throw h2645_common_malformed_code(code_start);
    }
    return (1U << leading_zeros) - 1 + get_wide(leading_zeros);
}

// H.264 9.1.1
int h2645_common_bitreader::se()
{
    const unsigned int k = ue();
    const int magnitude = static_cast<int>(k / 2 + k % 2);
    return k % 2 == 1 ? magnitude : -magnitude;
}

bool h2645_common_more_rbsp_data(h2645_common_bitreader& br)
{
    br.refill();
    const bool one_bit_behind_the_next = br.reservoir.bits << 1 != 0;
    const unsigned char* const unread = br.source.cursor;
    return one_bit_behind_the_next || std::any_of(unread, unread + range_size(unread, br.source.fence),
                                                  [](unsigned char byte) { return byte != 0; });
}

bool h2645_common_skip_rbsp_trailing_bits(h2645_common_bitreader& br)
{
    const unsigned int rbsp_stop_one_bit = br.get<unsigned int>(1);
    const unsigned int rbsp_alignment_zero_bits = br.get_wide(br.bits_to_byte_boundary());
    return rbsp_stop_one_bit == 1 && rbsp_alignment_zero_bits == 0;
}

} // namespace brenik
