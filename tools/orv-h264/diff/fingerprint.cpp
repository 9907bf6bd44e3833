#include "diff/fingerprint.h"

#include <algorithm>
#include <array>
#include <bit>
#include <random>

namespace orv_h264 {

namespace {

constexpr std::uint64_t modulus = (std::uint64_t{1} << 61) - 1;

constexpr std::uint64_t reduced(std::uint64_t x)
{
    x = (x & modulus) + (x >> 61);
    return x >= modulus ? x - modulus : x;
}

/// a * b modulo 2^61 - 1, both below it.
constexpr std::uint64_t wide_product(std::uint64_t a, std::uint64_t b)
{
    constexpr std::uint64_t low_half = 0xFFFFFFFF;
    const std::uint64_t low = (a & low_half) * (b & low_half);
    const std::uint64_t cross_a = (a >> 32) * (b & low_half);
    const std::uint64_t cross_b = (a & low_half) * (b >> 32);
    const std::uint64_t high = (a >> 32) * (b >> 32);
    const std::uint64_t middle = (low >> 32) + (cross_a & low_half) + (cross_b & low_half);
    const std::uint64_t product_low = (middle << 32) | (low & low_half);
    const std::uint64_t product_high = high + (cross_a >> 32) + (cross_b >> 32) + (middle >> 32);
    // 2^64 is 8 modulo 2^61 - 1; the high part is below 2^58.
    return reduced(reduced(product_low) + (product_high << 3));
}

/// Not to be known before the run: equal fingerprints of other bytes cannot be made.
const std::array<std::uint64_t, 2>& places()
{
    static const std::array<std::uint64_t, 2> chosen = [] {
        std::random_device device;
        const auto number = [&] { return (std::uint64_t{device()} << 32 | device()) % (modulus - 2) + 2; };
        return std::array<std::uint64_t, 2>{number(), number()};
    }();
    return chosen;
}

} // namespace

void fingerprint_maker::add_word(std::uint64_t number) noexcept
{
    for (std::size_t i = 0; i < 2; ++i)
        sum.values[i] = reduced(wide_product(sum.values[i], places()[i]) + number);
}

void fingerprint_maker::add(std::span<const unsigned char> bytes) noexcept
{
    size += bytes.size();
    for (const unsigned char byte : bytes) {
        word = word << 8 | byte;
        if (++filled == word_bytes) {
            add_word(word);
            word = 0;
            filled = 0;
        }
    }
}

void fingerprint_maker::add_number(std::uint64_t number) noexcept
{
    std::array<unsigned char, 8> bytes = {};
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(number & 0xFF);
        number >>= 8;
    }
    add(bytes);
}

void fingerprint_maker::add(const fingerprint& other) noexcept
{
    add_number(other.values[0]);
    add_number(other.values[1]);
}

fingerprint fingerprint_maker::made() const noexcept
{
    fingerprint_maker last = *this;
    last.add_word(word);
    last.add_word(reduced(size));
    return last.sum;
}

std::uint64_t bits_up_to_last_one(std::span<const unsigned char> bytes, std::uint64_t from) noexcept
{
    std::size_t end = bytes.size();
    while (end != 0 && bytes[end - 1] == 0)
        --end;
    if (end == 0)
        return 0;
    const std::uint64_t fence = std::uint64_t{end} * 8 - static_cast<unsigned>(std::countr_zero(bytes[end - 1]));
    return fence > from ? fence - from : 0;
}

fingerprint fingerprint_of_bits(std::span<const unsigned char> bytes, std::uint64_t from)
{
    fingerprint_maker maker;
    const std::uint64_t bits = bits_up_to_last_one(bytes, from);
    const auto shift = static_cast<unsigned>(from % 8);
    std::array<unsigned char, 4096> piece = {};
    std::size_t filled = 0;
    const std::size_t first = static_cast<std::size_t>(from / 8);
    for (std::size_t i = first; (i - first) * 8 < bits; ++i) {
        const unsigned next = i + 1 < bytes.size() ? bytes[i + 1] : 0;
        piece[filled++] = static_cast<unsigned char>((unsigned{bytes[i]} << 8 | next) >> (8 - shift) & 0xFF);
        if (filled == piece.size()) {
            maker.add(piece);
            filled = 0;
        }
    }
    maker.add(std::span(piece).first(filled));
    maker.add_number(bits);
    return maker.made();
}

} // namespace orv_h264
