// The SEI reader against a plain walk over indices. Input: the RBSP.
#include "input.h"

#include <orv-utils-v4/h264/nal_sei.h>

#include <optional>

namespace {

/// One number of a message header, or nothing when the data ends inside it.
std::optional<std::uint64_t> read_number(const fuzz::bytes& data, std::size_t& at)
{
    std::uint64_t sum = 0;
    while (at < data.size()) {
        const unsigned char byte = data[at++];
        sum += byte;
        if (byte != 0xFF)
            return sum;
    }
    return std::nullopt;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const fuzz::bytes rbsp = input.rest();
    const fuzz::exact_block block(rbsp);
    brenik::h264_nal_sei_reader reader(block.begin(), block.end());

    std::size_t at = 0;
    for (bool more = true; more;) {
        const bool found = reader.next_message();
        fuzz::expect(found == reader.has_message, "`has_message` is the result");
        const std::size_t message = at;
        const auto type = rbsp.size() - at >= 2 ? read_number(rbsp, at) : std::nullopt;
        const auto payload_size = type ? read_number(rbsp, at) : std::nullopt;
        more = payload_size.has_value();
        fuzz::expect(found == more, "a message is found where its header is whole");
        if (!more)
            break;
        const bool truncated = *payload_size > rbsp.size() - at;
        const std::size_t payload_fence = truncated ? rbsp.size() : at + static_cast<std::size_t>(*payload_size);
        fuzz::expect(reader.payloadType == *type && reader.payloadSize == *payload_size, "type and size");
        fuzz::expect(reader.message == block.begin() + message && reader.payload == block.begin() + at, "the start");
        fuzz::expect(reader.payload_fence == block.begin() + payload_fence, "the payload's end");
        fuzz::expect(reader.truncated == truncated, "`truncated`");
        fuzz::expect(brenik::h264_nal_sei_payload_type_to_str(reader.payloadType) != nullptr, "a name or none");
        const bool only_trailing_bits = payload_fence + 1 == rbsp.size() && rbsp[payload_fence] == 0x80;
        at = only_trailing_bits ? rbsp.size() : payload_fence;
    }
    return 0;
}
