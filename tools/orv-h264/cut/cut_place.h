// A place of a stream as the command line names it: a picture by its number, by the time when it is shown, or by a
// byte offset. Wherever it stands it names one picture: --from begins with that, --to ends before it.
#pragma once

#include "picture_rows.h"

#include <cstdint>
#include <optional>
#include <string>

namespace orv_h264 {

struct cut_place {
    enum class kind : std::uint8_t {
        picture, ///< the one with this number in decoding order, from 0
        time,    ///< the first in decoding order that is shown then or later
        offset,  ///< the first that begins there or behind it
    };

    kind what = kind::picture;
    std::uint64_t number = 0; ///< of the picture, or the offset
    h264::exact_time time;
    std::string text; ///< as it was written
};

/// Reads `100`, `12.5s`, `1:02.5`, `0:01:02.5` or `@0x1267`. Throws std::invalid_argument, the text for the user.
cut_place parse_cut_place(const std::string& text);

} // namespace orv_h264
