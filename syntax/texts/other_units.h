// The texts of the access unit delimiter, the ends of sequence and stream, and filler data, H.264 clauses 7.3.2.4 to
// 7.3.2.7.
#pragma once

#include "coders/coder.h"
#include "texts/parameter_sets.h"

#include <orv-utils-v4/h264_syntax/other_units.h>

namespace orv_utils_v4::h264 {

// H.264 7.3.2.4
template <class Coder>
void code(Coder& c, in<Coder, access_unit_delimiter_rbsp>& x)
{
    const auto here = c.structure("access_unit_delimiter_rbsp");
    c.u(3, "primary_pic_type", x.primary_pic_type);
    rbsp_trailing_bits(c);
}

// H.264 7.3.2.5
template <class Coder>
void code(Coder& c, in<Coder, end_of_seq_rbsp>&)
{
    const auto here = c.structure("end_of_seq_rbsp");
    c.end_of_unit();
}

// H.264 7.3.2.6
template <class Coder>
void code(Coder& c, in<Coder, end_of_stream_rbsp>&)
{
    const auto here = c.structure("end_of_stream_rbsp");
    c.end_of_unit();
}

// H.264 7.3.2.7
template <class Coder>
void code(Coder& c, in<Coder, filler_data_rbsp>& x)
{
    const auto here = c.structure("filler_data_rbsp");
    c.run("ff_byte", 0xFF, x.ff_bytes);
    rbsp_trailing_bits(c);
}

} // namespace orv_utils_v4::h264
