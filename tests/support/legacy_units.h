// All units that the legacy scanner finds in some bytes.
#pragma once

#include "support/guarded_buffer.h"
#include "support/stream_builder.h"

#include <orv-utils-v4/h264_legacy/nal_parser.h>

#include <cstddef>
#include <vector>

namespace support {

/// A unit: where its framing begins and where it ends in the bytes, its header and its RBSP.
struct found_unit {
    std::size_t start;
    std::size_t fence;
    unsigned char header;
    bytes payload;

    bool operator==(const found_unit&) const = default;
};

inline std::vector<found_unit> legacy_units(const guarded_buffer& stream, unsigned int nal_length_size)
{
    std::vector<found_unit> units;
    bytes out(stream.size());
    h264_nal_parser_state s;
    const unsigned char* next = stream.begin();
    const auto offset = [&](const unsigned char* p) { return static_cast<std::size_t>(p - stream.begin()); };
    for (;;) {
        next = h264_nal_parser_scan(&s, out.data(), out.size(), next, stream.end(), nal_length_size);
        if (s.found == 0)
            return units;
        units.push_back({offset(s.raw_nal), offset(s.raw_nal_fence), header_byte(s.nal_ref_idc, s.nal_unit_type),
                         bytes(s.nal, s.nal_fence)});
    }
}

} // namespace support
