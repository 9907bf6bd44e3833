#include "edit/unit_comparison.h"

#include "edit/decoding_facts.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <fmt/format.h>

namespace orv_h264::editing {

namespace {

using element_view = std::vector<const listed_element*>;

element_view viewed(const element_list& list, const std::vector<bool>& removed_messages)
{
    element_view view;
    view.reserve(list.elements().size());
    for (const listed_element& e : list.elements()) {
        const bool removed = e.message < removed_messages.size() && removed_messages[e.message];
        const bool ends_unit = std::string_view(e.name.name()) == "rbsp_stop_one_bit";
        if (!is_filling(e) && (!removed || ends_unit))
            view.push_back(&e);
    }
    return view;
}

/// The nearest places from (i, j) on where both lists have the same element.
struct meeting {
    std::size_t i;
    std::size_t j;
};

meeting next_meeting(const element_view& before, const element_view& after, std::size_t i, std::size_t j)
{
    constexpr std::size_t farthest = 4096; // beyond, the rest is taken for another
    const std::size_t left_before = before.size() - i;
    const std::size_t left_after = after.size() - j;
    for (std::size_t distance = 1; distance <= std::min(farthest, left_before + left_after); ++distance)
        for (std::size_t gone = 0; gone <= std::min(distance, left_before); ++gone) {
            const std::size_t come = distance - gone;
            if (come > left_after)
                continue;
            const bool at_end = gone == left_before && come == left_after;
            if (at_end ||
                (gone < left_before && come < left_after && same_element(*before[i + gone], *after[j + come])))
                return {i + gone, j + come};
        }
    return {before.size(), after.size()};
}

/// Other elements may come or go with another value of this one.
bool may_govern(std::string_view path)
{
    static constexpr std::string_view parts[] = {"flag", "idc", "type", "minus1", "cnt", "struct", "operation", "_id"};
    const std::string_view name = path.substr(path.rfind('.') + 1);
    return std::any_of(std::begin(parts), std::end(parts),
                       [name](std::string_view part) { return name.find(part) != std::string_view::npos; });
}

class element_comparison {
public:
    element_comparison(const element_list& before, const element_list& after, const comparison_terms& terms)
        : old_list(before), new_list(after), allowed(terms)
    {
    }

    comparison run(const element_view& before, const element_view& after)
    {
        std::size_t i = 0;
        std::size_t j = 0;
        while (i < before.size() || j < after.size()) {
            if (i < before.size() && j < after.size() && same_element(*before[i], *after[j])) {
                compare(*before[i++], *after[j++]);
                continue;
            }
            const meeting next = next_meeting(before, after, i, j);
            for (; i < next.i; ++i)
                remove(*before[i]);
            for (; j < next.j; ++j)
                add(*after[j]);
        }
        found.compared = after.size();
        return std::move(found);
    }

private:
    void compare(const listed_element& before, const listed_element& after)
    {
        if (before.value == after.value)
            return;
        difference d = {difference_kind::changed,
                        difference_cause::none,
                        new_list.path_of(after),
                        before.value,
                        after.value,
                        after.is_bytes};
        d.cause = is_wanted(after)                             ? difference_cause::named
                  : allowed.other_sets && is_renumbered(after) ? difference_cause::renumbered
                                                               : difference_cause::none;
        put(std::move(d));
    }

    bool is_counted_anew(const listed_element& e) const { return allowed.other_sets && is_renumbered(e); }

    /// Other parameter sets bring or take it, and it says what is inferred without it.
    bool is_as_inferred(const listed_element& e) const
    {
        const inferred_value* const inferred = inferred_value_of(e.name.name());
        return allowed.other_sets && inferred != nullptr && inferred->value == e.value;
    }

    void add(const listed_element& e)
    {
        difference d = {difference_kind::added, difference_cause::none, new_list.path_of(e), 0, e.value, e.is_bytes};
        if (is_wanted(e))
            d.cause = difference_cause::named;
        else if (any_named || (!is_counted_anew(e) && is_as_inferred(e)))
            d.cause = difference_cause::implied;
        else if (is_counted_anew(e))
            d.cause = difference_cause::renumbered;
        put(std::move(d));
    }

    void remove(const listed_element& e)
    {
        difference d = {difference_kind::removed, difference_cause::none, old_list.path_of(e), e.value, 0, e.is_bytes};
        if (any_named || (!is_counted_anew(e) && is_as_inferred(e)))
            d.cause = difference_cause::implied;
        else if (is_counted_anew(e))
            d.cause = difference_cause::renumbered;
        else if (allowed.other_sets && allowed.force)
            d.cause = difference_cause::forced;
        put(std::move(d));
    }

    bool is_wanted(const listed_element& e) const
    {
        return std::any_of(allowed.wanted.begin(), allowed.wanted.end(), [&](const element_value& wanted) {
            return wanted.value == e.value && new_list.ends_with(e, wanted.path);
        });
    }

    /// Whether it says the same, picture_numbers.h and decoding_facts.h tell.
    bool is_renumbered(const listed_element& e) const
    {
        static constexpr std::string_view names[] = {"frame_num",
                                                     "pic_order_cnt_lsb",
                                                     "delta_pic_order_cnt_bottom",
                                                     "delta_pic_order_cnt",
                                                     "modification_of_pic_nums_idc",
                                                     "abs_diff_pic_num_minus1",
                                                     "num_ref_idx_active_override_flag",
                                                     "num_ref_idx_l0_active_minus1",
                                                     "num_ref_idx_l1_active_minus1"};
        const std::string_view id = allowed.slice ? "pic_parameter_set_id" : "seq_parameter_set_id";
        if (id == e.name.name())
            return true;
        return allowed.slice && std::find(std::begin(names), std::end(names), e.name.name()) != std::end(names);
    }

    void put(difference d)
    {
        any_named = any_named || (d.cause == difference_cause::named && may_govern(d.path));
        found.differences.push_back(std::move(d));
    }

    const element_list& old_list;
    const element_list& new_list;
    const comparison_terms& allowed;
    comparison found;
    bool any_named = false; // so far, that may bring others
};

} // namespace

const difference* comparison::forbidden() const
{
    const auto found = std::find_if(differences.begin(), differences.end(),
                                    [](const difference& d) { return d.cause == difference_cause::none; });
    return found == differences.end() ? nullptr : &*found;
}

comparison compare_units(const element_list& before, const element_list& after,
                         const std::vector<bool>& removed_messages, const comparison_terms& terms)
{
    return element_comparison(before, after, terms).run(viewed(before, removed_messages), viewed(after, {}));
}

std::string text_of(const difference& what)
{
    if (what.bytes)
        return fmt::format("the bytes of {} differ", what.path);
    switch (what.kind) {
    case difference_kind::changed:
        return fmt::format("{} {} would be {}", what.path, what.before, what.after);
    case difference_kind::added:
        return fmt::format("{} is needed, and has no value", what.path);
    case difference_kind::removed:
        return fmt::format("{} {} would not be sent", what.path, what.before);
    }
    return "";
}

} // namespace orv_h264::editing
