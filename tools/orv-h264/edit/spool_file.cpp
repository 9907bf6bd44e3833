#include "edit/spool_file.h"

#include "nameless_file.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <fmt/format.h>
#include <unistd.h>

namespace orv_h264::editing {

spool_file::spool_file()
{
    const char* const told = std::getenv("TMPDIR");
    const std::string folder = told == nullptr || *told == '\0' ? "/tmp" : told;
    descriptor = open_nameless(folder);
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(),
                                fmt::format("cannot make a temporary file in the folder {}", folder));
    place = path_of(descriptor);
}

spool_file::~spool_file()
{
    ::close(descriptor);
}

} // namespace orv_h264::editing
