// The stretch of the input that is in memory: bytes are appended at the fence, a piece at a time, and dropped at the
// start. Offsets count from the first byte of the input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace orv_h264 {

/// Reads up to `size` bytes to `out` and returns how many; 0 only at the end of the input. Throws when reading fails.
using read_function = std::function<std::size_t(unsigned char* out, std::size_t size)>;

class input_window {
public:
    static constexpr std::size_t usual_piece = std::size_t{256} * 1024;

    explicit input_window(read_function read, std::size_t piece = usual_piece);

    unsigned char* start() noexcept { return bytes.data() + first; }
    unsigned char* fence() noexcept { return bytes.data() + last; }
    std::size_t size() const noexcept { return last - first; }

    /// Where start() lies in the input.
    std::uint64_t offset() const noexcept { return dropped; }

    /// No further byte will come.
    bool at_end() const noexcept { return ended; }

    /// Appends at most one piece. Pointers into the window are invalid afterwards.
    void read_more();

    /// Reads until `count` bytes are there or the input has ended.
    void fill(std::size_t count);

    /// Drops `count` bytes at the start, at most size().
    void drop(std::size_t count) noexcept;

private:
    void make_room();

    read_function read;
    std::size_t piece;
    std::vector<unsigned char> bytes;
    std::size_t first = 0;
    std::size_t last = 0;
    std::uint64_t dropped = 0;
    bool ended = false;
};

} // namespace orv_h264
