// Where bytes that were read out of a file lie in it.
#pragma once

#include "input_file.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orv_h264 {

class byte_finder {
public:
    /// So far from where the search begins; in Matroska other tracks lie between.
    static constexpr std::uint64_t usual_reach = std::uint64_t{64} << 20U;

    explicit byte_finder(const input_file& in) : file(in) {}

    /// The first place at or behind `from`, and not further away than `reach`, where the file has these bytes. It is
    /// given up where too many places only begin like them.
    std::optional<std::uint64_t> find(std::span<const unsigned char> bytes, std::uint64_t from,
                                      std::uint64_t reach = usual_reach);

private:
    bool load(std::uint64_t from, std::size_t size);
    bool is_at(std::uint64_t place, std::span<const unsigned char> bytes, std::uint64_t& compared);

    const input_file& file;
    std::vector<unsigned char> loaded; // of the file, from `begin` on
    std::uint64_t begin = 0;
};

} // namespace orv_h264
