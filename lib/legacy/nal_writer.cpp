// The NAL writer of the legacy interface, H.264 clause 7.3.1 and Annex B. It shares the byte search and the loop that
// inserts emulation-prevention bytes (bytescan/) with the newer NAL writer, so neither is a check on the other there:
// the tests hold each against a literal model of its own.
#include <orv-utils-v4/h264_legacy/nal_writer.h>

#include "bytescan/bytescan.h"
#include "bytescan/copy_bytes.h"
#include "bytescan/escapes.h"

#include <orv-utils-v4/h2645_common/advance_past.h>
#include <orv-utils-v4/misc/assertion.h>

#include <algorithm>
#include <cstring>

using brenik::range_size;
using brenik::bytescan::copy_bytes;
using brenik::bytescan::passage;
using brenik::bytescan::zero_pairs;

namespace {

constexpr std::size_t smallest_output = 16;
constexpr std::size_t start_code_size = 3;
constexpr std::size_t kept_room = 3;

/// How many bytes may be written at `w`, one after another.
std::size_t room(const unsigned char* w, const unsigned char* out_fence)
{
    const std::size_t left = range_size(w, out_fence);
    return left > kept_room ? left - kept_room : 0;
}

/// Copies the payload with emulation-prevention bytes while more than three bytes of room remain; where the copy ends.
// NOLINTNEXTLINE(readability-non-const-parameter): it is written through the passage
[[gnu::noinline]] unsigned char* escape(unsigned char* w, unsigned char* out_fence, const unsigned char* p,
                                        const unsigned char* payload_fence)
{
    passage bytes = {p, payload_fence, w, out_fence};
    if (!bytes.runs_into_itself())
        brenik::bytescan::insert_escapes(bytes);
    zero_pairs pairs(bytes.read, payload_fence, brenik::bytescan::at_most_3);
    for (;;) {
        const unsigned char* const place = pairs.next();
        const std::size_t plain = std::min(range_size(bytes.read, place), room(bytes.write, out_fence));
        copy_bytes(bytes.write, bytes.read, plain);
        bytes.write += plain;
        bytes.read += plain;
        if (bytes.read != place || place == payload_fence || room(bytes.write, out_fence) == 0)
            return bytes.write;
        std::memcpy(bytes.write, "\0\0\3", 3);
        bytes.write += 3;
        bytes.read += 2;
        pairs.resume(bytes.read);
    }
}

void store_big_endian(unsigned char* prefix, unsigned int size, std::size_t value)
{
    for (unsigned int i = size; i > 0; value >>= 8)
        prefix[--i] = static_cast<unsigned char>(value & 0xFF);
}

} // namespace

// NOLINTNEXTLINE(readability-non-const-parameter): the exported signature
int h264_nal_write(unsigned char* out, std::size_t out_size, unsigned char* payload, std::size_t payload_size,
                   unsigned int nal_length_size, unsigned char header)
{
    constexpr unsigned char forbidden_bit = 0x80;
    if (out_size < smallest_output)
        return -1;
    orv_utils_v4::check(nal_length_size <= 4, "lib/nal_writer", 27, "nal_length_size <= 4");
    const bool annexb = nal_length_size == 0;
    if (annexb)
        std::memcpy(out, "\0\0\1", start_code_size);
    if ((header & forbidden_bit) != 0)
        return -1;
    unsigned char* const unit = out + (annexb ? start_code_size : nal_length_size);
    *unit = header;
    const unsigned char* end = unit + 1 + payload_size;
    if (brenik::bytescan::is_small_and_plain(payload, payload + payload_size) &&
        payload_size <= room(unit + 1, out + out_size))
        copy_bytes(unit + 1, payload, payload_size);
    else
        end = escape(unit + 1, out + out_size, payload, payload + payload_size);
    store_big_endian(out, nal_length_size, range_size(unit, end));
    return static_cast<int>(end - out);
}
