// Runs one fuzz entry point over the files given, and over every file below the folders given. Fails when there is
// nothing to run: a test that replays no input would prove nothing.
#include "entry_point.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace robustness {

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
