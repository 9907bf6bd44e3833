// Seeds of the targets that read, write and edit units: one of every kind that has a text, and of every kind of SEI
// message, behind the parameter sets that it stands on. Those units and sets are made up until they are short.
#include "seeds.h"

#include "support/coded_kinds.h"
#include "support/small_units.h"
#include "support/unit_maker.h"

#include <algorithm>
#include <functional>

namespace fuzz {

namespace {

using namespace orv_utils_v4::h264;

constexpr std::size_t longest_sets = 250;
constexpr std::size_t longest_unit = 250;
constexpr int most_tries = 200;

/// In Annex B; nothing when it cannot be written.
bytes framed(const nal_unit& unit, const unit_context& context)
{
    const bytes written_unit = written(unit, context);
    bytes out(2 * written_unit.size() + 8);
    out.resize(frame(written_unit.data(), written_unit.size(), 0, false, out.data(), out.size()));
    return out;
}

bytes sets_of(const unit_context& context)
{
    const parameter_sets& sets = *context.sets;
    return stream_builder()
        .raw(framed(unit_of(7, *sets.sps[0]), {}))
        .raw(framed(unit_of(15, *sets.subset_sps[0]), {}))
        .raw(framed(unit_of(8, *sets.pps[0]), context));
}

/// The longest of some that are short enough; `make` makes one.
bytes made_stream(unit_maker& maker, const std::function<nal_unit()>& make)
{
    bytes longest;
    for (int tries = 0; tries < most_tries; ++tries) {
        maker.renew_sets();
        const nal_unit unit = make();
        const bytes sets = sets_of(maker.context());
        const bytes last = framed(unit, maker.context());
        if (sets.size() > longest_sets || last.size() > longest_unit)
            continue;
        const bytes stream = behind(sets, last);
        if (stream.size() > longest.size())
            longest = stream;
        if (tries % 4 == 3)
            break;
    }
    return longest;
}

void add_stream(seed_table& to, const std::string& name, const bytes& stream)
{
    if (stream.empty())
        return;
    to["derived_values"][name] = to["syntax_identity"][name] = to["syntax_unit"][name] = behind({0}, stream);
}

/// An SPS of every profile with every choice of the constraints that name it.
bytes profiles()
{
    stream_builder stream;
    for (const unsigned profile_idc :
         {44U, 66U, 77U, 83U, 86U, 88U, 100U, 110U, 118U, 122U, 128U, 134U, 135U, 138U, 139U, 244U, 99U})
        for (unsigned flags = 0; flags < 16; ++flags) {
            seq_parameter_set_data sps = sps_data();
            sps.profile_idc = static_cast<std::uint8_t>(profile_idc);
            sps.constraint_set1_flag = (flags & 1) != 0;
            sps.constraint_set3_flag = (flags & 2) != 0;
            sps.constraint_set4_flag = (flags & 4) != 0;
            sps.constraint_set5_flag = (flags & 8) != 0;
            stream.raw(framed(sps_unit(sps), {}));
        }
    return stream;
}

/// An SPS of every level and one of none, with every aspect ratio, two rates, and a cropping that leaves nothing.
bytes levels()
{
    stream_builder stream;
    unsigned idc = 0;
    for (const unsigned level_idc :
         {9U, 10U, 11U, 12U, 13U, 20U, 21U, 22U, 30U, 31U, 32U, 40U, 41U, 42U, 50U, 51U, 52U, 60U, 61U, 62U, 99U}) {
        seq_parameter_set_data sps = timed_sps_data(0, 24);
        sps.level_idc = static_cast<std::uint8_t>(level_idc);
        sps.vui_parameters.aspect_ratio_info_present_flag = true;
        sps.vui_parameters.aspect_ratio_idc = static_cast<std::uint8_t>(idc < 18 ? idc : 255);
        sps.vui_parameters.sar_width = sps.vui_parameters.sar_height = static_cast<std::uint16_t>(idc % 2);
        sps.vui_parameters.timing_info_present_flag = true;
        sps.vui_parameters.num_units_in_tick = 1;
        sps.vui_parameters.time_scale = 50;
        sps.frame_cropping_flag = true;
        sps.frame_crop_left_offset = idc++;
        stream.raw(framed(sps_unit(sps), {}));
    }
    seq_parameter_set_data above = sps_data(0, 4000, 4000);
    above.constraint_set3_flag = true;
    above.level_idc = 11;
    return stream.raw(framed(sps_unit(above), {}));
}

/// Slices of both directions with slice groups of this kind, in a picture of 4 by 3 and in one with lists.
bytes slice_groups(std::uint32_t slice_group_map_type)
{
    stream_builder stream;
    for (const bool direction : {false, true}) {
        small_sets s;
        seq_parameter_set_data& sps = s.sps.seq_parameter_set_data;
        sps.profile_idc = direction ? 100 : 77;
        sps.seq_scaling_matrix_present_flag = direction;
        sps.seq_scaling_list_present_flag[1] = sps.seq_scaling_list_present_flag[6] = direction;
        for (const int list : {1, 6}) {
            sps.lists[list].delta_scale.resize(direction ? 1U : 0U);
            if (direction)
                sps.lists[list].delta_scale.back() = -8;
        }
        s.pps.num_slice_groups_minus1 = slice_group_map_type >= 3 && slice_group_map_type <= 5 ? 1 : 2;
        s.pps.slice_group_map_type = slice_group_map_type;
        s.pps.slice_group_change_direction_flag = direction;
        s.pps.slice_group_change_rate_minus1 = 1;
        s.pps.run_length_minus1[0] = 3;
        s.pps.bottom_right[0] = 5;
        s.pps.top_left[1] = 6;
        s.pps.bottom_right[1] = 11;
        if (slice_group_map_type == 6) {
            s.pps.pic_size_in_map_units_minus1 = 11;
            s.pps.slice_group_id.resize(12, 1);
        }
        s.pps.transform_8x8_mode_sent = s.pps.transform_8x8_mode_flag = s.pps.pic_scaling_matrix_present_flag =
            direction;
        s.pps.pic_scaling_list_present_flag[7] = direction;
        s.pps.lists[7].delta_scale.resize(direction ? 2U : 0U);
        if (direction)
            s.pps.lists[7].delta_scale.back() = -8;
        nal_unit slice = slice_unit(5);
        std::get<slice_layer_without_partitioning_rbsp>(slice.rbsp).slice_header.slice_group_change_cycle = 4;
        stream.raw(framed(unit_of(7, s.sps), {}))
            .raw(framed(unit_of(8, s.pps), s.context))
            .raw(framed(slice, s.context));
    }
    return stream;
}

/// Values that lead where chance hardly does.
using forced_values = std::map<std::string, std::int64_t>;

void add_forced(seed_table& to, const std::string& name, unsigned nal_unit_type, std::uint32_t payload_type, int count,
                const forced_values& values)
{
    unit_maker maker(nal_unit_type + payload_type);
    for (const auto& [element, value] : values)
        maker.force(element, value);
    for (int i = 0; i < count; ++i)
        add_stream(to, name + "_" + std::to_string(i), made_stream(maker, [&] {
                       return nal_unit_type == 6 ? maker.make_sei(payload_type) : maker.make(nal_unit_type);
                   }));
}

void add_rare(seed_table& to)
{
    add_forced(to, "made_scalable", 20, 0, 8, {{"svc_extension_flag", 1}});
    add_forced(to, "made_views", 20, 0, 4, {{"svc_extension_flag", 0}});
    add_forced(to, "made_prefix", 14, 0, 4, {{"svc_extension_flag", 1}});
    add_forced(to, "made_depth", 21, 0, 4, {{"avc_3d_extension_flag", 1}, {"nal_ref_idc", 1}});
    for (const std::int64_t slice_type : {0, 1, 2, 3, 4})
        add_forced(to, "made_slice_" + std::to_string(slice_type), 1, 0, 3,
                   {{"slice_type", slice_type}, {"nal_ref_idc", 1}, {"weighted_pred_flag", 1}});
    const forced_values timed = {{"vui_parameters_present_flag", 1},
                                 {"nal_hrd_parameters_present_flag", 1},
                                 {"vcl_hrd_parameters_present_flag", 1},
                                 {"cpb_cnt_minus1", 0},
                                 {"pic_struct_present_flag", 1},
                                 {"clock_timestamp_flag", 1},
                                 {"seconds_flag", 1},
                                 {"minutes_flag", 1}};
    add_forced(to, "made_period", 6, 0, 2, timed);
    add_forced(to, "made_timing", 6, 1, 4, timed);
    for (const std::int64_t model : {0, 1, 2, 3, 4})
        add_forced(to, "made_tone_map_" + std::to_string(model), 6, 23, 1,
                   {{"tone_map_cancel_flag", 0}, {"tone_map_model_id", model}, {"target_bit_depth", 3}});
    add_forced(to, "made_regions", 6, 202, 4, {{"ar_cancel_flag", 0}, {"ar_object_label_present_flag", 1}});
    add_forced(to, "made_grain", 6, 19, 2,
               {{"film_grain_characteristics_cancel_flag", 0}, {"num_intensity_intervals_minus1", 1}});
    add_forced(to, "made_spare", 6, 8, 3, {{"spare_area_idc", 2}});
    add_forced(to, "made_spare_flags", 6, 8, 1, {{"spare_area_idc", 1}});
}

} // namespace

void add_text_seeds(seed_table& to)
{
    add_rare(to);
    to["derived_values"]["profiles"] = behind({0}, profiles());
    to["derived_values"]["levels"] = behind({0}, levels());
    for (std::uint32_t map_type = 0; map_type <= 7; ++map_type)
        to["derived_values"]["slice_groups_" + std::to_string(map_type)] = behind({0}, slice_groups(map_type));
    for (const unsigned type : coded_types) {
        unit_maker maker(type);
        for (int i = 0; i < 3; ++i)
            add_stream(to, "made_type_" + std::to_string(type) + "_" + std::to_string(i),
                       made_stream(maker, [&] { return maker.make(type); }));
    }
    for (const std::uint32_t type : payload_types) {
        unit_maker maker(type);
        for (int i = 0; i < 2; ++i)
            add_stream(to, "made_message_" + std::to_string(type) + "_" + std::to_string(i),
                       made_stream(maker, [&] { return maker.make_sei(type); }));
    }
}

} // namespace fuzz
