// The elements of a unit as lines of columns.
#pragma once

#include "memory_guard.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// Makes a line of each element that it is told.
class element_rows : public h264::visitor {
public:
    /// The names of the columns. Nothing in a row needs quoting.
    void begin_table(char separator);

    /// The lines that follow are of this unit.
    void begin(const h264::unit_place& place);
    /// The unit has ended. Throws std::bad_alloc when memory ran out on the way.
    void end();

    void open(const char* name) override;
    void close() override;
    void element(const h264::traced_element& element) override;

    /// The lines made so far that have not been put out.
    std::string text;

private:
    void add_row(const h264::traced_element& element);

    char tab = '\t';
    memory_guard guarded;
    std::optional<h264::byte_map> raw_bytes;
    std::string unit_columns;         // what all lines of the unit begin with
    std::string path;                 // of the structures
    std::vector<std::size_t> lengths; // of the path, around each structure
    std::uint64_t offset = 0;
};

} // namespace orv_h264
