// Rules over the reference lists of slices (H.264 7.4.3.1, 8.2.4).
#include "check/reference_facts.h"

#include <algorithm>
#include <bitset>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr std::uint32_t end_of_list = 3;

/// The next picNumLX that modification_of_pic_nums_idc 0 and 1 tell; `pred` goes on.
std::int64_t next_picNumLX(const list_facts& f, const h264::pic_num_modification& m, std::int64_t& pred,
                           std::int64_t CurrPicNum)
{
    const auto MaxPicNum =
        static_cast<std::int64_t>(h264::MaxFrameNum(f.picture.sps) * (f.picture.header.field_pic_flag ? 2 : 1));
    const std::int64_t difference = std::int64_t{m.abs_diff_pic_num_minus1} + 1;
    pred += m.modification_of_pic_nums_idc == 0 ? -difference : difference;
    if (pred < 0)
        pred += MaxPicNum;
    else if (pred >= MaxPicNum)
        pred -= MaxPicNum;
    return pred > CurrPicNum ? pred - MaxPicNum : pred;
}

std::string_view element_of_changes(const list_facts& f)
{
    return f.second ? "ref_pic_list_modification_flag_l1" : "ref_pic_list_modification_flag_l0";
}

std::size_t changes(const list_facts& f)
{
    return f.modifications.empty() ? 0 : f.modifications.size() - 1; // the last one ends them
}

verdict change_is_not_empty(const list_facts& f)
{
    const bool ends_at_once =
        !f.modifications.empty() && f.modifications[0].modification_of_pic_nums_idc == end_of_list;
    if (!f.modified || !ends_at_once)
        return {};
    return breach_of(element_of_changes(f), "1, and modification_of_pic_nums_idc 3 at once", "0, or a change before 3");
}

verdict changes_fit_list(const list_facts& f)
{
    const std::uint64_t entries = std::uint64_t{f.num_ref_idx_active_minus1} + 1;
    if (!f.modified || changes(f) <= entries)
        return {};
    return breach_of(element_of_changes(f), fmt::format("{} changes", changes(f)),
                     fmt::format("at most num_ref_idx_l{}_active_minus1 + 1, which is {}", f.second ? 1 : 0, entries));
}

verdict names(const list_facts& f, bool is_long)
{
    if (!f.modified || f.marking == nullptr)
        return {};
    for (const listed_reference& r : references_named(f)) {
        const bool inferred = r.named.frame != nullptr && r.named.frame->non_existing;
        if (r.is_long != is_long || (r.named.frame != nullptr && !inferred))
            continue;
        return breach_of(element_of_changes(f),
                         fmt::format("change {} is {} {}, {}", r.index, is_long ? "LongTermPicNum" : "PicNum", r.number,
                                     inferred ? "a frame inferred for a gap" : "which no picture has"),
                         fmt::format("a {}-term reference that is there", is_long ? "long" : "short"));
    }
    return {};
}

verdict names_short_terms(const list_facts& f)
{
    return names(f, false);
}

verdict names_long_terms(const list_facts& f)
{
    return names(f, true);
}

/// What the list may hold: frames that are references as a whole, or single fields.
std::size_t references_there(const list_facts& f)
{
    std::size_t count = 0;
    for (const h264::reference_frame& r : *f.marking)
        count += f.picture.header.field_pic_flag
                     ? std::bitset<2>(static_cast<unsigned>(r.short_term | r.long_term)).count()
                     : static_cast<std::size_t>(r.short_term == 3 || r.long_term == 3);
    return count;
}

verdict slice_has_reference(const list_facts& f)
{
    if (f.second || f.marking == nullptr || references_there(f) != 0)
        return {};
    return breach_of("slice_type", f.kind == h264::slice_kind::B ? "B" : "P or SP",
                     "I or SI, where no picture is used for reference");
}

/// Of those that are there, the ones that no change names; a change may name one twice.
std::size_t unnamed(const list_facts& f, const std::vector<listed_reference>& named)
{
    std::size_t others = references_there(f);
    for (std::size_t i = 0; i < named.size(); ++i) {
        const auto same = [&](const listed_reference& r) {
            return r.is_long == named[i].is_long && r.number == named[i].number;
        };
        const auto end = named.begin() + static_cast<std::ptrdiff_t>(i);
        if (named[i].named.frame != nullptr && std::find_if(named.begin(), end, same) == end)
            --others;
    }
    return others;
}

verdict list_is_full(const list_facts& f)
{
    const std::uint32_t most = f.picture.header.field_pic_flag ? 31 : 15; // beyond it value-in-range has told it
    if (f.marking == nullptr || references_there(f) == 0 || f.num_ref_idx_active_minus1 > most)
        return {};
    const std::vector<listed_reference> named = references_named(f);
    const std::size_t filled = named.size() + unnamed(f, named);
    if (f.num_ref_idx_active_minus1 < filled)
        return {};
    return breach_of(f.second ? "num_ref_idx_l1_active_minus1" : "num_ref_idx_l0_active_minus1",
                     f.num_ref_idx_active_minus1,
                     fmt::format("at most {}, by the pictures that are there", filled - 1));
}

using enum severity;

constexpr rule_over<list_facts> of_lists[] = {
    {{"slice-list-change-not-empty", error, "7.4.3.1", "a list that is said to be changed is changed",
      "The first modification_of_pic_nums_idc is not 3, which ends the changes.",
      "ref_pic_list_modification_flag_l0 1, modification_of_pic_nums_idc 3"},
     change_is_not_empty},
    {{"slice-list-changes-fit", error, "7.4.3.1", "a list has no more changes than entries",
      "Each change puts a picture into the next entry.", "two changes with num_ref_idx_l0_active_minus1 0"},
     changes_fit_list},
    {{"slice-has-reference", error, "8.2.4.2", "a slice that is predicted has a picture to predict from",
      "Decoders make up a picture, each another one, or refuse the slice.",
      "a P frame behind an IDR field without a partner"},
     slice_has_reference},
    {{"slice-list-is-full", note, "8.2.4.2", "a list has as many entries as there are pictures for it",
      "The rest are \"no reference picture\": no macroblock may use their indices, which cost bits.",
      "num_ref_idx_l0_active_minus1 3 behind a single picture"},
     list_is_full},
    {{"slice-list-names-short-term", error, "8.2.4.3.1",
      "a change of a list names a short-term reference that is there",
      "The numbers count from the current picture, then from the one named before; decoders that do not find it "
      "predict from another picture.",
      "abs_diff_pic_num_minus1 4 behind an IDR picture and two others"},
     names_short_terms},
    {{"slice-list-names-long-term", error, "8.2.4.3.2", "a change of a list names a long-term reference that is there",
      "Decoders that do not find it predict from another picture.",
      "long_term_pic_num 1 where only LongTermFrameIdx 0 is assigned"},
     names_long_terms},
};

} // namespace

std::vector<listed_reference> references_named(const list_facts& f)
{
    std::vector<listed_reference> all;
    const std::int64_t frame_num = f.picture.header.frame_num;
    const std::int64_t CurrPicNum = f.picture.header.field_pic_flag ? 2 * frame_num + 1 : frame_num;
    std::int64_t pred = CurrPicNum;
    for (std::size_t i = 0; i < f.modifications.size(); ++i) {
        const h264::pic_num_modification& m = f.modifications[i];
        if (m.modification_of_pic_nums_idc <= 1) {
            const std::int64_t number = next_picNumLX(f, m, pred, CurrPicNum);
            all.push_back({i, false, number, f.marking->short_term(f.picture, number)});
        } else if (m.modification_of_pic_nums_idc == 2) {
            all.push_back({i, true, m.long_term_pic_num, f.marking->long_term(f.picture, m.long_term_pic_num)});
        }
    }
    return all;
}

std::span<const rule_over<list_facts>> list_rules()
{
    return of_lists;
}

} // namespace orv_h264
