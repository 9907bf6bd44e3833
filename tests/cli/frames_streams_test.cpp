// orv-h264 frames against what ffprobe made of the further streams: X.frames.txt beside a stream X has the access units
// that ffprobe sees. Rows are pictures: the access units, where no picture has two.
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>
#include <sstream>

namespace {

using nlohmann::json;
using support::bytes;

using fields = std::map<std::string, std::string>;

/// The NAME=VALUE words of a line.
fields fields_of(const std::string& line)
{
    fields found;
    std::istringstream words(line);
    for (std::string word; words >> word;)
        if (const auto equals = word.find('='); equals != std::string::npos)
            found[word.substr(0, equals)] = word.substr(equals + 1);
    return found;
}

/// The file beside the stream.
struct expected_frames {
    explicit expected_frames(const std::filesystem::path& stream)
    {
        std::ifstream file(stream.string() + ".frames.txt");
        for (std::string line; std::getline(file, line);)
            line.front() == '#' ? void(head = fields_of(line)) : units.push_back(fields_of(line));
    }

    bool says(const char* what) const { return head.at(what) == "yes"; }

    fields head;
    std::vector<fields> units;
};

std::vector<json> records(const std::string& text, const char* kind)
{
    std::vector<json> found;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        if (json record = json::parse(line); record.value("record", "") == kind)
            found.push_back(std::move(record));
    return found;
}

std::vector<std::filesystem::path> streams_with_frames()
{
    std::vector<std::filesystem::path> streams;
    for (const auto& path : support::all_annexb_files())
        if (std::filesystem::exists(path.string() + ".frames.txt"))
            streams.push_back(path);
    return streams;
}

class FramesOfStream : public testing::TestWithParam<std::filesystem::path> {
protected:
    std::vector<json> frames(bool split_fields) const
    {
        std::vector<std::string> arguments = {"frames", "--json", GetParam().string()};
        if (split_fields)
            arguments.emplace_back("--split-fields");
        return records(support::run_tool(arguments).out, "frame");
    }

    void expect_same(const std::vector<json>& found) const;
    void expect_place(const json& frame, const fields& unit) const;
    void expect_key(const json& frame, const fields& unit) const;

    expected_frames expected{GetParam()};
    bytes stream = support::read_file(GetParam());
};

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(FramesOfStream);
INSTANTIATE_TEST_SUITE_P(Streams, FramesOfStream, testing::ValuesIn(streams_with_frames()),
                         [](const auto& stream) { return support::test_name(stream.param); });

/// ffprobe's units begin at 00 00 01, and the zero_byte in front belongs to the unit before.
void FramesOfStream::expect_place(const json& frame, const fields& unit) const
{
    const std::size_t offset = frame["offset"];
    const std::size_t end = offset + frame["size"].get<std::size_t>();
    const std::size_t start_code = std::stoul(unit.at("offset"));
    const std::size_t unit_end = start_code + std::stoul(unit.at("size"));
    const auto zero_byte = static_cast<std::size_t>(stream.at(offset + 2) == 0);
    EXPECT_EQ(start_code, offset + zero_byte);
    EXPECT_LE(end, unit_end);
    EXPECT_LE(unit_end, end + 1);
}

/// Both take IDR pictures and recovery points. ffprobe guesses besides that an I picture is a key picture when there is
/// one reference frame at most, which no unit of the stream says.
void FramesOfStream::expect_key(const json& frame, const fields& unit) const
{
    const bool key = unit.at("key") == "1";
    if (key == frame["key"])
        return;
    EXPECT_TRUE(key) << "a key frame that ffprobe does not see";
    EXPECT_EQ(json({"I"}), frame["slice_types"]);
    const json info = json::parse(support::run_tool({"info", "--json", GetParam().string()}).out);
    EXPECT_LE(info["sequences"][0]["max_num_ref_frames"], 1);
}

void FramesOfStream::expect_same(const std::vector<json>& found) const
{
    ASSERT_EQ(expected.units.size(), found.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        SCOPED_TRACE(i);
        const fields& unit = expected.units[i];
        expect_place(found[i], unit);
        expect_key(found[i], unit);
        std::string types;
        for (const auto& type : found[i]["slice_types"])
            types += (types.empty() ? "" : ",") + type.get<std::string>();
        EXPECT_EQ(unit.at("types"), types);
        if (expected.says("durations")) {
            EXPECT_EQ(std::stoul(unit.at("field_duration")), found[i]["field_duration"]);
        }
    }
}

} // namespace

TEST_P(FramesOfStream, AreTheAccessUnitsOfFfprobe)
{
    static const std::map<std::string, const char*> other = {
        {"d17_concat_eos.264", "parameter sets before an end of sequence are an access unit without a picture"},
        {"d21_syntax.264", "its slices are noise, and ffprobe does not compare what they say"},
        {"d22_paff.264", "likewise"},
        {"d23_svc.264", "ffprobe takes prefix units to the access unit before them"},
    };
    const auto reason = other.find(GetParam().filename().string());
    if (reason != other.end())
        GTEST_SKIP() << reason->second;
    expect_same(frames(false));
    expect_same(frames(true));
}
