#include "support/planted_slices.h"
#include "support/planted_violation.h"

namespace {

using namespace support;

constexpr planted_violation planted[] = {
    {"operation 1 names a picture before the IDR picture", "marking-unmarks-short-term@3 difference_of_pic_nums_minus1",
     [] {
         return slices_of(sps_of_references(2), {idr(), with(reference(1), {unmark_short(1)})});
     }},
    {"operation 1 names a picture twice", "marking-unmarks-short-term@3 difference_of_pic_nums_minus1",
     [] {
         return slices_of(sps_of_references(2), {idr(), with(reference(1), {unmark_short(0), unmark_short(0)})});
     }},
    {"operation 1 of a frame names one of which a field is left",
     "marking-unmarks-short-term@6 difference_of_pic_nums_minus1",
     [] {
         return slices_of(sps_of_fields(4),
                          {top(idr()), bottom(reference(0)), top(with(reference(1), {unmark_short(1)})),
                           bottom(reference(1)), with(reference(2), {unmark_short(1)})});
     }},
    {"operation 1 names the IDR picture, and one from before frame_num began again", "output-delay-told@0",
     [] {
         return slices_of(sps_of_references(16),
                          {idr(), with(reference(1), {unmark_short(0)}), reference(2), reference(3), reference(4),
                           reference(5), reference(6), reference(7), reference(8), reference(9), reference(10),
                           reference(11), reference(12), reference(13), reference(14), reference(15),
                           with(reference(0), {unmark_short(0), unmark_short(13)})});
     }},
    {"operation 1 names a frame that was inferred", "",
     [] {
         return slices_of(sps_of_gaps(4), {idr(), reference(2), with(reference(3), {unmark_short(1)})});
     }},
    {"operation 2 names an index that is not assigned", "marking-unmarks-long-term@3 long_term_pic_num",
     [] {
         return slices_of(sps_of_references(2), {long_term(idr()), with(reference(1), {unmark_long(1)})});
     }},
    {"operation 2 names the IDR picture", "",
     [] {
         return slices_of(sps_of_references(2), {long_term(idr()), with(reference(1), {unmark_long(0)})});
     }},
    {"operation 2 names a long-term picture that operation 4 has taken",
     "marking-unmarks-long-term@3 long_term_pic_num",
     [] {
         return slices_of(sps_of_references(2),
                          {long_term(idr()), with(reference(1), {keep_long_below(0), unmark_long(0)})});
     }},
    {"operation 3 names a picture before the IDR picture",
     "marking-lengthens-short-term@3 difference_of_pic_nums_minus1",
     [] {
         return slices_of(sps_of_references(2), {idr(), with(reference(1), {keep_long_below(1), short_to_long(1, 0)})});
     }},
    {"operation 3 names a frame that was inferred", "marking-lengthens-short-term@4 difference_of_pic_nums_minus1",
     [] {
         return slices_of(sps_of_gaps(4),
                          {idr(), reference(2), with(reference(3), {keep_long_below(1), short_to_long(1, 0)})});
     }},
    {"operation 3 names the IDR picture", "",
     [] {
         return slices_of(sps_of_references(2), {idr(), with(reference(1), {keep_long_below(1), short_to_long(0, 0)})});
     }},
    {"operation 6 where there are no indices", "marking-index-allowed@3 long_term_frame_idx",
     [] {
         return slices_of(sps_of_references(2), {idr(), with(reference(1), {current_to_long(0)})});
     }},
    {"operation 6 with an index that operation 4 forbids", "marking-index-allowed@3 long_term_frame_idx",
     [] {
         return slices_of(sps_of_references(2), {idr(), with(reference(1), {keep_long_below(1), current_to_long(1)})});
     }},
    {"operation 6 behind an operation 5", "marking-index-allowed@3 long_term_frame_idx",
     [] {
         return slices_of(sps_of_references(2),
                          {long_term(idr()), with(reference(1), {forget_all(), current_to_long(0)})});
     }},
    {"operation 6 with the index of a long-term IDR picture", "",
     [] {
         return slices_of(sps_of_references(2), {long_term(idr()), with(reference(1), {current_to_long(0)})});
     }},
    {"operation 3 gives the fields of a frame two indices", "marking-fields-share-index@4 long_term_frame_idx",
     [] {
         return slices_of(sps_of_fields(4),
                          {top(idr()), bottom(reference(0)),
                           top(with(reference(1), {keep_long_below(2), short_to_long(1, 0), short_to_long(2, 1)})),
                           bottom(reference(1))});
     }},
    {"operation 3 gives the fields of a frame one index", "",
     [] {
         return slices_of(sps_of_fields(4),
                          {top(idr()), bottom(reference(0)),
                           top(with(reference(1), {keep_long_below(2), short_to_long(1, 0), short_to_long(2, 0)})),
                           bottom(reference(1))});
     }},
    {"a second frame where there is room for one", "marking-frames-fit@3",
     [] {
         return slices_of(sps_of_references(1), {idr(), with(reference(1), {keep_long_below(1), current_to_long(0)})});
     }},
    {"a second frame, for which an operation makes room", "",
     [] {
         return slices_of(sps_of_references(1), {idr(), with(reference(1), {unmark_short(0)})});
     }},
    {"no operation makes room between long-term frames",
     "marking-window-has-short-term@3 adaptive_ref_pic_marking_mode_flag",
     [] {
         return slices_of(sps_of_references(1), {long_term(idr()), reference(1)});
     }},
    {"an operation makes room between long-term frames", "",
     [] {
         return slices_of(sps_of_references(1), {long_term(idr()), with(reference(1), {unmark_long(0)})});
     }},
    {"the second field of a long-term one is short-term", "marking-second-field-has-index@3",
     [] {
         return slices_of(sps_of_fields(2), {top(long_term(idr())), bottom(reference(0))});
     }},
    {"the second field has another index than the first one", "marking-second-field-has-index@5",
     [] {
         return slices_of(sps_of_fields(3), {top(idr()), bottom(reference(0)),
                                             top(with(reference(1), {keep_long_below(2), current_to_long(0)})),
                                             bottom(with(reference(1), {current_to_long(1)}))});
     }},
    {"both fields are long-term", "",
     [] {
         return slices_of(sps_of_fields(2), {top(long_term(idr())), bottom(with(reference(0), {current_to_long(0)}))});
     }},
    {"operation 5 between two fields",
     "picture-has-both-fields@2, marking-reset-between-fields@3 memory_management_control_operation, "
     "picture-has-both-fields@3",
     [] {
         return slices_of(sps_of_fields(2), {top(idr()), bottom(with(reference(0), {forget_all()}))});
     }},
    {"operation 5 in a first field", "",
     [] {
         return slices_of(sps_of_fields(2), {top(idr()), bottom(reference(0)), top(with(reference(1), {forget_all()})),
                                             bottom(reference(0))});
     }},
};

const support::planted_table here("marking", planted);

} // namespace
