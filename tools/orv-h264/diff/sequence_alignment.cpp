#include "diff/sequence_alignment.h"

#include <algorithm>
#include <compare>
#include <utility>

namespace orv_h264 {

namespace {

constexpr std::uint32_t none = alignment::none;

using entry_pair = std::pair<std::uint32_t, std::uint32_t>; // places in a and b

struct stretch {
    std::uint32_t begin;
    std::uint32_t end;
};

using entries = std::vector<aligned_entry>;

/// What entries are compared by.
enum class key : std::uint8_t { whole, slices, data };

const fingerprint& key_of(const aligned_entry& entry, key by)
{
    return by == key::whole ? entry.whole : by == key::slices ? entry.slices : entry.data;
}

bool has_key(const aligned_entry& entry, key by)
{
    return by == key::whole || (by == key::slices ? entry.any_slice : entry.telling);
}

/// The places of a stretch whose entries have no partner, in the order of their keys, then of the places.
std::vector<std::uint32_t> sorted_places(const entries& of, key by, const std::vector<std::uint32_t>& partners,
                                         const stretch& in)
{
    std::vector<std::uint32_t> places;
    for (std::uint32_t i = in.begin; i < in.end; ++i)
        if (partners[i] == none && has_key(of[i], by))
            places.push_back(i);
    std::stable_sort(places.begin(), places.end(),
                     [&](std::uint32_t x, std::uint32_t y) { return key_of(of[x], by) < key_of(of[y], by); });
    return places;
}

/// Equal entries of both by their number: the first with the first. Or those alone of which each has one.
std::vector<entry_pair> equal_pairs(const entries& a, const std::vector<std::uint32_t>& places_a, const entries& b,
                                    const std::vector<std::uint32_t>& places_b, key by, bool once)
{
    std::vector<entry_pair> pairs;
    const auto run_end = [by](const entries& of, const std::vector<std::uint32_t>& places, std::size_t from) {
        std::size_t end = from;
        while (end < places.size() && key_of(of[places[end]], by) == key_of(of[places[from]], by))
            ++end;
        return end;
    };
    for (std::size_t i = 0, j = 0; i < places_a.size() && j < places_b.size();) {
        const std::size_t end_a = run_end(a, places_a, i);
        const std::size_t end_b = run_end(b, places_b, j);
        const auto order = key_of(a[places_a[i]], by) <=> key_of(b[places_b[j]], by);
        const bool single = end_a - i == 1 && end_b - j == 1;
        if (std::is_eq(order) && (single || !once))
            for (std::size_t k = 0; k < std::min(end_a - i, end_b - j); ++k)
                pairs.emplace_back(places_a[i + k], places_b[j + k]);
        if (std::is_lteq(order))
            i = end_a;
        if (std::is_gteq(order))
            j = end_b;
    }
    std::sort(pairs.begin(), pairs.end());
    return pairs;
}

/// A longest part of the pairs, which rise in a, that rises in b too.
std::vector<entry_pair> longest_rising(const std::vector<entry_pair>& pairs)
{
    std::vector<std::size_t> ends; // of rising parts by their length: the one with the lowest end
    std::vector<std::size_t> before(pairs.size());
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const auto at = std::lower_bound(ends.begin(), ends.end(), pairs[i].second,
                                         [&](std::size_t end, std::uint32_t b) { return pairs[end].second < b; });
        before[i] = at == ends.begin() ? i : *(at - 1);
        if (at == ends.end())
            ends.push_back(i);
        else
            *at = i;
    }
    std::vector<entry_pair> rising(ends.size());
    std::size_t at = ends.empty() ? 0 : ends.back();
    for (std::size_t length = ends.size(); length-- > 0; at = before[at])
        rising[length] = pairs[at];
    return rising;
}

class aligner {
public:
    aligner(const entries& of_a, const entries& of_b) : a(of_a), b(of_b)
    {
        made.of_a.assign(a.size(), none);
        made.of_b.assign(b.size(), none);
        made.moved_a.assign(a.size(), false);
        made.moved_b.assign(b.size(), false);
    }

    alignment run(bool pair_rest)
    {
        const stretch all_a = {0, static_cast<std::uint32_t>(a.size())};
        const stretch all_b = {0, static_cast<std::uint32_t>(b.size())};
        match_ends(all_a, all_b);
        match(all_a, all_b, key::whole, true);
        between([this](const stretch& in_a, const stretch& in_b) { match_ends(in_a, in_b); });
        between([this](const stretch& in_a, const stretch& in_b) { match(in_a, in_b, key::whole, false); });
        for (const key by : {key::slices, key::data})
            between([&](const stretch& in_a, const stretch& in_b) { match(in_a, in_b, by, true); });
        for (const key by : {key::whole, key::slices, key::data})
            for (const auto& [i, j] : equal_between(all_a, all_b, by, by != key::whole)) {
                join(i, j);
                made.moved_a[i] = made.moved_b[j] = true;
            }
        if (pair_rest)
            between([this](const stretch& in_a, const stretch& in_b) { pair_by_number(in_a, in_b); });
        return std::move(made);
    }

private:
    void join(std::uint32_t i, std::uint32_t j)
    {
        made.of_a[i] = j;
        made.of_b[j] = i;
    }

    std::vector<entry_pair> equal_between(const stretch& in_a, const stretch& in_b, key by, bool once) const
    {
        return equal_pairs(a, sorted_places(a, by, made.of_a, in_a), b, sorted_places(b, by, made.of_b, in_b), by,
                           once);
    }

    void match(const stretch& in_a, const stretch& in_b, key by, bool once)
    {
        for (const auto& [i, j] : longest_rising(equal_between(in_a, in_b, by, once)))
            join(i, j);
    }

    /// What both begin with, and what both end with.
    void match_ends(stretch in_a, stretch in_b)
    {
        while (in_a.begin < in_a.end && in_b.begin < in_b.end && a[in_a.begin].whole == b[in_b.begin].whole)
            join(in_a.begin++, in_b.begin++);
        while (in_a.begin < in_a.end && in_b.begin < in_b.end && a[in_a.end - 1].whole == b[in_b.end - 1].whole)
            join(--in_a.end, --in_b.end);
    }

    void pair_by_number(const stretch& in_a, const stretch& in_b)
    {
        std::uint32_t j = in_b.begin;
        for (std::uint32_t i = in_a.begin; i < in_a.end; ++i) {
            if (made.of_a[i] != none)
                continue;
            while (j < in_b.end && made.of_b[j] != none)
                ++j;
            if (j == in_b.end)
                return;
            join(i, j);
        }
    }

    /// For each stretch between two partners that are in order.
    template <class Do>
    void between(Do what)
    {
        std::vector<entry_pair> partners;
        for (std::uint32_t i = 0; i < a.size(); ++i)
            if (made.of_a[i] != none && !made.moved_a[i])
                partners.emplace_back(i, made.of_a[i]);
        partners.emplace_back(static_cast<std::uint32_t>(a.size()), static_cast<std::uint32_t>(b.size()));
        stretch in_a = {0, 0};
        stretch in_b = {0, 0};
        for (const auto& [i, j] : partners) {
            in_a.end = i;
            in_b.end = j;
            if (in_a.begin < in_a.end && in_b.begin < in_b.end)
                what(in_a, in_b);
            in_a.begin = i + 1;
            in_b.begin = j + 1;
        }
    }

    const entries& a;
    const entries& b;
    alignment made;
};

} // namespace

alignment align(const entries& a, const entries& b, bool pair_rest)
{
    return aligner(a, b).run(pair_rest);
}

} // namespace orv_h264
