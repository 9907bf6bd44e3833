// Fields as lines for a person, indented by structure.
#pragma once

#include "field_sink.h"

#include <string>

namespace orv_h264 {

/// The first bytes as hex digits, for a line; "..." where there are more.
std::string hex_start(std::span<const std::uint8_t> bytes);

class text_fields final : public field_sink {
public:
    /// Appends lines to `out`, indented by one step.
    explicit text_fields(std::string& out) : lines(out) {}

    void element(const element_name& name, const field_value& value, std::string_view note) override;
    void bytes(const element_name& name, std::span<const std::uint8_t> all, std::string_view text) override;
    void open(const element_name& name, std::string_view heading) override;
    void close() override;
    void open_entry(const element_name& name) override;
    void close_entry() override;
    void told(const fact& what) override;
    void derived(std::string_view text, std::initializer_list<fact> facts) override;

private:
    std::string& indent();
    void begin_line(const element_name& name);

    std::string& lines;
    std::size_t depth = 1;
};

} // namespace orv_h264
