#include "diff/unit_comparison.h"

#include "diff/sequence_alignment.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace orv_h264 {

namespace {

std::vector<aligned_entry> entries_of(const compared_access_unit& of)
{
    std::vector<aligned_entry> entries;
    for (const compared_unit& unit : of.units)
        entries.push_back({unit.whole, {}, {}, false, false});
    return entries;
}

/// Those that are left over are held against each other by their kind; a slice of an IDR picture is as any other.
std::uint64_t kind_of(const compared_unit& unit)
{
    constexpr unsigned slice = 1;
    constexpr unsigned idr_slice = 5;
    const unsigned type = unit.nal_unit_type == idr_slice ? slice : unit.nal_unit_type;
    return std::uint64_t{type} << 32 | unit.sei_type;
}

void pair_by_kind(const compared_access_unit& a, const compared_access_unit& b, alignment& partners)
{
    std::map<std::uint64_t, std::vector<std::uint32_t>> left; // of b, the last one first
    for (std::size_t j = b.units.size(); j-- > 0;)
        if (partners.of_b[j] == alignment::none)
            left[kind_of(b.units[j])].push_back(static_cast<std::uint32_t>(j));
    for (std::uint32_t i = 0; i < a.units.size(); ++i) {
        if (partners.of_a[i] != alignment::none)
            continue;
        std::vector<std::uint32_t>& like = left[kind_of(a.units[i])];
        if (like.empty())
            continue;
        partners.of_a[i] = like.back();
        partners.of_b[like.back()] = i;
        like.pop_back();
    }
}

/// Where the unit at `index`, which has no partner, would stand in the other access unit: at the partner of the next
/// one that has one, or at the last unit.
std::uint64_t place_beside(const std::vector<std::uint32_t>& partners, std::size_t index,
                           const compared_access_unit& other)
{
    for (; index < partners.size(); ++index)
        if (partners[index] != alignment::none)
            return other.units[partners[index]].offset;
    return other.units.empty() ? 0 : other.units.back().offset;
}

/// The structures around elements, each by its path.
std::unordered_set<std::string_view> structures_of(const std::vector<compared_element>& elements)
{
    std::unordered_set<std::string_view> all;
    for (const compared_element& element : elements) {
        std::string_view path = element.path;
        for (std::size_t dot = path.rfind('.'); dot != std::string_view::npos; dot = path.rfind('.')) {
            path = path.substr(0, dot);
            if (!all.insert(path).second)
                break;
        }
    }
    return all;
}

/// The outermost structure around the element that the other unit has not, or the element itself.
std::string_view lacked(std::string_view path, const std::unordered_set<std::string_view>& others)
{
    for (std::size_t dot = path.find('.'); dot != std::string_view::npos; dot = path.find('.', dot + 1))
        if (!others.contains(path.substr(0, dot)))
            return path.substr(0, dot);
    return path;
}

class element_comparison {
public:
    element_comparison(const compared_unit& of_a, const compared_unit& of_b, difference_log& into)
        : a(of_a.elements), b(of_b.elements), at({of_a.offset, of_b.offset}), log(into), taken(a.size(), false)
    {
    }

    void run()
    {
        std::unordered_map<std::string_view, std::vector<std::size_t>> places; // in a by path, the last one first
        for (std::size_t i = a.size(); i-- > 0;)
            places[a[i].path].push_back(i);
        std::vector<const compared_element*> only_in_b;
        for (const compared_element& element : b) {
            const auto found = places.find(element.path);
            if (found == places.end() || found->second.empty()) {
                only_in_b.push_back(&element);
                continue;
            }
            const compared_element& other = a[found->second.back()];
            taken[found->second.back()] = true;
            found->second.pop_back();
            compare(other, element);
        }
        std::vector<const compared_element*> only_in_a;
        for (std::size_t i = 0; i < a.size(); ++i)
            if (!taken[i])
                only_in_a.push_back(&a[i]);
        tell(only_in_a, stream_difference::only_a, b);
        tell(only_in_b, stream_difference::only_b, a);
    }

private:
    void compare(const compared_element& of_a, const compared_element& of_b)
    {
        if (of_a.value != of_b.value)
            log.add_changed(of_a.path, of_a.value, of_b.value, at);
        else if (of_a.bytes != of_b.bytes)
            log.add_changed(of_a.path, of_a.value, "others", at);
    }

    /// A structure that the other has nothing of is told once a unit, not element by element.
    void tell(const std::vector<const compared_element*>& lone, stream_difference what,
              const std::vector<compared_element>& others) const
    {
        if (lone.empty())
            return;
        const std::unordered_set<std::string_view> structures = structures_of(others);
        std::set<std::string> told;
        for (const compared_element* const element : lone) {
            const std::string_view path = lacked(element->path, structures);
            if (path == element->path)
                log.add(what, false, element->path, at);
            else if (!log.ignores(element->path) && told.insert(std::string(path)).second)
                log.add(what, false, std::string(path), at);
        }
    }

    const std::vector<compared_element>& a;
    const std::vector<compared_element>& b;
    place_pair at;
    difference_log& log;
    std::vector<bool> taken;
};

} // namespace

std::string path_of(const compared_unit& unit)
{
    std::string_view path = "nal_unit";
    for (const compared_element& element : unit.elements) {
        const std::string_view root = std::string_view(element.path).substr(0, element.path.find('.'));
        if (!root.starts_with("nal_unit")) {
            path = element.path;
            break;
        }
    }
    const std::string_view root = path.substr(0, path.find('.'));
    if (root != "sei_rbsp")
        return std::string(root);
    constexpr std::string_view before = "sei_rbsp.sei_message.sei_payload.";
    for (const compared_element& element : unit.elements)
        if (std::string_view(element.path).starts_with(before))
            return element.path.substr(0, element.path.find('.', before.size()));
    return "sei_rbsp.sei_message";
}

bool unit_comparison::compare(const compared_access_unit& a, const compared_access_unit& b)
{
    const std::uint64_t before = log.count();
    bool alone = false;
    constexpr bool pair_rest = false;
    alignment partners = align(entries_of(a), entries_of(b), pair_rest);
    pair_by_kind(a, b, partners);
    for (std::uint32_t i = 0; i < a.units.size(); ++i) {
        const compared_unit& unit = a.units[i];
        const std::uint32_t j = partners.of_a[i];
        if (j == alignment::none)
            alone =
                keep_alone(only_a, unit, {unit.offset, place_beside(partners.of_a, i, b)}, stream_difference::only_a) ||
                alone;
        else if (partners.moved_a[i])
            log.add(stream_difference::moved, true, path_of(unit), {unit.offset, b.units[j].offset});
        else if (unit.whole != b.units[j].whole)
            compare_units(unit, b.units[j]);
    }
    for (std::uint32_t j = 0; j < b.units.size(); ++j)
        if (partners.of_b[j] == alignment::none)
            alone = keep_alone(only_b, b.units[j], {place_beside(partners.of_b, j, a), b.units[j].offset},
                               stream_difference::only_b) ||
                    alone;
    return alone || log.count() != before;
}

bool unit_comparison::keep_alone(std::vector<lone_unit>& of, const compared_unit& unit, const place_pair& at,
                                 stream_difference what)
{
    std::string path = path_of(unit);
    if (log.ignores(path))
        return false;
    if (of.size() < most_waiting)
        of.push_back({unit.whole, std::move(path), at});
    else
        log.add(what, true, path, at);
    return true;
}

void unit_comparison::finish()
{
    std::map<fingerprint, std::vector<const lone_unit*>> waiting; // of b, the last one first
    for (std::size_t i = only_b.size(); i-- > 0;)
        waiting[only_b[i].whole].push_back(&only_b[i]);
    std::set<const lone_unit*> moved;
    for (const lone_unit& unit : only_a) {
        std::vector<const lone_unit*>& same = waiting[unit.whole];
        if (same.empty()) {
            log.add(stream_difference::only_a, true, unit.path, unit.at);
            continue;
        }
        log.add(stream_difference::moved, true, unit.path, {unit.at.a, same.back()->at.b});
        moved.insert(same.back());
        same.pop_back();
    }
    for (const lone_unit& unit : only_b)
        if (!moved.contains(&unit))
            log.add(stream_difference::only_b, true, unit.path, unit.at);
}

void unit_comparison::compare_units(const compared_unit& a, const compared_unit& b)
{
    element_comparison(a, b, log).run();
    compare_rest(a, b, {a.offset, b.offset});
}

/// Slice data, or what could not be read.
void unit_comparison::compare_rest(const compared_unit& a, const compared_unit& b, const place_pair& at)
{
    if (a.rest == b.rest)
        return;
    const auto size = [](const compared_unit& unit) { return std::to_string(unit.rest_bits) + " bits"; };
    const std::string path = path_of(a) + (a.slice ? ".slice_data" : ".unread_bits");
    log.add_changed(path, size(a), a.rest_bits == b.rest_bits ? "others" : size(b), at);
}

} // namespace orv_h264
