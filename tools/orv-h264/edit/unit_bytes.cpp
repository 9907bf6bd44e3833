#include "edit/unit_bytes.h"

#include <algorithm>

namespace orv_h264 {

std::vector<unsigned char> unescaped(const h264::unit_place& unit)
{
    std::vector<unsigned char> clean(unit.size);
    clean.resize(h264::unescape(unit.bytes, unit.size, clean.data(), clean.size()));
    return clean;
}

std::vector<unsigned char> escaped(const std::vector<unsigned char>& clean)
{
    constexpr std::size_t start_code = 3;
    constexpr std::size_t most_framing = 40;
    std::vector<unsigned char> framed(clean.size() * 3 / 2 + most_framing);
    framed.resize(h264::frame(clean.data(), clean.size(), 0, false, framed.data(), framed.size()));
    framed.erase(framed.begin(), framed.begin() + start_code);
    return framed;
}

void retrace(const h264::unit_reading& reading, element_list& to)
{
    h264::unit_place head = reading.place;
    const unsigned type = head.bytes[0] & 0x1FU;
    if (type <= 5 || type >= 19) // of slices no more than their header
        head.size = std::min(head.size, h264::stream::most_slice_header_bytes);
    const std::vector<unsigned char> clean = unescaped(head);
    h264::nal_unit unit;
    h264::outcome result;
    to.clear();
    h264::trace(unit, clean.data(), clean.size(), reading.context, result, to);
    to.check();
}

} // namespace orv_h264
