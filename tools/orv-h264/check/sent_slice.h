// What is kept of a slice until its access unit is complete: an access unit has the contents of its first slices alone.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <deque>
#include <optional>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// A slice or partition of the base layer or view, or of an auxiliary picture. Without `has_header` its type,
/// nal_ref_idc and, of partitions, slice_id count.
struct sent_slice {
    std::uint64_t unit = 0; ///< its number
    std::uint8_t nal_unit_type = 0;
    std::uint8_t nal_ref_idc = 0;
    bool has_header = false; ///< it was read without failure
    std::optional<std::uint32_t> slice_id = {};
    std::uint32_t first_mb_in_slice = 0;
    std::uint32_t slice_type = 0;
    std::uint32_t pic_parameter_set_id = 0;
    std::uint8_t colour_plane_id = 0;
    std::uint32_t frame_num = 0;
    bool field_pic_flag = false;
    bool bottom_field_flag = false;
    std::uint32_t idr_pic_id = 0;
    std::uint32_t pic_order_cnt_lsb = 0;
    std::int32_t delta_pic_order_cnt_bottom = 0;
    std::int32_t delta_pic_order_cnt[2] = {};
    std::uint32_t redundant_pic_cnt = 0;
    bool sp_for_switch_flag = false;
    std::uint32_t slice_group_change_cycle = 0;
    bool marking_as_before = true; ///< its dec_ref_pic_marking() is that of the latest slice of its redundant_pic_cnt

    bool idr() const { return nal_unit_type == 5; }
    bool reference() const { return nal_ref_idc != 0; }
};

/// The slices of units that came, those of the access unit at hand among them.
class sent_slices {
public:
    void add(const h264::unit_reading& reading);
    /// The one that the unit of this number is; null where it is none, or is known no more.
    const sent_slice* find(std::uint64_t unit) const;
    /// Units before this one are looked for no more.
    void drop_before(std::uint64_t unit);

private:
    static constexpr std::size_t most = std::size_t{1} << 17;

    std::deque<sent_slice> slices;
    h264::dec_ref_pic_marking marking; // of the latest slice
    std::uint32_t redundant_pic_cnt = 0;
};

} // namespace orv_h264
