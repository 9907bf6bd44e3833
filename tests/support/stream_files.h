// The real streams that the tests read: tests/streams, and a folder of further ones where there is one.
#pragma once

#include "support/stream_builder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace support {

inline bytes read_file(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The streams below `folder` in Annex B framing, in the order of their names; none when there is no such folder.
inline std::vector<std::filesystem::path> annexb_files(const std::filesystem::path& folder)
{
    static const std::set<std::string> extensions = {".264", ".h264", ".jsv"};
    std::vector<std::filesystem::path> files;
    if (std::filesystem::is_directory(folder))
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            if (extensions.contains(entry.path().extension().string()))
                files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

/// Every real stream: those of the repository, of which there are some, and the further ones.
inline std::vector<std::filesystem::path> all_annexb_files()
{
    std::vector<std::filesystem::path> files = annexb_files(ORV_TEST_STREAMS);
    const auto more = annexb_files(ORV_TEST_MORE_STREAMS);
    files.insert(files.end(), more.begin(), more.end());
    return files;
}

/// Streams that were damaged on purpose are named so.
inline bool is_broken(const std::filesystem::path& path)
{
    return path.filename().string().rfind("broken_", 0) == 0;
}

/// A path as the name of a parameterised test.
inline std::string test_name(const std::filesystem::path& path)
{
    std::string name = path.filename().string();
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

} // namespace support
