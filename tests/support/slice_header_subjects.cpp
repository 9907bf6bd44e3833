// Slice headers of the newer interface, with several pairs of parameter sets.
#include "support/subject_of.h"

#include "support/literal_slice_parse.h"
#include "support/slice_context.h"

#include <cstdint>

namespace support {

namespace {

/// The parameter sets of the context, and others beside them that a damaged id may hit.
slice_header_parses parses_in(const slice_context& context)
{
    slice_header_parses parses;
    parses.nal = context.nal;
    for (std::uint32_t id = 0; id < 16; ++id) {
        slice_context other;
        other.sps.separate_colour_plane_flag = id % 5 == 1;
        other.sps.log2_max_frame_num_minus4 = 3 * id;
        other.sps.frame_mbs_only_flag = id % 2 == 0;
        other.sps.pic_order_cnt_type = id % 3;
        other.sps.log2_max_pic_order_cnt_lsb_minus4 = id % 4 == 3 ? 250 + id % 8 : id;
        other.sps.delta_pic_order_always_zero_flag = id % 7 == 0;
        other.pps.seq_parameter_set_id = id + id / 15; // that of the last PPS is absent
        other.pps.bottom_field_pic_order_in_frame_present_flag = id % 4 < 2;
        other.pps.redundant_pic_cnt_present_flag = id % 3 == 0;
        parses.sps_store.insert_or_assign(id, other.sps);
        parses.pps_store.insert_or_assign(id, other.pps);
    }
    parses.sps_store.insert_or_assign(context.sps_id, context.sps);
    parses.pps_store.insert_or_assign(context.pps_id, context.pps);
    return parses;
}

/// What two slices left: every field and both lists hold something, field_pic_flag apart.
brenik::h264_nal_slice_header filled_slice()
{
    brenik::h264_nal_slice_header left;
    for (const slice_header_description& slice : {full_field_slice(0), full_slice(1)})
        parses_in(context_of(slice))(left, all_bits(written(slice)));
    return left;
}

subject slice_subject(const std::string& name, const slice_header_description& slice, const slice_context& context)
{
    subject made = subject_of(name, parses_in(context), written(slice), filled_slice());
    // first_mb_in_slice 0, the kinds of slices, and PPS 0
    made.first_bytes = {0b11100101, 0b10101010, 0b10111110, 0b10010011, 0b10010111};
    return made;
}

/// An object that keeps its field_pic_flag, where the standard infers 0.
subject slice_with_kept_flag()
{
    slice_header_description slice = slice_of_type(0);
    slice.pic_order_cnt_lsb = 11;
    slice_context context = context_of(slice);
    context.pps.bottom_field_pic_order_in_frame_present_flag = true;
    brenik::h264_nal_slice_header field = filled_slice();
    field.field_pic_flag = true;
    subject made = subject_of("kept field_pic_flag", parses_in(context), written(slice), field);
    made.end.reset();
    return made;
}

} // namespace

std::vector<subject> slice_header_subjects()
{
    std::vector<subject> all;
    const auto add = [&](const std::string& name, const slice_header_description& slice, bool typical = true) {
        all.push_back(slice_subject(name, slice, context_of(slice)));
        all.back().typical = typical;
    };
    for (std::uint32_t type = 0; type < 10; ++type)
        add("type " + std::to_string(type), slice_of_type(type), type < 3);
    for (const unsigned int order : {0U, 1U}) {
        add("frame of order " + std::to_string(order), full_slice(order));
        add("field of order " + std::to_string(order), full_field_slice(order));
    }
    for (const std::uint32_t type : {0U, 2U, 6U}) {
        slice_header_description slice = full_slice(0);
        slice.slice_type = type;
        slice.idr_pic_id.reset();
        slice.colour_plane_id.reset();
        add("not IDR, type " + std::to_string(type), slice, false);
    }
    for (const unsigned int width : {16U, 25U, 26U, 32U}) {
        slice_header_description slice = full_slice(0);
        slice.frame_num_width = width;
        slice.pic_order_cnt_lsb_width = 36 - width;
        add("frame_num of " + std::to_string(width) + " bits", slice, false);
    }
    slice_header_description long_lists = slice_of_type(1);
    for (std::uint32_t i = 0; i < 30; ++i) {
        long_lists.ref_pic_list_modification_l0.steps->push_back({i % 3, 2 * i});
        long_lists.ref_pic_list_modification_l1.steps->push_back({4 + i});
    }
    add("long lists", long_lists);
    slice_context extension;
    extension.nal.nal_unit_type = static_cast<brenik::h264_nal_unit_type>(20);
    all.push_back(slice_subject("unit of type 20", slice_of_type(7), extension));
    all.push_back(slice_with_kept_flag());
    for (const std::uint32_t log2_minus4 : {60U, 252U, 300U}) { // fields of 64, 0 and 48 bits
        slice_context wide = context_of(full_slice(0));
        wide.sps.log2_max_frame_num_minus4 = log2_minus4;
        wide.sps.log2_max_pic_order_cnt_lsb_minus4 = 360 - log2_minus4;
        all.push_back(slice_subject("log2 of " + std::to_string(log2_minus4 + 4), full_slice(0), wide));
        all.back().end.reset();
        all.back().typical = false;
    }
    return all;
}

} // namespace support
