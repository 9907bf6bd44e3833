// The text of a whole NAL unit: its header, and the RBSP that its type names (H.264 clause 7.3.1 and Table 7-1).
#pragma once

#include "texts/depth_parameter_set.h"
#include "texts/nal_unit_header.h"
#include "texts/other_units.h"
#include "texts/parameter_sets.h"
#include "texts/sei/sei_message.h"
#include "texts/slice_header.h"
#include "texts/slice_layer_extension.h"
#include "texts/subset_seq_parameter_set.h"

#include <orv-utils-v4/h264_syntax/nal_unit.h>

namespace orv_utils_v4::h264 {

// H.264 7.3.1
template <class Coder>
void code(Coder& c, in<Coder, nal_unit>& x, const unit_context& context)
{
    static constexpr parameter_sets none;
    code(c, x.header);
    if (!c.going()) {
        c.template as<std::monostate>(x.rbsp);
        return;
    }
    const parameter_sets& sets = context.sets != nullptr ? *context.sets : none;
    const slice_context slice = {x.header, sets,
                                 x.header.nal_unit_type == 19 ? context.primary_idr : IdrPicFlag(x.header),
                                 context.partition_a_pps};
    switch (x.header.nal_unit_type) {
    case 1:
    case 5:
    case 19:
        return code_as<slice_layer_without_partitioning_rbsp>(c, x.rbsp, slice);
    case 2:
        return code_as<slice_data_partition_a_layer_rbsp>(c, x.rbsp, slice);
    case 3:
        return code_as<slice_data_partition_b_layer_rbsp>(c, x.rbsp, slice);
    case 4:
        return code_as<slice_data_partition_c_layer_rbsp>(c, x.rbsp, slice);
    case 6:
        return code_as<sei_rbsp>(c, x.rbsp,
                                 sei_context{sets, context.active_sps, context.active_pps, context.mvcd_sps});
    case 7:
        return code_as<seq_parameter_set_rbsp>(c, x.rbsp);
    case 8:
        return code_as<pic_parameter_set_rbsp>(c, x.rbsp, sets);
    case 9:
        return code_as<access_unit_delimiter_rbsp>(c, x.rbsp);
    case 10:
        return code_as<end_of_seq_rbsp>(c, x.rbsp);
    case 11:
        return code_as<end_of_stream_rbsp>(c, x.rbsp);
    case 12:
        return code_as<filler_data_rbsp>(c, x.rbsp);
    case 13:
        return code_as<seq_parameter_set_extension_rbsp>(c, x.rbsp);
    case 14:
        return code_as<prefix_nal_unit_rbsp>(c, x.rbsp, x.header);
    case 15:
        return code_as<subset_seq_parameter_set_rbsp>(c, x.rbsp);
    case 16:
        return code_as<depth_parameter_set_rbsp>(c, x.rbsp);
    case 20:
    case 21:
        return code_as<slice_layer_extension_rbsp>(c, x.rbsp, slice);
    default:
        c.template as<std::monostate>(x.rbsp);
        return;
    }
}

} // namespace orv_utils_v4::h264
