// Valid inputs of the parse targets, made of structures whose elements are known by name and place.
#pragma once

#include "support/legacy_parse.h"
#include "support/pps_builder.h"
#include "support/sei_builder.h"
#include "support/slice_header_builder.h"
#include "support/sps_builder.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace fuzz {

using support::bytes;
using support::element_writer;
using support::stream_builder;
using support::written;
using support::written_rbsp;

/// A structure as it stands in an input: behind some bytes, and a length of so many bytes.
struct part {
    bytes before;
    std::size_t length_size;
    element_writer structure;
    bytes behind = {};
};

using sample = std::vector<part>;

/// The sample, with other data in place of one of its structures.
inline bytes with_replaced(const sample& from, const part& replaced, const bytes& data)
{
    stream_builder made;
    for (const part& p : from) {
        bytes structure = &p == &replaced ? data : p.structure.made();
        if (p.length_size == 1 && structure.size() > 255)
            structure.resize(255);
        made.raw(p.before).prefix(p.length_size, static_cast<std::uint32_t>(structure.size()));
        made.raw(structure).raw(p.behind);
    }
    return made;
}

constexpr std::size_t in_a_row = 1; // behind a byte of options

inline part one_of_a_row(const element_writer& structure, const bytes& head = {})
{
    return {stream_builder().raw(head).raw({0}), in_a_row, structure};
}

/// With one scaling list of 64 entries, so that the length fits a byte.
inline support::sps_description of_few_lists(support::sps_description seq)
{
    for (std::size_t i = 7; i < seq.scaling_lists->size(); ++i)
        (*seq.scaling_lists)[i].reset();
    return seq;
}

inline std::vector<sample> sps_samples()
{
    support::sps_description field_order;
    field_order.pic_order_cnt_type = 1;
    field_order.offset_for_ref_frame = {1, -2, 3};
    support::sps_description timed = support::high_sps(1);
    timed.vui = support::full_vui();
    return {{one_of_a_row(written_rbsp(support::sps_description()))},
            {one_of_a_row(written_rbsp(of_few_lists(support::full_sps())))},
            {one_of_a_row(written_rbsp(timed))},
            {one_of_a_row(written_rbsp(field_order)), one_of_a_row(written_rbsp(timed))}};
}

/// One SPS is stored, valid, with chroma format 1 or 3.
inline std::vector<sample> pps_samples()
{
    support::pps_description default_lists = support::full_pps(3);
    default_lists.scaling_lists->fill(support::scaling_list_description{{-8}});
    const bytes head = {1, 0, 129};
    std::vector<sample> samples;
    for (std::uint32_t map_type = 0; map_type <= 6; ++map_type)
        samples.push_back({one_of_a_row(written_rbsp(support::pps_of_map_type(map_type)), head)});
    samples.push_back({one_of_a_row(written_rbsp(support::pps_of_map_type(0, 128)), head)});
    samples.push_back({one_of_a_row(written_rbsp(support::pps_of_map_type(2, 129)), head)});
    samples.push_back({one_of_a_row(written_rbsp(support::full_pps(1)), head)});
    samples.push_back({one_of_a_row(written_rbsp(default_lists), {1, 0, 131})});
    return samples;
}

/// The pair of parameter sets that goes with a full slice: the lowest two bits of the flags say valid and, in the SPS,
/// separate_colour_plane_flag.
inline bytes slice_head(unsigned int pic_order_cnt_type, bool frame_mbs_only)
{
    const auto sps_flags = static_cast<unsigned char>(1 + 2 + (frame_mbs_only ? 4 : 0) + pic_order_cnt_type * 16);
    return {5, 1, 3, sps_flags, 5, 2, 7, 3, 7};
}

inline std::vector<sample> slice_samples()
{
    std::vector<sample> samples;
    for (const unsigned int type : {0U, 1U}) {
        samples.push_back({one_of_a_row(written_rbsp(support::full_slice(type)), slice_head(type, false))});
        samples.push_back({one_of_a_row(written_rbsp(support::full_field_slice(type)), slice_head(type, false))});
    }
    return samples;
}

inline std::vector<sample> hrd_samples()
{
    support::hrd_description largest;
    largest.cpbs.resize(128);
    return {{one_of_a_row(written(support::hrd_of(1)))},
            {one_of_a_row(written(support::hrd_of(32)))},
            {one_of_a_row(written(largest))}};
}

inline std::vector<sample> vui_samples()
{
    return {{one_of_a_row(written(support::full_vui()))}, {one_of_a_row(written(support::vui_description()))}};
}

inline std::vector<sample> scaling_list_samples()
{
    return {{{{16, 0}, 0, written(support::rising_list(16, 10))}},
            {{{64, 0}, 0, written(support::rising_list(64, 9))}},
            {{{16, 0}, 0, written(support::list_of({9, 10, 0}))}}};
}

/// Three CPBs in both HRDs; 24 bits a delay.
inline std::vector<sample> buffering_period_samples()
{
    support::buffering_period_description period;
    period.nal = support::pairs_from(1000, 3);
    period.vcl = support::pairs_from(2000, 3);
    return {{one_of_a_row(written(period), {1, 0, 7, 2, 23, 24, 2, 23, 24})}};
}

inline std::vector<sample> pic_timing_samples()
{
    return {{one_of_a_row(written(support::full_pic_timing()), {0, 5, 0, 23, 24, 0, 0, 0})}};
}

inline std::vector<sample> pan_scan_rect_samples()
{
    return {{one_of_a_row(written(support::pan_scan_of(3)))}, {one_of_a_row(written(support::pan_scan_of(1)))}};
}

inline std::vector<sample> recovery_point_samples()
{
    return {{one_of_a_row(written(support::recovery_point_description{5, true, false, 2}))}};
}

inline std::vector<sample> legacy_sps_samples()
{
    support::sps_description timed;
    timed.vui = support::full_vui();
    const element_writer full = written_rbsp(support::full_legacy_sps());
    return {{{{0}, 2, written_rbsp(timed)}}, {{{0}, 2, full}}, {{{0}, 2, full}, {{0}, 2, written_rbsp(timed)}}};
}

/// A frame_num of 9 bits; a colour plane, and fields.
inline std::vector<sample> legacy_slice_samples()
{
    return {{{{1, 9}, 1, written(support::full_field_slice(0))}}, {{{1, 9}, 1, written(support::full_slice(0))}}};
}

/// Both delays of 24 bits, in a message of 30 bytes.
inline std::vector<sample> legacy_sei_samples()
{
    return {{{{5, 24, 24, 1, 30}, 0, written(support::full_pic_timing()), {0x80}}}};
}

/// An SPS, a slice, and SEI messages of which the last is a picture timing, that go together.
inline std::vector<sample> generations_samples()
{
    support::sps_description seq;
    seq.log2_max_frame_num_minus4 = 5;
    seq.frame_mbs_only_flag = false;
    seq.log2_max_pic_order_cnt_lsb_minus4 = 2;
    seq.vui.emplace().nal_hrd.emplace();
    seq.vui->pic_struct_present_flag = true;
    support::slice_header_description slice = support::full_slice(0);
    slice.pic_parameter_set_id = 0;
    slice.colour_plane_id.reset();
    slice.redundant_pic_cnt.reset();
    const part picture = {{}, 1, written_rbsp(slice)};
    const part timing = {{38, 5, 1, 0, 1, 0, 1, 30}, 0, written(support::full_pic_timing()), {0x80}};
    support::sps_description other_widths = seq;
    other_widths.vui->nal_hrd->cpb_removal_delay_length_minus1 = 9;
    return {{{{3}, 1, written_rbsp(seq)}, picture, timing},
            {{{3}, 1, written_rbsp(of_few_lists(support::full_legacy_sps()))}, picture, timing},
            {{{3}, 1, written_rbsp(support::high_sps())}, picture, timing},
            {{{3}, 1, written_rbsp(other_widths)}, picture, timing}};
}

/// By their targets.
inline const std::map<std::string, std::vector<sample> (*)()>& sample_makers()
{
    static const std::map<std::string, std::vector<sample> (*)()> makers = {
        {"generations_syntax", generations_samples},
        {"hrd_parameters", hrd_samples},
        {"legacy_sei", legacy_sei_samples},
        {"legacy_slice", legacy_slice_samples},
        {"legacy_sps", legacy_sps_samples},
        {"nal_pps", pps_samples},
        {"nal_slice_header", slice_samples},
        {"nal_sps", sps_samples},
        {"scaling_list", scaling_list_samples},
        {"sei_buffering_period", buffering_period_samples},
        {"sei_pan_scan_rect", pan_scan_rect_samples},
        {"sei_pic_timing", pic_timing_samples},
        {"sei_recovery_point", recovery_point_samples},
        {"vui_parameters", vui_samples},
    };
    return makers;
}

inline std::vector<sample> samples_of(const std::string& target)
{
    return sample_makers().at(target)();
}

} // namespace fuzz
