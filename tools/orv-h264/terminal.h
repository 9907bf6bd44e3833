// What stands at the other end of an output stream.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace orv_h264 {

/// What is_capable_terminal() says of the standard streams now it says from now on, wherever they lead then.
void remember_terminals();

/// A terminal that understands control sequences: one whose type, the environment variable TERM, is not dumb.
bool is_capable_terminal(std::FILE* stream);

/// How text may stand out on a terminal.
enum class emphasis { strong, error };

/// What makes text between them stand out.
struct emphasis_marks {
    // NOLINTBEGIN(readability-redundant-string-init): {fmt} copies from their address, which must not be null
    std::string_view begin = "";
    std::string_view end = "";
    // NOLINTEND(readability-redundant-string-init)
};

/// Bold or red where `stream` is a terminal that can show it and the environment variable NO_COLOR is unset or empty;
/// otherwise both are "".
emphasis_marks marks_of(std::FILE* stream, emphasis how);

/// The text between its marks.
std::string emphasised(std::FILE* stream, emphasis how, std::string_view text);

} // namespace orv_h264
