#include "nameless_file.h"

#include "signals_held.h"
#include "system_calls.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace orv_h264 {

int open_linkable(const std::string& folder)
{
    return again([&] { return ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600); });
}

int open_nameless(const std::string& folder)
{
    int descriptor = open_linkable(folder);
    if (descriptor >= 0)
        return descriptor;
    std::string path;
    const signals_held until_it_has_none;
    descriptor = again([&] {
        path = folder + "/orv-h264-XXXXXX";
        return ::mkostemp(path.data(), O_CLOEXEC);
    });
    if (descriptor >= 0 && ::unlink(path.c_str()) != 0) {
        const int reason = errno;
        ::close(descriptor);
        errno = reason;
        return -1;
    }
    return descriptor;
}

std::string path_of(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

} // namespace orv_h264
