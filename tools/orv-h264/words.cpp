#include "words.h"

#include "names.h"

#include <orv-utils-v4/h264_syntax/registered_user_data.h>

#include <algorithm>
#include <span>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

struct word {
    std::int64_t value;
    const char* text;
};

// H.264 Table E-3
constexpr word colour_primaries_words[] = {
    {1, "BT.709"},        {2, "Unspecified"},   {4, "BT.470 System M"}, {5, "BT.470 System B, G"},
    {6, "SMPTE 170M"},    {7, "SMPTE 240M"},    {8, "Generic film"},    {9, "BT.2020"},
    {10, "SMPTE ST 428"}, {11, "SMPTE RP 431"}, {12, "SMPTE EG 432"},   {22, "EBU Tech 3213"},
};

// H.264 Table E-4
constexpr word transfer_characteristics_words[] = {
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

// H.264 Table E-5
constexpr word matrix_coefficients_words[] = {
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

// H.264 Annex A
constexpr word profile_idc_words[] = {
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

// H.264 Table 6-1
constexpr word chroma_format_idc_words[] = {
    {0, "monochrome"},
    {1, "4:2:0"},
    {2, "4:2:2"},
    {3, "4:4:4"},
};

// H.264 Table 7-6
constexpr word slice_type_words[] = {
    {0, "P"}, {1, "B"}, {2, "I"}, {3, "SP"}, {4, "SI"}, {5, "P"}, {6, "B"}, {7, "I"}, {8, "SP"}, {9, "SI"},
};

// H.264 Table 7-5
constexpr word primary_pic_type_words[] = {
    {0, "I"},      {1, "I, P"},  {2, "I, P, B"},      {3, "SI"},
    {4, "SI, SP"}, {5, "I, SI"}, {6, "I, SI, P, SP"}, {7, "I, SI, P, SP, B"},
};

constexpr word entropy_coding_mode_flag_words[] = {
    {0, "CAVLC"},
    {1, "CABAC"},
};

// H.264 7.4.2.2
constexpr word weighted_bipred_idc_words[] = {
    {0, "default"},
    {1, "explicit"},
    {2, "implicit"},
};

// H.264 7.4.2.2
constexpr word slice_group_map_type_words[] = {
    {0, "interleaved"}, {1, "dispersed"}, {2, "foreground and left-over"}, {3, "box-out"}, {4, "raster scan"},
    {5, "wipe"},        {6, "explicit"},
};

// H.264 Table E-2
constexpr word video_format_words[] = {
    {0, "Component"}, {1, "PAL"}, {2, "NTSC"}, {3, "SECAM"}, {4, "MAC"}, {5, "Unspecified"},
};

constexpr word video_full_range_flag_words[] = {
    {0, "limited range"},
    {1, "full range"},
};

// H.264 Table E-1
constexpr word aspect_ratio_idc_words[] = {
    {0, "Unspecified"}, {1, "1:1"},     {2, "12:11"}, {3, "10:11"}, {4, "16:11"},  {5, "40:33"},
    {6, "24:11"},       {7, "20:11"},   {8, "32:11"}, {9, "80:33"}, {10, "18:11"}, {11, "15:11"},
    {12, "64:33"},      {13, "160:99"}, {14, "4:3"},  {15, "3:2"},  {16, "2:1"},   {255, "Extended_SAR"},
};

// H.264 Table D-1
constexpr word pic_struct_words[] = {
    {0, "Progressive frame"},
    {1, "Top field"},
    {2, "Bottom field"},
    {3, "Top field, bottom field, in that order"},
    {4, "Bottom field, top field, in that order"},
    {5, "Top field, bottom field, top field repeated, in that order"},
    {6, "Bottom field, top field, bottom field repeated, in that order"},
    {7, "Frame doubling"},
    {8, "Frame tripling"},
};

// H.264 Table D-2
constexpr word ct_type_words[] = {
    {0, "progressive"},
    {1, "interlaced"},
    {2, "unknown"},
};

// H.264 Table D-3
constexpr word counting_type_words[] = {
    {0, "no dropping, time_offset unused"},
    {1, "no dropping"},
    {2, "dropping of single 0 values of n_frames"},
    {3, "dropping of single MaxFPS - 1 values of n_frames"},
    {4, "dropping of the two lowest values of n_frames"},
    {5, "dropping of unspecified single values of n_frames"},
    {6, "dropping of unspecified numbers of values of n_frames"},
};

// H.264 Table 7-7 and Table H-1
constexpr word modification_of_pic_nums_idc_words[] = {
    {0, "short-term, difference subtracted"},
    {1, "short-term, difference added"},
    {2, "long-term"},
    {3, "end of the list"},
    {4, "view, difference subtracted"},
    {5, "view, difference added"},
};

// H.264 Table 7-9
constexpr word memory_management_control_operation_words[] = {
    {0, "end of the operations"},
    {1, "a short-term picture becomes unused"},
    {2, "a long-term picture becomes unused"},
    {3, "a short-term picture becomes long-term"},
    {4, "the highest long-term frame index"},
    {5, "all pictures become unused"},
    {6, "this picture becomes long-term"},
};

// H.264 Table G-2
constexpr word memory_management_base_control_operation_words[] = {
    {0, "end of the operations"},
    {1, "a short-term base picture becomes unused"},
    {2, "a long-term base picture becomes unused"},
};

// H.264 7.4.3 and G.7.4.3.4
constexpr word disable_deblocking_filter_idc_words[] = {
    {0, "on"},
    {1, "off"},
    {2, "off across slices"},
    {3, "on, slice edges in a second stage"},
    {4, "on, off across slices, in two stages"},
    {5, "on, luma alone"},
    {6, "on, luma alone, off across slices"},
};

constexpr word direct_spatial_mv_pred_flag_words[] = {
    {0, "temporal"},
    {1, "spatial"},
};

constexpr word bottom_field_flag_words[] = {
    {0, "top field"},
    {1, "bottom field"},
};

// H.264 Table D-8
constexpr word frame_packing_arrangement_type_words[] = {
    {0, "checkerboard"},
    {1, "column interleaved"},
    {2, "row interleaved"},
    {3, "side by side"},
    {4, "top and bottom"},
    {5, "temporally interleaved"},
    {6, "2D"},
    {7, "tiled"},
};

// H.264 Table D-9
constexpr word content_interpretation_type_words[] = {
    {0, "unspecified"},
    {1, "frame 0 is the left view"},
    {2, "frame 0 is the right view"},
};

// H.264 D.2.25
constexpr word tone_map_model_id_words[] = {
    {0, "linear with clipping"}, {1, "sigmoidal"},       {2, "look-up table"},
    {3, "piece-wise linear"},    {4, "camera settings"},
};

// H.264 D.2.22
constexpr word film_grain_model_id_words[] = {
    {0, "frequency filtering"},
    {1, "auto-regression"},
};

// H.264 D.2.22
constexpr word blending_mode_id_words[] = {
    {0, "additive"},
    {1, "multiplicative"},
};

// H.264 Table D-4
constexpr word scene_transition_type_words[] = {
    {0, "no transition"},
    {1, "fade to black"},
    {2, "fade from black"},
    {3, "unspecified transition from or to a constant colour"},
    {4, "dissolve"},
    {5, "wipe"},
    {6, "unspecified mixture of two scenes"},
};

// ATSC A/53 Part 4, Table 6.9, and CTA-708
constexpr word user_data_type_code_words[] = {
    {3, "cc_data"},
    {6, "bar_data"},
};

constexpr word cc_type_words[] = {
    {0, "CEA-608, field 1"},
    {1, "CEA-608, field 2"},
    {2, "CTA-708, packet goes on"},
    {3, "CTA-708, packet begins"},
};

// SMPTE ST 2016-1, Table 1
constexpr word active_format_words[] = {
    {2, "box 16:9, at the top"},
    {3, "box 14:9, at the top"},
    {4, "box wider than 16:9"},
    {8, "full frame"},
    {9, "4:3"},
    {10, "16:9"},
    {11, "14:9"},
    {13, "4:3 with 14:9 in the middle"},
    {14, "16:9 with 14:9 in the middle"},
    {15, "16:9 with 4:3 in the middle"},
};

struct element_words {
    std::string_view element;
    std::span<const word> words;
};

constexpr element_words all_words[] = {
    {"active_format", active_format_words},
    {"aspect_ratio_idc", aspect_ratio_idc_words},
    {"blending_mode_id", blending_mode_id_words},
    {"bottom_field_flag", bottom_field_flag_words},
    {"cc_type", cc_type_words},
    {"chroma_format_idc", chroma_format_idc_words},
    {"colour_primaries", colour_primaries_words},
    {"colour_remap_matrix_coefficients", matrix_coefficients_words},
    {"colour_remap_primaries", colour_primaries_words},
    {"colour_remap_transfer_function", transfer_characteristics_words},
    {"content_interpretation_type", content_interpretation_type_words},
    {"counting_type", counting_type_words},
    {"ct_type", ct_type_words},
    {"direct_spatial_mv_pred_flag", direct_spatial_mv_pred_flag_words},
    {"disable_deblocking_filter_idc", disable_deblocking_filter_idc_words},
    {"entropy_coding_mode_flag", entropy_coding_mode_flag_words},
    {"film_grain_colour_primaries", colour_primaries_words},
    {"film_grain_matrix_coefficients", matrix_coefficients_words},
    {"film_grain_model_id", film_grain_model_id_words},
    {"film_grain_transfer_characteristics", transfer_characteristics_words},
    {"frame_packing_arrangement_type", frame_packing_arrangement_type_words},
    {"matrix_coefficients", matrix_coefficients_words},
    {"memory_management_base_control_operation", memory_management_base_control_operation_words},
    {"memory_management_control_operation", memory_management_control_operation_words},
    {"modification_of_pic_nums_idc", modification_of_pic_nums_idc_words},
    {"pic_struct", pic_struct_words},
    {"preferred_transfer_characteristics", transfer_characteristics_words},
    {"primary_pic_type", primary_pic_type_words},
    {"profile_idc", profile_idc_words},
    {"scene_transition_type", scene_transition_type_words},
    {"slice_group_map_type", slice_group_map_type_words},
    {"slice_type", slice_type_words},
    {"tone_map_model_id", tone_map_model_id_words},
    {"transfer_characteristics", transfer_characteristics_words},
    {"user_data_type_code", user_data_type_code_words},
    {"video_format", video_format_words},
    {"video_full_range_flag", video_full_range_flag_words},
    {"weighted_bipred_idc", weighted_bipred_idc_words},
};
static_assert(std::ranges::is_sorted(all_words, {}, &element_words::element));

std::string in_seconds(std::int64_t ticks_90khz)
{
    return fmt::format("{:.6g} s", static_cast<double>(ticks_90khz) / 90000);
}

std::string name_of_level(std::int64_t level_idc)
{
    return level_idc == 9
               ? "1b"
               : fmt::format("{}{}", level_idc / 10, level_idc % 10 == 0 ? "" : fmt::format(".{}", level_idc % 10));
}

/// What bytes say: a UUID as it is written, with whose it is.
std::string words_of_bytes(const orv_utils_v4::h264::traced_element& e)
{
    if (e.name.name() != std::string_view("uuid_iso_iec_11578"))
        return "";
    iso_iec_11578_uuid uuid = {};
    std::copy_n(e.bytes, std::min(e.size, sizeof uuid.bytes), uuid.bytes);
    return brenik::h264_uuid_to_str(uuid);
}

} // namespace

std::string words_of(std::string_view element, std::int64_t value)
{
    const auto* const found = std::ranges::lower_bound(all_words, element, {}, &element_words::element);
    if (found != std::end(all_words) && found->element == element) {
        const auto row = std::ranges::find(found->words, value, &word::value);
        return row == found->words.end() ? "" : row->text;
    }
    if (element == "itu_t_t35_country_code")
        return orv_utils_v4::h264::country_name(static_cast<std::uint8_t>(value));
    if (element == "level_idc")
        return name_of_level(value);
    if (element.starts_with("initial_cpb_removal_delay") && !element.ends_with("length_minus1"))
        return in_seconds(value);
    return "";
}

std::vector<std::string_view> elements_with_words()
{
    std::vector<std::string_view> elements;
    for (const element_words& row : all_words)
        elements.push_back(row.element);
    return elements;
}

std::string words_of(const orv_utils_v4::h264::traced_element& e)
{
    return e.bytes != nullptr ? words_of_bytes(e) : words_of(e.name.name(), e.value);
}

} // namespace orv_h264
