#include "printable.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// How many bytes of a control character the text begins with: 1 of C0 and DEL, 2 of C1 (U+0080 to U+009F; nothing else
/// in UTF-8 has a byte C2 before 80 to 9F).
std::size_t control_size(std::string_view text)
{
    const auto byte = [text](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0xFFU; };
    if (byte(0) < 0x20 || byte(0) == 0x7F)
        return 1;
    return byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) <= 0x9F ? 2 : 0;
}

void append_escaped(std::string& out, char control)
{
    switch (control) {
    case '\n':
        out += "\\n";
        break;
    case '\r':
        out += "\\r";
        break;
    case '\t':
        out += "\\t";
        break;
    default:
        fmt::format_to(std::back_inserter(out), "\\x{:02x}", static_cast<unsigned char>(control));
    }
}

} // namespace

std::string printable(std::string_view text)
{
    std::string out;
    while (!text.empty()) {
        const std::size_t controls = control_size(text);
        for (const char control : text.substr(0, controls))
            append_escaped(out, control);
        if (controls == 0)
            out += text.front();
        text.remove_prefix(std::max<std::size_t>(controls, 1));
    }
    return out;
}

} // namespace orv_h264
