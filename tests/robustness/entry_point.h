// The fuzz entry points by their names, and the files they are run over.
#pragma once

#include "support/stream_builder.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

namespace robustness {

struct entry_point {
    const char* name;
    int (*run)(const std::uint8_t* data, std::size_t size);
};

/// Null when there is none of that name.
const entry_point* entry_named(std::string_view name);

/// Runs it over a heap block as long as the data; whether that has kept its bytes.
bool run_over(const entry_point& entry, const support::bytes& data);

/// The file itself, or every file below a folder, sorted by their paths. Throws when there is nothing.
std::vector<std::filesystem::path> files_of(const std::filesystem::path& path);

/// Throws when the file cannot be read.
support::bytes content_of(const std::filesystem::path& path);

/// Runs the entry point NAME over FILE-OR-FOLDER...: the exit status.
int replay(const std::vector<std::string_view>& arguments);

} // namespace robustness
