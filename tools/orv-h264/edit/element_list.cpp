#include "edit/element_list.h"

#include "element_text.h"

#include <algorithm>
#include <iterator>

namespace orv_h264 {

std::uint32_t path_table::child(std::uint32_t parent, const char* name)
{
    const auto next = static_cast<std::uint32_t>(texts.size());
    const auto [place, added] = children.try_emplace({parent, name}, next);
    if (added)
        texts.push_back(texts[parent].empty() ? std::string(name) : texts[parent] + "." + name);
    return place->second;
}

bool is_filling(const listed_element& element)
{
    static constexpr std::string_view names[] = {
        "ff_byte",           "last_payload_size_byte",  "bit_equal_to_one",
        "bit_equal_to_zero", "rbsp_alignment_zero_bit", "cabac_alignment_one_bit"};
    return std::find(std::begin(names), std::end(names), element.name.name()) != std::end(names);
}

bool same_element(const listed_element& a, const listed_element& b)
{
    if (a.structure != b.structure || a.name.depth() != b.name.depth())
        return false;
    for (unsigned i = 0; i < a.name.depth(); ++i)
        if (a.name.index(i) != b.name.index(i))
            return false;
    return a.name.name() == b.name.name() || std::string_view(a.name.name()) == b.name.name();
}

void element_list::open(const char* name)
{
    guarded([&] {
        const std::uint32_t parent = open_structures.empty() ? 0 : open_structures.back();
        open_structures.push_back(paths.child(parent, name));
        if (std::string_view(name) != "sei_message")
            return;
        if (message_depth == 0)
            ++messages;
        if (message_depth == 0)
            message_depth = static_cast<std::uint32_t>(open_structures.size());
    });
}

void element_list::close()
{
    if (message_depth == open_structures.size())
        message_depth = 0;
    if (!open_structures.empty())
        open_structures.pop_back();
}

/// The element is one of the row of bytes that the last one belongs to.
bool element_list::goes_on_row(const h264::traced_element& e) const
{
    const listed_element& last = list.back();
    return !open_structures.empty() && last.structure == open_structures.back() && last.name.depth() == 1 &&
           e.name.depth() == 1 && std::string_view(last.name.name()) == e.name.name();
}

void element_list::element(const h264::traced_element& e)
{
    guarded([&] {
        if (list.size() >= most_single && e.how == h264::coding::b && goes_on_row(e)) {
            const auto byte = static_cast<unsigned char>(e.value);
            list.back().value =
                static_cast<std::int64_t>(hash_of(&byte, 1, static_cast<std::uint64_t>(list.back().value)));
            list.back().is_bytes = true;
            return;
        }
        listed_element kept;
        kept.name = e.name;
        kept.structure = open_structures.empty() ? 0 : open_structures.back();
        kept.message = messages;
        kept.is_bytes = e.bytes != nullptr;
        kept.value = kept.is_bytes ? static_cast<std::int64_t>(hash_of(e.bytes, e.size)) : e.value;
        kept.inside = e.inside;
        kept.lowest = e.lowest;
        kept.highest = e.highest;
        list.push_back(kept);
    });
}

void element_list::clear()
{
    list.clear();
    open_structures.clear();
    messages = 0;
    message_depth = 0;
}

std::string element_list::path_of(const listed_element& element) const
{
    std::string text = paths.text(element.structure);
    if (!text.empty())
        text += '.';
    append_label(text, element.name);
    return text;
}

bool element_list::ends_with(const listed_element& element, std::string_view end) const
{
    const std::string_view name = element.name.name();
    const std::size_t last_dot = end.rfind('.');
    if (end.substr(last_dot == std::string_view::npos ? 0 : last_dot + 1).substr(0, name.size()) != name)
        return false; // most are sorted out by this
    const std::string path = path_of(element);
    return path.ends_with(end) && (path.size() == end.size() || path[path.size() - end.size() - 1] == '.');
}

std::uint64_t hash_of(const unsigned char* bytes, std::size_t size, std::uint64_t hash) noexcept
{
    constexpr std::uint64_t prime = 0x100000001B3;
    for (std::size_t i = 0; i < size; ++i)
        hash = (hash ^ bytes[i]) * prime;
    return hash;
}

void element_digest::add(std::uint64_t number)
{
    unsigned char bytes[sizeof number];
    for (std::size_t i = 0; i < sizeof bytes; ++i)
        bytes[i] = static_cast<unsigned char>(number >> 8 * i);
    hash = hash_of(bytes, sizeof bytes, hash);
}

void element_digest::open(const char* name)
{
    const std::string_view text = name;
    hash = hash_of(reinterpret_cast<const unsigned char*>(text.data()), text.size(), hash);
}

void element_digest::element(const h264::traced_element& e)
{
    ++count;
    open(e.name.name());
    for (unsigned i = 0; i < e.name.depth(); ++i)
        add(e.name.index(i));
    add(static_cast<std::uint64_t>(e.value));
    if (e.bytes != nullptr)
        hash = hash_of(e.bytes, e.size, hash);
}

} // namespace orv_h264
