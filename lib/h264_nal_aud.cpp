// H.264 clause 7.3.2.4: the access unit delimiter.
#include "syntax_reads.h"

#include <orv-utils-v4/h264/nal_aud.h>

namespace brenik {

// H.264 7.3.2.4, access_unit_delimiter_rbsp()
bool h264_nal_aud::parse(h2645_common_bitreader& br)
{
    br.byte_align();
    primary_pic_type = u<3>(br);
    return valid = h2645_common_skip_rbsp_trailing_bits(br);
}

} // namespace brenik
