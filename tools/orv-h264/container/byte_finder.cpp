#include "container/byte_finder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace orv_h264 {

namespace {

constexpr std::size_t piece = std::size_t{256} * 1024;
constexpr std::size_t longest_key = 64; // bytes that are searched for; the others are compared then
constexpr std::uint64_t most_compared = std::uint64_t{64} << 20U; // bytes of a search, in vain

} // namespace

std::optional<std::uint64_t> byte_finder::find(std::span<const unsigned char> bytes, std::uint64_t from,
                                               std::uint64_t reach)
{
    const std::span<const unsigned char> key = bytes.first(std::min(bytes.size(), longest_key));
    const std::uint64_t furthest = from + std::min(reach, std::numeric_limits<std::uint64_t>::max() - from);
    std::uint64_t compared = 0;
    while (!key.empty() && from <= furthest && compared < most_compared && load(from, key.size())) {
        const unsigned char* const first = loaded.data() + (from - begin);
        const unsigned char* const fence = loaded.data() + loaded.size();
        const void* const hit = ::memmem(first, static_cast<std::size_t>(fence - first), key.data(), key.size());
        if (hit == nullptr) {
            from = begin + loaded.size() - (key.size() - 1); // it may begin there and end in the next piece
            continue;
        }
        const std::uint64_t place = from + static_cast<std::uint64_t>(static_cast<const unsigned char*>(hit) - first);
        if (place > furthest)
            return {};
        if (is_at(place + key.size(), bytes.subspan(key.size()), compared))
            return place;
        from = place + 1;
    }
    return {};
}

/// Has `size` bytes and more from there on; false where the file ends before.
bool byte_finder::load(std::uint64_t from, std::size_t size)
{
    if (from >= begin && from - begin <= loaded.size() && loaded.size() - (from - begin) >= size)
        return true;
    begin = from;
    loaded.resize(piece);
    loaded.resize(file.read_at(from, loaded.data(), loaded.size()));
    return loaded.size() >= size;
}

bool byte_finder::is_at(std::uint64_t place, std::span<const unsigned char> bytes, std::uint64_t& compared)
{
    std::array<unsigned char, 4096> read = {};
    while (!bytes.empty()) {
        const std::size_t size = std::min(bytes.size(), read.size());
        compared += read.size();
        if (file.read_at(place, read.data(), size) != size ||
            !std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size), read.begin()))
            return false;
        place += size;
        bytes = bytes.subspan(size);
    }
    return true;
}

} // namespace orv_h264
