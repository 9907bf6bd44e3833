// Units given to a stream walker by their header byte and RBSP: each is framed, and read from a buffer that ends at an
// unmapped page.
#pragma once

#include "support/guarded_buffer.h"
#include "support/written.h"

#include "stream_walker.h"

#include <orv-utils-v4/h264.h>

#include <string>
#include <vector>

namespace support {

/// A reader that stands on one unit.
class unit_reader {
public:
    unit_reader(unsigned char header, const bytes& rbsp) : buffer(framed(header, rbsp)), reader(brenik::nalfmt_length4)
    {
        reader.scan(buffer.begin(), buffer.end());
    }

    brenik::h264_nal_reader& operator*() { return reader; }

private:
    static bytes framed(unsigned char header, const bytes& rbsp)
    {
        written unit(brenik::nalfmt_length4, 2 * rbsp.size() + 16);
        unit.encode(header, rbsp);
        return unit.output();
    }

    guarded_buffer buffer;
    brenik::h264_nal_reader reader;
};

inline orv_h264::walked_unit walk(orv_h264::stream_walker& walker, unsigned char header, const bytes& rbsp)
{
    unit_reader unit(header, rbsp);
    return walker.walk(*unit);
}

/// The unit's problems, a line each.
inline std::string problem_of(const orv_h264::walked_unit& unit)
{
    std::string lines;
    for (const std::string& problem : orv_h264::problems_of(unit))
        lines += (lines.empty() ? "" : "\n") + problem;
    return lines;
}

} // namespace support
