// Files of other kinds, known by what they begin with.
#pragma once

#include "container/container_kind.h"

#include <optional>
#include <string_view>

namespace orv_h264 {

/// What a file is that is no H.264 stream.
struct known_format {
    const char* name = "";                           ///< as it follows "this is"
    bool holds = false;                              ///< it may hold an H.264 stream
    container_kind container = container_kind::none; ///< one of those that the tool reads
};

/// The format whose signature the head of a file has. Each signature is 32 bits and more, so that no H.264 stream has
/// one by chance, wherever it begins.
std::optional<known_format> format_by_signature(std::string_view head);

} // namespace orv_h264
