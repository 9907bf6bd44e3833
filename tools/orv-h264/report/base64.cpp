#include "report/base64.h"

#include <cstdint>

namespace orv_h264 {

std::string base64(std::string_view bytes)
{
    constexpr const char* digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t j = i; j < i + 3; ++j)
            group = group << 8U | (j < bytes.size() ? static_cast<unsigned char>(bytes[j]) : 0U);
        for (const unsigned shift : {18U, 12U, 6U, 0U})
            text += digits[group >> shift & 63U];
    }
    const std::size_t missing = (3 - bytes.size() % 3) % 3;
    return text.replace(text.size() - missing, missing, missing, '=');
}

} // namespace orv_h264
