// How far the tool has come, on the standard error stream when that is a terminal that can clear a line.
#pragma once

#include <cstdint>
#include <optional>

namespace orv_h264 {

class progress {
public:
    /// `size` is the number of bytes of the whole, where it is known.
    explicit progress(std::optional<std::uint64_t> size);
    progress(const progress&) = delete;
    progress& operator=(const progress&) = delete;
    /// Clears the line.
    ~progress() { clear(); }

    /// Tells of `done` bytes, now and then.
    void tell(std::uint64_t done);

    /// Clears the line, so that a message may be printed.
    void clear();

private:
    std::optional<std::uint64_t> whole;
    bool wanted;
    bool shown = false;
    std::uint64_t next_step = 0;
};

} // namespace orv_h264
