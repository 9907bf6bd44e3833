// The failure of an assertion: one line on the standard error stream, then abort. The only output of the libraries
// that no caller asked for.
#include <orv-utils-v4/misc/assertion.h>

#include <cstdio>
#include <cstdlib>

namespace orv_utils_v4 {

void assertion_failed(const char* source, int line, const char* text) noexcept
{
    static_cast<void>(std::fprintf(stderr, "%s:%d: assertion failed: %s\n", source, line, text));
    std::abort();
}

} // namespace orv_utils_v4
