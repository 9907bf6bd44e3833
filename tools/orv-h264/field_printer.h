// Hands syntax elements to a sink, under their H.264 names. It counts the bits that the elements took, so that of a
// unit whose parse failed only those are handed on that the unit carried.
#pragma once

#include "field_sink.h"

#include <orv-utils-v4/h264.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <span>
#include <string_view>

namespace orv_h264 {

class field_printer {
public:
    static constexpr std::size_t no_limit = std::numeric_limits<std::size_t>::max();

    /// Hands on the elements that end at or before bit `limit`.
    explicit field_printer(field_sink& out, std::size_t limit = no_limit) : sink(out), last_bit(limit) {}

    /// u(n); `note` says in words what the value means.
    void u(unsigned int n, const element_name& name, std::uint64_t value, std::string_view note = "");
    /// i(n)
    void i(unsigned int n, const element_name& name, std::int32_t value);
    /// u(1)
    void flag(const element_name& name, bool value);
    void ue(const element_name& name, std::uint32_t value, std::string_view note = "");
    void se(const element_name& name, std::int32_t value);
    /// A scaling list that is present, its entries in scan order.
    void scaling_list(std::size_t number, const brenik::h264_scaling_list& list);

    /// Words, which stand for many elements; in any case.
    void words(const element_name& name, std::string_view text, std::string_view note = "");

    /// Bytes, which stand for many elements, and what they say where they are text; in any case.
    void bytes(const element_name& name, std::span<const std::uint8_t> all, std::string_view text = "");

    /// What follows from elements before; only when all of them were handed on.
    void derived(std::string_view text, std::initializer_list<fact> facts);

    /// While it lives, fields belong to the structure `name`, indented one step deeper, behind `heading` if there is
    /// one; unless the structure begins behind the limit.
    class deeper {
    public:
        deeper(field_printer& p, const element_name& name, std::string_view heading = "")
            : sink(p.position <= p.last_bit ? &p.sink : nullptr)
        {
            if (sink != nullptr)
                sink->open(name, heading);
        }
        deeper(const deeper&) = delete;
        deeper& operator=(const deeper&) = delete;
        ~deeper()
        {
            if (sink != nullptr)
                sink->close();
        }

    private:
        field_sink* sink; // null when nothing was opened
    };

    /// Likewise to an entry of the array `name`, in one row with the others.
    class entry {
    public:
        entry(field_printer& p, const char* name, std::size_t index)
            : sink(p.position <= p.last_bit ? &p.sink : nullptr)
        {
            if (sink != nullptr)
                sink->open_entry({name, index});
        }
        entry(const entry&) = delete;
        entry& operator=(const entry&) = delete;
        ~entry()
        {
            if (sink != nullptr)
                sink->close_entry();
        }

    private:
        field_sink* sink; // null when nothing was opened
    };

private:
    void element(std::size_t bits, const element_name& name, const field_value& value, std::string_view note);

    field_sink& sink;
    std::size_t last_bit;
    std::size_t position = 0;
};

} // namespace orv_h264
