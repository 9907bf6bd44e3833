// What the sources beside module.cpp add to the module.
#pragma once

#include <pybind11/pybind11.h>

namespace orv_python {

void add_derived_values(pybind11::module_& m);
void add_parameter_set_store(pybind11::module_& m);
void add_pictures(pybind11::module_& m);
void add_survey(pybind11::module_& m);

} // namespace orv_python
