// The patterns: bytes over and over, and structures that announce more than there is.
#include "adversary.h"

#include "support/pps_builder.h"
#include "support/slice_header_builder.h"
#include "support/sps_builder.h"

#include <algorithm>
#include <stdexcept>

namespace bounded {

namespace {

using bytes = std::vector<unsigned char>;

constexpr std::uint32_t huge_count = 1U << 25;

/// The bytes over and over.
bytes repeated(std::size_t size, const bytes& pattern)
{
    bytes made(size);
    for (std::size_t i = 0; i < size; ++i)
        made[i] = pattern[i % pattern.size()];
    return made;
}

/// What was written up to an element, and one bits from there on: codes that are as short as can be, without end.
bytes endless_from(std::size_t size, const support::element_writer& writer, const std::string& element)
{
    const auto& all = writer.elements();
    const auto found = std::find_if(all.begin(), all.end(), [&](const auto& e) { return e.name == element; });
    if (found == all.end())
        throw std::logic_error("there is no element " + element);
    bytes made = support::first_bits(writer.made(), found->position);
    if (found->position % 8 != 0)
        made.back() = static_cast<unsigned char>(made.back() | 0xFF >> found->position % 8);
    made.resize(size, 0xFF);
    return made;
}

bytes sps_with_a_long_cycle(std::size_t size)
{
    support::sps_description sps;
    sps.pic_order_cnt_type = 1;
    sps.num_ref_frames_in_pic_order_cnt_cycle = huge_count;
    sps.offset_for_ref_frame = {0};
    return endless_from(size, written(sps), "offset_for_ref_frame");
}

bytes pps_with_a_large_map(std::size_t size)
{
    support::pps_description pps = support::pps_of_map_type(6);
    pps.pic_size_in_map_units_minus1 = huge_count - 1;
    return endless_from(size, written(pps), "slice_group_id");
}

bytes pps_with_many_groups(std::size_t size)
{
    support::element_writer writer;
    writer.ue("pic_parameter_set_id", 0).ue("seq_parameter_set_id", 0);
    writer.flag("entropy_coding_mode_flag", false).flag("bottom_field_pic_order_in_frame_present_flag", false);
    writer.ue("num_slice_groups_minus1", huge_count - 1).ue("slice_group_map_type", 0).ue("run_length_minus1", 0);
    return endless_from(size, writer, "run_length_minus1");
}

bytes sps_with_many_cpbs(std::size_t size)
{
    support::sps_description sps;
    sps.vui.emplace().nal_hrd = support::hrd_of(1);
    sps.vui->nal_hrd->cpb_cnt_minus1 = huge_count - 1;
    return endless_from(size, written(sps), "vui.nal_hrd.bit_rate_value_minus1");
}

bytes slice_with_endless_lists(std::size_t size)
{
    support::slice_header_description slice = support::slice_of_type(0);
    slice.ref_pic_list_modification_l0.steps = std::vector<support::modification_step>{{0, 0}};
    return endless_from(size, written(slice), "ref_pic_list_modification_l0.modification_of_pic_nums_idc");
}

bytes zeros_then_a_start_code(std::size_t size)
{
    bytes made(size);
    made[size - 2] = 1;
    made[size - 1] = support::sps;
    return made;
}

bytes run_behind(std::size_t size, unsigned char first)
{
    bytes made(size, 0xFF);
    made[0] = first;
    return made;
}

} // namespace

const std::vector<adversary>& all_adversaries()
{
    static const std::vector<adversary> all = {
        {"zeros", [](std::size_t size) { return bytes(size); }},
        {"00 00 01",
         [](std::size_t size) {
             return repeated(size, {0, 0, 1});
         }},
        {"00 00 02",
         [](std::size_t size) {
             return repeated(size, {0, 0, 2});
         }},
        {"00 00 03",
         [](std::size_t size) {
             return repeated(size, {0, 0, 3});
         }},
        {"forbidden headers",
         [](std::size_t size) {
             return repeated(size, {0, 0, 1, 0x80});
         }},
        {"one-byte units",
         [](std::size_t size) {
             return repeated(size, {0, 0, 1, support::aud});
         }},
        {"zeros, a start code", zeros_then_a_start_code},
        {"FF as SEI type", [](std::size_t size) { return run_behind(size, 0xFF); }},
        {"FF as SEI size", [](std::size_t size) { return run_behind(size, 5); }},
        {"POC cycle of 2^25", sps_with_a_long_cycle},
        {"slice map of 2^25", pps_with_a_large_map},
        {"slice groups, 2^25", pps_with_many_groups},
        {"CPBs, 2^25", sps_with_many_cpbs},
        {"endless lists", slice_with_endless_lists},
    };
    return all;
}

} // namespace bounded
