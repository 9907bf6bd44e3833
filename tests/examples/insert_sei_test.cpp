// examples/insert_sei: where the message stands and what it says, and that nothing else moves.
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <orv-utils-v4/h264_syntax.h>

#include <gtest/gtest.h>

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

/// The text of a unit that is a message of the example, alone in it.
const user_data_unregistered* message_of(const nal_unit& unit)
{
    const auto* const sei = std::get_if<sei_rbsp>(&unit.rbsp);
    if (sei == nullptr || sei->sei_messages.size() != 1)
        return nullptr;
    const auto* const data = std::get_if<user_data_unregistered>(&sei->sei_messages[0].payload);
    return data != nullptr && data->uuid_iso_iec_11578[0] == 0x0B && data->uuid_iso_iec_11578[1] == 0x7E ? data
                                                                                                         : nullptr;
}

/// The units that are no message of the example, the texts of those that are, and the types of the units behind them.
class parts : public split_sink, public unit_sink {
public:
    explicit parts(const support::bytes& in)
    {
        unit_splitter splitter(framing::annex_b);
        splitter.push(in.data(), in.size(), *this);
        splitter.flush(*this);
        units.flush(*this);
    }
    void unit(const split_unit& u) override { units.push({u.bytes, u.size, u.offset, 0}, *this); }
    void gap(const split_gap&) override {}
    void take(const unit_reading& reading) override
    {
        EXPECT_FALSE(reading.result.failure);
        if (behind_message)
            followers.push_back(reading.unit.header.nal_unit_type);
        const user_data_unregistered* const message = message_of(reading.unit);
        behind_message = message != nullptr;
        if (message != nullptr)
            texts.emplace_back(message->user_data_payload_byte.begin(), message->user_data_payload_byte.end());
        else
            others.emplace_back(reading.place.bytes, reading.place.bytes + reading.place.size);
    }

    std::vector<support::bytes> others;
    std::vector<std::string> texts;
    std::vector<unsigned> followers;

private:
    stream units;
    bool behind_message = false;
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
