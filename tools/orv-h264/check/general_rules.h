// Rules that no function of a table judges: they are about any element, or about bytes that belong to no unit.
#pragma once

#include "check/rule.h"

namespace orv_h264::general_rules {

inline constexpr rule value_in_range = {
    "value-in-range",
    severity::error,
    "7.4",
    "the value of an element is one that the standard allows for it",
    "Ranges are those of the semantics of each element; values that are reserved lie outside.",
    "chroma_format_idc 9",
};

inline constexpr rule every_byte_in_a_unit = {
    "byte-in-a-unit",
    severity::error,
    "B.1",
    "every byte belongs to a unit, to its framing, or is a zero between units",
    "What else there is has been lost, or was never H.264.",
    "bytes before the first start code",
};

inline constexpr rule some_unit = {
    "stream-holds-units",
    severity::error,
    "B.1",
    "a stream holds units",
    "There is nothing to look at: the input is empty, or is no H.264 stream of this framing.",
    "an empty file",
};

inline constexpr rule unit_taken = {
    "unit-fits-limit",
    severity::error,
    "7.4.1",
    "a unit is no larger than --max-unit, and than there is memory for",
    "No level allows a picture of that size. What the unit holds was not looked at.",
    "a unit of 65 MiB",
};

inline constexpr rule unit_whole = {
    "unit-whole",
    severity::error,
    "ISO/IEC 14496-15 5.2.3",
    "a unit is as long as its length prefix says",
    "The stream ends before the unit does: it was cut.",
    "a length prefix of 1000 before 10 bytes",
};

inline constexpr rule container_whole = {
    "container-whole",
    severity::error,
    "ISO/IEC 14496-12 4.2",
    "a container holds its track to the end, and no parameter sets beside those of its record",
    "What is lost of the container is lost of the stream. What is only odd is a note.",
    "an MP4 file that ends inside of a sample",
};

inline constexpr rule container_agrees = {
    "container-agrees-with-stream",
    severity::warning,
    "ISO/IEC 14496-15 5.3",
    "a container says of its pictures what the stream says: which are key pictures, and when they are shown",
    "Players seek by the container and decode by the stream; where the two disagree, they show garbage behind a seek, "
    "or "
    "pictures at another speed.",
    "a picture marked as a key frame that is neither an IDR picture nor a recovery point",
};

inline constexpr const rule* all[] = {&value_in_range, &every_byte_in_a_unit, &some_unit,       &unit_taken,
                                      &unit_whole,     &container_whole,      &container_agrees};

} // namespace orv_h264::general_rules
