// The structures by number, as structures.cpp lists them.
#pragma once

#include "kinds.h"

#include <orv-utils-v4/h264_syntax.h>

namespace orv_python {

enum structure_numbers : int {
#define ORV_STRUCTURE(NAME, ABOUT) number_of_##NAME,
#define ORV_MEMBER(NAME, MEMBER, ABOUT)
#define ORV_END(NAME)
#include "structures.inc"
#undef ORV_STRUCTURE
};

#define ORV_STRUCTURE(NAME, ABOUT)                                                                                     \
    template <>                                                                                                        \
    inline constexpr int structure_number<h264::NAME> = number_of_##NAME;
#include "structures.inc"
#undef ORV_STRUCTURE
#undef ORV_MEMBER
#undef ORV_END

} // namespace orv_python
