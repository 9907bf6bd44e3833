// A fingerprint of bytes: two values of a polynomial modulo 2^61 - 1 at places that are chosen anew in each run. Two
// strings of n bytes that differ have the same one with a probability of about (n / 2^63)^2, whoever chose them.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>

namespace orv_h264 {

struct fingerprint {
    std::uint64_t values[2] = {};

    friend bool operator==(const fingerprint& a, const fingerprint& b) = default;
    friend std::strong_ordering operator<=>(const fingerprint& a, const fingerprint& b)
    {
        const std::strong_ordering order = a.values[0] <=> b.values[0];
        return std::is_neq(order) ? order : a.values[1] <=> b.values[1];
    }
};

/// Of bytes that come in pieces; how they are cut makes no difference.
class fingerprint_maker {
public:
    void add(std::span<const unsigned char> bytes) noexcept;
    void add(const fingerprint& other) noexcept;
    void add_number(std::uint64_t number) noexcept;
    /// Of all that was added, and of how much that was.
    fingerprint made() const noexcept;

private:
    void add_word(std::uint64_t number) noexcept;

    static constexpr unsigned word_bytes = 7; // below the modulus
    fingerprint sum;
    std::uint64_t word = 0; // that is not full
    unsigned filled = 0;    // its bytes
    std::uint64_t size = 0;
};

/// Of bytes from a bit on up to the last bit that is 1: zero bits at the end make no difference, as alignment,
/// cabac_zero_words and trailing zero bytes are.
fingerprint fingerprint_of_bits(std::span<const unsigned char> bytes, std::uint64_t from);

/// How many bits that takes; 0 where there is none.
std::uint64_t bits_up_to_last_one(std::span<const unsigned char> bytes, std::uint64_t from) noexcept;

} // namespace orv_h264
