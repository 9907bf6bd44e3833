// What the memory allows: a pass that only reads, and copies.
#pragma once

#include "task.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <benchmark/benchmark.h>

namespace bench {

/// Reading every byte once, by each width of vectors that the machine has.
std::vector<contender> read_passes();

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
