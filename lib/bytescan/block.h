// The one choice of how a block of bytes is looked at.
#pragma once

#if defined(__SSE2__)
#include "bytescan/block_sse2.h"
#elif defined(__aarch64__)
#include "bytescan/block_neon.h"
#else
#include "bytescan/block_scalar.h"
#endif

#include <cstddef>
#include <cstdint>

namespace brenik::bytescan {

#if defined(__SSE2__)
using native_block = sse2_block;
#elif defined(__aarch64__)
using native_block = neon_block;
#else
using native_block = scalar_block;
#endif

constexpr std::size_t block_places = 64;              ///< looked at together
constexpr std::size_t block_bytes = block_places + 2; ///< read for them

/// Asks for the bytes that will be looked at some blocks later: the machine does not run ahead far enough by itself.
/// They need not exist.
inline void ask_ahead(const unsigned char* p) noexcept
{
    constexpr std::uintptr_t ahead = 2048;
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(p) + ahead)); // NOLINT
}

} // namespace brenik::bytescan
