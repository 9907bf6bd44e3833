// Rules over access units and the picture of each, beside what came before it (H.264 7.4.1.2.2 to 7.4.1.2.4, 7.4.3).
#include "check/access_unit_facts.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

using enum severity;

/// What makes a slice the first one of another picture, clause 7.4.1.2.4. Elements that are not sent are equal.
struct slice_difference {
    const char* element;
    bool (*found)(const sent_slice& a, const sent_slice& b);
};

constexpr std::array<slice_difference, 10> differences = {{
    {"pic_parameter_set_id",
     [](const sent_slice& a, const sent_slice& b) { return a.pic_parameter_set_id != b.pic_parameter_set_id; }},
    {"frame_num", [](const sent_slice& a, const sent_slice& b) { return a.frame_num != b.frame_num; }},
    {"field_pic_flag", [](const sent_slice& a, const sent_slice& b) { return a.field_pic_flag != b.field_pic_flag; }},
    {"bottom_field_flag",
     [](const sent_slice& a, const sent_slice& b) { return a.bottom_field_flag != b.bottom_field_flag; }},
    {"nal_ref_idc", [](const sent_slice& a, const sent_slice& b) { return a.reference() != b.reference(); }},
    {"nal_unit_type", [](const sent_slice& a, const sent_slice& b) { return a.idr() != b.idr(); }},
    {"idr_pic_id",
     [](const sent_slice& a, const sent_slice& b) { return a.idr() && b.idr() && a.idr_pic_id != b.idr_pic_id; }},
    {"pic_order_cnt_lsb",
     [](const sent_slice& a, const sent_slice& b) { return a.pic_order_cnt_lsb != b.pic_order_cnt_lsb; }},
    {"delta_pic_order_cnt_bottom",
     [](const sent_slice& a, const sent_slice& b) {
         return a.delta_pic_order_cnt_bottom != b.delta_pic_order_cnt_bottom;
     }},
    {"delta_pic_order_cnt",
     [](const sent_slice& a, const sent_slice& b) {
         return a.delta_pic_order_cnt[0] != b.delta_pic_order_cnt[0] ||
                a.delta_pic_order_cnt[1] != b.delta_pic_order_cnt[1];
     }},
}};

std::size_t count_differences(const sent_slice& a, const sent_slice& b)
{
    return static_cast<std::size_t>(std::count_if(differences.begin(), differences.end(),
                                                  [&](const slice_difference& d) { return d.found(a, b); }));
}

/// Neither is known where a slice could not be read.
bool knows_both(const access_unit_facts& f)
{
    return f.first_slice != nullptr && f.before.first_slice.has_header;
}

bool lacks_first_macroblock(const access_unit_facts& f)
{
    return f.of.findings.has(h264::picture_finding::first_slice_missing) && f.first_slice != nullptr;
}

verdict begins_with_idr(const access_unit_facts& f)
{
    if (f.before.any_picture || f.of.header == nullptr || f.of.idr)
        return {};
    const bool recovers = f.of.message<h264::recovery_point>() != nullptr;
    breach how{"nal_unit_type", recovers ? "a picture with a recovery point" : "a picture that is not an IDR picture",
               "an IDR picture"};
    if (recovers)
        how.level = warning;
    return how;
}

verdict idr_behind_end_of_sequence(const access_unit_facts& f)
{
    if (!f.before.sequence_ended || f.of.header == nullptr || f.of.idr)
        return {};
    return breach{"nal_unit_type", "not an IDR picture", "an IDR picture"};
}

/// A file may be two streams one behind the other.
verdict nothing_behind_end_of_stream(const access_unit_facts& f)
{
    if (!f.before.stream_ended)
        return {};
    breach how{"", f.of.idr ? "another stream" : "further units", "none"};
    if (f.of.idr)
        how.level = warning;
    return how;
}

verdict has_primary_picture(const access_unit_facts& f)
{
    const bool whole = std::none_of(f.of.parts.begin(), f.of.parts.end(),
                                    [](const h264::access_unit_part& p) { return static_cast<bool>(p.failure); });
    if (f.of.header != nullptr || !f.has_slices() || !whole)
        return {};
    return breach{"", "slices of none", "one primary coded picture"};
}

verdict differs_from_picture_before(const access_unit_facts& f)
{
    if (!knows_both(f) || f.of.idr || lacks_first_macroblock(f) ||
        count_differences(*f.first_slice, f.before.first_slice) != 0)
        return {};
    return breach{"first_mb_in_slice",
                  fmt::format("{} again, in a slice like those before", f.of.header->first_mb_in_slice),
                  "a difference in frame_num, the picture order count or the others of the clause"};
}

verdict idr_ids_differ(const access_unit_facts& f)
{
    if (!knows_both(f) || !f.of.idr || !f.before.first_slice.idr() || f.before.stream_ended ||
        f.first_slice->idr_pic_id != f.before.first_slice.idr_pic_id)
        return {};
    return breach_of("idr_pic_id", f.first_slice->idr_pic_id, "another one than in the IDR picture right before");
}

verdict slices_are_of_one_picture(const access_unit_facts& f)
{
    const char* const element = f.one_difference();
    if (element == nullptr)
        return {};
    return breach{element, "another one than in the slices before", "the same in all slices of a picture"};
}

verdict has_first_macroblock(const access_unit_facts& f)
{
    if (!lacks_first_macroblock(f) || f.one_difference() != nullptr)
        return {};
    return breach_of("first_mb_in_slice", f.first_slice->first_mb_in_slice, "0 in a slice of the picture");
}

verdict has_all_planes(const access_unit_facts& f)
{
    const bool separate = f.of.sps != nullptr && f.of.sps->separate_colour_plane_flag;
    if (!separate || f.first_slice == nullptr || lacks_first_macroblock(f) || f.planes_begun == 7)
        return {};
    const unsigned missing = (f.planes_begun & 1) == 0 ? 0 : (f.planes_begun & 2) == 0 ? 1 : 2;
    return breach{"", fmt::format("no slice of colour plane {} from macroblock 0 on", missing),
                  "one of each colour plane"};
}

constexpr rule_over<access_unit_facts> of_access_units[] = {
    {{"order-begins-with-idr", error, "7.4.1.2.2", "a stream begins with an IDR picture",
      "Nothing else can be decoded by itself. Decoders begin with a recovery point, too: that is a warning.",
      "a stream whose first picture is a P picture"},
     begins_with_idr},
    {{"order-idr-behind-end-of-sequence", error, "7.4.1.2.2", "an IDR picture follows an end of sequence",
      "The decoder has forgotten all pictures.", "a P picture behind an end of sequence"},
     idr_behind_end_of_sequence},
    {{"order-nothing-behind-end-of-stream", error, "7.4.1.2.2", "nothing follows an end of stream",
      "Readers stop there. What begins with an IDR picture is another stream, which many read on to: a warning.",
      "SEI behind an end of stream"},
     nothing_behind_end_of_stream},
    {{"order-picture-in-access-unit", error, "7.4.1.2.3", "an access unit has a primary coded picture",
      "Slices of other layers or of redundant pictures have none to go with.", "redundant slices alone"},
     has_primary_picture},
    {{"picture-has-colour-planes", error, "7.4.2.1.1",
      "a picture has all three colour planes where they are sent by themselves",
      "With separate_colour_plane_flag each of them is coded like a monochrome picture.",
      "slices with colour_plane_id 0 and 1 alone"},
     has_all_planes},
    {{"picture-differs-from-last", error, "7.4.1.2.4", "the first slice of a picture differs from the picture before",
      "It is taken for a slice of that picture. What stands between was lost, or a picture stands there twice.",
      "a picture that is repeated"},
     differs_from_picture_before},
    {{"picture-idr-ids-differ", error, "7.4.3", "IDR pictures one behind the other have another idr_pic_id each",
      "Nothing else tells where the second one begins.", "two IDR pictures in a row with idr_pic_id 0"},
     idr_ids_differ},
    {{"picture-slices-agree", error, "7.4.3", "the slices of a picture agree in what tells pictures apart",
      "A slice that differs is taken for another picture, whose first slices are missing.",
      "frame_num 2 in the first slice and 3 in the second"},
     slices_are_of_one_picture},
    {{"picture-has-first-slice", error, "7.4.3", "a picture has a slice that begins with its first macroblock",
      "Slices were lost: the macroblocks before the first one cannot be shown.",
      "a picture whose only slice begins with macroblock 6"},
     has_first_macroblock},
};

} // namespace

bool access_unit_facts::has_slices() const
{
    return std::any_of(of.parts.begin(), of.parts.end(), [](const h264::access_unit_part& p) {
        return p.role >= h264::unit_role::primary && p.role <= h264::unit_role::layer;
    });
}

const char* access_unit_facts::one_difference() const
{
    if (!lacks_first_macroblock(*this) || !before.first_slice.has_header ||
        of.parts.front().place.number != first_slice->unit ||
        before.last_macroblock >= first_slice->first_mb_in_slice ||
        count_differences(*first_slice, before.first_slice) != 1)
        return nullptr;
    const auto* const one = std::find_if(differences.begin(), differences.end(), [&](const slice_difference& d) {
        return d.found(*first_slice, before.first_slice);
    });
    const bool second_field = first_slice->bottom_field_flag != before.first_slice.bottom_field_flag;
    return second_field ? nullptr : one->element;
}

std::span<const rule_over<access_unit_facts>> access_unit_rules()
{
    return of_access_units;
}

} // namespace orv_h264
