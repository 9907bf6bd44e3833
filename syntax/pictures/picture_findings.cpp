// What access units and pictures lack, in words.
#include <orv-utils-v4/h264_syntax/access_unit.h>

namespace orv_utils_v4::h264 {

const char* text_of(picture_finding what) noexcept
{
    switch (what) {
    case picture_finding::no_parameter_sets:
        return "a slice names a parameter set that is not there";
    case picture_finding::slice_damaged:
        return "a slice header cannot be read";
    case picture_finding::first_slice_missing:
        return "no slice begins with macroblock 0";
    case picture_finding::unit_out_of_place:
        return "a unit that belongs before the picture stands between its slices";
    case picture_finding::no_primary_picture:
        return "there are slices, but none of a primary coded picture";
    case picture_finding::frame_num_gap:
        return "frames are missing before it";
    case picture_finding::second_field_missing:
        return "a field without the other one of its frame";
    case picture_finding::too_many_frames:
        return "there are more reference frames than max_num_ref_frames";
    case picture_finding::no_such_reference:
        return "a marking operation names a picture that is not there";
    case picture_finding::count_out_of_range:
        return "a picture order count has more than 32 bits";
    case picture_finding::limit_reached:
        return "a limit of the reader is reached";
    }
    return "";
}

} // namespace orv_utils_v4::h264
