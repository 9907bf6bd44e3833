#include "other_codecs.h"

#include <algorithm>
#include <initializer_list>

namespace orv_h264 {

namespace {

using unit_heads = std::span<const unit_head>;

bool is_one_of(unsigned char value, std::initializer_list<unsigned char> wanted)
{
    return std::find(wanted.begin(), wanted.end(), value) != wanted.end();
}

/// The next unit that is none of `passed`, from `at` on; the number of units when there is none.
std::size_t pass(unit_heads units, std::size_t at, std::initializer_list<unsigned char> passed)
{
    while (at < units.size() && is_one_of(units[at][0], passed))
        ++at;
    return at;
}

bool begins_with(unit_heads units, std::size_t at, unsigned char low, unsigned char high)
{
    return at < units.size() && units[at][0] >= low && units[at][0] <= high;
}

/// At least nine of ten units.
template <class Fits>
bool nearly_all(unit_heads units, Fits fits)
{
    const auto count = static_cast<std::size_t>(std::count_if(units.begin(), units.end(), fits));
    return 10 * count >= 9 * units.size();
}

// H.264 7.3.2.1.1: an SPS of a profile and level that exist.
bool is_h264_sps(const unit_head& unit)
{
    return is_one_of(unit[0], {0x27, 0x47, 0x67}) &&
           is_one_of(unit[1], {44, 66, 77, 83, 86, 88, 100, 110, 118, 122, 128, 134, 135, 138, 139, 244}) &&
           (unit[2] & 3) == 0 && unit[3] >= 9 && unit[3] <= 62;
}

// ISO/IEC 13818-1 2.5.3.3 and 11172-1 2.4.3.2: a pack header, and a system header or packet behind it.
bool is_program_stream(unit_heads units)
{
    for (std::size_t i = 0; i + 1 < units.size(); ++i)
        if (units[i][0] == 0xBA && ((units[i][1] & 0xC4) == 0x44 || (units[i][1] & 0xF1) == 0x21) &&
            units[i + 1][0] >= 0xBB)
            return true;
    return false;
}

// ISO/IEC 13818-2 6.2.2: a sequence header leads to a picture.
bool is_mpeg2_sequence(unit_heads units)
{
    for (std::size_t i = 0; i < units.size(); ++i)
        if (units[i][0] == 0xB3 && begins_with(units, pass(units, i + 1, {0xB2, 0xB5, 0xB8}), 0, 0))
            return true;
    return false;
}

// ISO/IEC 13818-2 6.2.3 and 6.2.4: a picture, and slices of its first and second row.
bool is_mpeg2_picture(unit_heads units)
{
    for (std::size_t i = 0; i < units.size(); ++i) {
        const std::size_t slice = pass(units, i + 1, {0xB2, 0xB5});
        if (units[i][0] == 0 && begins_with(units, slice, 1, 1) && begins_with(units, pass(units, slice, {1}), 2, 2))
            return true;
    }
    return false;
}

// ISO/IEC 14496-2 6.2.2: the headers of a visual object sequence, or those of a video object and its layer; of a stream
// that begins later, VOPs alone.
bool is_mpeg4_visual(unit_heads units)
{
    constexpr std::size_t fewest_vops = 4;
    for (std::size_t i = 0; i + 1 < units.size(); ++i)
        if ((units[i][0] == 0xB0 && units[i + 1][0] == 0xB5) ||
            (units[i][0] <= 0x1F && begins_with(units, i + 1, 0x20, 0x2F) && begins_with(units, i + 2, 0xB2, 0xB6)))
            return true;
    return units.size() >= fewest_vops &&
           nearly_all(units, [](const unit_head& unit) { return unit[0] == 0xB6 || unit[0] == 0xB3; });
}

// SMPTE 421M Annex E: sequence header, entry point, frame.
bool is_vc1(unit_heads units)
{
    for (std::size_t i = 0; i + 2 < units.size(); ++i)
        if (units[i][0] == 0x0F && units[i + 1][0] == 0x0E && units[i + 2][0] == 0x0D)
            return true;
    return false;
}

// ITU-T H.265 7.3.1.2: nuh_layer_id is 0, and nuh_temporal_id_plus1 is not. A VPS has 16 bits set behind its flags.
// Without one there have to be several units, those of the lowest temporal layer among them, and one that H.264 rules
// out: the header of a partition followed by a large first_mb_in_slice looks alike.
bool is_hevc(unit_heads units)
{
    constexpr std::size_t fewest = 4;
    const auto has_header = [](const unit_head& unit) { return (unit[0] & 0x81) == 0 && unit[1] >= 1 && unit[1] < 8; };
    const auto is_vps = [](const unit_head& unit) {
        return unit[0] == 0x40 && unit[1] == 1 && unit[4] == 0xFF && unit[5] == 0xFF;
    };
    if (!nearly_all(units, has_header))
        return false;
    const auto lowest = static_cast<std::size_t>(
        std::count_if(units.begin(), units.end(), [](const unit_head& unit) { return unit[1] == 1; }));
    const bool foreign =
        std::any_of(units.begin(), units.end(), [](const unit_head& unit) { return !may_be_h264(unit[0]); });
    return std::any_of(units.begin(), units.end(), is_vps) ||
           (units.size() >= fewest && 2 * lowest >= units.size() && foreign);
}

// ITU-T H.266 7.3.1.2: a first byte of zeros (nuh_layer_id is 0), then the type and nuh_temporal_id_plus1.
bool is_vvc(unit_heads units)
{
    constexpr std::size_t fewest = 3;
    return units.size() >= fewest &&
           nearly_all(units, [](const unit_head& unit) { return unit[0] == 0 && (unit[1] & 7) != 0; });
}

} // namespace

bool may_be_h264(unsigned char header)
{
    const unsigned nal_ref_idc = header >> 5;
    const unsigned type = header & 0x1F;
    if (header >= 0x80 || type == 0 || type > 21)
        return false;
    if (type == 5 || type == 7 || type == 8 || type == 13 || type == 15)
        return nal_ref_idc != 0;
    return nal_ref_idc == 0 || type < 6 || type > 12;
}

std::optional<known_format> other_codec(std::span<const unit_head> units)
{
    if (units.empty())
        return {};
    if (is_program_stream(units))
        return known_format{"MPEG program stream", true};
    if (is_mpeg2_sequence(units))
        return known_format{"MPEG-1 or MPEG-2 video"};
    if (std::any_of(units.begin(), units.end(), is_h264_sps))
        return {};
    if (is_mpeg2_picture(units))
        return known_format{"MPEG-1 or MPEG-2 video"};
    if (is_mpeg4_visual(units))
        return known_format{"MPEG-4 part 2 video"};
    if (is_vc1(units))
        return known_format{"VC-1 video"};
    if (is_hevc(units))
        return known_format{"HEVC video"};
    if (is_vvc(units))
        return known_format{"VVC video"};
    return {};
}

} // namespace orv_h264
