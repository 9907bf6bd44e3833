#include "container/demuxer.h"

#include <dlfcn.h>

namespace orv_h264 {

// It stays loaded until the process ends: loading it again gives the same one.
open_container_function* load_demuxer()
{
    void* const module = ::dlopen("orv_h264_libavformat.so", RTLD_NOW | RTLD_LOCAL);
    return module == nullptr ? nullptr
                             : reinterpret_cast<open_container_function*>(::dlsym(module, open_container_name));
}

std::string why_no_demuxer()
{
    const char* const why = ::dlerror();
    return why == nullptr ? "" : why;
}

} // namespace orv_h264
