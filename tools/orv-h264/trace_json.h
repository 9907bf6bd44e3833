// An annotated trace as a JSON object: the elements under their names in the standard, arrays in the order of their
// indices, with null where an entry was not sent; structures as objects under their names. Behind the elements of a
// structure, what their values mean stands in "meaning", what follows from them in "derived", and on request where they
// lie in "positions". Written as text at once: a stream has too many elements to make a tree of each.
#pragma once

#include "annotated_trace.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace orv_h264 {

/// The text of a JSON object that grows by members.
class json_members {
public:
    /// Of a list so many entries are told; that of the largest map of slice groups is shorter.
    static constexpr std::size_t most_entries = std::size_t{1} << 20;

    /// How many entries the array of this name has.
    std::size_t entries_of(std::string_view name) const;
    /// A value of its own.
    void put(std::string_view name, std::string_view value);
    /// The next entry of an array; entries come in the order of their indices.
    void put_entry(const h264::label& at, std::string_view value);
    /// The next of several without an index.
    void append(std::string_view name, std::string_view value);
    /// Nothing until there are as many entries.
    void fill(std::string_view name, std::size_t entries);

    bool empty() const noexcept { return used == 0; }
    /// There are none any more. The memory of those that there were is used again.
    void clear() noexcept { used = 0; }
    void append_to(std::string& text) const;

private:
    struct member {
        std::string_view name;
        std::string text;
        std::array<std::uint32_t, 4> end = {}; // of an array: where its next entry belongs
        std::size_t entries = 0;               // of an array
    };

    member& find(std::string_view name);
    std::size_t place_of(std::string_view name) const;

    std::vector<member> all;
    std::size_t used = 0; // of these
};

class trace_json final : public annotated_sink {
public:
    /// Of a run of bytes so many are told; a sound stream has fewer in a message.
    static constexpr std::size_t most_bytes = std::size_t{64} * 1024;

    explicit trace_json(bool positions) : with_positions(positions) {}

    void open(std::string_view name, std::string_view heading) override;
    void close() override;
    void element(const shown_element& shown) override;
    void bytes(const shown_element& first, byte_span all) override;
    void follows(const fact& what) override;

    /// The object of all that was told, which is forgotten. The outermost structures are no members of it, but what
    /// they hold is: the unit says which ones they are.
    std::string take();

private:
    struct structure {
        std::string_view name;
        json_members fields;
        json_members meaning;
        json_members derived;
        json_members positions;

        /// Nothing of what it held is left.
        void begin(std::string_view of)
        {
            name = of;
            for (json_members* const members : {&fields, &meaning, &derived, &positions})
                members->clear();
        }
    };

    void put(const shown_element& shown, std::string_view value);
    std::string_view text_of(structure& complete);
    structure& inside() { return levels[depth <= 1 ? 0 : depth - 1]; }

    bool with_positions;
    std::size_t depth = 0;
    std::deque<structure> levels = std::deque<structure>(1); // the one that is being filled behind those that hold it
    std::string value_text;
    std::string object_text;
};

} // namespace orv_h264
