// Outputs of every size, from none to more than is needed, for the writers and the decoders of both interfaces. Behind
// the output lies an unmapped page, before it bytes that must stay; the inputs can only be read. The payloads are all
// strings of a few bytes that matter.
#include "input_class.h"

#include "support/failing_new.h"
#include "support/guarded_buffer.h"
#include "support/legacy_nal_walk.h"
#include "support/literal_walk.h"
#include "support/read_only_input.h"
#include "support/stream_builder.h"

#include <orv-utils-v4/h264/nal_writer.h>
#include <orv-utils-v4/h264_legacy/nal_writer.h>

namespace robustness {

namespace {

using support::bytes;

constexpr std::size_t longest_payload = 7;
constexpr std::size_t room_to_spare = 8;
constexpr unsigned char header_byte = support::sps;

/// Output memory of any size up to 192 bytes that ends at an unmapped page.
class output {
public:
    /// The last `size` bytes, filled with the pattern, as are those before them.
    unsigned char* of(std::size_t size)
    {
        std::fill(memory.begin(), memory.end(), support::guarded_buffer::pattern);
        start = memory.last(size);
        return start;
    }

    unsigned char* end() const { return memory.end(); }

    /// Whether nothing was written but the first `count` bytes.
    bool untouched_but(std::size_t count) const
    {
        return support::guarded_buffer::untouched(memory.begin(), start) &&
               support::guarded_buffer::untouched(start + count, memory.end());
    }

private:
    support::guarded_buffer memory{192};
    unsigned char* start = nullptr;
};

output out;
support::read_only_input in;

/// Calls `use` with every payload, the shorter ones first.
template <typename Use>
void each_payload(Use use)
{
    constexpr unsigned char digits[] = {0, 1, 2, 3, 0xEE};
    std::size_t count = 1;
    for (std::size_t length = 0; length <= longest_payload; ++length, count *= std::size(digits))
        for (std::size_t number = 0; number < count; ++number) {
            bytes payload;
            for (std::size_t rest = number; payload.size() < length; rest /= std::size(digits))
                payload.push_back(digits[rest % std::size(digits)]);
            use(payload);
        }
}

/// "" when all of the claims hold.
std::string fault(bool same_result, bool same_bytes, bool rest_untouched, std::size_t allocations)
{
    return std::string(same_result ? "" : "the result differs; ") + (same_bytes ? "" : "the bytes differ; ") +
           (rest_untouched ? "" : "other memory was written; ") + (allocations == 0 ? "" : "memory was asked for; ");
}

std::string check_writer(const bytes& payload, unsigned int nalfmt, unsigned int zero_bytes, std::size_t size)
{
    const literal::header model_header{header_byte / 32, header_byte % 32, true};
    literal::nal_writer model{nalfmt, bytes(size, support::guarded_buffer::pattern), 0};
    const std::size_t expected = model.block_encode(payload, model_header, zero_bytes);
    unsigned char* const start = out.of(size);
    brenik::h264_nal_writer writer(start, start, out.end(), static_cast<brenik::h2645_common_nalfmt>(nalfmt));
    brenik::h264_nal header;
    header.decode_header(header_byte);
    unsigned char* const data = in.put(payload);
    std::size_t result = 0;
    {
        const support::armed_new memory;
        result = writer.block_encode(data, payload.size(), header, zero_bytes);
    }
    // What did not fit may have been begun.
    const std::size_t touched = expected != 0 ? expected : size;
    return fault(result == expected && writer.write == start + expected,
                 std::equal(start, start + expected, model.buffer.begin()), out.untouched_but(touched),
                 support::armed_new::made());
}

std::string check_legacy_writer(const bytes& payload, unsigned int prefix_size, unsigned char header, std::size_t size)
{
    const literal::legacy_written expected = literal::legacy_write(size, payload, prefix_size, header);
    unsigned char* const start = out.of(size);
    unsigned char* const data = in.put(payload);
    int result = 0;
    {
        const support::armed_new memory;
        result = h264_nal_write(start, size, data, payload.size(), prefix_size, header);
    }
    return fault(result == expected.result, std::equal(expected.output.begin(), expected.output.end(), start),
                 out.untouched_but(expected.output.size()), support::armed_new::made());
}

/// A stream of one unit, `prefix_size` 0 for Annex B, alone or before what begins the next one.
bytes framed(std::size_t prefix_size, const bytes& payload, bool before_start_code)
{
    support::stream_builder stream;
    if (prefix_size == 0)
        stream.annexb_unit(header_byte, payload);
    else
        stream.prefixed_unit(prefix_size, header_byte, payload);
    return before_start_code ? stream.start_code() : stream;
}

/// The unit in blocks of the size, and once more after that.
std::string check_blocks(const bytes& stream, unsigned int nalfmt, std::size_t size)
{
    unsigned char* const start = in.put(stream);
    support::literal_walk walk(nalfmt, start, stream.size());
    std::string text = walk.scan(0, stream.size());
    std::size_t blocks = 0;
    do {
        unsigned char* const block = out.of(size);
        text += walk.decode(block, size);
        if (!out.untouched_but(walk.decoded()))
            text += "other memory was written";
        ++blocks;
    } while (walk.decoded() != 0 && blocks <= stream.size());
    return text + (blocks > stream.size() ? "the blocks have no end" : "");
}

std::string check_legacy_scan(const bytes& stream, unsigned int prefix_size, std::size_t size)
{
    const unsigned char* const start = in.put(stream);
    support::legacy_nal_walk walk(start, stream.size());
    std::string text = walk.scan(0, stream.size(), prefix_size, out.of(size), size);
    if (!out.untouched_but(size))
        text += "memory before the output was written";
    return text;
}

} // namespace

void run_writer_sizes(input_class& inputs)
{
    each_payload([&](const bytes& payload) {
        for (unsigned int nalfmt = 1; nalfmt <= literal::annexb; ++nalfmt)
            for (unsigned int zero_bytes = 0; zero_bytes < (nalfmt == literal::annexb ? 3U : 1U); ++zero_bytes) {
                literal::nal_writer model{nalfmt, bytes(64), 0};
                model.block_encode(payload, {header_byte / 32, header_byte % 32, true}, zero_bytes);
                for (std::size_t size = 0; size <= model.write + room_to_spare; ++size)
                    inputs.input("block_encode", [&] { return check_writer(payload, nalfmt, zero_bytes, size); });
            }
    });
}

void run_legacy_writer_sizes(input_class& inputs)
{
    constexpr unsigned char forbidden_header = 0x80;
    each_payload([&](const bytes& payload) {
        const std::size_t enough = payload.size() * 3 / 2 + 16;
        for (unsigned int prefix_size = 0; prefix_size <= 4; ++prefix_size)
            for (std::size_t size = 0; size <= enough + room_to_spare; ++size)
                inputs.input("h264_nal_write",
                             [&] { return check_legacy_writer(payload, prefix_size, header_byte, size); });
    });
    for (unsigned int prefix_size = 0; prefix_size <= 4; ++prefix_size)
        for (std::size_t size = 0; size <= 64; ++size)
            inputs.input("h264_nal_write", [&] {
                return check_legacy_writer({0, 0, 1}, prefix_size, forbidden_header, size);
            });
}

void run_block_sizes(input_class& inputs)
{
    each_payload([&](const bytes& payload) {
        for (unsigned int nalfmt = 1; nalfmt <= literal::annexb; ++nalfmt)
            for (const bool before_start_code : {false, true})
                for (std::size_t size = 0; size <= payload.size() + room_to_spare; ++size)
                    inputs.input("block_decode", [&] {
                        const std::size_t prefix_size = nalfmt == literal::annexb ? 0 : nalfmt;
                        return check_blocks(framed(prefix_size, payload, before_start_code), nalfmt, size);
                    });
    });
}

void run_legacy_scan_sizes(input_class& inputs)
{
    each_payload([&](const bytes& payload) {
        for (unsigned int prefix_size = 0; prefix_size <= 4; ++prefix_size)
            for (const bool before_start_code : {false, true})
                for (std::size_t size = 0; size <= payload.size() + room_to_spare; ++size)
                    inputs.input("h264_nal_parser_scan", [&] {
                        return check_legacy_scan(framed(prefix_size, payload, before_start_code), prefix_size, size);
                    });
    });
}

} // namespace robustness
