// The one place where the NAL reader and writer templates become code for H.264.
#include "cpp-template-anticopypasta/h2645_common_nal_reader.template"
#include "cpp-template-anticopypasta/h2645_common_nal_writer.template"

#include <orv-utils-v4/h264/nal_reader.h>
#include <orv-utils-v4/h264/nal_writer.h>

namespace brenik {

template class h2645_common_nal_reader<h264_nal, h2645_common_nalfmt>;
template class h2645_common_nal_writer<h264_nal, h2645_common_nalfmt>;

} // namespace brenik
