// The parse of a scaling list against the literal parse. Input: a byte for the size, and one for the bit that the list
// begins at; the data, parsed twice into one object.
#include "structure.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const unsigned int entries = input.byte();
    const unsigned char first_bit = input.byte() % 64;
    const fuzz::exact_block block = input.rest_block();
    brenik::h264_scaling_list list;
    fuzz::expect_same(support::scaling_list_parses{entries}, list, {block.begin(), block.end(), first_bit});
    list.valid = false;
    fuzz::expect_same(support::scaling_list_parses{16}, list, {block.begin(), block.end()});
    return 0;
}
