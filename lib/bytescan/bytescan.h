// The one search behind every byte loop: two zero bytes and a certain third. It takes all places of a block at once, so
// that data full of them costs no more than a step each.
#pragma once

#include "bytescan/native_runs.h"
#include "bytescan/third_byte.h"

#include <orv-utils-v4/h2645_common/advance_past.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace brenik::bytescan {

/// The places p of a range where p[0] = p[1] = 0 and p[2] is of a kind, all three bytes in the range; one after
/// another.
template <typename Runs>
class zero_pairs_of {
public:
    zero_pairs_of(const unsigned char* start, const unsigned char* end, third_byte kind) noexcept
        : first(start), fence(end), third(kind), block(start), searched(start)
    {
    }

    /// The next place at or behind where the search stands; the end of the range when there is none.
    const unsigned char* next() noexcept
    {
        if (places == 0 && !search())
            return fence;
        return block + std::countr_zero(places);
    }

    /// Goes on at `p`, which does not lie before the place found last.
    void resume(const unsigned char* p) noexcept
    {
        if (p < searched) {
            places &= ~std::uint64_t{0} << (p - block);
        } else {
            searched = p;
            places = 0;
        }
    }

private:
    /// Goes to the next block with a place; false when there is none.
    bool search() noexcept
    {
        block = searched;
        if (range_size(block, fence) >= block_bytes) {
            const seen_block seen = Runs::find(block, fence, third);
            block = seen.start;
            places = seen.places;
            if (places != 0) {
                searched = block + block_places;
                return true;
            }
        }
        return search_end(range_size(block, fence));
    }

    /// The same where `left` bytes are fewer than a block.
    bool search_end(std::size_t left) noexcept
    {
        constexpr std::size_t behind_place = block_bytes - block_places;
        if (left <= behind_place)
            return false;
        searched = fence - behind_place;
        places = last_places(left - behind_place);
        return places != 0;
    }

    /// The places among the last `count` of the range, fewer than a block has.
    std::uint64_t last_places(std::size_t count) const noexcept
    {
        constexpr std::size_t third_of_last = block_bytes - block_places;
        if (count <= few_places && range_size(first, fence) >= few_places + third_of_last)
            return Runs::first_places(fence - few_places - third_of_last, third) >> (few_places - count);
        if (count <= few_places)
            return places_one_by_one(count);
        if (range_size(first, fence) >= block_bytes)
            return Runs::places(fence - block_bytes, third) >> (block_places - count);
        unsigned char padded[block_bytes];
        std::memset(padded, 0xFF, sizeof padded);
        std::memcpy(padded, block, range_size(block, fence));
        return Runs::places(padded, third) & ~(~std::uint64_t{0} << count);
    }

    std::uint64_t places_one_by_one(std::size_t count) const noexcept
    {
        std::uint64_t found = 0;
        for (std::size_t i = 0; i < count; ++i)
            found |= std::uint64_t{is_place(block + i, third)} << i;
        return found;
    }

    const unsigned char* first;
    const unsigned char* fence;
    third_byte third;
    const unsigned char* block;
    const unsigned char* searched; // every place before it has been looked at
    std::uint64_t places = 0;      // bit i: `block` + i is a place that has not been passed
};

using zero_pairs = zero_pairs_of<native_runs>;

/// The first of each row of neighbouring places in a range, some at a time.
template <typename Runs>
class place_rows_of {
public:
    place_rows_of(const unsigned char* start, const unsigned char* end, third_byte kind) noexcept
        : first(start), fence(end), third(kind), searched(start)
    {
        rows.count = 0;
        rows.open = false;
    }

    /// Where the next rows begin, some of them; none at the end of the range.
    std::span<const unsigned char* const> next_few() noexcept
    {
        rows.count = 0;
        while (rows.count == 0 && range_size(searched, fence) >= block_bytes)
            searched = Runs::list(searched, fence, third, rows);
        if (rows.count == 0)
            list_end();
        return {rows.starts, rows.count};
    }

private:
    /// Those of what is no block any more.
    void list_end() noexcept
    {
        zero_pairs_of<Runs> places(first, fence, third);
        places.resume(searched);
        const unsigned char* before = rows.open ? searched : nullptr; // behind the latest place
        for (const unsigned char* p = places.next(); p != fence; p = places.next()) {
            if (p != before)
                rows.starts[rows.count++] = p;
            before = p + 1;
            places.resume(before);
        }
        searched = fence;
    }

    const unsigned char* first;
    const unsigned char* fence;
    third_byte third;
    const unsigned char* searched; // the rows that begin before it are listed
    row_list rows;
};

using place_rows = place_rows_of<native_runs>;

/// The first place p in [`start`, `fence`) where p[0] = p[1] = 0 and p[2] <= `largest_third` (at most 3), all three
/// bytes before `fence`; `fence` when there is none.
inline const unsigned char* find_zero_pair(const unsigned char* start, const unsigned char* fence,
                                           unsigned char largest_third) noexcept
{
    return zero_pairs(start, fence, {0, largest_third}).next();
}

/// A place in a range of bytes that may be written: the searches and copies above exist once, for const bytes.
inline unsigned char* as_writable(const unsigned char* place) noexcept
{
    return const_cast<unsigned char*>(place);
}

} // namespace brenik::bytescan
