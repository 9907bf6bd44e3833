// examples/change_timing: the new rate in every SPS, all other units as they were, and what it refuses.
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <orv-utils-v4/h264_syntax.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace orv_utils_v4::h264;

/// The units that are no SPS, and the rates of those that are.
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
        if (const auto* const sps = std::get_if<seq_parameter_set_rbsp>(&reading.unit.rbsp))
            rates.push_back(field_rate(sps->seq_parameter_set_data.vui_parameters));
        else
            others.emplace_back(reading.place.bytes, reading.place.bytes + reading.place.size);
    }

    std::vector<ratio> rates;
    std::vector<support::bytes> others;

private:
    stream units;
};

support::bytes bundled(const std::string& name)
{
    return support::read_file(std::string(ORV_TEST_STREAMS "/") + name);
}

TEST(ChangeTiming, EverySpsHasTheNewRateAndNothingElseMoves)
{
    for (const char* name : {"hrd_vbr_aud.264", "two_sizes.264", "high_cqmfile.264"}) {
        const support::tool_result result = support::run_tool({"1001", "48000"}, {.piped = bundled(name)});
        EXPECT_EQ(0, result.status) << result.err;
        const parts before(bundled(name));
        const parts after(support::bytes(result.out.begin(), result.out.end()));
        EXPECT_EQ(before.others, after.others);
        ASSERT_EQ(before.rates.size(), after.rates.size());
        for (const ratio& rate : after.rates) {
            EXPECT_EQ(48000U, rate.numerator);
            EXPECT_EQ(1001U, rate.denominator);
        }
    }
}

TEST(ChangeTiming, ARateThatItsElementCannotHoldIsRefused)
{
    const support::tool_result result = support::run_tool({"4294967296", "1"}, {.piped = bundled("two_sizes.264")});
    EXPECT_EQ(1, result.status);
    EXPECT_NE(std::string::npos, result.err.find("num_units_in_tick: more than"));
    EXPECT_EQ(2, support::run_tool({"1"}, {.piped = support::bytes()}).status);
}

} // namespace
