// A column of numbers in a few bytes each: variable-length, seven bits a byte, the lowest first. Behind a number that
// equals the one before it stands how many further ones do.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace orv_h264 {

inline std::int64_t signed_of(std::uint64_t number)
{
    return static_cast<std::int64_t>(number);
}

class number_column {
public:
    void add(std::uint64_t number);
    /// Small of either sign is short.
    void add_signed(std::int64_t number) { add(folded(number)); }
    /// 0 stands for none.
    void add_optional(std::optional<std::int64_t> number) { add(number ? folded(*number) + 1 : 0); }

    /// The bytes as base64. Nothing is added behind it.
    std::string text();
    /// How long they are so far.
    std::size_t size() const noexcept { return bytes.size(); }

private:
    static std::uint64_t folded(std::int64_t number)
    {
        return static_cast<std::uint64_t>(number) << 1U ^ static_cast<std::uint64_t>(number >> 63U);
    }
    void put(std::uint64_t number);
    void end_run();

    std::string bytes;
    std::optional<std::uint64_t> last;
    std::optional<std::uint64_t> further; // of a run that goes on
};

} // namespace orv_h264
