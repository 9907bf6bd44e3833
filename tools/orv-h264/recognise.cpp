#include "recognise.h"

#include "framing.h"
#include "other_codecs.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

namespace orv_h264 {

namespace {

using namespace std::string_view_literals;

std::string_view bytes_of(input_window& window)
{
    return {reinterpret_cast<const char*>(window.start()), window.size()};
}

unsigned char byte_of(std::string_view bytes, std::size_t at)
{
    return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : static_cast<unsigned char>(0);
}

/// Notes how units begin. A start code before zeros begins the unit of header 0 that other codecs have.
class head_sink final : public h264::split_sink {
public:
    void unit(const h264::split_unit& unit) override
    {
        unit_head head = {};
        std::copy_n(unit.bytes, std::min(unit.size, head.size()), head.begin());
        heads.push_back(head);
    }
    void gap(const h264::split_gap& gap) override
    {
        if (gap.reason == h264::split_gap_reason::no_header)
            heads.emplace_back();
    }

    std::vector<unit_head> heads;
};

std::vector<unit_head> annexb_units(input_window& window, std::size_t most)
{
    head_sink sink;
    h264::unit_splitter splitter(h264::framing::annex_b);
    splitter.push(window.start(), std::min(window.size(), most), sink);
    splitter.flush(sink);
    return sink.heads;
}

bool holds_start_code(std::string_view bytes)
{
    return bytes.find("\0\0\1"sv) != std::string_view::npos || bytes.find("\0\0\0"sv) != std::string_view::npos;
}

/// A unit that a stream or a sample begins with. It is longer than its header: a prefix that tells 1 is a start code.
bool may_be_first(unsigned char header, std::size_t length)
{
    const unsigned type = header & 0x1FU;
    return may_be_h264(header) && length > 1 && (type <= 2 || (type >= 5 && type <= 9));
}

/// What the length prefix at `at` tells; bytes that are not there are zeros.
std::size_t prefixed_length(std::string_view bytes, std::size_t at, std::size_t prefix_size)
{
    std::size_t length = 0;
    for (std::size_t i = 0; i < prefix_size; ++i)
        length = length << 8 | byte_of(bytes, at + i);
    return length;
}

/// Length prefixes of this size lead from unit to unit, none with a start code inside: to the very end of the input, or
/// through the look over two units and more, of which the first ones may reach beyond it. The last unit of a short
/// input may be cut behind prefixes of two and four bytes: shorter ones tell too little.
bool is_length_prefixed(std::size_t prefix_size, input_window& window)
{
    std::size_t at = 0;
    for (int units = 0; units < 2 || at < recognise_size; ++units) {
        window.fill(at + prefix_size + 1);
        if (at == window.size())
            return units > 0;
        const std::string_view bytes = bytes_of(window);
        const std::size_t length = prefixed_length(bytes, at, prefix_size);
        at += prefix_size;
        const unsigned char header = byte_of(bytes, at);
        const bool may_follow = prefix_size == 4 || may_be_h264(header); // four bytes tell enough of themselves
        if (length == 0 || length > recognise_further || !(units == 0 ? may_be_first(header, length) : may_follow))
            return false;
        window.fill(at + length);
        if (holds_start_code(bytes_of(window).substr(at, length)))
            return false;
        if (at + length > window.size())
            return prefix_size % 2 == 0 && units >= 3;
        at += length;
    }
    return true;
}

std::optional<h264::framing> length_prefixes(input_window& window)
{
    for (const h264::framing framing :
         {h264::framing::length_4, h264::framing::length_2, h264::framing::length_1, h264::framing::length_3})
        if (is_length_prefixed(prefix_size_of(framing), window))
            return framing;
    return {};
}

bool holds_nothing(std::string_view bytes)
{
    constexpr std::size_t smallest_stream = 4;
    const std::size_t behind_zeros = std::min(bytes.find_first_not_of('\0'), bytes.size());
    return bytes.size() < smallest_stream || bytes.substr(behind_zeros).empty() ||
           (behind_zeros >= 2 && bytes.substr(behind_zeros) == "\1");
}

// ISO/IEC 14496-15 5.3.3.1.1: version, reserved bits, and an SPS of the same profile, or no parameter set at all.
bool is_record(std::string_view bytes)
{
    if (bytes.substr(std::min<std::size_t>(bytes.size(), 4)).starts_with("avcC"))
        return true;
    if (bytes.size() < 7 || byte_of(bytes, 0) != 1 || byte_of(bytes, 4) < 0xFC || byte_of(bytes, 5) < 0xE0)
        return false;
    if (byte_of(bytes, 5) == 0xE0)
        return byte_of(bytes, 6) == 0 && bytes.size() <= 11;
    return (byte_of(bytes, 8) & 0x9F) == 7 && byte_of(bytes, 9) == byte_of(bytes, 1);
}

/// What the start codes of the usual look show, where there are any. A forbidden bit may be damage.
std::optional<recognition> by_start_codes(input_window& window)
{
    const std::vector<unit_head> units = annexb_units(window, recognise_size);
    if (const std::optional<known_format> other = other_codec(units))
        return recognition{input_kind::foreign, h264::framing::annex_b, *other};
    if (std::none_of(units.begin(), units.end(),
                     [](const unit_head& unit) { return may_be_h264(static_cast<unsigned char>(unit[0] & 0x7F)); }))
        return {};
    return recognition{input_kind::stream, h264::framing::annex_b, {}};
}

/// There are more units behind the usual look than other data hold by chance.
bool are_units_further(input_window& window)
{
    constexpr std::ptrdiff_t fewest = 3;
    window.fill(recognise_further);
    const std::vector<unit_head> units = annexb_units(window, recognise_further);
    return !other_codec(units) && std::count_if(units.begin(), units.end(),
                                                [](const unit_head& unit) { return may_be_h264(unit[0]); }) >= fewest;
}

} // namespace

recognition recognise(input_window& window)
{
    window.fill(recognise_size);
    const std::string_view bytes = bytes_of(window).substr(0, recognise_size);
    if (holds_nothing(bytes))
        return {input_kind::nothing, h264::framing::annex_b, {}};
    if (is_record(bytes))
        return {input_kind::record, h264::framing::annex_b, {}};
    if (const std::optional<known_format> format = format_by_signature(bytes))
        return {input_kind::foreign, h264::framing::annex_b, *format};
    if (const std::optional<h264::framing> framing = length_prefixes(window)) // reads on: `bytes` end here
        return {input_kind::stream, *framing, {}};
    if (const std::optional<recognition> found = by_start_codes(window))
        return *found;
    return {are_units_further(window) ? input_kind::stream : input_kind::unknown, h264::framing::annex_b, {}};
}

} // namespace orv_h264
