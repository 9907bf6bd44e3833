#include "jobs/kept_output.h"

#include "nameless_file.h"
#include "system_calls.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <unistd.h>

namespace orv_h264 {

namespace {

/// A file that has no name any more; -1 where there can be none.
int open_in_temporary_folder()
{
    std::error_code none;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(none);
    if (none)
        return -1;
    return open_nameless(folder.string());
}

} // namespace

kept_output::~kept_output()
{
    if (file >= 0)
        ::close(file);
}

void kept_output::add(std::string_view bytes)
{
    memory += bytes;
    if (memory.size() > most_in_memory)
        no_room = !put_into_file();
}

bool kept_output::put_into_file()
{
    if (file < 0)
        file = open_in_temporary_folder();
    for (std::size_t done = 0; done < memory.size();) {
        const ssize_t count = again([&] {
            return ::pwrite(file, memory.data() + done, memory.size() - done, static_cast<off_t>(in_file + done));
        });
        if (count <= 0)
            return false; // what is in the file behind in_file is not looked at
        done += static_cast<std::size_t>(count);
    }
    in_file += memory.size();
    memory.clear();
    return true;
}

void kept_output::take(const std::function<void(std::string_view)>& to)
{
    std::string piece(in_file == 0 ? 0 : most_in_memory, '\0');
    for (std::uint64_t at = 0; at < in_file;) {
        const std::size_t size = static_cast<std::size_t>(std::min<std::uint64_t>(piece.size(), in_file - at));
        const ssize_t count = again([&] { return ::pread(file, piece.data(), size, static_cast<off_t>(at)); });
        if (count <= 0)
            throw std::system_error(count == 0 ? EIO : errno, std::generic_category(), "temporary file");
        to({piece.data(), static_cast<std::size_t>(count)});
        at += static_cast<std::uint64_t>(count);
    }
    in_file = 0;
    no_room = false;
    if (!memory.empty())
        to(memory);
    memory.clear();
}

} // namespace orv_h264
