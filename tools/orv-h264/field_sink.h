// What takes the fields of a structure, one after another: as lines for a person, or as JSON for a program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <variant>

namespace orv_h264 {

/// A syntax element under its H.264 name, or an entry of an array of them.
struct element_name {
    // NOLINTNEXTLINE(google-explicit-constructor): a name is mostly a literal
    element_name(const char* text) : name(text) {}
    element_name(std::string_view text, std::size_t at) : name(text), index(at) {}

    std::string_view name;
    std::optional<std::size_t> index;
};

/// A number, yes or no, nothing, words, or the entries of a list.
using field_value = std::variant<std::uint64_t, std::int64_t, double, bool, std::nullptr_t, std::string_view,
                                 std::span<const std::uint8_t>>;

/// Something known under a name.
using fact = std::pair<const char*, field_value>;

class field_sink {
public:
    field_sink() = default;
    field_sink(const field_sink&) = delete;
    field_sink& operator=(const field_sink&) = delete;
    virtual ~field_sink() = default;

    /// A syntax element; `note` says in words what the value means, or is "".
    virtual void element(const element_name& name, const field_value& value, std::string_view note) = 0;

    /// Bytes that stand for many elements; `text` is what they say where they are text, or "".
    virtual void bytes(const element_name& name, std::span<const std::uint8_t> all, std::string_view text) = 0;

    /// What follows, up to close(), belongs together. A person reads `heading`, where it is not "", and finds what
    /// follows indented.
    virtual void open(const element_name& name, std::string_view heading) = 0;
    virtual void close() = 0;

    /// Likewise, for what a person finds in one row with its neighbours.
    virtual void open_entry(const element_name& name) = 0;
    virtual void close_entry() = 0;

    /// What a heading has told already.
    virtual void told(const fact& what) = 0;

    /// What follows from elements shown before, in words and as facts.
    virtual void derived(std::string_view text, std::initializer_list<fact> facts) = 0;
};

} // namespace orv_h264
