#include "support/planted_violation.h"

namespace {

using namespace orv_utils_v4::h264;
using support::planted_violation;

/// A stream with these slices behind its parameter sets, which `change` makes what they shall be.
template <class Change, class Add>
std::vector<unsigned char> with_sets(Change change, Add add)
{
    made_stream stream;
    change(stream.sps());
    stream.add_sets();
    add(stream);
    return stream.bytes;
}

template <class Add>
std::vector<unsigned char> with_slices(Add add)
{
    return with_sets([](seq_parameter_set_data&) {}, add);
}

constexpr planted_violation planted[] = {
    {"an IDR picture that is no reference", "slice-idr-is-reference@2 nal_ref_idc",
     [] { return with_slices([](made_stream& stream) { stream.add_slice(5, 0, [](slice_header&) {}); }); }},
    {"a P slice in an IDR picture", "slice-idr-is-intra@2 slice_type",
     [] {
         return with_slices([](made_stream& stream) {
             made_slice slice = idr();
             slice.header.slice_type = 5;
             stream.add(slice);
         });
     }},
    {"first_mb_in_slice beyond the picture", "slice-begins-inside-picture@3 first_mb_in_slice",
     [] { return with_slices([](made_stream& stream) { stream.add(idr()).add(from_macroblock(idr(), 4000)); }); }},
    {"frame_num 3 in an IDR picture", "slice-idr-begins-numbers@2 frame_num",
     [] {
         return with_slices([](made_stream& stream) {
             made_slice slice = idr();
             slice.header.frame_num = 3;
             stream.add(slice);
         });
     }},
    {"17 entries in the first list", "value-in-range@3 num_ref_idx_l0_active_minus1",
     [] {
         return with_slices([](made_stream& stream) {
             made_slice slice = reference(1);
             slice.header.slice_type = 5;
             slice.header.num_ref_idx_active_override_flag = true;
             slice.header.num_ref_idx_l0_active_minus1 = 16;
             stream.add(idr()).add(slice);
         });
     }},
    {"17 entries in the second list", "value-in-range@3 num_ref_idx_l1_active_minus1",
     [] {
         return with_slices([](made_stream& stream) {
             made_slice slice = reference(1);
             slice.header.slice_type = 6;
             slice.header.num_ref_idx_active_override_flag = true;
             slice.header.num_ref_idx_l1_active_minus1 = 16;
             stream.add(idr()).add(slice);
         });
     }},
    {"SliceQPY 52", "value-in-range@2 slice_qp_delta",
     [] {
         return with_slices([](made_stream& stream) {
             made_slice slice = idr();
             slice.header.slice_qp_delta = 26;
             stream.add(slice);
         });
     }},
    {"SliceQPY -1", "value-in-range@2 slice_qp_delta",
     [] {
         return with_slices([](made_stream& stream) {
             made_slice slice = idr();
             slice.header.slice_qp_delta = -27;
             stream.add(slice);
         });
     }},
    {"operation 5 twice", "slice-operations-once@3 memory_management_control_operation",
     [] {
         return with_slices([](made_stream& stream) {
             stream.add(idr()).add(with(reference(1), {forget_all(), forget_all()}));
         });
     }},
    {"operations 1 and 5 in a header", "slice-reset-without-others@3 memory_management_control_operation",
     [] {
         return with_slices([](made_stream& stream) {
             stream.add(idr()).add(with(reference(1), {unmark_short(0), forget_all()}));
         });
     }},
    {"a long-term index as large as max_num_ref_frames", "value-in-range@3 long_term_frame_idx",
     [] {
         return with_slices([](made_stream& stream) {
             stream.add(idr()).add(with(reference(1), {unmark_short(0), keep_long_below(1), current_to_long(1)}));
         });
     }},
    {"more long-term indexes than frames", "value-in-range@3 max_long_term_frame_idx_plus1",
     [] {
         return with_slices([](made_stream& stream) {
             stream.add(idr()).add(with(reference(1), {unmark_short(0), keep_long_below(2)}));
         });
     }},
    {"a P slice without reference frames", "slice-intra-without-references@3 slice_type",
     [] {
         return with_sets([](seq_parameter_set_data& sps) { sps.max_num_ref_frames = 0; },
                          [](made_stream& stream) {
                              made_slice slice = other(1);
                              slice.header.slice_type = 5;
                              stream.add(idr()).add(slice);
                          });
     }},
    {"a long-term IDR picture without reference frames", "slice-long-term-idr-has-room@2 long_term_reference_flag",
     [] {
         return with_sets([](seq_parameter_set_data& sps) { sps.max_num_ref_frames = 0; },
                          [](made_stream& stream) {
                              made_slice slice = idr();
                              slice.header.dec_ref_pic_marking.long_term_reference_flag = true;
                              stream.add(slice);
                          });
     }},
    {"a B slice in Baseline", "slice-kind-in-profile@3 slice_type",
     [] {
         return with_sets([](seq_parameter_set_data& sps) { sps.profile_idc = 66; },
                          [](made_stream& stream) {
                              made_slice slice = other(1);
                              slice.header.slice_type = 6;
                              stream.add(idr()).add(slice);
                          });
     }},
    {"an SP slice in Main", "slice-kind-in-profile@3 slice_type",
     [] {
         return with_sets([](seq_parameter_set_data& sps) { static_cast<void>(sps); },
                          [](made_stream& stream) {
                              made_slice slice = reference(1);
                              slice.header.slice_type = 8;
                              stream.add(idr()).add(slice);
                          });
     }},
    // Nothing is wrong with these.
    {"the last macroblock, behind the others", "",
     [] { return with_slices([](made_stream& stream) { stream.add(idr()).add(from_macroblock(idr(), 11)); }); }},
    {"16 entries in each list, of one picture",
     "slice-list-is-full@3 num_ref_idx_l0_active_minus1, slice-list-is-full@3 num_ref_idx_l1_active_minus1",
     [] {
         return with_slices([](made_stream& stream) {
             made_slice slice = reference(1);
             slice.header.slice_type = 6;
             slice.header.num_ref_idx_active_override_flag = true;
             slice.header.num_ref_idx_l0_active_minus1 = 15;
             slice.header.num_ref_idx_l1_active_minus1 = 15;
             stream.add(idr()).add(slice);
         });
     }},
    {"SliceQPY 0 and 51", "",
     [] {
         return with_slices([](made_stream& stream) {
             made_slice slice = idr();
             slice.header.slice_qp_delta = 25;
             stream.add(slice);
             slice = reference(1);
             slice.header.slice_qp_delta = -26;
             stream.add(slice);
         });
     }},
    {"operations 2 and 5 together", "slice-reset-without-others@3 memory_management_control_operation",
     [] {
         return with_slices([](made_stream& stream) {
             stream.add(long_term(idr())).add(with(reference(1), {unmark_long(0), forget_all()}));
         });
     }},
    {"operations 4, 5 and 6 once", "",
     [] {
         return with_slices([](made_stream& stream) {
             stream.add(idr()).add(with(reference(1), {forget_all(), keep_long_below(1), current_to_long(0)}));
         });
     }},
    {"a long-term IDR picture", "",
     [] {
         return with_slices([](made_stream& stream) {
             made_slice slice = idr();
             slice.header.dec_ref_pic_marking.long_term_reference_flag = true;
             stream.add(slice);
         });
     }},
    {"a P slice in Baseline", "",
     [] {
         return with_sets([](seq_parameter_set_data& sps) { sps.profile_idc = 66; },
                          [](made_stream& stream) {
                              made_slice slice = reference(1);
                              slice.header.slice_type = 5;
                              stream.add(idr()).add(slice);
                          });
     }},
};

const support::planted_table here("slices", planted);

} // namespace
