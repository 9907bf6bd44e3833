// The legacy interface's SPS against the literal one, up to the end of the data and open-ended over zeros. Input: SPSs
// that are parsed into one record one after another, each as a byte of which bit 0 resets the record before and two
// bytes of length, high byte first, and the data. Behind each the derived values and the dump are taken.
#include "input.h"

#include "support/legacy_parse.h"

namespace {

void expect_derived(h264_sps& sps, std::FILE* nowhere)
{
    fuzz::expect(sps.get_final_frame_width() >= 0 && sps.get_final_frame_height() >= 0, "no size is negative");
    unsigned int num = 7;
    unsigned int den = 0;
    const int known = sps.get_final_field_rate(num, den);
    fuzz::expect(known == 1 ? num != 0 && den != 0 : num == 7 && den == 0, "a field rate, or nothing written");
    sps.dump(nowhere);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static std::FILE* const nowhere = std::fopen("/dev/null", "w");
    fuzz::input input(data, size);
    h264_sps sps;
    for (bool more = true; more;) {
        if ((input.byte() & 1) != 0)
            sps.reset();
        const std::size_t length = input.byte() * 256U + input.byte();
        const fuzz::exact_block block = input.block(length);
        more = block.size() != 0;
        fuzz::expect_none(support::legacy_sps_parses()(sps, {block.begin(), block.end()}).difference);
        expect_derived(sps, nowhere);
    }
    return 0;
}
