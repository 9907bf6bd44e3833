// What a parameter set says of itself, and which one a slice names: no more than handing parameter sets out needs.
#pragma once

#include <orv-utils-v4/h264_syntax/nal_unit.h>
#include <orv-utils-v4/h264_syntax/parameter_set_store.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

constexpr unsigned sps_type = 7;
constexpr unsigned pps_type = 8;
constexpr unsigned sps_extension_type = 13;
constexpr unsigned subset_sps_type = 15;

/// The unit is of a kind that a store keeps.
constexpr bool is_kept_set(unsigned type) noexcept
{
    return type == sps_type || type == pps_type || type == sps_extension_type || type == subset_sps_type;
}

/// Data of a slice, or what belongs to them: nothing of the picture's parameter sets comes behind.
constexpr bool is_slice(unsigned type) noexcept
{
    return (type >= 1 && type <= 5) || type == 19 || type == 20 || type == 21;
}

/// Ids of a parameter set: its own, and the one of its SPS; those of an SPS are the same.
struct set_ids {
    std::uint32_t id = ~std::uint32_t{0};
    std::uint32_t sps_id = ~std::uint32_t{0};
};

/// Those of what was read; beyond all ids where that is no such set.
set_ids ids_of(const nal_unit& unit) noexcept;

/// The first elements of the unit are read: those with the ids of a parameter set, or of a slice the
/// pic_parameter_set_id.
void read_start(nal_unit& to, const unit_view& unit, outcome& result) noexcept;

/// The data of an SPS or a subset SPS; null of another unit.
const seq_parameter_set_data* sps_data_of(const nal_unit& unit) noexcept;

} // namespace orv_utils_v4::h264
