// Small sound streams of what encoders at hand do not make: layers, views, data partitions, slice groups and redundant
// pictures. They are written by the library, unit by unit, and their slice data are a byte each.
#pragma once

#include "support/made_stream.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

namespace orv_utils_v4::h264 {

/// How many access units each of these streams has.
constexpr std::uint32_t special_pictures = 3;

/// The SPS of 4 by 3 macroblocks, in another profile.
inline seq_parameter_set_data sps_of_profile(std::uint8_t profile_idc)
{
    seq_parameter_set_data sps = sps_data();
    sps.profile_idc = profile_idc;
    return sps;
}

/// Slice number n of a stream of IPP…, all of them references, in decoding order.
inline made_slice slice_of_picture(std::uint32_t n)
{
    made_slice slice = n == 0 ? idr() : reference(n);
    slice.header.slice_type = n == 0 ? 7 : 5;
    return slice;
}

/// Gives a stream a subset SPS with the id 1, and a PPS with the id 1 that slices of type 20 stand on.
class special_layer {
public:
    special_layer(made_stream& stream, subset_seq_parameter_set_rbsp of_subset) : subset(std::move(of_subset))
    {
        subset.seq_parameter_set_data.seq_parameter_set_id = 1;
        stream.sets.sets.subset_sps[1] = &subset;
        stream.sets.sets.pps[1] = &pps;
        stream.add_sets().add(unit_of(15, subset)).add(unit_of(8, pps));
    }
    special_layer(const special_layer&) = delete;
    special_layer& operator=(const special_layer&) = delete;

private:
    subset_seq_parameter_set_rbsp subset;
    pic_parameter_set_rbsp pps = pps_rbsp(1, 1);
};

/// A unit of type 14 or 20 with the extension of a layer; in picture n of the stream.
template <class Rbsp>
nal_unit unit_of_layer(unsigned nal_unit_type, const Rbsp& rbsp, std::uint32_t n, std::uint8_t dependency_id,
                       std::uint8_t quality_id)
{
    nal_unit unit = unit_of(nal_unit_type, rbsp);
    unit.header.nal_ref_idc = 1;
    unit.header.svc_extension_flag = true;
    nal_unit_header_svc_extension& svc = unit.header.nal_unit_header_svc_extension;
    svc.idr_flag = n == 0;
    svc.no_inter_layer_pred_flag = dependency_id == 0;
    svc.dependency_id = dependency_id;
    svc.quality_id = quality_id;
    svc.temporal_id = n % 2;
    svc.output_flag = true;
    return unit;
}

/// Scalable High: a base layer with prefix units; a layer twice as wide and as high, and one more of its quality.
inline std::vector<unsigned char> scalable_stream()
{
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = sps_data(1, 8, 6);
    subset.seq_parameter_set_data.profile_idc = 86;
    subset.seq_parameter_set_svc_extension.inter_layer_deblocking_filter_control_present_flag = true;
    made_stream stream(sps_of_profile(100));
    const special_layer layer(stream, subset);
    for (std::uint32_t n = 0; n < special_pictures; ++n) {
        stream.add(unit_of_layer(14, prefix_nal_unit_rbsp(), n, 0, 0)).add(slice_of_picture(n));
        for (const std::uint8_t quality_id : {std::uint8_t{0}, std::uint8_t{1}}) {
            slice_header_in_scalable_extension header;
            header.slice_type = n == 0 ? 7 : 5;
            header.pic_parameter_set_id = 1;
            header.frame_num = n;
            header.adaptive_base_mode_flag = true;
            header.scan_idx_end = quality_id == 0 ? 5 : 15;
            slice_layer_extension_rbsp slice;
            slice.header = header;
            stream.add(unit_of_layer(20, slice, n, 1, quality_id));
        }
    }
    return stream.bytes;
}

/// Multiview High (118) or Stereo High (128): these views, the base view first; each other one refers to it.
inline subset_seq_parameter_set_rbsp multiview_sps(std::uint8_t profile_idc, const std::vector<std::uint16_t>& view_ids)
{
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = sps_of_profile(profile_idc);
    seq_parameter_set_mvc_extension& mvc = subset.seq_parameter_set_mvc_extension;
    mvc.num_views_minus1 = static_cast<std::uint32_t>(view_ids.size() - 1);
    mvc_operation_point all;
    all.applicable_op_num_target_views_minus1 = mvc.num_views_minus1;
    all.applicable_op_num_views_minus1 = mvc.num_views_minus1;
    for (const std::uint16_t view_id : view_ids) {
        all.applicable_op_target_view_id.push_back(view_id);
        mvc_view view;
        view.view_id = view_id;
        view.references.num_anchor_refs_l0 = 1;
        view.references.anchor_ref_l0.grow();
        view.references.anchor_ref_l0.back() = view_ids[0];
        mvc.views.push_back(view);
    }
    mvc.views[0].references = {};
    mvc.levels.push_back({30, 0, {all}});
    return subset;
}

/// A unit of type 14 or 20 with the extension of a view; in picture n of the stream.
template <class Rbsp>
nal_unit unit_of_view(unsigned nal_unit_type, const Rbsp& rbsp, std::uint32_t n, std::uint16_t view_id, bool base)
{
    nal_unit unit = unit_of(nal_unit_type, rbsp);
    unit.header.nal_ref_idc = 1;
    nal_unit_header_mvc_extension& mvc = unit.header.nal_unit_header_mvc_extension;
    mvc.non_idr_flag = n != 0;
    mvc.view_id = view_id;
    mvc.anchor_pic_flag = n == 0;
    mvc.inter_view_flag = base;
    return unit;
}

/// A stream of that, whose slices in other views are P slices that take the base view first.
inline std::vector<unsigned char> multiview_stream(std::uint8_t profile_idc, const std::vector<std::uint16_t>& view_ids)
{
    made_stream stream(sps_of_profile(100));
    const special_layer layer(stream, multiview_sps(profile_idc, view_ids));
    for (std::uint32_t n = 0; n < special_pictures; ++n) {
        stream.add(unit_of_view(14, prefix_nal_unit_rbsp(), n, view_ids[0], true)).add(slice_of_picture(n));
        for (std::size_t view = 1; view < view_ids.size(); ++view) {
            slice_header header;
            header.slice_type = 5;
            header.pic_parameter_set_id = 1;
            header.frame_num = n;
            header.ref_pic_list_modification.ref_pic_list_modification_flag_l0 = n == 0;
            if (n == 0) {
                header.ref_pic_list_modification.l0.resize(2);
                header.ref_pic_list_modification.l0[0] = {5, 0, 0, 0};
                header.ref_pic_list_modification.l0[1] = {3, 0, 0, 0};
            }
            slice_layer_extension_rbsp slice;
            slice.header = header;
            stream.add(unit_of_view(20, slice, n, view_ids[view], false));
        }
    }
    return stream.bytes;
}

/// Extended profile: an IDR picture, then pictures of two slices in partitions; the last slice has no partition B.
inline std::vector<unsigned char> partitioned_stream()
{
    made_stream stream(sps_of_profile(88));
    stream.add_sets().add(slice_of_picture(0));
    for (std::uint32_t n = 1; n < special_pictures; ++n) {
        for (const std::uint32_t slice_id : {0U, 1U}) {
            const slice_header header = from_macroblock(slice_of_picture(n), 6 * slice_id).header;
            stream.add_partition(2, header, slice_id);
            if (n + 1 < special_pictures || slice_id == 0)
                stream.add_partition(3, header, slice_id);
            stream.add_partition(4, header, slice_id);
        }
    }
    return stream.bytes;
}

/// Of 4 by 3 map units, in two groups (types 3 to 5, which grow by three units a cycle) or three.
inline pic_parameter_set_rbsp slice_groups_pps(std::uint32_t slice_group_map_type)
{
    pic_parameter_set_rbsp pps = pps_rbsp();
    const bool changing = slice_group_map_type >= 3 && slice_group_map_type <= 5;
    pps.num_slice_groups_minus1 = changing ? 1 : 2;
    pps.slice_group_map_type = slice_group_map_type;
    if (slice_group_map_type == 0) {
        const std::uint32_t runs[] = {1, 2, 0};
        std::copy(std::begin(runs), std::end(runs), pps.run_length_minus1);
    } else if (slice_group_map_type == 2) {
        pps.bottom_right[0] = 5;
        pps.top_left[1] = 6;
        pps.bottom_right[1] = 11;
    } else if (changing) {
        pps.slice_group_change_direction_flag = slice_group_map_type == 4;
        pps.slice_group_change_rate_minus1 = 2;
    } else if (slice_group_map_type == 6) {
        pps.pic_size_in_map_units_minus1 = 11;
        pps.slice_group_id = {0, 1, 2, 2, 1, 0, 0, 1, 2, 2, 1, 0};
    }
    return pps;
}

/// Baseline profile with slice groups: a slice for each, which begins with its first macroblock.
inline std::vector<unsigned char> slice_group_stream(std::uint32_t slice_group_map_type)
{
    made_stream stream(sps_of_profile(66));
    stream.pps() = slice_groups_pps(slice_group_map_type);
    stream.add_sets();
    for (std::uint32_t n = 0; n < special_pictures; ++n) {
        made_slice slice = slice_of_picture(n);
        slice.header.slice_group_change_cycle = n + 1;
        std::uint8_t map[12] = {};
        if (!slice_group_map(stream.sps(), stream.pps(), n + 1, map, std::size(map)))
            return {};
        for (std::uint32_t group = 0; group <= stream.pps().num_slice_groups_minus1; ++group) {
            const auto* const first = std::find(std::begin(map), std::end(map), group);
            if (first != std::end(map))
                stream.add(from_macroblock(slice, static_cast<std::uint32_t>(first - map)));
        }
    }
    return stream.bytes;
}

/// Baseline profile: pictures of two slices, and behind each picture it once more, redundant.
inline std::vector<unsigned char> redundant_stream()
{
    made_stream stream(sps_of_profile(66));
    stream.pps().redundant_pic_cnt_present_flag = true;
    stream.add_sets();
    for (std::uint32_t n = 0; n < special_pictures; ++n) {
        for (const std::uint32_t redundant_pic_cnt : {0U, 1U}) {
            for (const std::uint32_t first_mb_in_slice : {0U, 6U})
                stream.add_redundant(from_macroblock(slice_of_picture(n), first_mb_in_slice), redundant_pic_cnt);
        }
    }
    return stream.bytes;
}

} // namespace orv_utils_v4::h264
