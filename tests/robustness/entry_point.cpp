// The table of fuzz entry points is made of the list that the build makes. A replay of nothing fails: a test that
// replays no input would prove nothing.
#include "entry_point.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

#define ENTRY_POINT(name) extern "C" int fuzz_##name(const std::uint8_t* data, std::size_t size);
#include "entry_points.inc"
#undef ENTRY_POINT

namespace robustness {

namespace {

namespace fs = std::filesystem;

constexpr entry_point entry_points[] = {
#define ENTRY_POINT(name) {#name, fuzz_##name},
#include "entry_points.inc"
#undef ENTRY_POINT
};

} // namespace

const entry_point* entry_named(std::string_view name)
{
    const auto* const found = std::find_if(std::begin(entry_points), std::end(entry_points),
                                           [&](const entry_point& entry) { return name == entry.name; });
    return found == std::end(entry_points) ? nullptr : found;
}

bool run_over(const entry_point& entry, const support::bytes& data)
{
    const std::unique_ptr<std::uint8_t[]> block(new std::uint8_t[data.size()]);
    std::copy(data.begin(), data.end(), block.get());
    entry.run(block.get(), data.size());
    return std::equal(data.begin(), data.end(), block.get());
}

std::vector<fs::path> files_of(const fs::path& path)
{
    if (!fs::is_directory(path))
        return {path};
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(path))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    if (files.empty())
        throw std::runtime_error("no file in the folder: " + path.string());
    std::sort(files.begin(), files.end());
    return files;
}

support::bytes content_of(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    support::bytes content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file.is_open() || file.bad())
        throw std::runtime_error("cannot be read: " + path.string());
    return content;
}

namespace {

/// Returns how many files were run.
std::size_t replay_files(const entry_point& entry, const std::filesystem::path& path)
{
    const std::vector<std::filesystem::path> files = files_of(path);
    for (const std::filesystem::path& file : files) {
        const support::bytes content = content_of(file);
        std::fprintf(stderr, "%s\n", file.c_str()); // names the input when the entry point ends the process
        if (!run_over(entry, content))
            throw std::runtime_error("the input was changed");
    }
    return files.size();
}

} // namespace

int replay(const std::vector<std::string_view>& arguments)
{
    const entry_point* const entry = arguments.empty() ? nullptr : entry_named(arguments[0]);
    if (entry == nullptr || arguments.size() < 2) {
        std::fprintf(stderr, "usage: bad_inputs --replay NAME FILE-OR-FOLDER...\n");
        return 2;
    }
    try {
        std::size_t files = 0;
        for (std::size_t i = 1; i < arguments.size(); ++i)
            files += replay_files(*entry, arguments[i]);
        std::fprintf(stderr, "%zu inputs\n", files);
        return EXIT_SUCCESS;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return EXIT_FAILURE;
    }
}

} // namespace robustness
