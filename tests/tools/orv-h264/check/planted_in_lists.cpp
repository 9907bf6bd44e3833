#include "support/planted_slices.h"
#include "support/planted_violation.h"

namespace {

using namespace support;

constexpr planted_violation planted[] = {
    {"a list with no change but its end", "slice-list-change-not-empty@3 ref_pic_list_modification_flag_l0",
     [] {
         return slices_of(sps_of_references(1), {idr(), changed(predicted(reference(1)), {})});
     }},
    {"a list with a change", "",
     [] {
         return slices_of(sps_of_references(1), {idr(), changed(predicted(reference(1)), {pic_num_down(0)})});
     }},
    {"two changes of a list of one entry", "slice-list-changes-fit@4 ref_pic_list_modification_flag_l0",
     [] {
         return slices_of(sps_of_references(2),
                          {idr(), reference(1), changed(predicted(reference(2)), {pic_num_down(0), pic_num_down(0)})});
     }},
    {"two changes of a list of two entries", "",
     [] {
         return slices_of(sps_of_references(2),
                          {idr(), reference(1), changed(predicted(reference(2), 2), {pic_num_down(1), pic_num_up(0)})});
     }},
    {"a P frame behind a lone IDR field", "picture-has-both-fields@2, slice-has-reference@3 slice_type",
     [] {
         return slices_of(sps_of_fields(2), {top(idr()), predicted(reference(1))});
     }},
    {"a P field behind its IDR field", "",
     [] {
         return slices_of(sps_of_fields(2), {top(idr()), bottom(predicted(reference(0)))});
     }},
    {"a list with more entries than pictures", "slice-list-is-full@3 num_ref_idx_l0_active_minus1",
     [] {
         return slices_of(sps_of_references(2), {idr(), predicted(reference(1), 2)});
     }},
    {"a list with a picture twice", "",
     [] {
         return slices_of(sps_of_references(2),
                          {idr(), changed(predicted(reference(1), 2), {pic_num_down(0), pic_num_down(15)})});
     }},
    {"a list of the fields of a frame", "",
     [] {
         return slices_of(sps_of_fields(2),
                          {top(idr()), bottom(reference(0)), top(predicted(reference(1), 2)), bottom(reference(1))});
     }},
    {"a change names a short-term picture before the IDR picture",
     "slice-list-names-short-term@4 ref_pic_list_modification_flag_l0",
     [] {
         return slices_of(sps_of_references(2),
                          {idr(), reference(1), changed(predicted(reference(2)), {pic_num_down(4)})});
     }},
    {"a change names a picture that was inferred", "slice-list-names-short-term@4 ref_pic_list_modification_flag_l0",
     [] {
         return slices_of(sps_of_gaps(4), {idr(), reference(2), changed(predicted(reference(3)), {pic_num_down(1)})});
     }},
    {"a change counts up from the picture, which is the IDR picture from below", "",
     [] {
         return slices_of(sps_of_references(2),
                          {idr(), reference(1), changed(predicted(reference(2)), {pic_num_up(13)})});
     }},
    {"a change names an index that is not assigned", "slice-list-names-long-term@3 ref_pic_list_modification_flag_l0",
     [] {
         return slices_of(sps_of_references(2),
                          {long_term(idr()), changed(predicted(reference(1)), {long_pic_num(1)})});
     }},
    {"a change names a long-term IDR picture", "",
     [] {
         return slices_of(sps_of_references(2),
                          {long_term(idr()), changed(predicted(reference(1)), {long_pic_num(0)})});
     }},
};

const support::planted_table here("lists", planted);

} // namespace
