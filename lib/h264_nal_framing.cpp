// The one place where the NAL reader and writer templates become code for H.264.
#include "cpp-template-anticopypasta/h2645_common_nal_reader.template"
#include "cpp-template-anticopypasta/h2645_common_nal_writer.template"

#include <orv-utils-v4/h264/nal_reader.h>
#include <orv-utils-v4/h264/nal_writer.h>

namespace brenik {

// H.264 7.3.1: here, so that the templates need no call for a byte.
int h264_nal::encode_header() const
{
    if (!valid)
        return -1;
    return (nal_ref_idc & 3) << 5 | static_cast<int>(nal_unit_type & 31U);
}

void h264_nal::decode_header(unsigned char b)
{
    const bool forbidden_zero_bit = (b & 0x80) != 0;
    valid = !forbidden_zero_bit;
    if (forbidden_zero_bit)
        return;
    nal_ref_idc = static_cast<unsigned char>(b >> 5);
    nal_unit_type = static_cast<h264_nal_unit_type>(b & 31);
}

template class h2645_common_nal_reader<h264_nal, h2645_common_nalfmt>;
template class h2645_common_nal_writer<h264_nal, h2645_common_nalfmt>;

} // namespace brenik
