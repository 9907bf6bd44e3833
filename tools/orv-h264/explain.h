// orv-h264 explain: what a byte of a stream, or a bit of it, belongs to.
#pragma once

#include "exit_status.h"
#include "output_format.h"
#include "stream_input.h"

#include <cstdint>
#include <optional>

namespace orv_h264 {

struct explain_options {
    stream_options stream;
    std::uint64_t offset = 0;
    std::optional<unsigned> bit; ///< 0 the most significant; without it, all of the byte
    output_format format = output_format::text;
};

/// Prints what is there to the standard output. Throws refusal for an input that is not read or does not reach as far.
exit_status explain(const explain_options& options);

} // namespace orv_h264
