// A file that is there whole or not at all: written without a name, where the file system has such files, else beside
// its place under a name of its own, and moved there when it is complete. What is no regular file (a pipe, a device,
// the standard output), or has lost its name, is written as it comes. Links stay, and what may not be written is not
// replaced.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include <sys/types.h>

namespace orv_h264 {

/// What a tool does that ends at once. Safe in a signal handler.
void remove_unfinished_files() noexcept;

class output_file {
public:
    /// "-" is the standard output. Throws std::system_error when the file cannot be made.
    explicit output_file(const std::string& path);
    /// Likewise, for messages under another name.
    output_file(const std::string& path, std::string name);
    output_file(const output_file&) = delete;
    output_file& operator=(const output_file&) = delete;
    /// Without commit(), what was written goes, and the place is as it was. So it is when a signal ends the tool.
    ~output_file();

    /// Throws std::system_error when writing fails.
    void write(std::span<const unsigned char> bytes);

    /// Where it can be read until commit(). "" of what is written as it comes.
    const std::string& readable_at() const { return readable; }

    /// Puts the file in its place; nothing is written behind it. Throws std::system_error when that fails, and
    /// std::bad_alloc when an allocation has failed before.
    void commit();

private:
    output_file() = default; // where the other begins, so that the destructor runs whatever fails then
    void open_instead();
    void open_beside(mode_t permissions);
    void open_named();
    void give_name();
    [[noreturn]] void fail() const;

    std::string shown_name; // for messages
    std::string place;      // where the file belongs
    std::string folder;     // of the place
    std::string beside;     // its name before it is moved; "" when there is nothing to remove
    std::string readable;
    int descriptor = -1;
};

} // namespace orv_h264
