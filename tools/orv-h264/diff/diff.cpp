#include "diff/diff.h"

#include "diff/show_differences.h"
#include "diff/stream_comparison.h"
#include "standard_output.h"

namespace orv_h264 {

exit_status diff(const diff_options& options)
{
    stream_comparison found(options);
    found.run();
    if (options.json)
        print_json(json_of(found));
    else
        write_output(text_of(found, options.all));
    return found.differs() ? exit_broken_stream : exit_clean;
}

} // namespace orv_h264
