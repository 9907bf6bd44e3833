// orv-h264 cut: whole access units of a stream as a stream of their own, with the parameter sets that are in force; or
// one layer or view of it.
#pragma once

#include "cut/layer_choice.h"
#include "cut/range_finder.h"
#include "exit_status.h"
#include "stream_input.h"

#include <bitset>
#include <optional>
#include <string>

namespace orv_h264 {

struct cut_options {
    stream_options stream;
    std::string out; ///< - is the standard output
    cut_range range;
    bool key = false;                    ///< the start goes back to a key picture
    std::optional<h264::ratio> rate;     ///< pictures a second, for times
    std::optional<std::bitset<32>> only; ///< these types, and no parameter sets besides
    layer_choice layers;
    std::string target; ///< the layer or view for messages; "" where it has to be in every stream
    bool json = false;
};

/// Writes the part of the stream to `out`, which is there whole or not at all. Throws refusal for an input that is not
/// read, a place behind its end, a layer or view that it has not, and a unit that cannot be carried, and
/// std::system_error when reading or writing fails.
exit_status cut(const cut_options& options);

} // namespace orv_h264
