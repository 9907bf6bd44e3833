// The decoder configuration record of the syntax library: what is read soundly is written as it was, reserved bits set,
// into no more than the room; what is made of the parameter sets in it is a record, too. Input: a byte for how much
// room is missing, and the record.
#include "input.h"

#include <orv-utils-v4/h264_syntax.h>

namespace {

using namespace fuzz;
using namespace orv_utils_v4::h264;

/// The views lie in the bytes, one behind another.
template <class List>
void expect_inside(const List& list, const unsigned char*& at, const exact_block& bytes)
{
    for (const unit_view& unit : list) {
        expect(unit.bytes >= at && unit.size <= static_cast<std::size_t>(bytes.end() - unit.bytes),
               "a unit lies behind the one before, in the record");
        at = unit.bytes + unit.size;
    }
}

/// Whether two records differ in reserved bits alone: those of bytes that are `reserved` in all ones.
bool same_but_for_reserved_bits(const exact_block& in, const exact_block& out, const AVCDecoderConfigurationRecord& x)
{
    const unsigned char* extension = in.begin() + 6;
    for (const unit_view& unit : x.sequenceParameterSetNALUnit)
        extension += 2 + unit.size;
    ++extension;
    for (const unit_view& unit : x.pictureParameterSetNALUnit)
        extension += 2 + unit.size;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::ptrdiff_t behind = in.begin() + i - extension;
        const bool extended = x.extension_present && behind >= 0 && behind <= 2;
        const unsigned reserved = i == 4 ? 0xFC : i == 5 ? 0xE0 : !extended ? 0 : behind == 0 ? 0xFC : 0xF8;
        if ((in.begin()[i] | reserved) != out.begin()[i])
            return false;
    }
    return true;
}

/// What is written into a block of exactly the room.
void expect_written(const AVCDecoderConfigurationRecord& x, std::size_t missing)
{
    const std::size_t needed = write(x, nullptr, 0).bytes;
    const exact_block room(needed - std::min(missing, needed));
    const configuration_outcome result = write(x, room.begin(), room.size());
    expect(result.bytes == needed, "what is needed does not hang on the room");
    expect(result.sound() == (room.size() == needed), "it is written when there is room");
}

void expect_same(const exact_block& in, AVCDecoderConfigurationRecord x, std::size_t size)
{
    const exact_block out(size);
    const configuration_outcome result = write(x, out.begin(), out.size());
    expect(result.sound() && result.bytes == size, "what was read takes as much again");
    expect(same_but_for_reserved_bits(in, out, x), "it is written as it was");
    AVCDecoderConfigurationRecord again;
    expect(read(again, out.begin(), out.size()).sound(), "what was written can be read");
    x.behind = again.behind = {};
    expect(again == x, "it is read as the same");
}

void expect_handed_out(const AVCDecoderConfigurationRecord& x)
{
    parameter_set_store store;
    const std::size_t lost = store.push(x);
    expect(lost <= x.sequenceParameterSetNALUnit.size() + x.pictureParameterSetNALUnit.size() +
                       x.sequenceParameterSetExtNALUnit.size(),
           "no more sets are lost than there are");
    AVCDecoderConfigurationRecord made;
    const parameter_set_list sets = store.all();
    if (make_configuration(made, sets, 4).sound())
        expect_written(made, lost);
    const std::size_t needed = write(sets, framing::annex_b, nullptr, 0).bytes;
    const exact_block room(needed);
    expect(write(sets, framing::annex_b, room.begin(), room.size()).why == reason::none, "the sets fit their size");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    input in(data, size);
    const std::size_t missing = in.byte();
    const exact_block record = in.rest_block();
    AVCDecoderConfigurationRecord x;
    const configuration_outcome result = read(x, record.begin(), record.size());
    expect(result.bytes <= record.size(), "reading stays in the record");
    expect(result.sound() || *text_of(result.why) != '\0', "a failure has a text");
    const unsigned char* at = record.begin();
    expect_inside(x.sequenceParameterSetNALUnit, at, record);
    expect_inside(x.pictureParameterSetNALUnit, at, record);
    expect_inside(x.sequenceParameterSetExtNALUnit, at, record);
    if (result.sound()) {
        expect_same(record, x, result.bytes);
        expect_written(x, missing);
    }
    expect_handed_out(x);
    return 0;
}
