// Unsigned 32-bit arithmetic that is meant to wrap, marked as such.
#pragma once

#include <cstdint>

namespace brenik {

constexpr std::uint32_t wrapping_add(std::uint32_t a, std::uint32_t b) noexcept
{
    return static_cast<std::uint32_t>(std::uint64_t{a} + b);
}

constexpr std::uint32_t wrapping_sub(std::uint32_t a, std::uint32_t b) noexcept
{
    return static_cast<std::uint32_t>((std::uint64_t{1} << 32) + a - b);
}

constexpr std::uint32_t wrapping_mul(std::uint32_t a, std::uint32_t b) noexcept
{
    return static_cast<std::uint32_t>(std::uint64_t{a} * b);
}

} // namespace brenik
