#include "input_window.h"

#include <algorithm>
#include <utility>

namespace orv_h264 {

input_window::input_window(read_function read_bytes, std::size_t piece_size)
    : read(std::move(read_bytes)), piece(piece_size)
{
}

void input_window::read_more()
{
    if (ended)
        return;
    make_room();
    const std::size_t count = read(fence(), piece);
    last += count;
    ended = count == 0;
}

// Bytes move to the front only when at least as many were dropped, so that each byte moves once on average.
void input_window::make_room()
{
    if (bytes.size() - last >= piece)
        return;
    if (first >= size()) {
        std::copy(bytes.begin() + static_cast<std::ptrdiff_t>(first), bytes.begin() + static_cast<std::ptrdiff_t>(last),
                  bytes.begin());
        last -= first;
        first = 0;
    }
    if (bytes.size() - last < piece)
        bytes.resize(last + std::max(piece, last / 2));
}

void input_window::fill(std::size_t count)
{
    while (size() < count && !ended)
        read_more();
}

void input_window::drop(std::size_t count) noexcept
{
    first += count;
    dropped += count;
}

} // namespace orv_h264
