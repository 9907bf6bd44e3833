#include "edit/spool_file.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <fmt/format.h>
#include <unistd.h>

namespace orv_h264 {

spool_file::spool_file()
{
    const char* const folder = std::getenv("TMPDIR");
    std::string pattern = fmt::format("{}/orv-h264-XXXXXX", folder == nullptr || *folder == '\0' ? "/tmp" : folder);
    descriptor = ::mkstemp(pattern.data());
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), pattern);
    ::unlink(pattern.c_str()); // nothing is left behind, whatever happens
    name = fmt::format("/dev/fd/{}", descriptor);
}

spool_file::~spool_file()
{
    ::close(descriptor);
}

} // namespace orv_h264
