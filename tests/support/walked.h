// Units given to a stream walker by their header byte and RBSP: each is framed, and read from a buffer that ends at an
// unmapped page.
#pragma once

#include "support/guarded_buffer.h"
#include "support/stream_builder.h"

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
    static bytes framed(unsigned char header, bytes rbsp)
    {
        bytes out(2 * rbsp.size() + 16);
        brenik::h264_nal_writer writer(out.data(), out.data(), out.data() + out.size(), brenik::nalfmt_length4);
        brenik::h264_nal nal;
        nal.decode_header(header);
        writer.block_encode(rbsp.data(), rbsp.size(), nal, 0);
        out.resize(writer.data_length());
        return out;
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
