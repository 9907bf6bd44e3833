/// @file
/// A syntax element as the coders name and tell it: its name with indices, its descriptor (H.264 clause 7.2), where it
/// lies, its value and the range that the standard states. The words for a value are not here.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orv_utils_v4::h264 {

/// An element's name as the standard spells it, with the indices that tell it from its like. It is as large as two
/// words, so that handing it on costs nothing.
class label {
public:
    /// An element without an index. `element_name` lives as long as the program.
    constexpr label(const char* element_name) noexcept : text(element_name) {} // NOLINT(*-explicit-*)
    /// An element with indices, outermost first: one below 2^32, two below 2^30 each, three below 2^20, or four below
    /// 2^15.
    constexpr label(const char* element_name, std::uint64_t i) noexcept : text(element_name), packed(i << 3 | 1) {}
    /// @copybrief label(const char*, std::uint64_t)
    constexpr label(const char* element_name, std::uint64_t i, std::uint64_t j) noexcept
        : text(element_name), packed((i << 30 | j) << 3 | 2)
    {
    }
    /// @copybrief label(const char*, std::uint64_t)
    constexpr label(const char* element_name, std::uint64_t i, std::uint64_t j, std::uint64_t k) noexcept
        : text(element_name), packed((i << 40 | j << 20 | k) << 3 | 3)
    {
    }
    /// @copybrief label(const char*, std::uint64_t)
    constexpr label(const char* element_name, std::uint64_t i, std::uint64_t j, std::uint64_t k,
                    std::uint64_t l) noexcept
        : text(element_name), packed((i << 45 | j << 30 | k << 15 | l) << 3 | 4)
    {
    }

    /// The name alone.
    constexpr const char* name() const noexcept { return text; }
    /// How many indices there are, 0 to 4.
    constexpr unsigned depth() const noexcept { return packed & 7; }
    /// Index number `i`, below depth().
    constexpr std::uint32_t index(unsigned i) const noexcept
    {
        constexpr unsigned widths[] = {0, 32, 30, 20, 15};
        const unsigned width = widths[depth()];
        return static_cast<std::uint32_t>(packed >> (3 + width * (depth() - 1 - i)) &
                                          ((std::uint64_t{1} << width) - 1));
    }

private:
    const char* text;
    std::uint64_t packed = 0; // the indices, the last one lowest, above three bits of depth
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
    /// For derived classes.
    visitor() = default;
    /// For derived classes.
    visitor(const visitor&) = default;
    /// For derived classes.
    visitor& operator=(const visitor&) = default;
};

} // namespace orv_utils_v4::h264
