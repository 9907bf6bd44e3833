// info and frames over many files: the order, what each file has in common with a run over it alone, and the files that
// cannot be read.
#include "support/coded_stream.h"
#include "support/run_tool.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstring>
#include <sstream>
#include <sys/stat.h>

namespace {

using nlohmann::json;
using support::bytes;
using support::coded_sps;
using support::coded_stream;
using support::run_tool;
using support::tool_result;

constexpr const char* missing = "No such file or directory";
const bytes foreign = {'R', 'I', 'F', 'F', 36, 0, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' '};

std::vector<json> lines_of(const std::string& text)
{
    std::vector<json> objects;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        objects.push_back(json::parse(line));
    return objects;
}

/// So many frames.
coded_stream stream_of(std::uint32_t frames)
{
    coded_stream stream;
    stream.sets(coded_sps(false)).idr();
    for (std::uint32_t i = 1; i < frames; ++i)
        stream.slice(i % 16);
    return stream;
}

class ManyFiles : public testing::Test {
protected:
    std::string add(const std::string& name, const bytes& content)
    {
        paths.push_back(folder.write(name, content));
        return paths.back();
    }

    /// Streams of 1 to `most` frames, and now and then a file that is none, or not there.
    void add_mixed(std::uint32_t most)
    {
        for (std::uint32_t i = 1; i <= most; ++i) {
            add(std::to_string(i), stream_of(i));
            if (i % 5 == 0)
                add("foreign " + std::to_string(i), foreign);
            if (i % 7 == 0)
                paths.push_back(folder.path("missing " + std::to_string(i)));
        }
    }

    tool_result run(std::vector<std::string> arguments, const support::tool_input& input = {})
    {
        arguments.insert(arguments.end(), paths.begin(), paths.end());
        return run_tool(arguments, input);
    }

    support::temporary_folder folder;
    std::vector<std::string> paths;
};

std::string joined(const std::vector<std::string>& paths, char end)
{
    std::string list;
    for (const std::string& path : paths)
        list += path + end;
    return list;
}

bytes bytes_of(const std::string& text)
{
    return {text.begin(), text.end()};
}

} // namespace

TEST_F(ManyFiles, InfoPrintsWhatItPrintsOfEachAloneInTheirOrder)
{
    add_mixed(20);
    std::string out;
    std::string err;
    for (const std::string& path : paths) {
        const tool_result alone = run_tool({"info", "--json", path});
        const std::string reason = alone.err.empty() ? "" : alone.err.substr(std::strlen("orv-h264: : ") + path.size());
        const json error = {{"schema", "orv-h264/error"},
                            {"schema_version", 2},
                            {"file", path},
                            {"error", reason.substr(0, reason.find('\n'))},
                            {"status", alone.status}};
        out += reason.empty() ? json::parse(alone.out).dump() + "\n" : error.dump() + "\n";
        err += alone.err;
    }
    for (const char* jobs : {"1", "2", "7", "0"}) {
        const tool_result many = run({"info", "--json", "--jobs", jobs});
        std::string sorted; // as the members of the objects above
        for (const json& object : lines_of(many.out))
            sorted += object.dump() + "\n";
        EXPECT_EQ(out, sorted) << jobs;
        EXPECT_EQ(err, many.err) << jobs;
        EXPECT_EQ(3, many.status) << jobs;
    }
}

TEST_F(ManyFiles, EveryRecordOfFramesNamesItsFile)
{
    add("first", stream_of(3));
    add("broken", coded_stream().slice(1));
    paths.push_back(folder.path("missing"));
    const tool_result many = run({"frames", "--json", "--jobs", "2"});
    std::vector<json> expected;
    for (const char* name : {"first", "broken"})
        for (json line : lines_of(run_tool({"frames", "--json", folder.path(name)}).out)) {
            line["file"] = folder.path(name);
            expected.push_back(line);
        }
    expected.push_back({{"record", "error"}, {"file", paths.back()}, {"error", missing}, {"status", 2}});
    EXPECT_EQ(expected, lines_of(many.out));
    EXPECT_EQ(2, many.status);
}

TEST_F(ManyFiles, OutputThatWaitsForItsTurnMayBeLong)
{
    for (const char* name : {"a", "b", "c", "d"})
        add(name, stream_of(1500));
    const tool_result in_turn = run({"frames", "--json"});
    EXPECT_LT(std::size_t{4} * 500'000, in_turn.out.size());
    EXPECT_EQ(in_turn.out, run({"frames", "--json", "--jobs", "4"}).out);
}

TEST_F(ManyFiles, BlocksOfTextStandApart)
{
    const std::string first = add("first", stream_of(1));
    paths.push_back(folder.path("missing"));
    const std::string second = add("second", stream_of(2));
    for (const char* subcommand : {"info", "frames"}) {
        const std::string head = subcommand == std::string("frames") ? "File  " : "";
        const auto block = [&](const std::string& path) {
            return (head.empty() ? "" : head + path + "\n") + run_tool({subcommand, path}).out;
        };
        const tool_result many = run({subcommand, "--jobs", "3"});
        EXPECT_EQ(block(first) + "\n" + block(second), many.out);
        EXPECT_EQ("orv-h264: " + paths[1] + ": " + missing + "\n", many.err);
    }
}

TEST_F(ManyFiles, TablesHaveTheFileInTheFirstColumnAndOneLineOfNames)
{
    const std::string first = add("first", stream_of(2));
    const std::string second = add("second", stream_of(1));
    for (const char* subcommand : {"info", "frames"}) {
        // Among many there may be containers: rows of frames have their columns.
        const bool is_frames = subcommand == std::string("frames");
        const std::string names = "\tpacket\tcontainer_key\tcontainer_pts\tcontainer_dts\tcontainer_duration";
        std::string expected;
        for (const std::string& path : paths) {
            std::istringstream rows(run_tool({subcommand, "--tsv", path}).out);
            std::string row;
            std::getline(rows, row);
            expected += path == first ? "file\t" + row + (is_frames ? names : "") + "\n" : "";
            while (std::getline(rows, row))
                expected.append(path).append("\t").append(row).append(is_frames ? "\t\t\t\t\t\n" : "\n");
        }
        EXPECT_EQ(expected, run({subcommand, "--tsv"}).out);
    }
    paths = {folder.path("missing"), second};
    const std::string facts = run({"info", "--csv"}).out;
    EXPECT_NE(std::string::npos, facts.find("\n" + paths[0] + ",error," + missing + "\n")) << facts;
    EXPECT_NE(std::string::npos, facts.find("\n" + paths[0] + ",status,2\n")) << facts;
}

TEST_F(ManyFiles, TheStatusIsTheGreatest)
{
    const std::string sound = add("sound", stream_of(1));
    const std::string broken = add("broken", coded_stream().slice(1));
    const std::string other = add("foreign", foreign);
    const std::string nowhere = folder.path("missing");
    EXPECT_EQ(0, run_tool({"info", sound, sound}).status);
    EXPECT_EQ(1, run_tool({"info", broken, sound}).status);
    EXPECT_EQ(2, run_tool({"info", broken, nowhere, sound}).status);
    EXPECT_EQ(3, run_tool({"info", other, nowhere, broken}).status);
    EXPECT_EQ(3, run_tool({"frames", "--jobs", "4", sound, broken, nowhere, other}).status);
}

TEST_F(ManyFiles, AListNamesThemToo)
{
    add_mixed(6);
    const std::string expected = run({"info", "--json"}).out;
    const std::string list = folder.write("list", bytes_of("\n" + joined(paths, '\n') + "\n"));
    EXPECT_EQ(expected, run_tool({"info", "--json", "--files-from", list}).out);
    const std::string begun = joined({paths.begin() + 1, paths.end()}, '\n');
    const support::tool_input without_end = {.piped = bytes_of(begun.substr(0, begun.size() - 1))};
    EXPECT_EQ(expected, run_tool({"info", "--json", "--files-from", "-", paths[0]}, without_end).out);
}

TEST_F(ManyFiles, AListMayBeDividedByZeroBytes)
{
    add("a\nb", stream_of(1));
    add(" c", stream_of(2));
    const support::tool_input list = {.piped = bytes_of(joined(paths, '\0'))};
    const tool_result result = run_tool({"info", "--json", "-0", "--files-from", "-"}, list);
    EXPECT_EQ(run({"info", "--json"}).out, result.out);
    EXPECT_EQ(0, result.status);
    const std::vector<json> undivided = lines_of(run_tool({"info", "--json", "--files-from", "-"}, list).out);
    EXPECT_EQ(2U, undivided.size()) << "the line feed divides";
    for (const json& object : undivided)
        EXPECT_NE("", object["error"]) << "and a zero byte is in no name";
}

TEST_F(ManyFiles, AListOfOneIsARunOverMany)
{
    add("only", stream_of(1));
    const support::tool_input list = {.piped = bytes_of(paths[0])};
    EXPECT_EQ(0U, run_tool({"info", "--csv", "--files-from", "-"}, list).out.find("file,path,value\n"));
    EXPECT_EQ(0U, run_tool({"info", "--csv", paths[0]}).out.find("path,value\n"));
}

TEST_F(ManyFiles, AnEmptyListIsNoError)
{
    const tool_result result = run_tool({"info", "--json", "--files-from", "/dev/null"});
    EXPECT_EQ("", result.out + result.err);
    EXPECT_EQ(0, result.status);
}

TEST_F(ManyFiles, AListThatCannotBeReadStopsTheRun)
{
    const std::string nowhere = folder.path("missing");
    tool_result result = run_tool({"info", "--files-from", nowhere});
    EXPECT_EQ("orv-h264: " + nowhere + ": " + missing + "\n", result.err);
    EXPECT_EQ(2, result.status);
    result = run_tool({"info", "--json", "--files-from", "-"}, {.piped = bytes(200'000, 'x')});
    EXPECT_EQ("orv-h264: standard input: a path of more than 65536 bytes; --null is for lists that zero bytes divide\n",
              result.err);
    EXPECT_EQ("", result.out);
    EXPECT_EQ(2, result.status);
}

TEST_F(ManyFiles, TheStandardInputIsReadOnce)
{
    const std::string named = add("named", stream_of(2));
    const std::vector<json> objects =
        lines_of(run_tool({"info", "--json", "-", named, "-"}, {.piped = stream_of(1)}).out);
    ASSERT_EQ(3U, objects.size());
    EXPECT_EQ(1, objects[0]["frames"]["count"]);
    EXPECT_EQ(2, objects[1]["frames"]["count"]);
    EXPECT_EQ("standard input", objects[2]["file"]);
    EXPECT_EQ("the standard input is read once, and taken", objects[2]["error"]);
    const tool_result listed = run_tool({"info", "--json", "--files-from", "-"}, {.piped = bytes_of("-\n")});
    EXPECT_EQ(objects[2], lines_of(listed.out).at(0));
    EXPECT_EQ(2, listed.status);
}

TEST_F(ManyFiles, OutputThatCannotBeWrittenEndsTheRun)
{
    add_mixed(5);
    const tool_result result = run({"info", "--json", "--jobs", "2"}, {.out_path = "/dev/full"});
    EXPECT_NE(std::string::npos, result.err.find("orv-h264: standard output: No space left on device\n")) << result.err;
    EXPECT_EQ(2, result.status);
}

TEST_F(ManyFiles, ASignalEndsOneFileAndNotTheOthers)
{
    const std::string sound = add("sound", stream_of(1));
    const std::string endless = folder.write("endless", {0, 0, 0, 1, support::sps});
    std::filesystem::resize_file(endless, std::uint64_t{1} << 38U); // a hole: longer than a second of processor time
    std::string reason = "ended by signal 24 (";
    reason.append(strsignal(SIGXCPU)).append(")");
    for (const char* jobs : {"1", "2"}) {
        const tool_result result = run_tool(
            {"info", "--json", "--jobs", jobs, "--format", "annexb", sound, endless, sound}, {.max_seconds = 1});
        std::string expected = "orv-h264: ";
        EXPECT_EQ(expected.append(endless).append(": ").append(reason).append("\n"), result.err);
        const std::vector<json> objects = lines_of(result.out);
        ASSERT_EQ(3U, objects.size());
        EXPECT_EQ(objects[0], objects[2]);
        EXPECT_EQ(reason, objects[1]["error"]);
        EXPECT_EQ(2, objects[1]["status"]);
        EXPECT_EQ(2, result.status);
    }
}
