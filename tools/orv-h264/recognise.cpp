#include "recognise.h"

#include <orv-utils-v4/h264.h>

#include <algorithm>
#include <string_view>

namespace orv_h264 {

namespace {

bool holds_start_code(unsigned char* start, unsigned char* fence)
{
    brenik::h264_nal_reader reader(brenik::nalfmt_annexb);
    reader.scan(start, fence);
    return reader.found;
}

// Units of this framing, none with a start code inside, fill the window: to its very end, or where more is to come, two
// of them and the begin of a third.
bool is_length_prefixed(brenik::h2645_common_nalfmt nalfmt, input_window& window)
{
    brenik::h264_nal_reader reader(nalfmt);
    reader.next = window.start();
    for (int units = 0;; ++units) {
        reader.scan(reader.next, window.fence());
        if (reader.gave_up || holds_start_code(reader.payload, reader.decode_fence))
            return false;
        if (reader.incomplete)
            return window.at_end() ? reader.next == window.fence() : units >= 2;
    }
}

} // namespace

bool is_annexb(input_window& window)
{
    window.fill(recognise_size);
    brenik::h264_nal_reader reader(brenik::nalfmt_annexb);
    reader.scan(window.start(), window.fence());
    if (!reader.found)
        return false;
    const auto framings = {brenik::nalfmt_length1, brenik::nalfmt_length2, brenik::nalfmt_length3,
                           brenik::nalfmt_length4};
    return std::none_of(framings.begin(), framings.end(),
                        [&](brenik::h2645_common_nalfmt nalfmt) { return is_length_prefixed(nalfmt, window); });
}

bool holds_nothing(input_window& window)
{
    constexpr std::size_t smallest_stream = 4;
    window.fill(recognise_size);
    return window.size() < smallest_stream ||
           std::all_of(window.start(), window.fence(), [](unsigned char byte) { return byte == 0; });
}

const char* container_name(input_window& window)
{
    window.fill(recognise_size);
    const std::string_view bytes(reinterpret_cast<const char*>(window.start()), window.size());
    const auto starts_with = [&](std::size_t at, std::string_view mark) {
        return at <= bytes.size() && bytes.substr(at).substr(0, mark.size()) == mark;
    };
    constexpr std::size_t ts_packet_size = 188;
    if (starts_with(4, "ftyp"))
        return "MP4";
    if (starts_with(0, "\x1A\x45\xDF\xA3"))
        return "Matroska";
    if (starts_with(0, "G") && starts_with(ts_packet_size, "G") && starts_with(2 * ts_packet_size, "G"))
        return "MPEG transport stream";
    return nullptr;
}

} // namespace orv_h264
