// Runs one fuzz entry point over the files given, and over every file below the folders given. Fails when there is
// nothing to run: a test that replays no input would prove nothing.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

void replay_file(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file.is_open() || file.bad())
        throw std::runtime_error("cannot be read: " + path.string());
    std::fprintf(stderr, "%s\n", path.c_str()); // names the input when the entry point ends the process
    const std::unique_ptr<std::uint8_t[]> data(new std::uint8_t[content.size()]);
    std::copy(content.begin(), content.end(), data.get());
    LLVMFuzzerTestOneInput(data.get(), content.size());
}

/// Returns how many files were run.
std::size_t replay(const fs::path& path)
{
    if (!fs::exists(path))
        throw std::runtime_error("no such file or folder: " + path.string());
    if (!fs::is_directory(path)) {
        replay_file(path);
        return 1;
    }
    std::size_t files = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path))
        if (entry.is_regular_file()) {
            replay_file(entry.path());
            ++files;
        }
    if (files == 0)
        throw std::runtime_error("no file in the folder: " + path.string());
    return files;
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.empty()) {
        std::fprintf(stderr, "usage: %s FILE-OR-FOLDER...\n", argv[0]);
        return 2;
    }
    try {
        std::size_t files = 0;
        for (const std::string& argument : arguments)
            files += replay(argument);
        std::fprintf(stderr, "%zu inputs\n", files);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}
