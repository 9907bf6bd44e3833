// The passes that only read. Each width is compiled for the machines that have it, whatever the rest is compiled for.
#include "memory_pass.h"

namespace bench {

namespace {

constexpr std::size_t vectors_at_a_time = 8; // as many sums, so that none waits for the one before

using vector_16 = std::uint64_t __attribute__((vector_size(16)));
using vector_32 = std::uint64_t __attribute__((vector_size(32)));
using vector_64 = std::uint64_t __attribute__((vector_size(64)));

template <typename Vector>
[[gnu::always_inline]] inline void read_by(const unsigned char* p, std::size_t size)
{
    Vector sums[vectors_at_a_time] = {};
    for (; size >= sizeof sums; p += sizeof sums, size -= sizeof sums)
        for (std::size_t i = 0; i < vectors_at_a_time; ++i) {
            Vector read;
            std::memcpy(&read, p + i * sizeof read, sizeof read);
            sums[i] += read;
        }
    for (; size > 0; ++p, --size)
        sums[0][0] += *p;
    asm volatile("" : : "r"(sums) : "memory");
}

void read_by_16(const unsigned char* p, std::size_t size)
{
    read_by<vector_16>(p, size);
}

contender reading(const char* name, void (*read)(const unsigned char*, std::size_t))
{
    return {side::memory, name, [read](data_set& set) -> std::uint64_t {
                read(set.annex_b.data(), set.annex_b_size);
                return 0;
            }};
}

#if defined(__x86_64__)

[[gnu::target("avx2")]] void read_by_32(const unsigned char* p, std::size_t size)
{
    read_by<vector_32>(p, size);
}

[[gnu::target("avx512f")]] void read_by_64(const unsigned char* p, std::size_t size)
{
    read_by<vector_64>(p, size);
}

#endif

} // namespace

std::vector<contender> read_passes()
{
#if defined(__x86_64__)
    std::vector<contender> passes = {reading("sse2", read_by_16)};
    if (__builtin_cpu_supports("avx2"))
        passes.push_back(reading("avx2", read_by_32));
    if (__builtin_cpu_supports("avx512f"))
        passes.push_back(reading("avx512", read_by_64));
    return passes;
#else
    return {reading("16 bytes", read_by_16)};
#endif
}

} // namespace bench
