// What the memory allows: a pass that only reads, and copies.
#pragma once

#include "task.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <benchmark/benchmark.h>

namespace bench {

/// Reads every byte once.
inline void read_pass(const unsigned char* p, std::size_t size)
{
    std::uint64_t sums[8] = {};
    for (; size >= sizeof sums; p += sizeof sums, size -= sizeof sums) {
        std::uint64_t words[8];
        std::memcpy(words, p, sizeof words);
        for (int i = 0; i < 8; ++i)
            sums[i] += words[i];
    }
    for (; size > 0; ++p, --size)
        sums[0] += *p;
    benchmark::DoNotOptimize(sums);
}

/// memcpy, whose result somebody may want.
inline void copy_pass(unsigned char* out, const unsigned char* p, std::size_t size)
{
    std::memcpy(out, p, size);
    benchmark::ClobberMemory();
}

/// Every payload into the same room, and nothing else.
inline std::uint64_t copy_payloads(data_set& set)
{
    std::vector<unsigned char>& room = scratch_for(set);
    for (const unit_place& unit : set.units)
        copy_pass(room.data(), set.payloads.data() + unit.offset, unit.size);
    return 0;
}

} // namespace bench
