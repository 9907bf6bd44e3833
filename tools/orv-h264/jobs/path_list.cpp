#include "jobs/path_list.h"

#include "stream_input.h"

#include <fmt/format.h>

namespace orv_h264 {

std::optional<std::string> path_list::next()
{
    while (taken < come.size()) {
        std::size_t fence = come.find(ends_path, taken);
        if (fence == std::string::npos) {
            if (!ended)
                return {};
            fence = come.size();
        }
        std::string path = come.substr(taken, fence - taken);
        taken = fence + 1;
        if (!path.empty())
            return path;
    }
    return {};
}

void path_list::read_more()
{
    come.erase(0, taken);
    taken = 0;
    const std::size_t begun = come.size();
    if (begun > longest)
        throw refusal(exit_usage_or_io,
                      fmt::format("{}: a path of more than {} bytes; --null is for lists that zero bytes divide",
                                  file.name(), longest));
    come.resize(begun + longest);
    const std::size_t count = file.read(reinterpret_cast<unsigned char*>(come.data()) + begun, longest);
    come.resize(begun + count);
    ended = count == 0;
}

} // namespace orv_h264
