// A folder that goes, with all that is in it, when the object does.
#pragma once

#include "support/stream_builder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace support {

class temporary_folder {
public:
    temporary_folder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "orv-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        folder = pattern;
    }
    temporary_folder(const temporary_folder&) = delete;
    temporary_folder& operator=(const temporary_folder&) = delete;
    ~temporary_folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    std::string path(const std::string& name) const { return (folder / name).string(); }

    /// Makes the file and gives its path.
    std::string write(const std::string& name, const bytes& content) const
    {
        std::ofstream(path(name), std::ios::binary)
            .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
        return path(name);
    }

    /// How many files are there.
    std::ptrdiff_t files() const
    {
        return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
    }

private:
    std::filesystem::path folder;
};

} // namespace support
