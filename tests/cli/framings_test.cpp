// Every stream in every framing that carries it: inspect, frames and info tell the same of it, but for what the framing
// itself changes, offsets and sizes.
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>
#include <sstream>

namespace {

using json = nlohmann::ordered_json;
using support::run_tool;
using support::tool_result;

std::vector<std::filesystem::path> sound_streams()
{
    std::vector<std::filesystem::path> streams = support::all_annexb_files();
    std::erase_if(streams, support::is_broken);
    return streams;
}

/// The object without what the framing changes.
void drop_framing(json& object)
{
    static const std::set<std::string> names = {"file",          "padding",       "framing",       "offset",
                                                "framing_size",  "size",          "bytes",         "mean_bit_rate",
                                                "peak_bit_rate", "first_offset",  "last_offset",   "unit_bytes",
                                                "filler",        "unit_bit_rate", "fullest_second"};
    if (object.is_object())
        for (const std::string& name : names)
            object.erase(name);
    if (object.is_structured())
        for (json& member : object)
            drop_framing(member);
}

/// What a subcommand says, line by line, and its exit status.
std::string told(const char* command, const std::string& path, const std::string& framing)
{
    const tool_result result = run_tool({command, "--json", "--format", framing, path});
    std::string lines = "status " + std::to_string(result.status) + "\n";
    std::istringstream objects(result.out);
    for (std::string line; std::getline(objects, line);) {
        json object = json::parse(line);
        if (std::string(command) == "info")
            for (json& sequence : object["sequences"]) // their size is that of pictures
                sequence["picture_size"] = sequence["size"];
        drop_framing(object);
        lines += object.dump() + "\n";
    }
    return lines;
}

/// The largest unit that a prefix of so many bytes can tell.
constexpr std::size_t longest_unit(unsigned int prefix_size)
{
    return (std::size_t{1} << 8 * prefix_size) - 1;
}

std::size_t longest_unit_of(const std::string& path)
{
    std::size_t longest = 0;
    std::istringstream objects(run_tool({"inspect", "--nals", "--json", path}).out);
    for (std::string line; std::getline(objects, line);)
        longest = std::max(longest, json::parse(line).value("length", std::size_t{0}));
    return longest;
}

class StreamInFramings : public testing::TestWithParam<std::filesystem::path> {};

INSTANTIATE_TEST_SUITE_P(Streams, StreamInFramings, testing::ValuesIn(sound_streams()),
                         [](const auto& stream) { return support::test_name(stream.param); });

} // namespace

TEST_P(StreamInFramings, TellsTheSame)
{
    const std::string path = GetParam().string();
    const std::size_t longest = longest_unit_of(path);
    for (unsigned int prefix_size = 1; prefix_size <= 4; ++prefix_size) {
        const std::string framing = "length" + std::to_string(prefix_size);
        const support::temporary_file converted({});
        const tool_result conversion = run_tool({"convert", path, converted.path(), "--to", framing});
        EXPECT_EQ(longest <= longest_unit(prefix_size), conversion.status == 0) << framing << "\n" << conversion.err;
        if (conversion.status != 0)
            continue;
        for (const char* command : {"inspect", "frames", "info"})
            EXPECT_EQ(told(command, path, "annexb"), told(command, converted.path(), framing))
                << command << " " << framing;
    }
}
