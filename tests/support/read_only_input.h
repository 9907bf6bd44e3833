// Bytes that may be read and not written, and that end at an unmapped page. They are put there through a second view of
// the same memory, so that a new input costs a copy.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <new>
#include <vector>

namespace support {

/// Room for one input, the next one in the place of the one before.
class read_only_input {
public:
    static constexpr std::size_t room = std::size_t{1} << 20;

    read_only_input()
    {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        mapped = room + page;
        file = memfd_create("input", 0);
        if (file < 0 || ftruncate(file, room) != 0)
            throw std::bad_alloc();
        read_view = map(nullptr, mapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1);
        map(read_view, room, PROT_READ, MAP_SHARED | MAP_FIXED, file);
        write_view = map(nullptr, room, PROT_READ | PROT_WRITE, MAP_SHARED, file);
    }

    read_only_input(const read_only_input&) = delete;
    read_only_input& operator=(const read_only_input&) = delete;

    ~read_only_input()
    {
        munmap(read_view, mapped);
        munmap(write_view, room);
        close(file);
    }

    /// Puts the input there; where it begins.
    unsigned char* put(const std::vector<unsigned char>& content)
    {
        if (content.size() > room)
            throw std::bad_alloc();
        std::copy(content.begin(), content.end(), write_view + (room - content.size()));
        return end() - content.size();
    }

    unsigned char* end() const { return read_view + room; }

private:
    static unsigned char* map(unsigned char* where, std::size_t size, int access, int flags, int file)
    {
        void* const pages = mmap(where, size, access, flags, file, 0);
        if (pages == MAP_FAILED)
            throw std::bad_alloc();
        return static_cast<unsigned char*>(pages);
    }

    int file = -1;
    std::size_t mapped = 0;
    unsigned char* read_view = nullptr;
    unsigned char* write_view = nullptr;
};

} // namespace support
