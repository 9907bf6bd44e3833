// The text of the NAL unit header and its extensions, H.264 clauses 7.3.1, G.7.3.1.1, H.7.3.1.1 and J.7.3.1.1.
#pragma once

#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/nal_unit_header.h>

namespace orv_utils_v4::h264 {

// H.264 G.7.3.1.1
template <class Coder>
void code(Coder& c, in<Coder, nal_unit_header_svc_extension>& x)
{
    const auto here = c.structure("nal_unit_header_svc_extension");
    c.flag("idr_flag", x.idr_flag);
    c.u(6, "priority_id", x.priority_id);
    c.flag("no_inter_layer_pred_flag", x.no_inter_layer_pred_flag);
    c.u(3, "dependency_id", x.dependency_id);
    c.u(4, "quality_id", x.quality_id);
    c.u(3, "temporal_id", x.temporal_id);
    c.flag("use_ref_base_pic_flag", x.use_ref_base_pic_flag);
    c.flag("discardable_flag", x.discardable_flag);
    c.flag("output_flag", x.output_flag);
    c.u(2, "reserved_three_2bits", x.reserved_three_2bits, 3, 3);
}

// H.264 H.7.3.1.1
template <class Coder>
void code(Coder& c, in<Coder, nal_unit_header_mvc_extension>& x)
{
    const auto here = c.structure("nal_unit_header_mvc_extension");
    c.flag("non_idr_flag", x.non_idr_flag);
    c.u(6, "priority_id", x.priority_id);
    c.u(10, "view_id", x.view_id);
    c.u(3, "temporal_id", x.temporal_id);
    c.flag("anchor_pic_flag", x.anchor_pic_flag);
    c.flag("inter_view_flag", x.inter_view_flag);
    c.flag("reserved_one_bit", x.reserved_one_bit, 1, 1);
}

// H.264 J.7.3.1.1
template <class Coder>
void code(Coder& c, in<Coder, nal_unit_header_3davc_extension>& x)
{
    const auto here = c.structure("nal_unit_header_3davc_extension");
    c.u(8, "view_idx", x.view_idx);
    c.flag("depth_flag", x.depth_flag);
    c.flag("non_idr_flag", x.non_idr_flag);
    c.u(3, "temporal_id", x.temporal_id);
    c.flag("anchor_pic_flag", x.anchor_pic_flag);
    c.flag("inter_view_flag", x.inter_view_flag);
}

// H.264 7.3.1, nal_unit() before its RBSP
template <class Coder>
void code(Coder& c, in<Coder, nal_unit_header>& x)
{
    const auto here = c.structure("nal_unit");
    c.f(1, "forbidden_zero_bit", 0);
    c.u(2, "nal_ref_idc", x.nal_ref_idc);
    c.u(5, "nal_unit_type", x.nal_unit_type);
    if (x.extended()) {
        if (x.nal_unit_type != 21)
            c.flag("svc_extension_flag", x.svc_extension_flag);
        else
            c.flag("avc_3d_extension_flag", x.avc_3d_extension_flag);
        if (x.scalable())
            code(c, x.nal_unit_header_svc_extension);
        else if (x.avc_3d())
            code(c, x.nal_unit_header_3davc_extension);
        else
            code(c, x.nal_unit_header_mvc_extension);
    }
}

} // namespace orv_utils_v4::h264
