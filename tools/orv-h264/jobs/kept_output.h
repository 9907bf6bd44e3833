// What a process has printed and nobody has been shown yet: in memory, and where that is much, in a file without a
// name.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace orv_h264 {

class kept_output {
public:
    static constexpr std::size_t most_in_memory = std::size_t{64} * 1024;

    kept_output() = default;
    ~kept_output();
    kept_output(const kept_output&) = delete;
    kept_output& operator=(const kept_output&) = delete;

    void add(std::string_view bytes);

    /// There is no room for more: neither the memory that is meant for it, nor a file that takes it.
    bool full() const noexcept { return no_room; }

    /// Gives all of it in order, in pieces, and keeps nothing. Throws std::system_error where the file cannot be read.
    void take(const std::function<void(std::string_view)>& to);

private:
    bool put_into_file();

    std::string memory; // what comes behind the file
    int file = -1;
    std::uint64_t in_file = 0; // bytes
    bool no_room = false;
};

} // namespace orv_h264
