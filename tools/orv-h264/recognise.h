// What an input is, by its head, for when the user does not say.
#pragma once

#include "input_window.h"
#include "signatures.h"

#include <orv-utils-v4/h264_syntax/unit_splitter.h>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// How many bytes at the start of an input are looked at.
constexpr std::size_t recognise_size = std::size_t{64} * 1024;
/// How many where these hold no whole unit.
constexpr std::size_t recognise_further = std::size_t{8} * 1024 * 1024;

enum class input_kind {
    nothing, ///< holds no unit whatever the framing: fewer bytes than a start code and a header, zeros, a start code
    stream,
    record,  ///< AVCDecoderConfigurationRecord, in a box avcC or not
    foreign, ///< of another format
    unknown,
};

struct recognition {
    input_kind kind = input_kind::unknown;
    h264::framing framing = h264::framing::annex_b; ///< of a stream
    known_format format;                            ///< of another format
};

/// Looks at the input that the window begins. In doubt it is an H.264 stream: one that begins anywhere or is damaged is
/// taken for nothing else.
recognition recognise(input_window& window);

} // namespace orv_h264
