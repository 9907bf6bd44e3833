// The framing of both interfaces over the same bytes. The units that the newer reader and the legacy scanner find in a
// stream are the same, behind prefixes as long as no unit ends early; both writers write the same bytes, but for two
// zeros at the end in Annex B and a length that its prefix does not hold. Input: a byte for the prefix size, the header
// byte, and the bytes.
#include "input.h"

#include "support/both_framings.h"

namespace {

/// Three bytes that end a unit before its length does.
bool ends_early(const unsigned char* start, const unsigned char* fence)
{
    for (; fence - start >= 3; ++start)
        if (start[0] == 0 && start[1] == 0 && start[2] < 3)
            return true;
    return false;
}

void read_with_both(const fuzz::exact_block& stream, unsigned int nal_length_size)
{
    bool early = false;
    const auto newer = support::newer_units(stream, nal_length_size, [&](const brenik::h264_nal_reader& reader) {
        early = nal_length_size != 0 && ends_early(reader.payload, reader.payload + reader.payload_length);
        return early;
    });
    auto legacy = support::legacy_units(stream, nal_length_size);
    if (early && legacy.size() > newer.size())
        legacy.resize(newer.size());
    fuzz::expect(newer == legacy, "both generations find the same units");
}

void write_with_both(const fuzz::exact_block& payload, unsigned int nal_length_size, unsigned char header)
{
    const fuzz::bytes written = support::legacy_written(nal_length_size, header, payload);
    fuzz::expect(!written.empty(), "there is room for everything");
    fuzz::expect(support::newer_written(nal_length_size, header, payload) ==
                     support::newer_of(written, nal_length_size, payload),
                 "both generations write the same bytes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const unsigned int nal_length_size = input.byte() % 5;
    const unsigned char header = input.byte() % 128;
    const fuzz::exact_block bytes = input.rest_block();
    read_with_both(bytes, nal_length_size);
    write_with_both(bytes, nal_length_size, header);
    return 0;
}
