// examples/samples_to_annex_b: the stream that it makes of a record and samples, and what it refuses.
#include "support/run_tool.h"
#include "support/sets_of_stream.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;
using support::bytes;
using support::run_tool;
using support::temporary_file;
using support::tool_result;
using support::unit_list;

bytes bundled(const std::string& name)
{
    return support::read_file(std::string(ORV_TEST_STREAMS "/") + name);
}

/// The record of the parameter sets in a stream.
bytes record_of(const unit_list& units)
{
    parameter_set_store sets;
    for (const bytes& unit : units)
        sets.push(unit_view{unit.data(), unit.size()});
    AVCDecoderConfigurationRecord record;
    EXPECT_TRUE(make_configuration(record, sets.all(), 4).sound());
    bytes out(write(record, nullptr, 0).bytes);
    EXPECT_TRUE(write(record, out.data(), out.size()).sound());
    return out;
}

/// The units, each behind its length in 4 bytes, without the parameter sets.
bytes samples_of(const unit_list& units)
{
    support::stream_builder samples;
    for (const bytes& unit : units) {
        if ((unit[0] & 0x1F) != 7 && (unit[0] & 0x1F) != 8)
            samples.prefix(4, static_cast<std::uint32_t>(unit.size())).raw(unit);
    }
    return samples;
}

tool_result run(const bytes& record, const bytes& samples)
{
    const temporary_file in_record(record);
    const temporary_file in_samples(samples);
    tool_result result = run_tool({in_record.path(), in_samples.path()});
    for (const std::string& name : {in_record.path() + ": ", in_samples.path() + ": "}) {
        if (result.err.rfind(name, 0) == 0)
            result.err.erase(0, name.size());
    }
    return result;
}

unit_list units_of(const std::string& out)
{
    return support::units_in(bytes(out.begin(), out.end()));
}

TEST(SamplesToAnnexB, SamplesWithoutParameterSetsBecomeTheStreamAgain)
{
    for (const char* const name : {"baseline_slices.264", "hrd_vbr_aud.264", "high444_lossless_odd.264"}) {
        const unit_list units = support::units_in(bundled(name));
        const tool_result result = run(record_of(units), samples_of(units));
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(units_of(result.out), units) << name;
    }
}

TEST(SamplesToAnnexB, ParameterSetsInSamplesAreNotDoubled)
{
    const unit_list units = support::units_in(bundled("main_bpyramid_weighted.264"));
    const tool_result result = run(record_of(units), bundled("main_bpyramid_weighted.length4"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(units_of(result.out), units);
}

TEST(SamplesToAnnexB, SaysWhatCannotBeRead)
{
    const bytes sets = {1, 77, 0, 30, 0xFF, 0xE1, 0, 9, 0x67};
    EXPECT_EQ(run(sets, {}).err, "sequenceParameterSetNALUnit: the record ends\n");
    EXPECT_EQ(run({2, 77}, {}).err, "configurationVersion: not 1, so that the record cannot be read\n");
    const bytes damaged = {1, 77, 0, 30, 0xFF, 0xE1, 0, 1, 0x67, 0};
    EXPECT_EQ(run(damaged, {}).err, "a parameter set cannot be read\n");
    const bytes empty = {1, 77, 0, 30, 0xFF, 0xE0, 0};
    EXPECT_EQ(run(empty, {0, 0, 0, 9, 9, 0xF0}).err, "not all of it is units\n");
    EXPECT_EQ(run(empty, {0, 0, 0}).status, 1);
    EXPECT_EQ(run(empty, {}).status, 0);
    EXPECT_EQ(run_tool({}).err, "usage: samples_to_annex_b RECORD SAMPLES\n");
}

} // namespace
