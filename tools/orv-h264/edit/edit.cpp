#include "edit/edit.h"

#include "edit/proof.h"
#include "edit/show_proof.h"
#include "edit/spool_file.h"
#include "edit/stream_edit.h"
#include "messages.h"
#include "output_file.h"
#include "standard_output.h"

#include <array>
#include <vector>

#include <fmt/format.h>

namespace orv_h264::editing {

namespace {

void copy_file(input_file& from, output_file& to)
{
    std::array<unsigned char, 65536> block;
    while (const std::size_t count = from.read(block.data(), block.size()))
        to.write({block.data(), count});
}

/// The input as a file that can be opened twice: where it is none, what comes through the pipe is kept in `spool`.
stream_options readable_twice(const stream_options& options, std::optional<spool_file>& spool)
{
    input_file file(options.path);
    if (options.path != "-" && file.is_seekable())
        return options;
    spool.emplace();
    output_file kept(spool->path(), spool_file::name);
    copy_file(file, kept);
    stream_options again = options;
    again.path = spool->path();
    again.name = file.name();
    return again;
}

/// Where the stream is written until it is proved.
struct written_stream {
    explicit written_stream(const edit_options& options)
    {
        if (!options.dry_run)
            place.emplace(options.out);
        if (place && !place->readable_at().empty())
            return;
        spool.emplace();
        unproved.emplace(spool->path(), spool_file::name);
    }
    output_file& file() { return unproved ? *unproved : *place; }
    std::string path() const { return unproved ? spool->path() : place->readable_at(); }

    /// It goes where it belongs.
    void commit()
    {
        if (!place)
            return;
        if (unproved) {
            input_file from(spool->path(), spool_file::name);
            copy_file(from, *place);
        }
        place->commit();
    }

    std::optional<output_file> place; // none without an output
    std::optional<spool_file> spool;
    std::optional<output_file> unproved; // where the place cannot be read back
};

void show(const proof& shown, const edit_options& options, const std::string& input_name, h264::framing framing)
{
    if (options.json)
        return print_json(shown, input_name, options.out, framing, options.dry_run);
    const std::string text = text_of(shown, options.dry_run);
    if (options.out == "-" && !options.dry_run)
        write_message(text);
    else
        write_output(text);
}

} // namespace

exit_status edit_stream(const edit_options& options)
{
    std::optional<spool_file> piped;
    const stream_options from = readable_twice(options.stream, piped);
    stream_input input(from);
    written_stream written(options);
    const bool in_container = input.in_container() != nullptr;
    const h264::framing framing = in_container ? h264::framing::annex_b : input.framing();
    stream_edit run(options.plan, input, from.path, written.file());
    const exit_status status = run.run();
    if (options.before_proof)
        options.before_proof(written.path());
    const proof found = prove(options.plan, from, written.path(), framing, run.log());
    if (!found.holds)
        throw refusal(exit_usage_or_io,
                      fmt::format("{}: the output is not what it should be, and nothing is written: {}", input.name(),
                                  found.why_not));
    written.commit();
    if (in_container)
        print_error(fmt::format("{}: the units of the container are written as Annex B", input.name()));
    show(found, options, input.name(), framing);
    return status;
}

} // namespace orv_h264::editing
