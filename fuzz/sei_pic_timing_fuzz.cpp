// The parse of picture timing messages against the literal parse. Input: a byte that says where the SPS comes from (0
// from the caller; 1 the current one of a store; 2 an absent one; else none is current), the SPS as in take_vui(), and
// then see expect_same_in_a_row().
#include "sei_sps.h"

namespace {

void expect_texts(const brenik::h264_nal_sei_pic_timing& timing)
{
    fuzz::expect(timing.NumClockTS() >= 1 && timing.NumClockTS() <= 3, "one to three clock timestamps");
    fuzz::expect((timing.pic_struct_to_str()[0] == '?') == (timing.pic_struct > 8), "a text for each pic_struct");
    for (const auto& timestamp : timing.timestamps)
        fuzz::expect((timestamp.ct_type_to_str()[0] == '?') == (timestamp.ct_type > 1), "a text for each ct_type");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const unsigned char source = input.byte();
    const literal::stored_vui vui = fuzz::take_vui(input);
    brenik::h264_nal_sei_pic_timing timing;
    if (source == 0) {
        timing = fuzz::expect_same_in_a_row(input, support::pic_timing_parses{vui});
    } else {
        support::current_pic_timing_parses parses{{{7, vui}}};
        if (source <= 2)
            parses.current = source == 1 ? 7 : 8;
        timing = fuzz::expect_same_in_a_row(input, parses);
    }
    expect_texts(timing);
    return 0;
}
