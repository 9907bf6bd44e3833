// The rows of a stream, remembered.
#pragma once

#include "picture_rows.h"

#include "support/stream_builder.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace support {

class told_rows : orv_h264::row_sink {
public:
    explicit told_rows(bool split_fields = false,
                       std::uint64_t most_unit_bytes = orv_h264::h264::unit_splitter::usual_most_bytes,
                       orv_h264::h264::framing framing = orv_h264::h264::framing::annex_b)
        : source(split_fields, most_unit_bytes, *this), splitter(framing, static_cast<std::size_t>(most_unit_bytes))
    {
    }

    /// The next bytes of the stream.
    void feed(const bytes& piece)
    {
        fed_bytes += piece.size();
        splitter.push(piece.data(), piece.size(), source);
    }
    std::vector<orv_h264::picture_row>& finish()
    {
        splitter.flush(source);
        source.finish(fed_bytes);
        return rows;
    }

    std::vector<orv_h264::picture_row> rows;
    std::vector<orv_h264::row_problem> left; ///< problems behind the rows
    std::size_t access_units = 0;

private:
    void access_unit_came(const orv_h264::h264::access_unit&) override { ++access_units; }
    void row(orv_h264::picture_row&& row) override { rows.push_back(std::move(row)); }
    void problem(const orv_h264::row_problem& problem) override { left.push_back(problem); }

    orv_h264::picture_rows source;
    orv_h264::h264::unit_splitter splitter;
    std::uint64_t fed_bytes = 0;
};

inline std::vector<orv_h264::picture_row> rows_of(const bytes& stream, bool split_fields = false)
{
    told_rows told(split_fields);
    told.feed(stream);
    return told.finish();
}

/// The types of a row's units.
inline std::vector<int> types_of(const orv_h264::picture_row& row)
{
    std::vector<int> types;
    for (const orv_h264::row_unit& u : row.units)
        types.push_back(u.nal_unit_type);
    return types;
}

} // namespace support
