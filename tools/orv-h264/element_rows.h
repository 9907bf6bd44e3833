// The elements of a unit as lines of tab-separated columns.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// Makes a line of each element that it is told.
class element_rows : public h264::visitor {
public:
    /// The names of the columns, with the end of the line.
    static constexpr std::string_view head =
        "unit\tnal_unit_type\tbyte\tbit_in_byte\tbit\tbits\tdescriptor\tstructure\tname\tvalue\tinside\n";

    /// The lines that follow are of this unit.
    void begin(const h264::unit_place& place);

    void open(const char* name) override;
    void close() override;
    void element(const h264::traced_element& element) override;

    /// The lines made so far. The caller takes them away with clear().
    std::string text;

private:
    std::optional<h264::byte_map> raw_bytes;
    std::string unit_columns; // what all lines of the unit begin with
    std::string path;         // of the structures
    std::uint64_t offset = 0;
};

/// Name and indices of an element: "offset_for_ref_frame[2]".
std::string text_of(const h264::label& name);

/// A failure in one line for a person: element, value, bit and reason.
std::string text_of(const h264::failure& failure);

} // namespace orv_h264
