// The elements of a unit as a list that can be kept and compared: each with its path, as inspect --tsv has it, and its
// value.
#pragma once

#include "memory_guard.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// The paths of structures, each once: lists that share a table have equal numbers where the paths are equal.
class path_table {
public:
    /// The path of a structure inside of another one; 0 is none. `name` lives as long as the program.
    std::uint32_t child(std::uint32_t parent, const char* name);
    const std::string& text(std::uint32_t path) const { return texts[path]; }

private:
    std::map<std::pair<std::uint32_t, std::string_view>, std::uint32_t> children;
    std::deque<std::string> texts = {""};
};

struct listed_element {
    h264::label name = "";
    std::uint32_t structure = 0; ///< in the table
    std::uint32_t message = 0;   ///< of an SEI unit: how many of its messages had begun, those inside of others not
    std::int64_t value = 0;      ///< of bytes (st(v), and numbers of more than 64 bits) what they hash to
    bool is_bytes = false;
    bool inside = true; ///< of its range
    std::int64_t lowest = 0;
    std::int64_t highest = 0;
};

/// Bits that only fill up: how many there are follows from the place of what stands before them, or they tell a size.
bool is_filling(const listed_element& element);

/// The same element of two units, whatever the values.
bool same_element(const listed_element& a, const listed_element& b);

/// Of a long row of bytes the first ones are kept one by one, and the others as one element, which stands for all.
class element_list final : public h264::visitor {
public:
    static constexpr std::size_t most_single = 8192; ///< elements before that begins

    explicit element_list(path_table& table) : paths(table) {}

    void open(const char* name) override;
    void close() override;
    void element(const h264::traced_element& element) override;

    /// Of another unit from now on.
    void clear();
    /// Throws std::bad_alloc when memory ran out on the way.
    void check() const { guarded.check(); }

    const std::vector<listed_element>& elements() const { return list; }
    /// Structures and name with indices, joined by dots.
    std::string path_of(const listed_element& element) const;
    /// The path ends so, at a dot or as a whole.
    bool ends_with(const listed_element& element, std::string_view end) const;

private:
    bool goes_on_row(const h264::traced_element& e) const;

    path_table& paths;
    memory_guard guarded;
    std::vector<listed_element> list;
    std::vector<std::uint32_t> open_structures;
    std::uint32_t messages = 0;
    std::uint32_t message_depth = 0;
};

/// FNV-1a over bytes, going on from `hash`.
constexpr std::uint64_t first_hash = 0xCBF29CE484222325;
std::uint64_t hash_of(const unsigned char* bytes, std::size_t size, std::uint64_t hash = first_hash) noexcept;

/// What all elements of a unit hash to, and how many there are: of units of which nothing more is asked.
class element_digest final : public h264::visitor {
public:
    void open(const char* name) override;
    void close() override { add(1); }
    void element(const h264::traced_element& element) override;

    std::uint64_t hash = first_hash;
    std::uint64_t count = 0;

private:
    void add(std::uint64_t number);
};

} // namespace orv_h264
