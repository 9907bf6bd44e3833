#include "inspect.h"

#include "container/show_container.h"
#include "element_rows.h"
#include "framing.h"
#include "json_output.h"
#include "standard_output.h"
#include "unit_lines.h"
#include "unit_run.h"

#include <memory>
#include <string>

namespace orv_h264 {

namespace {

/// Shows the units that are asked for.
class inspection : public unit_run {
public:
    inspection(const inspect_options& chosen, const std::string& name)
        : unit_run(name, chosen.format == output_format::json), options(chosen)
    {
    }

private:
    bool enough() const override { return shown == options.limit; }
    bool unread() const override { return options.nals; }

    h264::visitor* before(const listed_unit& unit) override
    {
        return options.only.test(unit.type()) ? begin(unit) : nullptr;
    }
    void take(const listed_unit& unit, const h264::unit_reading* reading) override
    {
        if (!options.only.test(unit.type()))
            return;
        show(unit, reading);
        ++shown;
    }

    virtual h264::visitor* begin(const listed_unit& unit) = 0;
    virtual void show(const listed_unit& unit, const h264::unit_reading* reading) = 0;

    const inspect_options& options;
    std::uint64_t shown = 0;
};

/// For a person, or as JSON.
class unit_inspection final : public inspection {
public:
    unit_inspection(const inspect_options& chosen, const std::string& name)
        : inspection(chosen, name),
          units(make_unit_printer(chosen.format == output_format::json, {chosen.positions, chosen.long_names}))
    {
    }

private:
    h264::visitor* begin(const listed_unit& unit) override { return units->begin(unit); }
    void show(const listed_unit& unit, const h264::unit_reading* reading) override
    {
        write_output(units->end(unit, reading));
    }

    std::unique_ptr<unit_printer> units;
};

/// As a table of all elements.
class element_inspection final : public inspection {
public:
    using inspection::inspection;

    exit_status run_with_head(stream_input& input, char separator)
    {
        rows.begin_table(separator);
        const exit_status status = run(input);
        write_output(rows.text);
        return status;
    }

private:
    h264::visitor* begin(const listed_unit& unit) override
    {
        rows.begin(unit.place);
        return &rows;
    }
    void show(const listed_unit&, const h264::unit_reading*) override { rows.end(); }

    element_rows rows;
};

} // namespace

exit_status inspect(const inspect_options& options)
{
    stream_input input(options.stream);
    if (is_table(options.format))
        return element_inspection(options, input.name())
            .run_with_head(input, options.format == output_format::csv ? ',' : '\t');
    if (options.format == output_format::json) {
        json head = json_first_line("orv-h264/inspect", input.name());
        head["framing"] = framing_name(input.framing());
        if (input.in_container() != nullptr)
            head["container"] = json_of(*input.in_container());
        print_json(head);
    } else if (input.in_container() != nullptr) {
        write_output(text_of(*input.in_container()) + '\n');
    }
    return unit_inspection(options, input.name()).run(input);
}

} // namespace orv_h264
