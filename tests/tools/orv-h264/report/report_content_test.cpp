#include "report/report_content.h"

#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using orv_h264::json;
using orv_h264::report_content;
using support::bytes;
using support::stream_builder;

json data_of(const std::string& path)
{
    orv_h264::stream_options options;
    options.path = path;
    options.format = orv_h264::h264::framing::annex_b;
    orv_h264::stream_input input(options);
    report_content content(input);
    input.read_units(content);
    content.finish(input);
    return content.page_data(input);
}

json data_of(const bytes& stream)
{
    const support::temporary_folder folder;
    return data_of(folder.write("stream.264", stream));
}

/// The value of the first row of that name.
json value_of(const json& rows, const std::string& name)
{
    for (const json& row : rows)
        if (row[1] == name)
            return row[2];
    return nullptr;
}

constexpr const char* timed = ORV_TEST_STREAMS "/hrd_vbr_aud.264";

} // namespace

TEST(ReportContent, AParameterSetIsShownOnceWithHowOftenItComes)
{
    const json sets = data_of(timed)["parameter_sets"];
    ASSERT_EQ(2U, sets.size());
    EXPECT_EQ(7, sets[0]["nal_unit_type"]);
    EXPECT_EQ(3, sets[0]["count"]);
    EXPECT_EQ("100", value_of(sets[0]["rows"], "profile_idc"));
    EXPECT_EQ(8, sets[1]["nal_unit_type"]);
    EXPECT_EQ(3, sets[1]["count"]);
}

TEST(ReportContent, OfEachPayloadTypeTheFirstMessageIsShownReadWithItsParameterSet)
{
    const json messages = data_of(timed)["messages"];
    ASSERT_EQ(3U, messages.size());
    EXPECT_EQ(0, messages[0]["payload_type"]);
    EXPECT_EQ("buffering_period", messages[0]["payload"]);
    EXPECT_EQ("110470", value_of(messages[0]["rows"], "initial_cpb_removal_delay[0]"));
    EXPECT_EQ(5, messages[1]["payload_type"]);
    EXPECT_EQ(1, messages[2]["payload_type"]);
    EXPECT_EQ("0", value_of(messages[2]["rows"], "cpb_removal_delay"));
}

TEST(ReportContent, SliceTypesAddUpToTheSlicesOfTheUnits)
{
    const json data = data_of(timed);
    std::uint64_t units = 0;
    std::uint64_t size = 0;
    for (const json& type : data["slices"]) {
        units += type["units"].get<std::uint64_t>();
        size += type["bytes"].get<std::uint64_t>();
    }
    EXPECT_EQ(75U, units);
    std::uint64_t with_framing = 0;
    for (const json& type : data["info"]["nal_units"])
        if (const auto number = type["nal_unit_type"].get<unsigned>(); number == 1 || number == 5)
            with_framing += type["bytes"].get<std::uint64_t>();
    EXPECT_EQ(with_framing, size + std::uint64_t{3} * 75);
}

TEST(ReportContent, WhatIsWrongHasItsPlaceAndItsFrame)
{
    const json problems = data_of(ORV_TEST_STREAMS "/broken_forbidden_bit.264")["problems"];
    ASSERT_EQ(1U, problems.size());
    EXPECT_EQ(json({3671, "unit whose header has the forbidden bit set", 0}),
              json({problems[0][0], problems[0][1], problems[0][2]}));
    EXPECT_TRUE(problems[0][3].is_number());
}

TEST(ReportContent, PlacesAreBoundedAndKindsCountOn)
{
    stream_builder builder;
    constexpr std::size_t count = report_content::most_places + 100;
    for (std::size_t i = 0; i < count; ++i)
        builder.annexb_unit(support::sps, {0x42}); // cut
    const json data = data_of(builder);
    EXPECT_EQ(report_content::most_places, data["problems"].size());
    std::uint64_t counted = 0;
    for (const json& kind : data["info"]["problems"])
        counted += kind["count"].get<std::uint64_t>();
    EXPECT_GE(counted, count);
}

TEST(ReportContent, ManyParameterSetsThatDifferLeaveTheRestUntold)
{
    stream_builder builder;
    for (unsigned i = 0; i < 3000; ++i)
        builder.annexb_unit(support::pps, {static_cast<unsigned char>(0x80U | (i & 0x3FU)),
                                           static_cast<unsigned char>(1 + i / 64), 0x80});
    const json data = data_of(builder);
    EXPECT_GT(data["parameter_sets"].size(), 100U);
    EXPECT_LT(data["parameter_sets"].dump().size(), orv_h264::report_units::most_bytes + 100000);
    EXPECT_EQ(3000U, data["parameter_sets"].size() + data["further_parameter_sets"].get<std::uint64_t>());
}

TEST(ReportContent, AnInputWithoutAPictureHasNoRows)
{
    const json data = data_of(bytes());
    EXPECT_EQ(0, data["frame_count"]);
    EXPECT_TRUE(data["parameter_sets"].empty());
    EXPECT_TRUE(data["pictures"].empty());
}
