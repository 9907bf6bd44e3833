#include "inspect.h"

#include "input_file.h"
#include "recognise.h"
#include "show_syntax.h"
#include "stream_walker.h"

#include <cstdio>
#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

class inspection {
public:
    inspection(const inspect_options& chosen, const std::string& name, piece_feeder& from)
        : options(chosen), input_name(name), feeder(from)
    {
    }

    exit_status run()
    {
        while (lines < options.limit) {
            const fed_item item = feeder.next();
            if (const auto* u = std::get_if<unit>(&item))
                take_unit(*u);
            else if (const auto* g = std::get_if<gap>(&item))
                complain(g->offset, fmt::format("{} ({} bytes)", describe(*g), g->size));
            else
                break;
        }
        return status;
    }

private:
    void take_unit(const unit& u)
    {
        brenik::h264_nal_reader& reader = feeder.reader();
        const brenik::h264_nal nal = reader.nal;
        if (u.cut)
            complain(u.offset, fmt::format("unit of {} bytes runs past the end of the input", u.stated_length));
        walked_unit walked;
        if (!options.nals) {
            walked = walker.walk(reader);
            for (const std::string& problem : problems_of(walked))
                complain(u.offset, problem);
        }
        if (!options.only.test(nal.nal_unit_type))
            return;
        ++lines;
        fmt::print("offset {:>10}  framing {}  length {:>8}  rbsp {:>8}  nal_ref_idc {}  type {:>2}  {}\n", u.offset,
                   u.framing_size, u.length, decoder.whole(reader).size(), nal.nal_ref_idc,
                   static_cast<unsigned int>(nal.nal_unit_type), brenik::h264_nal_unit_type_to_str(nal.nal_unit_type));
        if (!options.nals)
            fmt::print("{}", show_fields(walked));
    }

    void complain(std::uint64_t offset, const std::string& what)
    {
        fmt::print(stderr, "orv-h264: {}: offset {}: {}\n", input_name, offset, what);
        status = exit_broken_stream;
    }

    const inspect_options& options;
    const std::string& input_name;
    piece_feeder& feeder;
    stream_walker walker;
    rbsp_decoder decoder; // for the sizes
    std::uint64_t lines = 0;
    exit_status status = exit_clean;
};

} // namespace

exit_status inspect(const inspect_options& options)
{
    input_file input(options.path);
    input_window window([&](unsigned char* out, std::size_t size) { return input.read(out, size); });
    if (!options.format) {
        if (const char* container = container_name(window)) {
            fmt::print(stderr, "orv-h264: {}: this is {}; take the H.264 stream out of it first\n", input.name(),
                       container);
            return exit_not_supported;
        }
        if (!is_annexb(window)) {
            fmt::print(stderr, "orv-h264: {}: not an Annex B stream; name the framing with --format\n", input.name());
            return exit_usage_or_io;
        }
    }
    piece_feeder feeder(std::move(window), options.format.value_or(brenik::nalfmt_annexb),
                        static_cast<std::size_t>(options.max_unit));
    return inspection(options, input.name(), feeder).run();
}

} // namespace orv_h264
