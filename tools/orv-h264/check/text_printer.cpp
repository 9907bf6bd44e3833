// Violations for a person, a line each.
#include "check/check_output.h"
#include "names.h"
#include "printable.h"
#include "standard_output.h"
#include "terminal.h"

#include <cstdio>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// "1 error", "2 errors".
std::string counted(std::uint64_t count, std::string_view noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

/// ", unit 7 (SPS), byte 12, bit 24"
std::string place_of(const violation& what)
{
    std::string text;
    if (what.unit)
        text += fmt::format(", unit {} ({})", what.unit->number,
                            short_unit_name(static_cast<brenik::h264_nal_unit_type>(what.unit->nal_unit_type)));
    if (what.place)
        text += fmt::format(", byte {}, bit {}", what.place->byte, what.place->bit);
    return text;
}

class text_output final : public check_output {
public:
    void begin(const std::string& name, std::span<const rule* const>) override { file = printable(name); }

    void print(const violation& what) override
    {
        const emphasis how = what.level == severity::error ? emphasis::error : emphasis::strong;
        write_output(fmt::format("{}: offset {}{}: {}: {} [{}, {}]\n", file, what.offset, place_of(what),
                                 emphasised(stdout, how, name_of(what.level)), printable(found_and_allowed(what)),
                                 what.broken->id, name_of_clause(what.clause)));
    }

    void end(const violation_counts& counts, std::uint64_t untold) override
    {
        const std::string hidden = untold > 0 ? fmt::format("; {} of them not shown", untold) : "";
        write_output(fmt::format("{}: {}, {}, {}{}\n", file, counted(counts[0], "error"), counted(counts[1], "warning"),
                                 counted(counts[2], "note"), hidden));
    }

    /// The standard error stream has told it.
    void fail(const std::string&, const std::string&, int) override {}

private:
    std::string file;
};

} // namespace

check_printer make_text_printer()
{
    return {std::make_unique<text_output>(), {}};
}

} // namespace orv_h264
