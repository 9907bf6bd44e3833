/// @file
/// Up to N entries in place: for lists that the standard bounds and that most units leave nearly empty. Making one
/// touches nothing but its size. A structure with such lists has an empty constructor for the same reason: where it is
/// made with (), a defaulted one would clear their room.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

namespace orv_utils_v4::h264 {

/// A list of at most N entries. Entries behind its size hold nothing.
template <class T, std::size_t N>
class bounded_list {
    static_assert(std::is_trivially_copyable<T>::value);

public:
    bounded_list() noexcept {}
    /// A copy of the entries.
    bounded_list(const bounded_list& from) noexcept : count(from.count)
    {
        std::copy(from.begin(), from.end(), begin());
    }
    /// A copy of the entries.
    bounded_list& operator=(const bounded_list& from) noexcept
    {
        if (this != &from) {
            count = from.count;
            std::copy(from.begin(), from.end(), begin());
        }
        return *this;
    }

    /// The most entries.
    static constexpr std::size_t capacity() noexcept { return N; }
    /// How many entries there are.
    std::size_t size() const noexcept { return count; }
    /// There is none.
    bool empty() const noexcept { return count == 0; }
    /// Makes it `n` entries long, at most N of them; entries that come in are T{}.
    void resize(std::size_t n) noexcept
    {
        n = std::min(n, N);
        for (; count < n; ++count)
            new (begin() + count) T();
        count = static_cast<std::uint32_t>(n);
    }
    /// Leaves none.
    void clear() noexcept { count = 0; }
    /// One more entry, T{}; nothing when it is full.
    void grow() noexcept { resize(count + std::size_t{1}); }

    /// The entries, as of any container; of an empty list there is no back().
    T* begin() noexcept { return reinterpret_cast<T*>(room); }
    /// @copydoc begin()
    T* end() noexcept { return begin() + count; }
    /// @copydoc begin()
    const T* begin() const noexcept { return reinterpret_cast<const T*>(room); }
    /// @copydoc begin()
    const T* end() const noexcept { return begin() + count; }
    /// @copydoc begin()
    T& back() noexcept { return begin()[count - 1]; }
    /// @copydoc begin()
    const T& back() const noexcept { return begin()[count - 1]; }
    /// @copydoc begin()
    T& operator[](std::size_t i) noexcept { return begin()[i]; }
    /// @copydoc begin()
    const T& operator[](std::size_t i) const noexcept { return begin()[i]; }

    /// Whether they have the same entries.
    friend bool operator==(const bounded_list& a, const bounded_list& b) noexcept
    {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
    /// Whether they have not.
    friend bool operator!=(const bounded_list& a, const bounded_list& b) noexcept { return !(a == b); }

private:
    std::uint32_t count = 0;
    alignas(T) unsigned char room[N * sizeof(T)];
};

} // namespace orv_utils_v4::h264
