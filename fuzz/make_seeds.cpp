// make_seeds FOLDER   writes the seeds that have names to FOLDER/TARGET/NAME.
#include "seeds.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

int main(int argc, char** argv)
try {
    if (argc != 2)
        throw std::invalid_argument("usage: make_seeds FOLDER");
    fuzz::seed_table table;
    fuzz::add_bit_seeds(table);
    fuzz::add_unit_seeds(table);
    fuzz::add_structure_seeds(table);
    fuzz::add_picture_seeds(table);
    fuzz::add_text_seeds(table);
    for (auto& [target, seeds] : table) {
        seeds["empty"] = {};
        const std::filesystem::path folder = std::filesystem::path(argv[1]) / target;
        std::filesystem::create_directories(folder);
        for (const auto& [name, content] : seeds) {
            std::ofstream file(folder / name, std::ios::binary);
            std::copy(content.begin(), content.end(), std::ostreambuf_iterator<char>(file));
            if (!file.flush())
                throw std::runtime_error("cannot write " + (folder / name).string());
        }
    }
    return EXIT_SUCCESS;
} catch (const std::exception& failure) {
    static_cast<void>(std::fprintf(stderr, "%s\n", failure.what()));
    return EXIT_FAILURE;
}
