// Each of the vectors among which the loader chooses on x86-64, by its name.
#pragma once

#include "bytescan/block_avx2.h"
#include "bytescan/block_avx512.h"
#include "bytescan/block_runs.h"

namespace brenik::bytescan {

enum class vectors { sse2, avx2, avx512 };

/// The widest that the processor has and the system keeps.
vectors vectors_at_hand() noexcept;

seen_block find_sse2(const unsigned char* p, const unsigned char* fence, third_byte third) noexcept;
seen_block find_avx2(const unsigned char* p, const unsigned char* fence, third_byte third) noexcept;
seen_block find_avx512(const unsigned char* p, const unsigned char* fence, third_byte third) noexcept;

std::uint64_t copy_sse2(passage& bytes, third_byte third, std::size_t most_written) noexcept;
std::uint64_t copy_avx2(passage& bytes, third_byte third, std::size_t most_written) noexcept;
std::uint64_t copy_avx512(passage& bytes, third_byte third, std::size_t most_written) noexcept;

const unsigned char* list_sse2(const unsigned char* p, const unsigned char* fence, third_byte third,
                               row_list& rows) noexcept;
const unsigned char* list_avx2(const unsigned char* p, const unsigned char* fence, third_byte third,
                               row_list& rows) noexcept;
const unsigned char* list_avx512(const unsigned char* p, const unsigned char* fence, third_byte third,
                                 row_list& rows) noexcept;

} // namespace brenik::bytescan
