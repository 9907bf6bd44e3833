// What is looked at together. Each kind of block (block_*.h, the only files with vector instructions) answers one
// question, and copies one.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brenik::bytescan {

constexpr std::size_t block_places = 64;              ///< looked at together
constexpr std::size_t block_bytes = block_places + 2; ///< read for them
constexpr std::size_t few_places = 16;                ///< looked at near an end
constexpr std::size_t near_places = 12;               ///< looked at one by one, where a unit may be that small

/// Asks for the bytes that will be looked at some blocks later: the machine does not run ahead far enough by itself.
/// They need not exist.
inline void ask_ahead(const unsigned char* p) noexcept
{
    constexpr std::uintptr_t ahead = 4096;
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(p) + ahead)); // NOLINT
}

} // namespace brenik::bytescan
