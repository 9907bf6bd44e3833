// What is made up and written is read back the same, from the same bits, for every kind of unit and SEI payload; and
// what a trace tells covers every bit of it.
#include "support/read_only_input.h"
#include "support/traced_elements.h"
#include "support/unit_maker.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

constexpr unsigned coded_types[] = {1, 2, 3, 4, 5, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 19, 20, 21};
constexpr std::uint32_t payload_types[] = {
    0,   1,   2,   3,   4,   5,   6,   7,   8,   9,   10,  11,  12,  13,  14,  15,  16,  17,  18,
    19,  20,  21,  22,  23,  24,  25,  26,  27,  28,  29,  30,  31,  32,  33,  34,  35,  36,  37,
    38,  39,  40,  41,  42,  43,  44,  45,  46,  47,  48,  49,  50,  51,  52,  53,  54,  56,  57,
    137, 142, 144, 147, 148, 149, 150, 151, 154, 155, 156, 181, 200, 201, 202, 205, 254, 255, 600};

bool is_slice(unsigned type)
{
    return (type >= 1 && type <= 5) || (type >= 19 && type <= 21);
}

/// Reads what was written, holds the structure, the trace and a second writing against the first.
void check_round_trip(const nal_unit& unit, const unit_context& context)
{
    const std::vector<unsigned char> bytes = written(unit, context);
    ASSERT_FALSE(bytes.empty());

    nal_unit again;
    outcome result;
    read(again, bytes.data(), bytes.size(), context, result);
    ASSERT_FALSE(result.failure) << result.failure.element.name() << ": " << text_of(result.failure.why) << " at bit "
                                 << result.failure.bit;
    EXPECT_EQ(result.finding_count, 0U) << result.findings[0].element.name() << " " << result.findings[0].value;
    EXPECT_TRUE(again == unit);
    EXPECT_EQ(written(again, context), bytes);
    EXPECT_TRUE(is_slice(unit.header.nal_unit_type) || result.ending == ending::sound);

    nal_unit traced;
    outcome how;
    traced_elements trace_of;
    trace(traced, bytes.data(), bytes.size(), context, how, trace_of);
    EXPECT_TRUE(traced == again);
    EXPECT_EQ(how.bits, result.bits);
    std::uint64_t bit = 0;
    for (const kept_element& e : trace_of.elements) {
        EXPECT_EQ(e.bit, bit) << e.path;
        EXPECT_GT(e.bits, 0U) << e.path;
        EXPECT_TRUE(e.inside) << e.path << " " << e.value;
        bit = e.bit + e.bits;
    }
    EXPECT_EQ(bit, result.bits);
}

class RoundTrip : public testing::TestWithParam<unsigned> {};

TEST_P(RoundTrip, OfUnitsOfTheTypeKeepsBitsAndValues)
{
    unit_maker maker(GetParam());
    for (int i = 0; i < 400 && !HasFailure(); ++i) {
        maker.renew_sets();
        check_round_trip(maker.make(GetParam()), maker.context());
    }
}
INSTANTIATE_TEST_SUITE_P(Types, RoundTrip, testing::ValuesIn(coded_types));

class SeiRoundTrip : public testing::TestWithParam<std::uint32_t> {};

TEST_P(SeiRoundTrip, OfMessagesOfTheTypeKeepsBitsAndValues)
{
    unit_maker maker(GetParam());
    for (int i = 0; i < 100 && !HasFailure(); ++i) {
        maker.renew_sets();
        check_round_trip(maker.make_sei(GetParam()), maker.context());
    }
}
INSTANTIATE_TEST_SUITE_P(Payloads, SeiRoundTrip, testing::ValuesIn(payload_types));

} // namespace
