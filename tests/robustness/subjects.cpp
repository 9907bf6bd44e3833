// The structures of both interfaces.
#include "subject_of.h"

#include "support/legacy_parse.h"
#include "support/literal_sei_parse.h"
#include "support/literal_slice_parse.h"
#include "support/pps_builder.h"
#include "support/sei_builder.h"
#include "support/slice_context.h"

#include <cstdint>

namespace robustness {

namespace {

using support::bit_range;

/// A real parse over bits: `parse(object, reader)`.
template <typename Structure, typename Parse>
auto over_bits(Parse parse)
{
    return [parse](Structure& object, const bit_range& bits) {
        brenik::h2645_common_bitreader br(bits.start, bits.fence);
        parse(object, br);
    };
}

template <typename Structure>
auto over_bits_alone()
{
    return over_bits<Structure>([](Structure& object, brenik::h2645_common_bitreader& br) { object.parse(br); });
}

/// The object that a parse of the structure leaves.
template <typename Structure, typename Real>
Structure left_by(const support::element_writer& writer, const Real& real)
{
    Structure object{};
    real(object, {writer.made().data(), writer.made().data() + writer.made().size()});
    return object;
}

using subjects = std::vector<subject>;

void add_lists(subjects& all)
{
    for (const unsigned int size : {16U, 64U}) {
        const auto real = over_bits<brenik::h264_scaling_list>(
            [size](auto& list, brenik::h2645_common_bitreader& br) { list.parse(br, size); });
        const auto writer = written(support::rising_list(size, 3));
        const auto filled = left_by<brenik::h264_scaling_list>(written(support::rising_list(64, 20)), real);
        all.push_back(subject_of("scaling_list", support::scaling_list_parses{size}, writer, filled, real));
    }
}

void add_vui(subjects& all)
{
    const auto hrd = over_bits_alone<brenik::h264_hrd_parameters>();
    const auto filled_hrd = left_by<brenik::h264_hrd_parameters>(written(support::hrd_of(5)), hrd);
    for (const std::uint32_t count : {1U, 32U})
        all.push_back(subject_of("hrd", support::hrd_parses(), written(support::hrd_of(count)), filled_hrd, hrd));
    const auto vui = over_bits_alone<brenik::h264_vui_parameters>();
    const auto filled_vui = left_by<brenik::h264_vui_parameters>(written(support::full_vui()), vui);
    for (const support::vui_description& description : {support::vui_description{}, support::full_vui()})
        all.push_back(subject_of("vui", support::vui_parses(), written(description), filled_vui, vui));
}

std::vector<support::sps_description> sps_descriptions()
{
    support::sps_description fields;
    fields.profile_idc = 77;
    fields.pic_order_cnt_type = 2;
    fields.frame_mbs_only_flag = false;
    fields.frame_cropping_flag = true;
    fields.vui = support::vui_description();
    support::sps_description cycle;
    cycle.pic_order_cnt_type = 1;
    cycle.offset_for_ref_frame = {-1, 2, 300};
    support::sps_description high = support::high_sps();
    high.scaling_lists.emplace();
    (*high.scaling_lists)[0] = support::scaling_list_description{{-8}};
    (*high.scaling_lists)[7] = support::scaling_list_description{{4, 4, -16}};
    return {{}, fields, cycle, high, support::full_sps()};
}

void add_sps(subjects& all)
{
    const auto real = over_bits_alone<brenik::h264_nal_sps>();
    const auto filled = left_by<brenik::h264_nal_sps>(written_rbsp(support::full_sps()), real);
    for (const support::sps_description& seq : sps_descriptions())
        all.push_back(subject_of("sps", support::sps_parses(), written_rbsp(seq), filled, real));
}

void add_pps(subjects& all)
{
    const support::pps_parses parses{{{0, {true, 3}}, {1, {false, 3}}, {3, {true, 1}}}};
    brenik::h2645_common_base_store<brenik::h264_nal_sps> store;
    for (const auto& [id, seq] : parses.stored) {
        brenik::h264_nal_sps sps;
        sps.valid = seq.valid;
        sps.chroma_format_idc = static_cast<std::uint32_t>(seq.chroma_format_idc);
        store.insert_or_assign(static_cast<std::uint32_t>(id), sps);
    }
    const auto real = over_bits<brenik::h264_nal_pps>(
        [store](auto& pps, brenik::h2645_common_bitreader& br) { pps.parse(br, store); });
    std::vector<support::pps_description> all_pps = {{}, support::full_pps(3)};
    for (std::uint32_t map_type = 0; map_type <= 6; ++map_type)
        all_pps.push_back(support::pps_of_map_type(map_type));
    const auto filled = left_by<brenik::h264_nal_pps>(written_rbsp(all_pps.back()), real);
    for (const support::pps_description& pps : all_pps)
        all.push_back(subject_of("pps", parses, written_rbsp(pps), filled, real));
}

void add_slices(subjects& all)
{
    support::slice_header_description long_list = support::slice_of_type(1);
    for (std::uint32_t i = 0; i < 12; ++i)
        long_list.ref_pic_list_modification_l0.steps->push_back({i % 3, 2 * i});
    for (const auto& slice :
         {support::slice_of_type(0), support::slice_of_type(1), support::slice_of_type(2), support::full_slice(0),
          support::full_slice(1), support::full_field_slice(1), long_list}) {
        const support::slice_context context = context_of(slice);
        const support::slice_header_parses parses{context.sps_store(), context.pps_store(), context.nal};
        const auto real =
            over_bits<brenik::h264_nal_slice_header>([parses](auto& header, brenik::h2645_common_bitreader& br) {
                header.parse(br, parses.sps_store, parses.pps_store, parses.nal);
            });
        const auto filled = left_by<brenik::h264_nal_slice_header>(written(slice), real);
        all.push_back(subject_of("slice_header", parses, written(slice), filled, real));
    }
}

void add_sei(subjects& all)
{
    const literal::stored_vui vui = {{true}, {true}, true};
    const brenik::h264_nal_sps sps = support::sps_with(vui);
    const auto timing = over_bits<brenik::h264_nal_sei_pic_timing>(
        [sps](auto& object, brenik::h2645_common_bitreader& br) { object.parse(br, sps); });
    const auto timing_writer = written(support::full_pic_timing());
    all.push_back(subject_of("pic_timing", support::pic_timing_parses{vui}, timing_writer,
                             left_by<brenik::h264_nal_sei_pic_timing>(timing_writer, timing), timing));

    const support::buffering_period_parses period_parses{{{0, {{true, 2, 23, 24}, {true, 1, 23, 24}, false}},
                                                          {4, {{true, 128}, {}, false}},
                                                          {5, {{}, {true, 127}, true}}}};
    support::buffering_period_description period;
    period.nal = support::pairs_from(100, 3);
    period.vcl = support::pairs_from(4000, 2);
    const auto period_real = over_bits<brenik::h264_nal_sei_buffering_period>(
        [store = support::store_with(period_parses.stored)](auto& object, brenik::h2645_common_bitreader& br) {
            object.parse(br, store);
        });
    all.push_back(subject_of("buffering_period", period_parses, written(period),
                             left_by<brenik::h264_nal_sei_buffering_period>(written(period), period_real),
                             period_real));

    const auto pan_scan = over_bits_alone<brenik::h264_nal_sei_pan_scan_rect>();
    const auto pan_scan_writer = written(support::pan_scan_of(3));
    all.push_back(subject_of("pan_scan_rect", support::pan_scan_rect_parses(), pan_scan_writer,
                             left_by<brenik::h264_nal_sei_pan_scan_rect>(pan_scan_writer, pan_scan), pan_scan));

    const auto recovery = over_bits_alone<brenik::h264_nal_sei_recovery_point>();
    const auto recovery_writer = written(support::recovery_point_description{300, true, false, 1});
    all.push_back(subject_of("recovery_point", support::recovery_point_parses(), recovery_writer,
                             left_by<brenik::h264_nal_sei_recovery_point>(recovery_writer, recovery), recovery));
}

/// The legacy interface. It leaves one bit of an SPS unread.
void add_legacy(subjects& all)
{
    const auto sps = [](h264_sps& seq, const bit_range& bits) {
        support::parse_fenced(seq, const_cast<unsigned char*>(bits.start), const_cast<unsigned char*>(bits.fence));
    };
    support::sps_description full = support::full_legacy_sps();
    full.vui->bitstream_restriction_flag = false;
    for (const support::sps_description& seq : {support::sps_description{}, sps_descriptions()[2], full})
        all.push_back(
            subject_of("legacy_sps", support::legacy_sps_parses(), written(seq), support::numbered_sps(3), sps));

    const support::slice_header_description slice = support::full_field_slice(0);
    h264_sps stream;
    stream.log2_max_frame_num = static_cast<std::uint8_t>(slice.frame_num_width);
    stream.separate_colour_plane_flag = slice.colour_plane_id ? 1 : 0;
    stream.nal_hrd_parameters_present_flag = stream.pic_struct_present_flag = 1;
    stream.cpb_removal_delay_length = stream.dpb_output_delay_length = 24;
    const support::legacy_slice_parses slices{stream};
    all.push_back(subject_of("legacy_slice", slices, written(slice), h264_nal_slice_info{1, 2, 3, 4, 5, 6, 7},
                             [stream](h264_nal_slice_info& info, const bit_range& bits) {
                                 h264_sps seq = stream;
                                 support::parse_slice(info, bits, seq);
                             }));
    const support::legacy_timing_parses timings{stream};
    all.push_back(subject_of("legacy_timing", timings, written(support::full_pic_timing()),
                             h264_sei_picture_timing_info{9, 9, 9, 9},
                             [stream](h264_sei_picture_timing_info& timing, const bit_range& bits) {
                                 h264_sps seq = stream;
                                 h264_sei_picture_timing_info_parse(&timing, bits.start, bits.fence, seq);
                             }));
}

} // namespace

const std::vector<subject>& all_subjects()
{
    static const subjects all = [] {
        subjects made;
        for (const auto add : {add_lists, add_vui, add_sps, add_pps, add_slices, add_sei, add_legacy})
            add(made);
        return made;
    }();
    return all;
}

} // namespace robustness
