#include "unit_writer.h"

#include "framing.h"

#include <orv-utils-v4/h264_syntax/nal_unit.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace orv_h264 {

namespace {

constexpr std::size_t worth_writing = std::size_t{256} * 1024;
constexpr std::size_t longest_prefix = 4;

} // namespace

unit_written unit_writer::write(std::span<const unsigned char> unit, h264::framing from, unsigned start_code_size)
{
    const unsigned prefix_size = prefix_size_of(frames);
    if (prefix_size == 0 && from != h264::framing::annex_b)
        return write_as_escaped(unit, start_code_size);
    if (prefix_size != 0 && std::uint64_t{unit.size()} >> 8 * prefix_size != 0)
        return unit_written::too_long;
    if (prefix_size != 0)
        put_length(unit.size());
    else
        put_start_code(start_code_size);
    put(unit);
    return unit_written::as_it_is;
}

// What has nothing in it that an escape is missing before, and no zero at its end, goes out as it stands.
unit_written unit_writer::write_as_escaped(std::span<const unsigned char> unit, unsigned start_code_size)
{
    const std::size_t most = longest_prefix + unit.size();
    const std::size_t size =
        h264::frame_escaped(unit.data(), unit.size(), 0, start_code_size == longest_prefix, room_for(most), most);
    if (size == 0)
        return write_escaped(unit, start_code_size);
    add(size);
    return unit_written::as_it_is;
}

// H.264 7.4.1: 00 00 00 and 00 00 01 have 03 inside, and a unit that ends in cabac_zero_words has it at its end.
unit_written unit_writer::write_escaped(std::span<const unsigned char> unit, unsigned start_code_size)
{
    std::vector<unsigned char> escaped;
    escaped.reserve(unit.size() + unit.size() / 2 + 1);
    unsigned zeros = 0;
    unit_written result = unit_written::as_it_is;
    for (const unsigned char byte : unit) {
        if (zeros == 2 && byte <= 1) {
            escaped.push_back(3);
            zeros = 0;
            result = unit_written::escaped;
        }
        escaped.push_back(byte);
        zeros = byte == 0 ? zeros + 1 : 0;
    }
    if (zeros == 2)
        escaped.push_back(3);
    if (zeros == 1) {
        escaped.pop_back();
        result = escaped.empty() ? unit_written::left_out : unit_written::shorter;
    }
    if (result == unit_written::left_out)
        return result;
    put_start_code(start_code_size);
    put(escaped);
    return result;
}

void unit_writer::pad(std::uint64_t zeros)
{
    constexpr std::array<unsigned char, 4096> block = {};
    for (std::uint64_t left = zeros; left != 0;) {
        const std::size_t count = std::min<std::uint64_t>(left, block.size());
        put({block.data(), count});
        left -= count;
    }
}

void unit_writer::flush()
{
    if (output != nullptr)
        output->write({out.get(), gathered});
    gathered = 0;
}

/// Room for so many bytes behind what is gathered, which goes to the file where they do not fit behind it.
unsigned char* unit_writer::room_for(std::size_t size)
{
    if (size > room - gathered)
        flush();
    if (size > room) {
        const std::size_t larger = std::max(size, worth_writing + worth_writing / 4);
        room = 0;
        out.reset(); // the two are not needed at the same time
        out = std::make_unique_for_overwrite<unsigned char[]>(larger);
        room = larger;
    }
    return out.get() + gathered;
}

/// So many bytes stand behind what was gathered.
void unit_writer::add(std::size_t size)
{
    given += size;
    if (output == nullptr)
        return;
    gathered += size;
    if (gathered >= worth_writing)
        flush();
}

void unit_writer::put(std::span<const unsigned char> bytes)
{
    if (output != nullptr && bytes.size() >= worth_writing) {
        flush();
        output->write(bytes);
        given += bytes.size();
        return;
    }
    if (output != nullptr && !bytes.empty())
        std::memcpy(room_for(bytes.size()), bytes.data(), bytes.size());
    add(bytes.size());
}

void unit_writer::put_start_code(unsigned size)
{
    constexpr std::array<unsigned char, longest_prefix> start_code = {0, 0, 0, 1};
    put(std::span(start_code).last(size));
}

void unit_writer::put_length(std::size_t length)
{
    std::array<unsigned char, longest_prefix> prefix = {};
    for (std::size_t i = prefix.size(); i-- > 0; length >>= 8)
        prefix[i] = static_cast<unsigned char>(length & 0xFF);
    put(std::span(prefix).last(prefix_size_of(frames)));
}

} // namespace orv_h264
