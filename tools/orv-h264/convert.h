// orv-h264 convert: a stream in another framing, and the record of its parameter sets.
#pragma once

#include "exit_status.h"
#include "stream_input.h"

#include <optional>
#include <string>

namespace orv_h264 {

struct convert_options {
    stream_options stream;
    std::string out;                 ///< - is the standard output; "" writes no stream
    std::optional<h264::framing> to; ///< where there is an `out`
    std::string avcc;                ///< where the record goes, likewise
    std::string parameter_sets;      ///< a record whose parameter sets come in where pictures lack them; "" is none
};

/// Writes the units of the stream to `out`, and the record to `avcc`: each is there whole or not at all. Throws refusal
/// for an input that is not read, that has no unit, a unit that cannot be carried, or no record, and std::system_error
/// when reading or writing fails.
exit_status convert(const convert_options& options);

} // namespace orv_h264
