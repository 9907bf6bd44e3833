#include "frames.h"

#include "container/show_container.h"
#include "framing.h"
#include "loss_texts.h"
#include "messages.h"
#include "output_sorter.h"
#include "picture_rows.h"
#include "printable.h"
#include "show_rows.h"
#include "standard_output.h"
#include "table_output.h"
#include "terminal.h"

#include <cstdio>
#include <string>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

void print_column_names(output_format table, bool in_container, bool with_file)
{
    std::string line;
    append_column_names(line, table, in_container, with_file);
    write_output(line);
}

class row_list final : row_sink {
public:
    row_list(const frames_options& chosen, const std::string& name)
        : options(chosen), file(name), problems(name, chosen.format == output_format::json, chosen.among_many)
    {
    }

    exit_status run(stream_input& input)
    {
        if (input.in_container() != nullptr) {
            tick = input.in_container()->track().tick;
            check.emplace(*tick);
        }
        print_head(input);
        picture_rows rows(options.split_fields, options.stream.max_unit, *this, &input.packets());
        rows.begin_with(input.record_sets());
        const bool any = input.read_units(rows, [this] { return is_done(); });
        if (!is_done())
            rows.finish(input.bytes_read());
        sorter.flush();
        if (!any)
            problems.add(input.bytes_read(), describe_no_unit(input.is_empty()));
        tell_given_up();
        tell_container(input);
        print_totals();
        return problems.status();
    }

private:
    bool is_done() const { return totals.frames() == options.limit; }

    void row(picture_row&& row) override
    {
        if (check && !is_done())
            check->add(row);
        if (options.output_order)
            sorter.add(std::move(row));
        else
            show(row);
    }

    void problem(const row_problem& problem) override
    {
        sorter.flush();
        if (!is_done())
            tell(problem);
    }

    void show(const picture_row& row)
    {
        if (is_done())
            return;
        for (const row_problem& problem : row.problems)
            tell(problem);
        if (row.given_up && given_up++ == 0)
            first_given_up = row.offset;
        print(row);
        totals.add(row);
    }

    void print(const picture_row& row)
    {
        const std::string* const of = options.among_many ? &file : nullptr;
        line.clear();
        if (options.format == output_format::text)
            (line += text_of(row, tick)) += '\n';
        else if (options.format == output_format::json)
            append_json(line, row, tick, of);
        else if (options.among_many) // any of the others may be in a container
            append_columns(line, options.format, row, tick.value_or(container_ratio()), of);
        else
            append_columns(line, options.format, row, tick);
        write_output(line);
    }

    void print_record(const json& record) const { print_json(options.among_many ? record_of(file, record) : record); }

    void tell(const row_problem& problem)
    {
        const std::string size = problem.bytes != 0 ? fmt::format(" ({} bytes)", problem.bytes) : "";
        if (problem.finding)
            problems.note(problem.offset, problem.message + size);
        else
            problems.add(problem.offset, problem.message + size);
    }

    void tell_container(const stream_input& input)
    {
        if (const container_stream* const container = input.in_container())
            for (const container_remark& remark : container->remarks())
                tell({remark.offset, remark.text, 0, !remark.is_problem});
        if (!check || is_done()) // of a part nobody can tell
            return;
        check->finish();
        for (const problem_kind& kind : check->findings().kinds())
            tell({kind.first_offset, describe_without_offset(kind), 0, true});
    }

    void tell_given_up()
    {
        if (given_up != 0)
            problems.note(
                first_given_up,
                fmt::format("{} rows are without an output number, this one first: {} later pictures and more "
                            "come before their turn",
                            given_up, picture_rows::most_waiting_pictures));
    }

    void print_head(const stream_input& input) const
    {
        if (options.format == output_format::text) {
            if (options.among_many)
                write_output(fmt::format("File  {}\n", printable(file)));
            if (input.in_container() != nullptr)
                write_output(text_of(*input.in_container()) + '\n');
            write_output(emphasised(stdout, emphasis::strong, row_heading(tick.has_value())) + '\n');
        } else if (options.format == output_format::json) {
            json head = json_first_line("orv-h264/frames", input.name());
            head["framing"] = framing_name(input.framing());
            head["split_fields"] = options.split_fields;
            head["output_order"] = options.output_order;
            if (input.in_container() != nullptr)
                head["container"] = json_of(*input.in_container());
            print_json(head);
        } else if (!options.among_many) {
            print_column_names(options.format, tick.has_value(), false);
        }
    }

    void print_totals() const
    {
        if (options.format == output_format::text)
            write_output(text_of(totals, options.split_fields) + '\n');
        else if (options.format == output_format::json)
            print_record(json_of(totals));
    }

    const frames_options& options;
    const std::string& file;
    complaints problems;
    std::optional<container_ratio> tick; // of the container
    std::optional<container_check> check;
    frame_totals totals;
    std::string line; // of the row at hand
    std::uint64_t given_up = 0;
    std::uint64_t first_given_up = 0; // its offset
    output_sorter sorter{[this](const picture_row& row) { show(row); }};
};

} // namespace

exit_status frames(const frames_options& options)
{
    stream_input input(options.stream);
    return row_list(options, input.name()).run(input);
}

exit_status frames_of_files(const file_set& files, const frames_options& options)
{
    frames_options one = options;
    if (files.is_one()) {
        one.stream.path = files.paths.front();
        return frames(one);
    }
    one.among_many = true;
    file_work work;
    work.read = [&one](const std::string& path) {
        one.stream.path = path;
        return frames(one);
    };
    work.print_failure = [&one](const std::string& file, const json& failure) {
        json record = {{"record", "error"}, {"file", file}};
        record.update(failure);
        if (one.format == output_format::json)
            print_json(record);
    };
    if (one.format == output_format::text)
        work.between = "\n";
    else if (is_table(one.format))
        print_column_names(one.format, true, true);
    return read_files(files, work);
}

} // namespace orv_h264
