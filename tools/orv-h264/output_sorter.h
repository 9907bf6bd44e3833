// Rows in output order out of rows in decoding order. A row without an output number stands behind the one that was
// decoded before it. Memory is bounded: when too many rows are held, the lowest goes before its turn.
#pragma once

#include "picture_rows.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace orv_h264 {

class output_sorter {
public:
    static constexpr std::size_t most_held_rows = picture_rows::most_waiting_pictures;
    static constexpr std::size_t most_held_units = picture_rows::most_waiting_units;

    explicit output_sorter(std::function<void(const picture_row&)> taker) : to(std::move(taker)) {}

    /// The next row in decoding order.
    void add(picture_row&& row);
    /// Gives all that are held.
    void flush();

private:
    bool is_full() const { return held_rows > most_held_rows || held_units > most_held_units; }
    void give_lowest();

    std::function<void(const picture_row&)> to;
    std::map<std::uint64_t, std::vector<picture_row>> held; // by output number, with those that stand behind
    std::size_t held_rows = 0;
    std::size_t held_units = 0; // theirs, and their problems
    std::uint64_t next = 0;
    std::optional<std::uint64_t> latest; // output number: what comes may belong to it
};

} // namespace orv_h264
