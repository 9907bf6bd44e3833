#include "encoder_text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace orv_h264 {

namespace {

// "x264 - core 164 r3095 - H.264/MPEG-4 AVC codec - ... - options: cabac=1 ref=3 ..."
constexpr std::array<std::uint8_t, 16> x264_uuid = {0xDC, 0x45, 0xE9, 0xBD, 0xE6, 0xD9, 0x48, 0xB7,
                                                    0x96, 0x2C, 0xD8, 0x20, 0xD9, 0x23, 0xEE, 0xEF};

/// Two parts of those between " - ".
std::string_view name_in(std::string_view text)
{
    constexpr std::size_t longest = 100;
    constexpr std::string_view dash = " - ";
    const std::size_t first = text.find(dash);
    const std::size_t second = first == std::string_view::npos ? first : text.find(dash, first + 1);
    return text.substr(0, std::min(second, longest));
}

std::string_view settings_in(std::string_view text)
{
    constexpr std::string_view mark = " - options: ";
    const std::size_t at = text.find(mark);
    return at == std::string_view::npos ? "" : text.substr(at + mark.size());
}

} // namespace

std::optional<encoder_text> encoder_of(const h264::user_data_unregistered& user_data)
{
    if (user_data.uuid_iso_iec_11578 != x264_uuid)
        return {};
    const auto& bytes = user_data.user_data_payload_byte;
    const auto end = std::find_if_not(bytes.begin(), bytes.end(), [](std::uint8_t c) { return c >= ' ' && c <= '~'; });
    const std::string text(bytes.begin(), end);
    if (text.empty())
        return {};
    return encoder_text{std::string(name_in(text)), std::string(settings_in(text))};
}

} // namespace orv_h264
