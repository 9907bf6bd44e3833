// Fields as a JSON object: syntax elements under their H.264 names, arrays in the order of their indices, with null
// where an entry was not sent. Behind the elements of a structure, what their values mean stands in "meaning", what
// follows from them in "derived".
#pragma once

#include "field_sink.h"

#include <vector>

#include <nlohmann/json.hpp>

namespace orv_h264 {

class json_fields final : public field_sink {
public:
    /// Of bytes that stand for many elements so many are told; a sound stream has fewer in a message.
    static constexpr std::size_t most_bytes = std::size_t{64} * 1024;

    /// Adds to the object `out`, which is complete when this one goes.
    explicit json_fields(nlohmann::ordered_json& out) { inside.push_back({&out, {}, {}}); }
    json_fields(const json_fields&) = delete;
    json_fields& operator=(const json_fields&) = delete;
    ~json_fields() override { close(); }

    void element(const element_name& name, const field_value& value, std::string_view note) override;
    void bytes(const element_name& name, std::span<const std::uint8_t> all, std::string_view text) override;
    void open(const element_name& name, std::string_view heading) override;
    void close() override;
    void open_entry(const element_name& name) override;
    void close_entry() override;
    void told(const fact& what) override;
    void derived(std::string_view text, std::initializer_list<fact> facts) override;

private:
    struct structure {
        nlohmann::ordered_json* object;
        nlohmann::ordered_json meaning;
        nlohmann::ordered_json derived;
    };

    std::vector<structure> inside; // the one that is being filled, behind those that hold it
};

} // namespace orv_h264
