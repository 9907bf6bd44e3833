#include "info.h"

#include "frame_finder.h"
#include "show_info.h"
#include "stream_summary.h"
#include "stream_walker.h"

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// Reads the whole stream.
class survey {
public:
    explicit survey(stream_input& from) : input(from) {}

    stream_summary run()
    {
        read_all(
            input.feeder(), [this](const unit& u) { take_unit(u); },
            [this](const gap& g) { summary.problems.add(g.offset, describe(g), g.size); });
        finder.finish();
        take_frames();
        return std::move(summary);
    }

private:
    void take_unit(const unit& u)
    {
        brenik::h264_nal_reader& reader = input.feeder().reader();
        const brenik::h264_nal nal = reader.nal;
        if (u.cut)
            summary.problems.add(u.offset, describe_cut(u));
        const walked_unit walked = walker.walk(reader);
        summary.add(u, nal, walked);
        finder.add(u, {reader.nal_header, static_cast<std::size_t>(u.length)});
        take_frames();
    }

    void take_frames()
    {
        for (frame f; finder.next(f);) {
            if (f.cut)
                summary.problems.add(f.offset, describe_cut(f));
            summary.add(f);
        }
    }

    stream_input& input;
    stream_walker walker;
    frame_finder finder{false};
    stream_summary summary;
};

} // namespace

exit_status info(const info_options& options)
{
    stream_input input(options.stream);
    const stream_summary summary = survey(input).run();
    if (options.format == output_format::json)
        print_json_info(input, summary);
    else
        print_info(input, summary);
    return summary.problems.kinds().empty() ? exit_clean : exit_broken_stream;
}

} // namespace orv_h264
