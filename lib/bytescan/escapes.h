// Emulation-prevention bytes dropped and inserted a block at a time, as long as there is more than a block; what is
// left the callers do exactly. A block with escapes is rewritten aside: its rest is copied once more behind each of
// them, so that no branch depends on how far they lie apart.
#pragma once

#include "bytescan/block.h"
#include "bytescan/copy_bytes.h"
#include "bytescan/third_byte.h"

#include <orv-utils-v4/h2645_common/advance_past.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace brenik::bytescan {

/// Bytes on their way from one range to another.
struct passage {
    const unsigned char* read;
    const unsigned char* read_fence;
    unsigned char* write;
    unsigned char* write_fence;

    /// Whether a byte may be written before it is read, when they are more than one at a time.
    bool runs_into_itself() const noexcept
    {
        const auto address = [](const unsigned char* p) { return reinterpret_cast<std::uintptr_t>(p); };
        return address(read) < address(write) && address(write) < address(read_fence);
    }

    /// Whether there is a block and what is read of the bytes behind it, and room for `most_written`.
    bool holds_block(std::size_t most_written) const noexcept
    {
        return range_size(read, read_fence) >= 2 * block_bytes && range_size(write, write_fence) >= most_written;
    }

    void advance(std::size_t bytes_read, std::size_t bytes_written) noexcept
    {
        read += bytes_read;
        write += bytes_written;
    }

    /// The bytes may be written a little before where they are read.
    void copy_block() noexcept
    {
        constexpr std::size_t half = block_places / 2;
        copy_two_blocks<half / 2>(write, read, half);
        copy_two_blocks<half / 2>(write + half, read + half, half);
        advance(block_places, block_places);
    }
};

/// Where a passage once was.
struct milestone {
    const unsigned char* read;
    unsigned char* write;
};

/// A block that is rewritten: what becomes of it, and how far it was read.
class rewritten_block {
public:
    explicit rewritten_block(const unsigned char* start) noexcept : block(start), read(start) { copy_rest(); }

    /// Takes the bytes before `place` as they are.
    void copy_to(const unsigned char* place) noexcept
    {
        write += place - read;
        read = place;
    }

    /// Takes what is left of the block as it is.
    void copy_to_end() noexcept
    {
        if (read < block + block_places)
            copy_to(block + block_places);
    }

    void drop_escape() noexcept
    {
        write += 2;
        read += 3;
        copy_rest();
    }

    void insert_escape() noexcept
    {
        write[2] = 3;
        write += 3;
        read += 2;
        copy_rest();
    }

    /// Puts it into the passage.
    void put(passage& at) const noexcept
    {
        copy_bytes(at.write, bytes, bytes_written());
        at.advance(bytes_read(), bytes_written());
    }

    std::size_t bytes_read() const noexcept { return static_cast<std::size_t>(read - block); }
    std::size_t bytes_written() const noexcept { return static_cast<std::size_t>(write - bytes); }

    static constexpr std::size_t most_written = block_places / 2 * 3 + 1; ///< with every other byte an escape

private:
    /// With the bytes behind the block that belong to its last places.
    void copy_rest() noexcept { std::memcpy(write, read, block_bytes); }

    const unsigned char* block;
    const unsigned char* read;
    unsigned char bytes[most_written + block_bytes];
    unsigned char* write = bytes;
};

/// Copies blocks up to one with places that matter, and tells those; 0 when blocks do not fit any more.
template <typename Block>
std::uint64_t copy_plain_blocks(passage& bytes, std::size_t most_written) noexcept
{
    passage at = bytes; // in registers
    std::uint64_t places = 0;
    while (at.holds_block(most_written)) {
        ask_ahead(at.read);
        places = Block::places(at.read, at_most_3);
        if (places != 0)
            break;
        at.copy_block();
    }
    bytes = at;
    return places;
}

/// Copies the RBSP of a unit up to its end: two zeros and a byte of at most 2. True when `at` has come there; else
/// blocks do not fit any more, and all bytes before `at` have been looked at.
/// @param behind_escape where the last escape ended, unchanged when there was none
template <typename Block = native_block>
bool drop_escapes(passage& at, milestone& behind_escape) noexcept
{
    constexpr std::uint64_t every_third_place = 0x9249249249249249; // the first and the last one included
    constexpr std::size_t places_then = 22;
    while (std::uint64_t places = copy_plain_blocks<Block>(at, block_bytes)) {
        if (places == every_third_place && places == Block::places(at.read, three)) {
            std::memset(at.write, 0, 2 * places_then);
            at.advance(3 * places_then, 2 * places_then);
            behind_escape = {at.read, at.write};
            continue;
        }
        const auto before_place = static_cast<std::size_t>(std::countr_zero(places));
        if (at.read[before_place + 2] != 3) {
            copy_bytes(at.write, at.read, before_place);
            at.advance(before_place, before_place);
            return true;
        }
        rewritten_block block(at.read);
        for (; places != 0; places &= places - 1) {
            const unsigned char* const place = at.read + std::countr_zero(places);
            block.copy_to(place);
            if (place[2] != 3) {
                block.put(at);
                return true;
            }
            block.drop_escape();
            behind_escape = {at.read + block.bytes_read(), at.write + block.bytes_written()};
        }
        block.copy_to_end();
        block.put(at);
    }
    return false;
}

/// What a block of zeros before a byte of at most 3 becomes.
constexpr std::array<unsigned char, block_places / 2 * 3> zeros_escaped = [] {
    std::array<unsigned char, block_places / 2 * 3> bytes{};
    for (std::size_t i = 2; i < bytes.size(); i += 3)
        bytes[i] = 3;
    return bytes;
}();

/// Copies an RBSP with an emulation-prevention byte behind each pair of zeros before a byte of at most 3, up to where
/// blocks do not fit any more.
template <typename Block = native_block>
void insert_escapes(passage& at) noexcept
{
    constexpr std::uint64_t every_place = ~std::uint64_t{0};
    while (std::uint64_t places = copy_plain_blocks<Block>(at, rewritten_block::most_written)) {
        if (places == every_place) {
            std::memcpy(at.write, zeros_escaped.data(), zeros_escaped.size());
            at.advance(block_places, zeros_escaped.size());
            continue;
        }
        rewritten_block block(at.read);
        while (places != 0) {
            const int place = std::countr_zero(places);
            block.copy_to(at.read + place);
            block.insert_escape();
            places &= ~(std::uint64_t{3} << place); // the second zero is used up
        }
        block.copy_to_end();
        block.put(at);
    }
}

} // namespace brenik::bytescan
