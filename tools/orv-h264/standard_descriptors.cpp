#include "standard_descriptors.h"

#include <initializer_list>

#include <fcntl.h>
#include <unistd.h>

namespace orv_h264 {

// What O_PATH opens can neither be read nor written; a folder cannot under the names /dev/stdin and /dev/stdout either.
void occupy_closed_descriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(descriptor, F_GETFD) < 0)
            static_cast<void>(::open("/", O_PATH | O_CLOEXEC)); // takes the lowest that is free: this one
}

} // namespace orv_h264
