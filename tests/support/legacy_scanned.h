// A legacy scan of bytes that end at an unmapped page, into an output that does, too.
#pragma once

#include "support/guarded_buffer.h"
#include "support/stream_builder.h"

#include <orv-utils-v4/h264_legacy/nal_parser.h>

#include <cstddef>

namespace support {

/// The buffers, the state, and where the next scan begins.
struct legacy_scanned {
    guarded_buffer input;
    guarded_buffer output;
    unsigned int nal_length_size;
    h264_nal_parser_state state{7, 7, 7, 77, nullptr, nullptr, nullptr, nullptr};
    const unsigned char* next;

    explicit legacy_scanned(const bytes& stream, unsigned int prefix_size = 0, std::size_t room = 64)
        : input(stream), output(room), nal_length_size(prefix_size), next(input.begin())
    {
        scan();
    }

    /// The next unit.
    void scan()
    {
        next = h264_nal_parser_scan(&state, output.begin(), output.size(), next, input.end(), nal_length_size);
    }

    std::size_t offset(const unsigned char* pointer) const { return static_cast<std::size_t>(pointer - input.begin()); }
    std::size_t next_offset() const { return offset(next); }
    std::size_t raw_offset() const { return offset(state.raw_nal); }

    /// The payload; empty, too, when the scan took no unit.
    bytes payload() const { return bytes(state.nal, state.nal_fence); }

    /// Whether the latest scan left alone what only a unit that was taken sets.
    bool took_nothing() const
    {
        return state.found == 0 && state.overflow == 0 && state.nal_ref_idc == 7 && state.nal_unit_type == 77 &&
               state.nal == nullptr && state.nal_fence == nullptr &&
               guarded_buffer::untouched(output.begin(), output.end());
    }
};

} // namespace support
