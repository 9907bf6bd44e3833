// Fields as a JSON object: syntax elements under their H.264 names, arrays in the order of their indices, with null
// where an entry was not sent. Behind the elements of a structure, what their values mean stands in "meaning", what
// follows from them in "derived". Written as text at once: a stream has too many fields to make a tree of each.
#pragma once

#include "field_sink.h"

#include <string>
#include <vector>

namespace orv_h264 {

class json_fields final : public field_sink {
public:
    /// Of bytes that stand for many elements so many are told; a sound stream has fewer in a message.
    static constexpr std::size_t most_bytes = std::size_t{64} * 1024;

    /// Appends an object to `text` when this one goes. The names of elements must live until then.
    explicit json_fields(std::string& text) : out(text) { inside.push_back({"", {}, {}, {}}); }
    json_fields(const json_fields&) = delete;
    json_fields& operator=(const json_fields&) = delete;
    ~json_fields() override;

    void element(const element_name& name, const field_value& value, std::string_view note) override;
    void bytes(const element_name& name, std::span<const std::uint8_t> all, std::string_view text) override;
    void open(const element_name& name, std::string_view heading) override;
    void close() override;
    void open_entry(const element_name& name) override;
    void close_entry() override;
    void told(const fact& what) override;
    void derived(std::string_view text, std::initializer_list<fact> facts) override;

private:
    /// An object.
    class members {
    public:
        void put(const element_name& name, const field_value& value);
        void put(const element_name& name, const members& object);
        void append_to(std::string& text) const;
        bool empty() const noexcept { return all.empty(); }

    private:
        struct member {
            std::string_view name;
            std::string value;                // as text
            std::vector<std::string> entries; // of an array, instead
        };

        std::string& place(const element_name& name);

        std::vector<member> all;
    };

    struct structure {
        element_name name;
        members fields;
        members meaning;
        members derived;
    };

    static void finish(structure& complete);

    std::string& out;
    std::vector<structure> inside; // the one that is being filled, behind those that hold it
};

} // namespace orv_h264
