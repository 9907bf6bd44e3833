// Every kind of run over blocks that this build has.
#pragma once

#include "bytescan/block_scalar.h"
#include "bytescan/native_runs.h"

#if defined(__x86_64__) && defined(__GLIBC__)
#include "bytescan/wide_runs.h"
#endif

namespace support {

using plain_runs = brenik::bytescan::runs_of<brenik::bytescan::scalar_block>;

#if defined(__x86_64__) && defined(__GLIBC__)

/// The runs with certain vectors, by the names that the loader chooses among.
template <typename Block, auto Find, auto Copy, auto List, brenik::bytescan::vectors Needed>
struct named_runs : Block {
    static constexpr auto find = Find;
    static constexpr auto copy = Copy;
    static constexpr auto list = List;
    static bool can_run() { return brenik::bytescan::vectors_at_hand() >= Needed; }
};

using sse2_runs = named_runs<brenik::bytescan::sse2_block, brenik::bytescan::find_sse2, brenik::bytescan::copy_sse2,
                             brenik::bytescan::list_sse2, brenik::bytescan::vectors::sse2>;
using avx2_runs = named_runs<brenik::bytescan::avx2_block, brenik::bytescan::find_avx2, brenik::bytescan::copy_avx2,
                             brenik::bytescan::list_avx2, brenik::bytescan::vectors::avx2>;
using avx512_runs =
    named_runs<brenik::bytescan::avx512_block, brenik::bytescan::find_avx512, brenik::bytescan::copy_avx512,
               brenik::bytescan::list_avx512, brenik::bytescan::vectors::avx512>;

/// As the arguments of a template.
template <template <typename...> typename List>
using all_runs = List<plain_runs, brenik::bytescan::native_runs, sse2_runs, avx2_runs, avx512_runs>;

#else

template <template <typename...> typename List>
using all_runs = List<plain_runs, brenik::bytescan::native_runs>;

#endif

/// Whether this machine has what they need.
template <typename Runs>
bool can_run()
{
    if constexpr (requires { Runs::can_run(); })
        return Runs::can_run();
    else
        return true;
}

} // namespace support
