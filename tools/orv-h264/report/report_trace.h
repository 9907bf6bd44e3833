// An annotated trace as rows of a table in a page: [depth, heading], [depth, name, value, meaning, byte], and of what
// follows from several elements [depth, "=", text]. SEI messages are kept apart from each other.
#pragma once

#include "annotated_trace.h"
#include "json_output.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orv_h264 {

class report_trace final : public annotated_sink {
public:
    /// Of a unit or a message so many rows are told.
    static constexpr std::size_t most_rows = 600;

    struct message {
        std::uint32_t payload_type = 0;
        std::string payload_type_name;
        std::vector<json> rows;
    };

    void begin();
    void open(std::string_view structure, std::string_view heading) override;
    void close() override;
    void element(const shown_element& shown) override;
    void bytes(const shown_element& first, byte_span all) override;
    void follows(const fact& what) override;

    /// All rows but those of messages.
    std::vector<json> take();
    std::vector<message> take_messages();

private:
    struct open_structure {
        std::string heading;
        bool printed;
    };

    void add(json row);
    void add_headings();

    std::vector<open_structure> inside;
    std::vector<json> rows;
    std::vector<message> messages;
    std::size_t message_depth = 0; // of the outermost message that is open
};

} // namespace orv_h264
