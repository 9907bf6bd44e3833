// An annotated trace as lines for a person, indented by structure, with a place before each element on request.
#pragma once

#include "annotated_trace.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orv_h264 {

/// The first bytes as hex digits, for a line; "..." where there are more.
std::string hex_start(byte_span bytes);

/// The value of an element, or of bytes in a row, for a line: text and UUIDs as such.
std::string value_text(const h264::traced_element& element);
std::string value_text(byte_span bytes);

class trace_lines final : public annotated_sink {
public:
    /// @param positions each element has its byte, bit and width before it
    explicit trace_lines(bool positions) : with_positions(positions) {}

    void open(std::string_view structure, std::string_view heading) override;
    void close() override;
    void element(const shown_element& shown) override;
    void bytes(const shown_element& first, byte_span all) override;
    void follows(const fact& what) override;

    /// The lines made so far, as many as have not been put out. The caller may add to them and take them away.
    std::string text;

private:
    /// A structure that is open.
    struct open_structure {
        std::string heading; // "" where it has no line of its own
        bool is_payload;
        bool printed;
    };

    static constexpr std::size_t position_width = 19;

    void print_headings();
    void begin_line(const shown_element& shown);
    void end_line(std::string_view words);
    std::string& indent(std::size_t steps);
    std::string& indent();

    bool with_positions;
    std::vector<open_structure> inside;
};

} // namespace orv_h264
