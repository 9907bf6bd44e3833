// The loops over blocks: past those in which nothing is found, with a copy of them, and over those that have much.
#pragma once

#include "bytescan/block.h"
#include "bytescan/copy_bytes.h"
#include "bytescan/passage.h"
#include "bytescan/third_byte.h"

#include <orv-utils-v4/h2645_common/advance_past.h>

#include <bit>
#include <cstddef>
#include <cstdint>

namespace brenik::bytescan {

/// A block that was looked at: bit i of `places` says that `start` + i is one.
struct seen_block {
    const unsigned char* start;
    std::uint64_t places;
};

/// Where rows of neighbouring places begin.
struct row_list {
    static constexpr std::size_t room = 64;

    const unsigned char* starts[room];
    std::size_t count;
    bool open; ///< the last place that was looked at is one: it may be the row's that goes on behind it
};

/// The loops as they are for a kind of block. They go into their callers, which say for what machine they are compiled.
/// Behind their first block they read where blocks are aligned.
template <typename Block>
struct runs_of : Block {
    /// The first block at `p`, or behind it, that has a place; without one where blocks do not fit any more. The one at
    /// `p` fits.
    [[gnu::always_inline]] static inline seen_block find(const unsigned char* p, const unsigned char* fence,
                                                         third_byte third) noexcept
    {
        for (std::size_t step = to_aligned(p); range_size(p, fence) >= block_bytes; step = block_places) {
            ask_ahead(p);
            if (const std::uint64_t places = places_of(p, third); places != 0)
                return {p, places};
            p += step;
        }
        return {p, 0};
    }

    /// Copies blocks up to one with places, and tells those; 0 when blocks do not fit any more. The bytes may be
    /// written a little before where they are read.
    [[gnu::always_inline]] static inline std::uint64_t copy(passage& bytes, third_byte third,
                                                            std::size_t most_written) noexcept
    {
        passage at = bytes; // in registers
        std::uint64_t places = 0;
        if (at.holds_block(most_written)) {
            places = Block::places(at.read, third);
            const std::size_t plain = places == 0 ? to_aligned(at.read) : 0;
            copy_bytes(at.write, at.read, plain);
            at.advance(plain, plain);
        }
        while (places == 0 && at.holds_block(most_written)) {
            ask_ahead(at.read);
            places = places_of(at.read, third);
            if (places != 0)
                break;
            Block::copy_block(at.write, at.read);
            at.advance(block_places, block_places);
        }
        bytes = at;
        return places;
    }

    /// Lists the rows of the first block at `p`, or behind it, that has a place, and of some blocks behind that one: a
    /// caller of one place more goes on with it soon.
    /// @return where it stopped; what lies before is listed. Where no block with a place fits any more, none is.
    [[gnu::always_inline]] static inline const unsigned char* list(const unsigned char* p, const unsigned char* fence,
                                                                   third_byte third, row_list& rows) noexcept
    {
        constexpr unsigned int most_blocks = 32;
        constexpr std::size_t most_in_block = block_places / 2;
        const seen_block seen = find(p, fence, third);
        std::uint64_t places = seen.places;
        std::uint64_t open = rows.open && seen.start == p ? 1 : 0;
        std::size_t count = 0;
        p = seen.start;
        for (unsigned int blocks = 0; places != 0 || blocks != 0;) {
            std::uint64_t begun = places & ~(places << 1 | open);
            // Mostly there is one or none: no branch depends on which.
            rows.starts[count] = p + std::countr_zero(begun | std::uint64_t{1} << (block_places - 1));
            count += begun != 0 ? 1 : 0;
            for (begun &= begun - 1; begun != 0; begun &= begun - 1)
                rows.starts[count++] = p + std::countr_zero(begun);
            open = places >> (block_places - 1);
            p += block_places;
            if (++blocks == most_blocks || count > row_list::room - most_in_block || range_size(p, fence) < block_bytes)
                break;
            ask_ahead(p);
            places = Block::places(p, third);
        }
        rows.count = count;
        rows.open = open != 0;
        return p;
    }

private:
    /// Most blocks have no two zeros at all.
    [[gnu::always_inline]] static inline std::uint64_t places_of(const unsigned char* p, third_byte third) noexcept
    {
        return Block::has_pair(p) ? Block::places(p, third) : 0;
    }

    /// How far it is to the next aligned block.
    static std::size_t to_aligned(const unsigned char* p) noexcept
    {
        return block_places - reinterpret_cast<std::uintptr_t>(p) % block_places;
    }
};

} // namespace brenik::bytescan
