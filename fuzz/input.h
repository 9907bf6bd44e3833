// What the fuzz entry points share: taking an input apart, and saying that a claim does not hold.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace fuzz {

using bytes = std::vector<unsigned char>;

/// Memory of exactly `size` bytes: one byte further is another's.
class exact_block {
public:
    explicit exact_block(std::size_t size) : memory(new unsigned char[size]), count(size) {}
    explicit exact_block(const bytes& content) : exact_block(content.size())
    {
        std::copy(content.begin(), content.end(), begin());
    }

    unsigned char* begin() const { return memory.get(); }
    unsigned char* end() const { return memory.get() + count; }
    std::size_t size() const { return count; }

private:
    std::unique_ptr<unsigned char[]> memory;
    std::size_t count;
};

/// The input, taken from the front; numbers past its end are 0.
class input {
public:
    input(const std::uint8_t* data, std::size_t size) : at(data), fence(data + size) {}

    unsigned char byte() { return at == fence ? 0 : *at++; }

    /// Up to `most` further bytes.
    bytes take(std::size_t most)
    {
        const std::size_t count = std::min(most, static_cast<std::size_t>(fence - at));
        bytes taken(at, at + count);
        at += count;
        return taken;
    }

    bytes rest() { return take(static_cast<std::size_t>(fence - at)); }

private:
    const std::uint8_t* at;
    const std::uint8_t* fence;
};

/// Ends the process with `claim` unless it holds.
inline void expect(bool holds, const char* claim)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", claim);
    std::abort();
}

/// Ends the process with `difference` unless it is empty.
inline void expect_none(const std::string& difference)
{
    expect(difference.empty(), difference.c_str());
}

} // namespace fuzz
