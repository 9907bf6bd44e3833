// The extension _core of the Python module orv_h264. The package around it is what users see.
#include <orv-utils-v4/version.h>

#include <pybind11/pybind11.h>

PYBIND11_MODULE(_core, m)
{
    m.attr("version") = ORV_UTILS_V4_VERSION;
}
