#include "names.h"

#include "framing.h"

#include <iterator>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

struct numbered_name {
    std::uint32_t number;
    const char* name;
};

template <std::size_t Size>
std::string find_name(const numbered_name (&names)[Size], std::uint32_t number)
{
    for (const numbered_name& entry : names)
        if (entry.number == number)
            return entry.name;
    return "";
}

constexpr numbered_name profiles[] = {
    {44, "CAVLC 4:4:4 Intra"},
    {66, "Baseline"},
    {77, "Main"},
    {83, "Scalable Baseline"},
    {86, "Scalable High"},
    {88, "Extended"},
    {100, "High"},
    {110, "High 10"},
    {118, "Multiview High"},
    {122, "High 4:2:2"},
    {128, "Stereo High"},
    {134, "MFC High"},
    {135, "MFC Depth High"},
    {138, "Multiview Depth High"},
    {139, "Enhanced Multiview Depth High"},
    {244, "High 4:4:4 Predictive"},
};

} // namespace

std::string framing_name(h264::framing framing)
{
    return framing == h264::framing::annex_b ? "annexb" : fmt::format("length{}", prefix_size_of(framing));
}

std::string short_unit_name(brenik::h264_nal_unit_type type)
{
    constexpr numbered_name names[] = {
        {1, "slice"},
        {2, "partition-A"},
        {3, "partition-B"},
        {4, "partition-C"},
        {5, "slice IDR"},
        {6, "SEI"},
        {7, "SPS"},
        {8, "PPS"},
        {9, "AUD"},
        {10, "end-of-seq"},
        {11, "end-of-stream"},
        {12, "filler"},
        {13, "SPS-ext"},
        {14, "prefix"},
        {15, "subset-SPS"},
        {16, "DPS"},
        {19, "auxiliary"},
        {20, "extension"},
        {21, "3D-extension"},
    };
    const std::string name = find_name(names, type);
    return name.empty() ? fmt::format("type-{}", static_cast<unsigned int>(type)) : name;
}

std::string profile_name(const brenik::h264_nal_sps& sps)
{
    std::string name = find_name(profiles, sps.profile_idc);
    switch (sps.profile_idc) {
    case 66:
        return sps.constraint_set1_flag ? "Constrained Baseline" : name;
    case 100:
        if (sps.constraint_set4_flag)
            return sps.constraint_set5_flag ? "Constrained High" : "Progressive High";
        return name;
    case 110:
        if (sps.constraint_set3_flag)
            return "High 10 Intra";
        return sps.constraint_set4_flag ? "Progressive High 10" : name;
    case 122:
        return sps.constraint_set3_flag ? "High 4:2:2 Intra" : name;
    case 244:
        return sps.constraint_set3_flag ? "High 4:4:4 Intra" : name;
    default:
        return name;
    }
}

std::string level_name(const brenik::h264_nal_sps& sps)
{
    constexpr std::uint8_t level_1_1 = 11;
    constexpr std::uint8_t level_1b = 9;
    const bool low_profile = sps.profile_idc == 66 || sps.profile_idc == 77 || sps.profile_idc == 88;
    if (sps.level_idc == level_1b || (low_profile && sps.level_idc == level_1_1 && sps.constraint_set3_flag))
        return "1b";
    const int level = sps.level_idc / 10;
    const int part = sps.level_idc % 10;
    return part == 0 ? fmt::to_string(level) : fmt::format("{}.{}", level, part);
}

std::string codec_string(const brenik::h264_nal_sps& sps)
{
    unsigned int constraints = 0; // the byte behind profile_idc
    for (const bool flag : {sps.constraint_set0_flag, sps.constraint_set1_flag, sps.constraint_set2_flag,
                            sps.constraint_set3_flag, sps.constraint_set4_flag, sps.constraint_set5_flag})
        constraints = constraints << 1U | (flag ? 1U : 0U);
    constraints = constraints << 2U | sps.reserved_zero_2bits;
    return fmt::format("avc1.{:02X}{:02X}{:02X}", sps.profile_idc, constraints, sps.level_idc);
}

std::string chroma_format_name(std::uint32_t chroma_format_idc)
{
    constexpr numbered_name formats[] = {{0, "monochrome"}, {1, "4:2:0"}, {2, "4:2:2"}, {3, "4:4:4"}};
    return find_name(formats, chroma_format_idc);
}

std::string sample_aspect_ratio_name(const brenik::h264_vui_parameters& vui)
{
    if (vui.sar_width == 0 || vui.sar_height == 0)
        return vui.aspect_ratio_idc == 0 ? "Unspecified" : "";
    return fmt::format("{}:{}", vui.sar_width, vui.sar_height);
}

std::string colour_primaries_name(std::uint8_t colour_primaries)
{
    constexpr numbered_name names[] = {
        {1, "BT.709"},        {2, "Unspecified"},   {4, "BT.470 System M"}, {5, "BT.470 System B, G"},
        {6, "SMPTE 170M"},    {7, "SMPTE 240M"},    {8, "Generic film"},    {9, "BT.2020"},
        {10, "SMPTE ST 428"}, {11, "SMPTE RP 431"}, {12, "SMPTE EG 432"},   {22, "EBU Tech 3213"},
    };
    return find_name(names, colour_primaries);
}

std::string transfer_characteristics_name(std::uint8_t transfer_characteristics)
{
    constexpr numbered_name names[] = {
        {1, "BT.709"},
        {2, "Unspecified"},
        {4, "BT.470 System M"},
        {5, "BT.470 System B, G"},
        {6, "SMPTE 170M"},
        {7, "SMPTE 240M"},
        {8, "Linear"},
        {9, "Logarithmic 100:1"},
        {10, "Logarithmic 316:1"},
        {11, "IEC 61966-2-4"},
        {12, "BT.1361"},
        {13, "IEC 61966-2-1 sRGB"},
        {14, "BT.2020 10 bit"},
        {15, "BT.2020 12 bit"},
        {16, "SMPTE ST 2084 (PQ)"},
        {17, "SMPTE ST 428"},
        {18, "ARIB STD-B67 (HLG)"},
    };
    return find_name(names, transfer_characteristics);
}

std::string matrix_coefficients_name(std::uint8_t matrix_coefficients)
{
    constexpr numbered_name names[] = {
        {0, "Identity"},
        {1, "BT.709"},
        {2, "Unspecified"},
        {4, "FCC"},
        {5, "BT.470 System B, G"},
        {6, "SMPTE 170M"},
        {7, "SMPTE 240M"},
        {8, "YCgCo"},
        {9, "BT.2020 non-constant luminance"},
        {10, "BT.2020 constant luminance"},
        {11, "SMPTE ST 2085"},
        {12, "Chromaticity-derived non-constant luminance"},
        {13, "Chromaticity-derived constant luminance"},
        {14, "ICtCp"},
    };
    return find_name(names, matrix_coefficients);
}

const char* payload_name(std::uint32_t payload_type)
{
    constexpr std::uint32_t annotated_regions = 202;
    return payload_type == annotated_regions
               ? "annotated_regions"
               : brenik::h264_nal_sei_payload_type_to_str(static_cast<brenik::h264_nal_sei_payload_type>(payload_type));
}

std::string payload_type_name(brenik::h264_nal_sei_payload_type type)
{
    const std::string_view name = brenik::h264_nal_sei_payload_type_to_str(type);
    return name.empty() ? fmt::format("payloadType {}", static_cast<std::uint32_t>(type)) : std::string(name);
}

} // namespace orv_h264
