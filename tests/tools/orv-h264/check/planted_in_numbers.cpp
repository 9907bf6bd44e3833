#include "support/planted_violation.h"

namespace {

using namespace orv_utils_v4::h264;
using support::planted_violation;

/// An SPS, a PPS and these slices, units 2 and on.
std::vector<unsigned char> of(const std::vector<made_slice>& slices, const seq_parameter_set_data& sps)
{
    made_stream stream(sps);
    stream.add_sets();
    for (const made_slice& slice : slices)
        stream.add(slice);
    return stream.bytes;
}

/// With pic_order_cnt_type 2: counts are those of frame_num.
std::vector<unsigned char> numbered(const std::vector<made_slice>& slices)
{
    return of(slices, sps_data());
}

std::vector<unsigned char> with_gaps(const std::vector<made_slice>& slices)
{
    seq_parameter_set_data sps = sps_data();
    sps.gaps_in_frame_num_value_allowed_flag = true;
    return of(slices, sps);
}

seq_parameter_set_data counting_sps()
{
    seq_parameter_set_data sps = sps_data();
    sps.pic_order_cnt_type = 0;
    sps.log2_max_pic_order_cnt_lsb_minus4 = 4;
    return sps;
}

/// With pic_order_cnt_type 0.
std::vector<unsigned char> counted(const std::vector<made_slice>& slices)
{
    return of(slices, counting_sps());
}

std::vector<unsigned char> fields(const std::vector<made_slice>& slices)
{
    seq_parameter_set_data sps = counting_sps();
    sps.frame_mbs_only_flag = false;
    sps.pic_height_in_map_units_minus1 = 1;
    return of(slices, sps);
}

/// A frame whose bottom field has another count.
std::vector<unsigned char> counted_apart(const std::vector<made_slice>& slices)
{
    made_stream stream(counting_sps());
    stream.pps().bottom_field_pic_order_in_frame_present_flag = true;
    stream.add_sets();
    for (const made_slice& slice : slices)
        stream.add(slice);
    return stream.bytes;
}

made_slice apart(made_slice slice, std::int32_t delta_pic_order_cnt_bottom)
{
    slice.header.delta_pic_order_cnt_bottom = delta_pic_order_cnt_bottom;
    return slice;
}

/// Reference pictures with picture order counts 0, 2 and so on, but for those from `longer` on, which have 2 more.
std::vector<unsigned char> steps(std::uint32_t pictures, std::uint32_t longer)
{
    std::vector<made_slice> slices = {idr()};
    for (std::uint32_t n = 1; n < pictures; ++n)
        slices.push_back(reference(n % 16, 2 * n + (n >= longer ? 2 : 0)));
    return counted(slices);
}

/// Pictures of three slices, behind a delimiter each; number `less` lacks that of `lacks`: 0 the delimiter, 4 and 8 the
/// slice that begins with that macroblock.
std::vector<unsigned char> alike(std::uint32_t pictures, std::uint32_t less, std::uint32_t lacks)
{
    made_stream stream;
    for (std::uint32_t n = 0; n < pictures; ++n) {
        if (n != less || lacks != 0)
            stream.add_bytes(9, {0xF0});
        if (n == 0)
            stream.add_sets();
        for (const std::uint32_t first_mb_in_slice : {0U, 4U, 8U})
            if (n != less || lacks == 0 || first_mb_in_slice != lacks)
                stream.add(from_macroblock(n == 0 ? idr() : reference(n), first_mb_in_slice));
    }
    return stream.bytes;
}

/// An IDR picture with a recovery point that speaks of slice groups.
std::vector<unsigned char> recovering(const pic_parameter_set_rbsp& pps)
{
    seq_parameter_set_data sps = sps_data();
    sps.profile_idc = 66;
    made_stream stream(sps);
    stream.pps() = pps;
    stream.add_sets().add_bytes(6, {6, 1, 0x8C, 0x80}).add(idr());
    return stream.bytes;
}

pic_parameter_set_rbsp two_growing_groups()
{
    pic_parameter_set_rbsp pps = pps_rbsp();
    pps.num_slice_groups_minus1 = 1;
    pps.slice_group_map_type = 4;
    pps.slice_group_change_rate_minus1 = 2;
    return pps;
}

constexpr planted_violation planted[] = {
    {"frame_num 3 behind 1", "picture-frame-num-goes-on@4 frame_num",
     [] {
         return numbered({idr(), reference(1), reference(3), reference(4)});
     }},
    {"frame_num 2 behind operation 5", "picture-frame-num-goes-on@4 frame_num",
     [] {
         return numbered({idr(), with(reference(1), {forget_all()}), reference(2)});
     }},
    {"frame_num 1 in two reference frames", "picture-frame-num-is-new@4 frame_num",
     [] {
         return counted({idr(), reference(1, 2), reference(1, 4), reference(2, 6)});
     }},
    {"frame_num of the reference frame before in another", "picture-frame-num-is-new@3 frame_num",
     [] {
         return counted({idr(), other(0, 2), reference(1, 4)});
     }},
    {"frame_num 1 in four fields", "picture-frame-num-is-new@6 frame_num, picture-frame-num-is-new@7 frame_num",
     [] {
         return fields({top(idr()), bottom(reference(0, 1)), top(reference(1, 2)), bottom(reference(1, 3)),
                        top(reference(1, 4)), bottom(reference(1, 5))});
     }},
    {"two non-reference frames with pic_order_cnt_type 2", "picture-others-apart@4 nal_ref_idc",
     [] {
         return with_gaps({idr(), other(1), other(2)});
     }},
    {"non-reference frames against their order", "picture-others-in-output-order@5",
     [] {
         return counted({idr(), reference(1, 8), other(2, 6), other(2, 4)});
     }},
    {"a top field alone", "picture-has-both-fields@2",
     [] {
         return fields({top(idr()), top(reference(1, 2)), bottom(reference(1, 3))});
     }},
    {"a count above 2^31 - 1", "picture-counts-fit@3",
     [] {
         return counted_apart({idr(), apart(reference(1, 2), 2147483647)});
     }},
    {"pic_order_cnt_lsb 4 in two frames", "picture-counts-differ@5",
     [] {
         return counted({idr(), reference(1, 4), reference(2, 6), reference(3, 4)});
     }},
    {"a frame between the fields of another", "picture-fields-stay-together@4",
     [] {
         return counted_apart({idr(), apart(reference(1, 2), 4), apart(reference(2, 4), 1)});
     }},
    {"a frame around another", "picture-fields-stay-together@4",
     [] {
         return counted_apart({idr(), apart(reference(1, 4), 1), apart(reference(2, 2), 6)});
     }},
    {"a picture order count that is left out", "picture-counts-go-on@12", [] { return steps(13, 10); }},
    {"a delimiter that is missing", "order-delimiters-as-before@34", [] { return alike(10, 8, 0); }},
    {"a slice that is missing", "picture-slices-as-before@34", [] { return alike(10, 8, 4); }},
    // Nothing is wrong with these.
    {"gaps where they are allowed", "",
     [] {
         return with_gaps({idr(), reference(1), reference(3), other(6), reference(6)});
     }},
    {"frame_num 1 behind operation 5", "",
     [] {
         return numbered({idr(), reference(1), with(reference(2), {forget_all()}), reference(1)});
     }},
    {"frame_num that begins again at 0", "output-delay-told@0",
     [] {
         std::vector<made_slice> slices = {idr()};
         for (std::uint32_t n = 1; n < 40; ++n)
             slices.push_back(reference(n % 16));
         return numbered(slices);
     }},
    {"one non-reference frame at a time with pic_order_cnt_type 2", "",
     [] {
         return numbered({idr(), other(1), reference(1), other(2), reference(2)});
     }},
    {"non-reference frames in their order", "",
     [] {
         return counted({idr(), reference(1, 8), other(2, 4), other(2, 6), reference(2, 12), other(3, 10)});
     }},
    {"fields with one frame_num", "",
     [] {
         return fields({top(idr()), bottom(reference(0, 1)), bottom(reference(1, 3)), top(reference(1, 4)),
                        top(other(2, 6)), bottom(other(2, 7)), top(other(2, 8)), bottom(other(2, 9)),
                        top(reference(2, 10)), bottom(reference(2, 11))});
     }},
    {"the counts of the sequence before", "",
     [] {
         return counted({idr(), reference(1, 2), reference(2, 4), idr(1), reference(1, 2), reference(2, 4),
                         with(reference(3, 6), {forget_all()}), reference(1, 2)});
     }},
    {"fields with one count, and others right behind", "",
     [] {
         return counted_apart({idr(), apart(reference(1, 2), 1), apart(reference(2, 5), -1)});
     }},
    {"a longer step behind a few", "", [] { return steps(8, 3); }},
    {"a delimiter that is missing behind a few", "", [] { return alike(10, 7, 0); }},
    {"a slice that is missing behind a few", "", [] { return alike(10, 7, 8); }},
    {"a recovery point of slice groups that change", "", [] { return recovering(two_growing_groups()); }},
};

const support::planted_table here("numbers", planted);

} // namespace
