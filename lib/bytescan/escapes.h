// Emulation-prevention bytes dropped and inserted a block at a time, as long as there is more than a block; what is
// left the callers do exactly. A block with escapes is rewritten aside: its rest is copied once more behind each of
// them, so that no branch depends on how far they lie apart.
#pragma once

#include "bytescan/copy_bytes.h"
#include "bytescan/native_runs.h"
#include "bytescan/passage.h"
#include "bytescan/third_byte.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace brenik::bytescan {

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

/// Copies the first few bytes of an RBSP as the clause words it: where units are small, these are all. True when the
/// unit ends among them. The bytes may be written a little before where they are read.
inline bool take_first_few(passage& at) noexcept
{
    if (!at.holds_block(block_bytes))
        return false;
    const unsigned char* p = at.read;
    unsigned char* w = at.write;
    bool met_end = false;
    for (const unsigned char* const behind = p + near_places; p < behind;) {
        const unsigned char first = p[0];
        const unsigned char second = p[1];
        const unsigned char third = p[2];
        if (third <= 3 && (first | second) == 0) {
            met_end = third != 3;
            break;
        }
        w[0] = first;
        if (third > 3) {
            w[1] = second;
            w[2] = third;
        }
        const std::size_t taken = third > 3 ? 3 : 1;
        p += taken;
        w += taken;
    }
    at.read = p;
    at.write = w;
    return met_end;
}

/// drop_escapes() for a unit that may be of any size.
template <typename Runs>
bool drop_escapes_in_blocks(passage& at, milestone& behind_escape) noexcept
{
    constexpr std::uint64_t every_third_place = 0x9249249249249249; // the first and the last one included
    constexpr std::size_t places_then = 22;
    while (std::uint64_t places = Runs::copy(at, at_most_3, block_bytes)) {
        if (places == every_third_place && places == Runs::places(at.read, three)) {
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

/// Copies the RBSP of a unit up to its end: two zeros and a byte of at most 2. True when `at` has come there; else
/// blocks do not fit any more, and all bytes before `at` have been looked at. Who expects small units calls
/// take_first_few() before.
/// @param behind_escape where the last escape ended, unchanged when there was none
template <typename Runs = native_runs>
inline bool drop_escapes(passage& at, milestone& behind_escape) noexcept
{
    if (!at.holds_block(block_bytes))
        return false;
    passage bytes = at; // what others have the address of does not stay in registers
    milestone behind_last = behind_escape;
    const bool met_end = drop_escapes_in_blocks<Runs>(bytes, behind_last);
    at = bytes;
    behind_escape = behind_last;
    return met_end;
}

/// Whether a payload is so small that two zeros are looked for one by one, and has none: nothing is to be escaped.
inline bool is_small_and_plain(const unsigned char* p, const unsigned char* fence) noexcept
{
    const std::size_t size = range_size(p, fence);
    if (size > near_places)
        return false;
    for (std::size_t i = 1; i < size; ++i)
        if (p[i] == 0 && p[i - 1] == 0)
            return false;
    return true;
}

/// What a block of zeros before a byte of at most 3 becomes.
constexpr std::array<unsigned char, block_places / 2 * 3> zeros_escaped = [] {
    std::array<unsigned char, block_places / 2 * 3> bytes{};
    for (std::size_t i = 2; i < bytes.size(); i += 3)
        bytes[i] = 3;
    return bytes;
}();

/// insert_escapes() where there is a block.
template <typename Runs>
void insert_escapes_in_blocks(passage& at) noexcept
{
    constexpr std::uint64_t every_place = ~std::uint64_t{0};
    while (std::uint64_t places = Runs::copy(at, at_most_3, rewritten_block::most_written)) {
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

/// Copies an RBSP with an emulation-prevention byte behind each pair of zeros before a byte of at most 3, up to where
/// blocks do not fit any more.
template <typename Runs = native_runs>
inline void insert_escapes(passage& at) noexcept
{
    if (!at.holds_block(rewritten_block::most_written))
        return;
    passage bytes = at; // as above
    insert_escapes_in_blocks<Runs>(bytes);
    at = bytes;
}

} // namespace brenik::bytescan
