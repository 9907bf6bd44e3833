#include "words.h"

#include "support/told_elements.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>

namespace {

using orv_h264::words_of;

/// The first and the last row of an element's table, and a value that has none.
struct table_ends {
    const char* element;
    std::int64_t first;
    const char* first_words;
    std::int64_t last;
    const char* last_words;
    std::int64_t absent;
};

constexpr table_ends tables[] = {
    {"active_format", 2, "box 16:9, at the top", 15, "16:9 with 4:3 in the middle", 12},
    {"aspect_ratio_idc", 0, "Unspecified", 255, "Extended_SAR", 17},
    {"blending_mode_id", 0, "additive", 1, "multiplicative", 2},
    {"bottom_field_flag", 0, "top field", 1, "bottom field", 2},
    {"cc_type", 0, "CEA-608, field 1", 3, "CTA-708, packet begins", 4},
    {"chroma_format_idc", 0, "monochrome", 3, "4:4:4", 4},
    {"colour_primaries", 1, "BT.709", 22, "EBU Tech 3213", 3},
    {"colour_remap_matrix_coefficients", 0, "Identity", 14, "ICtCp", 3},
    {"colour_remap_primaries", 1, "BT.709", 22, "EBU Tech 3213", 13},
    {"colour_remap_transfer_function", 1, "BT.709", 18, "ARIB STD-B67 (HLG)", 3},
    {"content_interpretation_type", 0, "unspecified", 2, "frame 0 is the right view", 3},
    {"counting_type", 0, "no dropping, time_offset unused", 6, "dropping of unspecified numbers of values of n_frames",
     7},
    {"ct_type", 0, "progressive", 2, "unknown", 3},
    {"direct_spatial_mv_pred_flag", 0, "temporal", 1, "spatial", 2},
    {"disable_deblocking_filter_idc", 0, "on", 6, "on, luma alone, off across slices", 7},
    {"entropy_coding_mode_flag", 0, "CAVLC", 1, "CABAC", 2},
    {"film_grain_colour_primaries", 1, "BT.709", 22, "EBU Tech 3213", 0},
    {"film_grain_matrix_coefficients", 0, "Identity", 14, "ICtCp", 15},
    {"film_grain_model_id", 0, "frequency filtering", 1, "auto-regression", 2},
    {"film_grain_transfer_characteristics", 1, "BT.709", 18, "ARIB STD-B67 (HLG)", 19},
    {"frame_packing_arrangement_type", 0, "checkerboard", 7, "tiled", 8},
    {"matrix_coefficients", 0, "Identity", 14, "ICtCp", 3},
    {"memory_management_base_control_operation", 0, "end of the operations", 2,
     "a long-term base picture becomes unused", 3},
    {"memory_management_control_operation", 0, "end of the operations", 6, "this picture becomes long-term", 7},
    {"modification_of_pic_nums_idc", 0, "short-term, difference subtracted", 5, "view, difference added", 6},
    {"pic_struct", 0, "Progressive frame", 8, "Frame tripling", 9},
    {"preferred_transfer_characteristics", 1, "BT.709", 18, "ARIB STD-B67 (HLG)", 0},
    {"primary_pic_type", 0, "I", 7, "I, SI, P, SP, B", 8},
    {"profile_idc", 44, "CAVLC 4:4:4 Intra", 244, "High 4:4:4 Predictive", 0},
    {"scene_transition_type", 0, "no transition", 6, "unspecified mixture of two scenes", 7},
    {"slice_group_map_type", 0, "interleaved", 6, "explicit", 7},
    {"slice_type", 0, "P", 9, "SI", 10},
    {"tone_map_model_id", 0, "linear with clipping", 4, "camera settings", 5},
    {"transfer_characteristics", 1, "BT.709", 18, "ARIB STD-B67 (HLG)", 3},
    {"user_data_type_code", 3, "cc_data", 6, "bar_data", 4},
    {"video_format", 0, "Component", 5, "Unspecified", 6},
    {"video_full_range_flag", 0, "limited range", 1, "full range", 2},
    {"weighted_bipred_idc", 0, "default", 2, "implicit", 3},
};

TEST(Words, EachTableFromItsFirstRowToItsLast)
{
    for (const table_ends& t : tables) {
        EXPECT_EQ(words_of(t.element, t.first), t.first_words) << t.element;
        EXPECT_EQ(words_of(t.element, t.last), t.last_words) << t.element;
        EXPECT_EQ(words_of(t.element, t.absent), "") << t.element;
        EXPECT_EQ(words_of(t.element, t.first - 1), "") << t.element;
        EXPECT_EQ(words_of(t.element, t.last + 1), "") << t.element;
    }
}

TEST(Words, TheseAreTheElementsThatHaveATable)
{
    std::vector<std::string_view> elements;
    for (const table_ends& t : tables)
        elements.emplace_back(t.element);
    EXPECT_EQ(orv_h264::elements_with_words(), elements);
}

/// The names of all elements that H.264 has, and those of what user data are registered for.
std::set<std::string> all_elements()
{
    std::set<std::string> names = {"active_format", "cc_type", "user_data_type_code"};
    std::ifstream file(ORV_TEST_SYNTAX_SCHEMA);
    const nlohmann::json schema = nlohmann::json::parse(file);
    for (const auto& structure : schema.at("$defs"))
        if (structure.contains("properties"))
            for (const auto& element : structure.at("properties").items())
                names.insert(element.key());
    return names;
}

TEST(Words, EveryElementWithATableIsOneOfTheSyntax)
{
    const std::set<std::string> names = all_elements();
    EXPECT_GT(names.size(), 500U);
    for (const std::string_view element : orv_h264::elements_with_words())
        EXPECT_TRUE(names.contains(std::string(element))) << element;
    for (const char* const element :
         {"level_idc", "itu_t_t35_country_code", "uuid_iso_iec_11578", "initial_cpb_removal_delay",
          "initial_cpb_removal_delay_offset", "initial_cpb_removal_delay_length_minus1"})
        EXPECT_TRUE(names.contains(element)) << element;
}

TEST(Words, ANameThatOnlyBeginsLikeAnotherHasNone)
{
    EXPECT_EQ(words_of("slice_type_", 0), "");
    EXPECT_EQ(words_of("slice_typ", 0), "");
    EXPECT_EQ(words_of("", 0), "");
    EXPECT_EQ(words_of("zzz", 0), "");
}

TEST(Words, LevelsAreTenthsAndNine1b)
{
    EXPECT_EQ(words_of("level_idc", 9), "1b");
    EXPECT_EQ(words_of("level_idc", 10), "1");
    EXPECT_EQ(words_of("level_idc", 51), "5.1");
    EXPECT_EQ(words_of("level_idc", 255), "25.5");
}

TEST(Words, InitialDelaysAreTicksOf90KilohertzAndTheirLengthIsNone)
{
    EXPECT_EQ(words_of("initial_cpb_removal_delay", 45000), "0.5 s");
    EXPECT_EQ(words_of("initial_cpb_removal_delay_offset", 0), "0 s");
    EXPECT_EQ(words_of("initial_cpb_removal_delay", 4294967295), "47721.9 s");
    EXPECT_EQ(words_of("initial_cpb_removal_delay_length_minus1", 23), "");
}

TEST(Words, CountriesAreThoseOfT35)
{
    EXPECT_EQ(words_of("itu_t_t35_country_code", 0xB5), "United States");
    EXPECT_EQ(words_of("itu_t_t35_country_code", 0xFF), "");
}

TEST(Words, OfBytesAUuidThatIsKnownSaysWhoseItIs)
{
    const std::string_view known("\xDC\x45\xE9\xBD\xE6\xD9\x48\xB7\x96\x2C\xD8\x20\xD9\x23\xEE\xEF", 16);
    const auto uuid = [](const char* name, std::string_view bytes) {
        return words_of(told::of_bytes(told::coding::u, name, bytes));
    };
    EXPECT_EQ(uuid("uuid_iso_iec_11578", known), "libx264 debug info");
    EXPECT_EQ(uuid("uuid_iso_iec_11578", known.substr(0, 15)), "") << "shorter than one";
    EXPECT_EQ(uuid("uuid", known), "");
    EXPECT_EQ(words_of(told::st("slice_type", "a")), "") << "a string has no number";
}

TEST(Words, OfAnElementItsNameWithoutIndicesCounts)
{
    EXPECT_EQ(words_of(told::u(2, {"cc_type", 3}, 1)), "CEA-608, field 2");
}

} // namespace
