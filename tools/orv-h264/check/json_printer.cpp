// Violations for programs: a line of JSON each.
#include "check/check_output.h"

namespace orv_h264 {

namespace {

class line_printer final : public check_output {
public:
    explicit line_printer(bool of_many) : among_many(of_many) {}

    void begin(const std::string& name, std::span<const rule* const>) override
    {
        file = name;
        print_json(json_first_line("orv-h264/check", name));
    }

    void print(const violation& what) override
    {
        json line = {{"record", "violation"}};
        line.update(json_of(what));
        line["title"] = what.broken->title;
        print_record(line);
    }

    void end(const violation_counts& counts, std::uint64_t untold) override
    {
        print_record({{"record", "summary"},
                      {"errors", counts[0]},
                      {"warnings", counts[1]},
                      {"notes", counts[2]},
                      {"not_shown", untold}});
    }

    void fail(const std::string& name, const std::string& reason, int status) override
    {
        print_json({{"record", "error"}, {"file", name}, {"error", reason}, {"status", status}});
    }

private:
    void print_record(const json& record) const { print_json(among_many ? record_of(file, record) : record); }

    bool among_many;
    std::string file;
};

} // namespace

check_printer make_json_printer(bool among_many)
{
    return {std::make_unique<line_printer>(among_many), {}};
}

} // namespace orv_h264
