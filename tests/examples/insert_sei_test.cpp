// examples/insert_sei: where the message stands and what it says, and that nothing else moves.
#include "support/run_tool.h"
#include "support/sets_of_stream.h"
#include "support/stream_files.h"

#include <orv-utils-v4/h264_syntax.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace {

using namespace orv_utils_v4::h264;

support::bytes bundled(const std::string& name)
{
    return support::read_file(std::string(ORV_TEST_STREAMS "/") + name);
}

support::bytes with_message(const support::bytes& stream, const std::string& text)
{
    const support::tool_result result = support::run_tool({text}, {.piped = stream});
    EXPECT_EQ(0, result.status) << result.err;
    return {result.out.begin(), result.out.end()};
}

/// What a unit says that is a message of the example, alone in it.
std::optional<std::string> text_of(const support::bytes& unit)
{
    support::bytes clean(unit.size());
    clean.resize(unescape(unit.data(), unit.size(), clean.data(), clean.size()));
    nal_unit sei;
    outcome result;
    read(sei, clean.data(), clean.size(), {}, result);
    const std::vector<sei_message>& messages = std::get<sei_rbsp>(sei.rbsp).sei_messages;
    if (result.failure || messages.size() != 1) // picture timing, which needs its SPS
        return {};
    const auto* const data = std::get_if<user_data_unregistered>(&messages[0].payload);
    if (data == nullptr || data->uuid_iso_iec_11578[0] != 0x0B)
        return {};
    return std::string(data->user_data_payload_byte.begin(), data->user_data_payload_byte.end());
}

/// The units that are no message of the example, the texts of those that are, and the types of the units behind them.
struct parts {
    explicit parts(const support::bytes& stream)
    {
        bool behind_message = false;
        for (const support::bytes& unit : support::units_in(stream)) {
            const unsigned type = unit[0] & 0x1FU;
            if (behind_message)
                followers.push_back(type);
            const std::optional<std::string> text = type == 6 ? text_of(unit) : std::nullopt;
            behind_message = text.has_value();
            if (text)
                texts.push_back(*text);
            else
                others.push_back(unit);
        }
    }

    support::unit_list others;
    std::vector<std::string> texts;
    std::vector<unsigned> followers;
};

TEST(InsertSei, StandsBeforeTheSlicesOfEachIdrPictureAndNothingElseMoves)
{
    for (const char* name : {"hrd_vbr_aud.264", "baseline_slices.264", "two_sizes.264"}) {
        const parts before(bundled(name));
        const parts after(with_message(bundled(name), "a text"));
        EXPECT_EQ(before.others, after.others) << name;
        EXPECT_FALSE(after.texts.empty()) << name;
        for (const std::string& text : after.texts)
            EXPECT_EQ("a text", text);
        for (const unsigned type : after.followers)
            EXPECT_EQ(5U, type);
    }
}

TEST(InsertSei, OfSeveralSlicesOnlyTheFirstHasItBefore)
{
    const support::bytes stream = bundled("baseline_slices.264");
    std::size_t idr_slices = 0;
    for (const support::bytes& unit : parts(stream).others)
        idr_slices += static_cast<std::size_t>((unit[0] & 0x1F) == 5);
    EXPECT_LT(parts(with_message(stream, "x")).texts.size(), idr_slices);
}

TEST(InsertSei, TextsOfAnyLengthArriveWhole)
{
    for (const std::size_t length : {0U, 1U, 238U, 239U, 240U, 5000U})
        EXPECT_EQ(std::string(length, 'z'),
                  parts(with_message(bundled("two_sizes.264"), std::string(length, 'z'))).texts[0]);
}

TEST(InsertSei, SaysThatBytesBelongToNoUnit)
{
    EXPECT_EQ(1, support::run_tool({"x"}, {.piped = support::bytes{1, 2, 3, 0, 0, 1, 9, 0x10}}).status);
    EXPECT_EQ(2, support::run_tool({}, {.piped = support::bytes()}).status);
}

} // namespace
