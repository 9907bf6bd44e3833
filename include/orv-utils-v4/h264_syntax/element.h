/// @file
/// A syntax element as the coders name and tell it: its name with indices, its descriptor (H.264 clause 7.2), where it
/// lies, its value and the range that the standard states. The words for a value are not here.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orv_utils_v4::h264 {

/// An element's name as the standard spells it, with the indices that tell it from its like.
struct label {
    /// The most indices that an element has.
    static constexpr unsigned most_indices = 4;

    const char* name;                  ///< lives as long as the program
    std::uint8_t depth = 0;            ///< how many of the indices there are
    std::uint32_t index[most_indices]; ///< outermost first

    /// An element without an index.
    constexpr label(const char* element_name) noexcept : name(element_name), index{} {} // NOLINT(*-explicit-*)
    /// An element with indices, outermost first.
    constexpr label(const char* element_name, std::uint32_t i) noexcept : name(element_name), depth(1), index{i} {}
    /// @copydoc label(const char*, std::uint32_t)
    constexpr label(const char* element_name, std::uint32_t i, std::uint32_t j) noexcept
        : name(element_name), depth(2), index{i, j}
    {
    }
    /// @copydoc label(const char*, std::uint32_t)
    constexpr label(const char* element_name, std::uint32_t i, std::uint32_t j, std::uint32_t k) noexcept
        : name(element_name), depth(3), index{i, j, k}
    {
    }
    /// @copydoc label(const char*, std::uint32_t)
    constexpr label(const char* element_name, std::uint32_t i, std::uint32_t j, std::uint32_t k,
                    std::uint32_t l) noexcept
        : name(element_name), depth(4), index{i, j, k, l}
    {
    }
};

/// How an element is coded, H.264 clause 7.2.
enum class coding : std::uint8_t {
    f,   ///< f(n), a fixed pattern of bits
    u,   ///< u(n), an unsigned number of a width that the table states
    u_v, ///< u(v), an unsigned number of a width that follows from other elements
    i,   ///< i(n), a signed number in two's complement
    i_v, ///< i(v), likewise of a width that follows from other elements
    b,   ///< b(8), a byte
    ue,  ///< ue(v), an unsigned Exp-Golomb code
    se,  ///< se(v), a signed Exp-Golomb code
    st,  ///< st(v), bytes that a null byte ends
};

/// An element that a trace tells.
struct traced_element {
    label name;
    coding how = coding::u;
    std::uint64_t bit = 0;    ///< of the unit header's first bit on, emulation-prevention bytes removed
    std::uint64_t bits = 0;   ///< how many; never 0
    std::int64_t value = 0;   ///< of all but st(v) and elements of more than 64 bits
    std::int64_t lowest = 0;  ///< of the range that the standard states
    std::int64_t highest = 0; ///< likewise
    bool inside = true;       ///< the value lies in it
    /// st(v), without its null byte, and elements of more than 64 bits; else null. Valid during the call.
    const unsigned char* bytes = nullptr;
    std::size_t size = 0; ///< of these bytes
};

/// What a trace is told to. The structures open and close around their elements; what was read before a failure has
/// been told when the failure comes. No member may throw.
class visitor {
public:
    virtual ~visitor() = default;
    /// A structure begins; `name` lives as long as the program.
    virtual void open(const char* name) = 0;
    /// The innermost structure ends.
    virtual void close() = 0;
    /// An element of the innermost structure.
    virtual void element(const traced_element& element) = 0;

protected:
    visitor() = default;
    visitor(const visitor&) = default;
    visitor& operator=(const visitor&) = default;
};

} // namespace orv_utils_v4::h264
