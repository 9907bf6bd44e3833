// orv-h264 avcc: an AVC decoder configuration record and the parameter sets in it.
#pragma once

#include "exit_status.h"
#include "output_format.h"

#include <string>

namespace orv_h264 {

struct avcc_options {
    std::string path; ///< - is the standard input
    output_format format = output_format::text;
};

/// Prints the members of the record and the fields of its parameter sets to the standard output, and what is wrong to
/// the standard error stream. Throws refusal for an input that is no record, and std::system_error when reading fails.
exit_status avcc(const avcc_options& options);

} // namespace orv_h264
