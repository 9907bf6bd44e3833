#include "support/planted_violation.h"
#include "support/special_streams.h"

namespace {

using namespace orv_utils_v4::h264;
using support::planted_violation;

/// An SPS, a PPS and these slices, units 2 and on.
std::vector<unsigned char> of(std::initializer_list<made_slice> slices, const seq_parameter_set_data& sps = sps_data(),
                              const pic_parameter_set_rbsp& pps = pps_rbsp())
{
    made_stream stream(sps);
    stream.pps() = pps;
    stream.add_sets();
    for (const made_slice& slice : slices)
        stream.add(slice);
    return stream.bytes;
}

made_slice typed(made_slice slice, std::uint32_t slice_type)
{
    slice.header.slice_type = slice_type;
    return slice;
}

made_slice switching(made_slice slice, bool sp_for_switch_flag)
{
    slice.header.slice_type = 3;
    slice.header.sp_for_switch_flag = sp_for_switch_flag;
    return slice;
}

made_slice cycled(made_slice slice, std::uint32_t slice_group_change_cycle)
{
    slice.header.slice_group_change_cycle = slice_group_change_cycle;
    return slice;
}

made_slice of_plane(made_slice slice, std::uint8_t colour_plane_id)
{
    slice.header.colour_plane_id = colour_plane_id;
    return slice;
}

seq_parameter_set_data planar_sps()
{
    seq_parameter_set_data sps = sps_of_profile(244);
    sps.chroma_format_idc = 3;
    sps.separate_colour_plane_flag = true;
    return sps;
}

constexpr planted_violation planted[] = {
    {"a picture that comes twice", "picture-differs-from-last@4 first_mb_in_slice",
     [] {
         return of({idr(), reference(1), reference(1)});
     }},
    {"two IDR pictures with one idr_pic_id", "picture-idr-ids-differ@3 idr_pic_id",
     [] {
         return of({idr(), idr()});
     }},
    {"two values of frame_num in a picture", "picture-slices-agree@4 frame_num",
     [] {
         return of({idr(), reference(1), from_macroblock(reference(2), 6)});
     }},
    {"a picture without its first slice", "picture-has-first-slice@4 first_mb_in_slice",
     [] {
         return of({idr(), from_macroblock(idr(), 6), from_macroblock(reference(1), 6)});
     }},
    {"a picture of two colour planes", "picture-has-colour-planes@2",
     [] {
         return of({of_plane(idr(), 0), of_plane(idr(), 2)}, planar_sps());
     }},
    {"two slices from one macroblock on", "slice-begins-once@4 first_mb_in_slice",
     [] {
         return of({idr(), from_macroblock(idr(), 6), from_macroblock(idr(), 6)});
     }},
    {"slices in any order in the Main profile", "slice-order-rising@4 first_mb_in_slice",
     [] {
         return of({idr(), from_macroblock(idr(), 8), from_macroblock(idr(), 4)});
     }},
    {"a P slice in a picture of I slices", "slice-type-of-all@4 slice_type",
     [] {
         return of({idr(), reference(1), from_macroblock(typed(reference(1), 0), 6)});
     }},
    {"two ways of switching in a picture", "slice-switches-alike@4 sp_for_switch_flag",
     [] {
         return of({idr(), switching(reference(1), false), from_macroblock(switching(reference(1), true), 6)},
                   sps_of_profile(88));
     }},
    {"two maps of slice groups in a picture", "slice-groups-alike@3 slice_group_change_cycle",
     [] {
         return of({cycled(idr(), 1), from_macroblock(cycled(idr(), 2), 6)}, sps_of_profile(66), slice_groups_pps(4));
     }},
    {"two ways of marking in a picture", "slice-marks-alike@4 adaptive_ref_pic_marking_mode_flag",
     [] {
         return of({idr(), reference(1), from_macroblock(with(reference(1), {unmark_short(0)}), 6)});
     }},
    {"a first slice that was lost, in pictures that differ in frame_num alone",
     "picture-has-first-slice@6 first_mb_in_slice",
     [] {
         return of({idr(), from_macroblock(idr(), 6), reference(1), from_macroblock(reference(1), 6),
                    from_macroblock(reference(2), 6)});
     }},
    // Nothing is wrong with these.
    {"slices that mark alike", "",
     [] {
         const made_slice marking = with(reference(1), {unmark_short(0)});
         return of({idr(), marking, from_macroblock(marking, 6)});
     }},
    {"pictures that mark in two ways", "",
     [] {
         return of({idr(), with(reference(1), {unmark_short(0)}), reference(2), from_macroblock(reference(2), 6)});
     }},
    {"SP slices that switch, beside others", "",
     [] {
         return of({idr(), switching(reference(1), true), from_macroblock(typed(reference(1), 2), 4),
                    from_macroblock(switching(reference(1), true), 6), switching(reference(2), false)},
                   sps_of_profile(88));
     }},
    {"pictures with two maps of slice groups", "",
     [] {
         return of({cycled(idr(), 1), from_macroblock(cycled(idr(), 1), 6), cycled(reference(1), 2)},
                   sps_of_profile(66), slice_groups_pps(4));
     }},
    {"types 7 and 2 in a picture", "",
     [] {
         return of({idr(), reference(1), from_macroblock(typed(reference(1), 2), 6)});
     }},
};

const support::planted_table here("pictures", planted);

} // namespace
