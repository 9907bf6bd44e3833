#include "inspect.h"

#include "framing.h"
#include "inspect_elements.h"
#include "json_fields.h"
#include "json_output.h"
#include "messages.h"
#include "names.h"
#include "show_unit.h"
#include "standard_output.h"
#include "stream_walker.h"

#include <string>
#include <string_view>

namespace orv_h264 {

namespace {

class inspection {
public:
    inspection(const inspect_options& chosen, stream_input& from)
        : options(chosen), feeder(from.feeder()), problems(from.name(), chosen.format == output_format::json)
    {
    }

    exit_status run()
    {
        while (lines < options.limit) {
            const fed_item item = feeder.next();
            if (const auto* u = std::get_if<unit>(&item))
                take_unit(*u);
            else if (const auto* g = std::get_if<gap>(&item))
                problems.add(g->offset, describe_with_size(*g));
            else
                break;
        }
        return problems.status();
    }

private:
    void take_unit(const unit& u)
    {
        brenik::h264_nal_reader& reader = feeder.reader();
        const brenik::h264_nal nal = reader.nal;
        if (u.cut)
            problems.add(u.offset, describe_cut(u));
        walked_unit walked;
        if (!options.nals) {
            walked = walker.walk(reader);
            for (const std::string& problem : problems_of(walked))
                problems.add(u.offset, problem);
        }
        if (!options.only.test(nal.nal_unit_type))
            return;
        ++lines;
        const shown_unit shown = {u, nal, decoder.whole(reader).size(), options.nals ? nullptr : &walked};
        if (options.format == output_format::json)
            print_json_unit(shown);
        else
            printer.print(shown);
    }

    void print_json_unit(const shown_unit& shown)
    {
        line.clear();
        {
            json_fields fields(line);
            fields.told({"record", std::string_view("unit")});
            tell_unit(fields, shown);
        }
        write_output(line += '\n');
    }

    const inspect_options& options;
    piece_feeder& feeder;
    complaints problems;
    stream_walker walker;
    rbsp_decoder decoder; // for the sizes
    unit_printer printer;
    std::string line; // of JSON
    std::uint64_t lines = 0;
};

} // namespace

exit_status inspect(const inspect_options& options)
{
    if (is_table(options.format))
        return inspect_elements(options);
    stream_input input(options.stream);
    if (options.format == output_format::json) {
        json head = json_first_line("orv-h264/inspect", input.name());
        head["framing"] = framing_name(input.framing());
        print_json(head);
    }
    return inspection(options, input).run();
}

} // namespace orv_h264
