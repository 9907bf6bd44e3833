#include "diff/compared_elements.h"

#include "element_text.h"

#include <string_view>
#include <utility>

namespace orv_h264 {

namespace {

/// The size of an SEI payload is that of what it holds.
bool follows_from_others(std::string_view path, std::string_view name)
{
    const bool size = path.ends_with("sei_message") && (name == "last_payload_size_byte" || name == "ff_byte");
    return size || path.ends_with("rbsp_trailing_bits") || name == "cabac_alignment_one_bit" ||
           name == "bit_equal_to_one" || name == "bit_equal_to_zero";
}

/// Those of user data, reserved payloads and filler come in any number.
bool is_byte_of_many(std::string_view path, const h264::traced_element& e)
{
    return e.how == h264::coding::b || (std::string_view(e.name.name()) == "ff_byte" && !path.ends_with("sei_message"));
}

} // namespace

void compared_elements::open(const char* name)
{
    guarded([&] {
        end_bytes();
        if (!path.empty())
            path += '.';
        path += name;
    });
}

void compared_elements::close()
{
    guarded([&] { end_bytes(); });
    const std::size_t dot = path.rfind('.');
    path.resize(dot == std::string::npos ? 0 : dot);
}

void compared_elements::element(const h264::traced_element& e)
{
    guarded([&] { is_byte_of_many(path, e) ? add_byte(e) : add(e); });
}

void compared_elements::add(const h264::traced_element& e)
{
    end_bytes();
    if (follows_from_others(path, e.name.name()))
        return;
    compared_element one;
    one.path = path + '.';
    append_label(one.path, e.name);
    append_value(one.value, e);
    if (elements.size() < most_elements)
        return elements.push_back(std::move(one));
    ++further_count;
    for (const std::string* const text : {&one.path, &one.value}) {
        further.add({reinterpret_cast<const unsigned char*>(text->data()), text->size()});
        further.add_number(text->size());
    }
}

void compared_elements::add_byte(const h264::traced_element& e)
{
    if (byte_count == 0)
        byte_path = path + '.' + e.name.name();
    else if (std::string_view(byte_path).substr(path.size() + 1) != e.name.name()) {
        end_bytes();
        byte_path = path + '.' + e.name.name();
    }
    const auto value = static_cast<unsigned char>(e.value & 0xFF);
    bytes.add({&value, 1});
    ++byte_count;
}

void compared_elements::end_bytes()
{
    if (byte_count == 0)
        return;
    const std::string size = std::to_string(byte_count) + (byte_count == 1 ? " byte" : " bytes");
    elements.push_back({std::move(byte_path), size, bytes.made()});
    byte_path.clear();
    byte_count = 0;
    bytes = fingerprint_maker();
}

std::vector<compared_element> compared_elements::take()
{
    guarded([&] {
        end_bytes();
        if (further_count != 0)
            elements.push_back({"further elements", std::to_string(further_count), further.made()});
    });
    guarded.check();
    return std::exchange(elements, {});
}

} // namespace orv_h264
