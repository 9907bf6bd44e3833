// A file, or the standard input, as bytes in order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace orv_h264 {

/// What messages call the input at `path`.
std::string input_name(const std::string& path);

/// An input opened for reading. Errors are thrown as std::system_error, with the name and the offset in the text.
class input_file {
public:
    /// Opens the file at `path`; "-" is the standard input.
    explicit input_file(const std::string& path);
    /// Likewise, for messages under another name.
    input_file(const std::string& path, std::string name);
    ~input_file();
    input_file(const input_file&) = delete;
    input_file& operator=(const input_file&) = delete;

    /// Reads up to `size` bytes, as many as are there, and waits for the first; 0 at the end.
    std::size_t read(unsigned char* out, std::size_t size);

    /// Reads up to `size` bytes from `from` on, as many as the file has there, and leaves read() where it is. For a
    /// file that is_seekable() alone.
    std::size_t read_at(std::uint64_t from, unsigned char* out, std::size_t size) const;

    /// It is a regular file, opened at its start.
    bool is_seekable() const noexcept { return from_start && regular_bytes; }

    /// How many bytes were read so far.
    std::uint64_t bytes_read() const noexcept { return offset; }

    /// The bytes of the whole when it was opened, of a regular file.
    std::optional<std::uint64_t> size() const noexcept { return regular_bytes; }

    /// The name for messages.
    const std::string& name() const noexcept { return shown_name; }

    /// To be polled before a read that is not to wait.
    int file_descriptor() const noexcept { return descriptor; }

private:
    input_file(std::string name, int opened); // where the others begin, so that the destructor runs whatever fails then
    std::size_t check(std::ptrdiff_t count, std::uint64_t at) const;

    std::string shown_name;
    int descriptor;
    bool from_start = false;                    // nobody has read of it before
    std::optional<std::uint64_t> regular_bytes; // none of what is no regular file
    std::uint64_t offset = 0;
};

} // namespace orv_h264
