// The runs over blocks for the vectors that an x86-64 may have, and the loader's choice among them. It is made once,
// before the program runs, from what the processor says and the system keeps; nothing is written.
#include "bytescan/native_runs.h"

#if defined(__x86_64__) && defined(__GLIBC__)

#include "bytescan/wide_runs.h"

#include <cpuid.h>

// Called before anything is set up: without what a sanitizer would put in.
#if defined(__clang__)
#define ORV_BEFORE_SETUP [[clang::disable_sanitizer_instrumentation]]
#else
#define ORV_BEFORE_SETUP [[gnu::no_sanitize("address", "thread", "undefined")]]
#endif

namespace brenik::bytescan {

seen_block find_sse2(const unsigned char* p, const unsigned char* fence, third_byte third) noexcept
{
    return runs_of<sse2_block>::find(p, fence, third);
}

[[gnu::target("avx2")]] seen_block find_avx2(const unsigned char* p, const unsigned char* fence,
                                             third_byte third) noexcept
{
    return runs_of<avx2_block>::find(p, fence, third);
}

[[gnu::target("avx512bw")]] seen_block find_avx512(const unsigned char* p, const unsigned char* fence,
                                                   third_byte third) noexcept
{
    return runs_of<avx512_block>::find(p, fence, third);
}

std::uint64_t copy_sse2(passage& bytes, third_byte third, std::size_t most_written) noexcept
{
    return runs_of<sse2_block>::copy(bytes, third, most_written);
}

[[gnu::target("avx2")]] std::uint64_t copy_avx2(passage& bytes, third_byte third, std::size_t most_written) noexcept
{
    return runs_of<avx2_block>::copy(bytes, third, most_written);
}

[[gnu::target("avx512bw")]] std::uint64_t copy_avx512(passage& bytes, third_byte third,
                                                      std::size_t most_written) noexcept
{
    return runs_of<avx512_block>::copy(bytes, third, most_written);
}

const unsigned char* list_sse2(const unsigned char* p, const unsigned char* fence, third_byte third,
                               row_list& rows) noexcept
{
    return runs_of<sse2_block>::list(p, fence, third, rows);
}

[[gnu::target("avx2")]] const unsigned char* list_avx2(const unsigned char* p, const unsigned char* fence,
                                                       third_byte third, row_list& rows) noexcept
{
    return runs_of<avx2_block>::list(p, fence, third, rows);
}

[[gnu::target("avx512bw")]] const unsigned char* list_avx512(const unsigned char* p, const unsigned char* fence,
                                                             third_byte third, row_list& rows) noexcept
{
    return runs_of<avx512_block>::list(p, fence, third, rows);
}

ORV_BEFORE_SETUP vectors vectors_at_hand() noexcept
{
    constexpr unsigned int leaf_of_extensions = 7;
    constexpr unsigned int avx_state = 0x06;    // what of the registers the system keeps: XMM and YMM
    constexpr unsigned int avx512_state = 0xE6; // and the masks, the upper halves, the upper registers
    unsigned int a = 0;
    unsigned int b = 0;
    unsigned int c = 0;
    unsigned int d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & bit_OSXSAVE) == 0)
        return vectors::sse2;
    unsigned int kept = 0;
    asm("xgetbv" : "=a"(kept), "=d"(d) : "c"(0)); // NOLINT(hicpp-no-assembler)
    if (__get_cpuid_count(leaf_of_extensions, 0, &a, &b, &c, &d) == 0)
        return vectors::sse2;
    if ((kept & avx512_state) == avx512_state && (b & bit_AVX512F) != 0 && (b & bit_AVX512BW) != 0)
        return vectors::avx512;
    return (kept & avx_state) == avx_state && (b & bit_AVX2) != 0 ? vectors::avx2 : vectors::sse2;
}

ORV_BEFORE_SETUP [[gnu::used]] static decltype(&find_sse2) choose_find() noexcept
{
    const vectors widest = vectors_at_hand();
    return widest == vectors::avx512 ? find_avx512 : widest == vectors::avx2 ? find_avx2 : find_sse2;
}

ORV_BEFORE_SETUP [[gnu::used]] static decltype(&copy_sse2) choose_copy() noexcept
{
    const vectors widest = vectors_at_hand();
    return widest == vectors::avx512 ? copy_avx512 : widest == vectors::avx2 ? copy_avx2 : copy_sse2;
}

ORV_BEFORE_SETUP [[gnu::used]] static decltype(&list_sse2) choose_list() noexcept
{
    const vectors widest = vectors_at_hand();
    return widest == vectors::avx512 ? list_avx512 : widest == vectors::avx2 ? list_avx2 : list_sse2;
}

// The attribute takes the chooser's name as the linker knows it.
[[gnu::ifunc("_ZN6brenik8bytescanL11choose_findEv")]] seen_block
find_wide(const unsigned char* p, const unsigned char* fence, third_byte third) noexcept;
[[gnu::ifunc("_ZN6brenik8bytescanL11choose_copyEv")]] std::uint64_t copy_wide(passage& bytes, third_byte third,
                                                                              std::size_t most_written) noexcept;
[[gnu::ifunc("_ZN6brenik8bytescanL11choose_listEv")]] const unsigned char*
list_wide(const unsigned char* p, const unsigned char* fence, third_byte third, row_list& rows) noexcept;

} // namespace brenik::bytescan

#endif
