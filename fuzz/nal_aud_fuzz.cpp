// The parse of an access unit delimiter from any bit of any data. Input: a byte that says how many bits are consumed
// before, and the data.
#include "input.h"

#include "support/literal_bits.h"

#include <orv-utils-v4/h264/nal_aud.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const unsigned char bits_before = input.byte();
    literal::bit_reader model{input.rest()};
    const fuzz::exact_block block(model.bytes);
    brenik::h2645_common_bitreader br(block.begin(), block.end());
    br.get_wide(bits_before);
    model.get(bits_before);

    brenik::h264_nal_aud aud{0xFF, (bits_before & 1) != 0};
    const bool result = aud.parse(br);
    model.byte_align();
    fuzz::expect(aud.primary_pic_type == model.get(3), "primary_pic_type is the first three bits of a byte");
    fuzz::expect(result == model.skip_rbsp_trailing_bits(), "the result is that of the trailing bits");
    fuzz::expect(aud.valid == result, "`valid` is the result");
    fuzz::expect(br.bits_consumed() == model.position, "one byte is consumed");
    return 0;
}
