#include "pictures/set_reading.h"

#include <algorithm>

namespace orv_utils_v4::h264 {

const seq_parameter_set_data* sps_data_of(const nal_unit& unit) noexcept
{
    if (const auto* const sps = std::get_if<seq_parameter_set_rbsp>(&unit.rbsp))
        return &sps->seq_parameter_set_data;
    const auto* const subset = std::get_if<subset_seq_parameter_set_rbsp>(&unit.rbsp);
    return subset == nullptr ? nullptr : &subset->seq_parameter_set_data;
}

set_ids ids_of(const nal_unit& unit) noexcept
{
    if (const seq_parameter_set_data* const sps = sps_data_of(unit))
        return {sps->seq_parameter_set_id, sps->seq_parameter_set_id};
    if (const auto* const extension = std::get_if<seq_parameter_set_extension_rbsp>(&unit.rbsp))
        return {extension->seq_parameter_set_id, extension->seq_parameter_set_id};
    if (const auto* const pps = std::get_if<pic_parameter_set_rbsp>(&unit.rbsp))
        return {pps->pic_parameter_set_id, pps->seq_parameter_set_id};
    return {};
}

// The header has 4 bytes at the most, and three codes 24; with emulation prevention that is less than this.
void read_start(nal_unit& to, const unit_view& unit, outcome& result) noexcept
{
    unsigned char head[64];
    const std::size_t size = unescape(unit.bytes, std::min(unit.size, sizeof head), head, sizeof head);
    read(to, head, size, {}, result);
}

} // namespace orv_utils_v4::h264
