// Delivery profiles: what their files say, and what of a stream does not keep to them.
#include "check/delivery_profile.h"

#include "support/checked.h"
#include "support/surveyed.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_h264;
using orv_utils_v4::h264::made_slice;
using orv_utils_v4::h264::made_stream;
using orv_utils_v4::h264::other;
using orv_utils_v4::h264::reference;

delivery_profile profile_of(const std::string& text)
{
    return parse_profile("mine", text, "mine.profile");
}

std::string refusal_of(const std::string& text)
{
    try {
        profile_of(text);
    } catch (const refusal& refused) {
        return refused.what();
    }
    return "";
}

/// What the stream breaks of the profile, and of nothing else, as broken_rules() tells it.
std::string broken_of(const std::string& text, const support::bytes& stream)
{
    const std::vector<delivery_profile> profiles = [&] {
        std::vector<delivery_profile> one;
        one.push_back(profile_of(text));
        return one;
    }();
    std::string told;
    for (const violation& what : support::violations_of(stream, support::annex_b_options(), profiles))
        if (what.broken->clause == "profile mine")
            told += fmt::format("{}{} {}", told.empty() ? "" : ", ",
                                what.unit ? std::to_string(what.unit->number) : "-", what.found);
    return told;
}

/// IDR, P, B, B, P; a key picture again. 25 pictures a second, of 64x48.
support::bytes stream_of_six()
{
    auto sps = support::timed_sps();
    sps.pic_order_cnt_type = 0;
    sps.vui_parameters.pic_struct_present_flag = false;
    made_stream stream(sps);
    const auto of_type = [](made_slice slice, std::uint32_t slice_type) {
        slice.header.slice_type = slice_type;
        return slice;
    };
    stream.add_sets().add(orv_utils_v4::h264::idr());
    stream.add(of_type(reference(1, 6), 5)).add(of_type(other(2, 2), 6)).add(of_type(other(2, 4), 6));
    return stream.add(of_type(reference(2, 8), 5)).add(orv_utils_v4::h264::idr(1)).bytes;
}

TEST(DeliveryProfile, KeepsWhatItsLinesSay)
{
    const delivery_profile profile =
        profile_of("# mine\n\nabout For tests. \nlevel_idc at most 41 warning # discs\n"
                   "vui_parameters.time_scale one of 50 60000/1001 1.5\r\nslices is not 0");
    ASSERT_EQ(profile.requirements.size(), 3U);
    EXPECT_EQ(profile.name, "mine");
    EXPECT_EQ(profile.about, "For tests. ");
    const requirement& level = *profile.requirements[0];
    EXPECT_EQ(level.what.id, "mine-level_idc");
    EXPECT_EQ(level.what.title, "level_idc at most 41");
    EXPECT_EQ(level.what.level, severity::warning);
    EXPECT_EQ(level.what.about, "The delivery profile mine asks for it: discs.");
    EXPECT_EQ(level.allowed, "at most 41");
    const requirement& scale = *profile.requirements[1];
    EXPECT_EQ(scale.structure, "vui_parameters");
    EXPECT_EQ(scale.element, "time_scale");
    EXPECT_EQ(scale.values.size(), 3U);
    EXPECT_EQ(profile.requirements[2]->of, quantity::slices);
}

TEST(DeliveryProfile, ComparesExactly)
{
    const auto meets = [](const std::string& asked, fraction value) {
        return profile_of("slices " + asked).requirements.front()->is_met_by(value);
    };
    EXPECT_TRUE(meets("is 30000/1001", {60000, 2002}));
    EXPECT_FALSE(meets("is 30000/1001", {29970, 1000}));
    EXPECT_TRUE(meets("at most 1.5", {3, 2}));
    EXPECT_FALSE(meets("at most 1.5", {1500000001, 1000000000}));
    EXPECT_TRUE(meets("at least 4", {4}));
    EXPECT_FALSE(meets("at least 4", {3}));
    EXPECT_TRUE(meets("one of 4 5", {5}));
    EXPECT_FALSE(meets("one of 4 5", {6}));
    EXPECT_TRUE(meets("is not 4", {5}));
    EXPECT_FALSE(meets("is not 4", {4}));
    EXPECT_TRUE(meets("at most 999999999/1", {INT64_MAX, INT64_MAX}));
    EXPECT_FALSE(meets("at most 999999999/1", {INT64_MAX, 1}));
    EXPECT_TRUE(meets("at least -1", {0}));
}

TEST(DeliveryProfile, RefusesALineThatSaysNothing)
{
    EXPECT_EQ(refusal_of("slices is 1\nslices"),
              "mine.profile: line 2: '' is no relation (is, is not, at most, at least, "
              "one of, present)");
    EXPECT_EQ(refusal_of("slices below 4"), "mine.profile: line 1: 'below 4' is no relation (is, is not, at most, at "
                                            "least, one of, present)");
    EXPECT_EQ(refusal_of("slices at most four"), "mine.profile: line 1: 'four' is no number");
    EXPECT_EQ(refusal_of("slices at most 1/0"), "mine.profile: line 1: '1/0' is no number");
    EXPECT_EQ(refusal_of("slices at most 1234567890"), "mine.profile: line 1: '1234567890' is no number");
    EXPECT_EQ(refusal_of("slices at most 1 2"), "mine.profile: line 1: the relation has another number of values");
    EXPECT_EQ(refusal_of("slices one of"), "mine.profile: line 1: the relation has another number of values");
    EXPECT_EQ(refusal_of("level_idc present 1"), "mine.profile: line 1: the relation has another number of values");
    EXPECT_EQ(refusal_of("slices present"), "mine.profile: line 1: 'present' is for elements");
    EXPECT_EQ(refusal_of("slices is warning 4"), "mine.profile: line 1: 'warning' is no number");
    EXPECT_EQ(refusal_of("# nothing\n"), "mine.profile: nothing is asked for");
}

TEST(DeliveryProfile, ComesWithTheToolInThreeKinds)
{
    for (const char* name : {"disc", "low-latency", "streaming"})
        EXPECT_NE(load_profile(name).about, "") << name;
    EXPECT_EQ(shipped_profiles().size(), 3U);
    EXPECT_THROW(load_profile("nowhere"), refusal);
}

TEST(ProfilePart, LooksAtElements)
{
    const support::bytes stream = stream_of_six();
    EXPECT_EQ(broken_of("level_idc at most 29", stream), "0 30");
    EXPECT_EQ(broken_of("level_idc at most 30", stream), "");
    EXPECT_EQ(broken_of("vui_parameters.time_scale is 60", stream), "0 50");
    EXPECT_EQ(broken_of("hrd_parameters.time_scale is 60", stream), "- no time_scale in the stream");
    EXPECT_EQ(broken_of("max_num_reorder_frames present", stream), "- no max_num_reorder_frames in the stream");
    EXPECT_EQ(broken_of("time_scale present", stream), "");
}

TEST(ProfilePart, MeasuresPictures)
{
    const support::bytes stream = stream_of_six();
    EXPECT_EQ(broken_of("width is 32", stream), "0 width 64");
    EXPECT_EQ(broken_of("height at most 47", stream), "0 height 48");
    EXPECT_EQ(broken_of("frame_rate one of 25", stream), "");
    EXPECT_EQ(broken_of("frame_rate one of 24 30000/1001", stream), "0 frame_rate 25.000");
    EXPECT_EQ(broken_of("delimiters is 0", stream), "");
    EXPECT_EQ(broken_of("slices is 1", stream), "");
    EXPECT_EQ(broken_of("picture_bytes at most 25", stream), "0 picture_bytes 26");
    EXPECT_EQ(broken_of("key_distance at most 4", stream), "7 key_distance 5");
    EXPECT_EQ(broken_of("key_distance at most 5", stream), "");
    EXPECT_EQ(broken_of("key_seconds at most 0.19", stream), "7 key_seconds 0.200");
    EXPECT_EQ(broken_of("key_seconds at most 0.2", stream), "");
    EXPECT_EQ(broken_of("b_pictures at most 1", stream), "5 b_pictures 2");
    EXPECT_EQ(broken_of("b_pictures at most 2", stream), "");
    EXPECT_EQ(broken_of("hrd_bit_rate at most 1\nhrd_buffer at most 1", stream), "");
}

TEST(ProfilePart, MeasuresTheHrd)
{
    made_stream stream(orv_utils_v4::h264::timed_sps_data(0, 8));
    stream.add_sets();
    EXPECT_EQ(broken_of("hrd_bit_rate at most 63", stream.bytes), "0 hrd_bit_rate 64");
    EXPECT_EQ(broken_of("hrd_buffer at most 15", stream.bytes), "0 hrd_buffer 16");
    EXPECT_EQ(broken_of("hrd_bit_rate is 64\nhrd_buffer is 16", stream.bytes), "");
}

TEST(ProfilePart, CountsDelimiters)
{
    made_stream stream;
    stream.add_bytes(9, {0x10}).add_sets().add(orv_utils_v4::h264::idr());
    EXPECT_EQ(broken_of("delimiters is 0", stream.bytes), "0 delimiters 1");
}

} // namespace
