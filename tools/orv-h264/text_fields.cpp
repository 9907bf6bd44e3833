#include "text_fields.h"

#include <iterator>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace orv_h264 {

namespace {

std::string text_of(const element_name& name)
{
    return name.index ? fmt::format("{}[{}]", name.name, *name.index) : std::string(name.name);
}

// Of bytes this many are shown, as hex or as text.
constexpr std::size_t most_hex_bytes = 16;
constexpr std::size_t most_text_bytes = 1024;

std::string quoted(std::string_view text)
{
    return fmt::format("\"{}\"{}", text.substr(0, most_text_bytes), text.size() > most_text_bytes ? " ..." : "");
}

struct value_text {
    std::string operator()(std::span<const std::uint8_t> list) const { return fmt::format("{}", fmt::join(list, " ")); }

    template <typename T>
    std::string operator()(T value) const
    {
        return fmt::format("{}", value);
    }
};

} // namespace

std::string hex_start(std::span<const std::uint8_t> bytes)
{
    const bool all = bytes.size() <= most_hex_bytes;
    return fmt::format("{:02x}{}", fmt::join(bytes.first(all ? bytes.size() : most_hex_bytes), " "), all ? "" : " ...");
}

void text_fields::element(const element_name& name, const field_value& value, std::string_view note)
{
    const std::string text = std::visit(value_text(), value);
    line(note.empty() ? fmt::format("{} {}", text_of(name), text)
                      : fmt::format("{} {} ({})", text_of(name), text, note));
}

void text_fields::bytes(const element_name& name, std::span<const std::uint8_t> all, std::string_view text)
{
    line(fmt::format("{} {}", text_of(name), text.empty() ? hex_start(all) : quoted(text)));
}

void text_fields::open(const element_name&, std::string_view heading)
{
    if (!heading.empty())
        line(heading);
    ++depth;
}

void text_fields::close()
{
    --depth;
}

void text_fields::open_entry(const element_name&) {}

void text_fields::close_entry() {}

void text_fields::told(const fact&) {}

void text_fields::derived(std::string_view text, std::initializer_list<fact>)
{
    line(fmt::format("= {}", text));
}

void text_fields::line(std::string_view text)
{
    constexpr int step = 4;
    fmt::format_to(std::back_inserter(lines), "{:{}}{}\n", "", depth * step, text);
}

} // namespace orv_h264
