// Violations as SARIF 2.1.0 (OASIS): a run with the rules, then a result each. It is one line, printed when the file
// has ended: no reader makes anything of a part.
#include "check/check_output.h"
#include "standard_output.h"

#include <orv-utils-v4/version.h>

#include <algorithm>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// A relative or absolute path as a URI reference: what is not unreserved or a slash is percent-encoded.
std::string uri_of(std::string_view path)
{
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
    std::string uri = path.starts_with('/') ? "file://" : "";
    for (const char c : path)
        uri += plain.find(c) != std::string_view::npos ? std::string(1, c)
                                                       : fmt::format("%{:02X}", static_cast<unsigned char>(c));
    return uri;
}

json sarif_of(const rule& one)
{
    return {{"id", one.id},
            {"shortDescription", {{"text", one.title}}},
            {"fullDescription", {{"text", one.about}}},
            {"help", {{"text", fmt::format("{}. Broken by: {}.", name_of_clause(one.clause), one.example)}}},
            {"defaultConfiguration", {{"level", name_of(one.level)}}},
            {"properties", {{"clause", one.clause}}}};
}

json driver_of(std::span<const rule* const> rules)
{
    json list = json::array();
    for (const rule* one : rules)
        list.push_back(sarif_of(*one));
    return {{"driver", {{"name", "orv-h264"}, {"version", ORV_UTILS_V4_VERSION}, {"rules", std::move(list)}}}};
}

class sarif_run final : public check_output {
public:
    void begin(const std::string& file, std::span<const rule* const> in_play) override
    {
        uri = uri_of(file);
        rules = in_play;
        run = fmt::format(R"({{"tool":{},"columnKind":"utf16CodeUnits","results":[)", json_line(driver_of(rules)));
        any = false;
    }

    void print(const violation& what) override
    {
        const std::uint64_t offset = what.place ? what.place->byte : what.offset;
        json properties = json_of(what);
        const json place = {{"artifactLocation", {{"uri", uri}}},
                            {"region", {{"byteOffset", offset}, {"byteLength", 1}}}};
        json result = {{"ruleId", what.broken->id}};
        result.update({{"ruleIndex", std::find(rules.begin(), rules.end(), what.broken) - rules.begin()},
                       {"level", name_of(what.level)},
                       {"message", {{"text", fmt::format("{} ({})", found_and_allowed(what), what.broken->title)}}},
                       {"locations", json::array({{{"physicalLocation", place}}})},
                       {"properties", std::move(properties)}});
        run += (any ? "," : "") + json_line(result);
        any = true;
    }

    void end(const violation_counts& counts, std::uint64_t untold) override
    {
        const json properties = {
            {"errors", counts[0]}, {"warnings", counts[1]}, {"notes", counts[2]}, {"not_shown", untold}};
        run += R"(],"invocations":[{"executionSuccessful":true}],"properties":)" + json_line(properties) + "}\n";
        write_output(run);
    }

    void fail(const std::string& file, const std::string& reason, int status) override
    {
        const json notification = {
            {"level", "error"},
            {"message", {{"text", reason}}},
            {"locations", json::array({{{"physicalLocation", {{"artifactLocation", {{"uri", uri_of(file)}}}}}}})}};
        const json ended = {{"executionSuccessful", false},
                            {"exitCode", status},
                            {"toolExecutionNotifications", json::array({notification})}};
        const json failed = {{"tool", {{"driver", {{"name", "orv-h264"}, {"version", ORV_UTILS_V4_VERSION}}}}},
                             {"results", json::array()},
                             {"invocations", json::array({ended})}};
        write_output(json_line(failed) + '\n');
    }

private:
    std::string uri;
    std::span<const rule* const> rules;
    std::string run; // so far
    bool any = false;
};

constexpr output_frame log = {R"({"$schema":"https://json.schemastore.org/sarif-2.1.0.json","version":"2.1.0","runs":[)"
                              "\n",
                              ",\n", "]}\n"};

} // namespace

check_printer make_sarif_printer()
{
    return {std::make_unique<sarif_run>(), log};
}

} // namespace orv_h264
