#include "check/show_hrd.h"

#include "check/hrd_run.h"
#include "json_output.h"
#include "printable.h"
#include "standard_output.h"
#include "terminal.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <map>
#include <tuple>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

const char* kind_of(const hrd_schedule& schedule)
{
    return schedule.nal ? "NAL" : "VCL";
}

double nanoseconds(double seconds)
{
    constexpr int digits = 9;
    return rounded(seconds, digits);
}

/// What a schedule came to.
struct schedule_totals {
    std::uint64_t access_units = 0;
    std::uint64_t underflows = 0;
    std::uint64_t overflows = 0;
    std::int64_t least = std::numeric_limits<std::int64_t>::max(); // behind a removal
    std::int64_t most = 0;                                         // before one

    void add(const cpb_step& step)
    {
        ++access_units;
        underflows += step.underflow ? 1 : 0;
        overflows += step.overflow ? 1 : 0;
        least = std::min(least, step.after);
        most = std::max(most, step.before);
    }
};

class hrd_table final : hrd_listener {
public:
    explicit hrd_table(const hrd_options& chosen) : options(chosen) {}

    exit_status run(stream_input& input)
    {
        file = input.name();
        print_head();
        hrd_run decoder(input, *this, options.in_json ? hrd_run::told_in_json : hrd_run::told);
        const exit_status status = decoder.run(input);
        decoder.finish();
        for (const auto& [key, all] : totals)
            print_totals(all.first, all.second);
        print_end(decoder);
        return any_breach ? exit_broken_stream : status;
    }

private:
    /// SPS after SPS a stream may have others; further ones are not summed up.
    static constexpr std::size_t most_schedules = 4096;

    using schedule_key = std::tuple<bool, std::uint32_t, std::uint64_t, std::int64_t, bool, bool>;

    void began(const hrd_access_unit& unit, const std::vector<coded_picture_buffer>&) override
    {
        if (runs > 0 && !options.in_json)
            write_output(fmt::format("The decoder begins anew with access unit {}.\n", unit.number));
        ++runs;
    }

    void removed(const hrd_schedule& schedule, const cpb_step& of_model) override
    {
        cpb_step step = of_model;
        step.before = std::max<std::int64_t>(step.before, 0); // what comes behind its removal is in no buffer
        step.after = std::max<std::int64_t>(step.after, 0);
        const schedule_key key{!schedule.nal, schedule.SchedSelIdx, schedule.bit_rate,
                               schedule.size, schedule.cbr,         schedule.low_delay};
        any_breach = any_breach || step.underflow || step.overflow;
        if (totals.size() < most_schedules || totals.contains(key)) {
            auto& [of, sums] = totals[key];
            of = schedule;
            sums.add(step);
        }
        if (options.in_json)
            print_record(json_of(schedule, step));
        else
            write_output(text_of(schedule, step) + '\n');
    }

    json json_of(const hrd_schedule& schedule, const cpb_step& step) const
    {
        return {{"record", "access_unit"},
                {"run", runs - 1},
                {"access_unit", step.unit.number},
                {"unit", step.unit.unit},
                {"offset", step.unit.offset},
                {"hrd", kind_of(schedule)},
                {"schedule", schedule.SchedSelIdx},
                {"bits", step.unit.bits},
                {"arrival_begin", nanoseconds(step.arrival_begin)},
                {"arrival_end", nanoseconds(step.arrival_end)},
                {"removal", nanoseconds(step.removal)},
                {"fullness_before", step.before},
                {"fullness_after", step.after},
                {"cpb_size", schedule.size},
                {"underflow", step.underflow},
                {"overflow", step.overflow}};
    }

    static std::string text_of(const hrd_schedule& schedule, const cpb_step& step)
    {
        return fmt::format("{:>11} {:>12}  {} {:<2} {:>10} {:>13.6f} {:>13.6f} {:>13.6f} {:>11} {:>11} {:>11}{}{}",
                           step.unit.number, step.unit.offset, kind_of(schedule), schedule.SchedSelIdx, step.unit.bits,
                           step.arrival_begin, step.arrival_end, step.removal, step.before, step.after, schedule.size,
                           step.underflow ? "  underflow" : "", step.overflow ? "  overflow" : "");
    }

    void print_totals(const hrd_schedule& schedule, const schedule_totals& sums) const
    {
        if (options.in_json)
            return print_record({{"record", "summary"},
                                 {"hrd", kind_of(schedule)},
                                 {"schedule", schedule.SchedSelIdx},
                                 {"bit_rate", schedule.bit_rate},
                                 {"cpb_size", schedule.size},
                                 {"cbr", schedule.cbr},
                                 {"low_delay", schedule.low_delay},
                                 {"access_units", sums.access_units},
                                 {"least_fullness", sums.least},
                                 {"most_fullness", sums.most},
                                 {"underflows", sums.underflows},
                                 {"overflows", sums.overflows}});
        write_output(fmt::format(
            "{} HRD, schedule {}, {} bit/s{}, CpbSize {} bits: {} access units, {} to {} bits in the "
            "buffer, {} bits of room; underflows: {}, overflows: {}\n",
            kind_of(schedule), schedule.SchedSelIdx, schedule.bit_rate, schedule.cbr ? " constant" : "", schedule.size,
            sums.access_units, sums.least, sums.most, schedule.size - sums.most, sums.underflows, sums.overflows));
    }

    void print_head() const
    {
        if (options.in_json)
            return print_json(json_first_line("orv-h264/hrd", file));
        if (options.among_many)
            write_output(fmt::format("File  {}\n", printable(file)));
        const std::string heading =
            fmt::format("{:>11} {:>12}  {:<6} {:>10} {:>13} {:>13} {:>13} {:>11} {:>11} {:>11}", "access unit",
                        "offset", "HRD", "bits", "arrival, s", "to", "removal, s", "bits before", "behind", "CpbSize");
        write_output(emphasised(stdout, emphasis::strong, heading) + '\n');
    }

    void print_end(const hrd_run& decoder) const
    {
        if (options.in_json)
            return print_record({{"record", "end"},
                                 {"runs", runs},
                                 {"access_units", decoder.access_units()},
                                 {"untimed", decoder.untimed()}});
        if (runs == 0)
            write_output("The stream has no HRD parameters with a buffering period.\n");
        else if (decoder.untimed() > 0)
            write_output(
                fmt::format("{} of {} access units have no times.\n", decoder.untimed(), decoder.access_units()));
    }

    void print_record(const json& record) const { print_json(options.among_many ? record_of(file, record) : record); }

    const hrd_options& options;
    std::string file;
    std::map<schedule_key, std::pair<hrd_schedule, schedule_totals>> totals;
    std::uint64_t runs = 0;
    bool any_breach = false;
};

} // namespace

exit_status show_hrd(const hrd_options& options)
{
    stream_input input(options.stream);
    return hrd_table(options).run(input);
}

exit_status show_hrd_of_files(const file_set& files, const hrd_options& options)
{
    hrd_options one = options;
    if (files.is_one()) {
        one.stream.path = files.paths.front();
        return show_hrd(one);
    }
    one.among_many = true;
    file_work work;
    work.read = [&one](const std::string& path) {
        one.stream.path = path;
        return show_hrd(one);
    };
    work.print_failure = [&one](const std::string& file, const json& failure) {
        json record = {{"record", "error"}, {"file", file}};
        record.update(failure);
        if (one.in_json)
            print_json(record);
    };
    if (!one.in_json)
        work.between = "\n";
    return read_files(files, work);
}

} // namespace orv_h264
