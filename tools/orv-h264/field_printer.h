// Prints syntax elements, one a line, under their H.264 names. It counts the bits that the elements took, so that of a
// unit whose parse failed only those are shown that the unit carried.
#pragma once

#include <orv-utils-v4/h264.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace orv_h264 {

class field_printer {
public:
    static constexpr std::size_t no_limit = std::numeric_limits<std::size_t>::max();

    /// Appends lines to `out`, indented by `first_depth` steps, for the elements that end at or before bit `limit`.
    explicit field_printer(std::string& out, std::size_t limit = no_limit, int first_depth = 1);

    /// u(n); `note` says in words what the value means.
    void u(unsigned int n, std::string_view name, std::uint64_t value, std::string_view note = "");
    /// i(n)
    void i(unsigned int n, std::string_view name, std::int32_t value);
    /// u(1)
    void flag(std::string_view name, bool value);
    void ue(std::string_view name, std::uint32_t value, std::string_view note = "");
    void se(std::string_view name, std::int32_t value);
    /// A scaling list that is present, its entries in scan order.
    void scaling_list(std::string_view name, const brenik::h264_scaling_list& list);

    /// A line that is no element, or stands for many; shown in any case.
    void line(std::string_view text);

    /// What follows from elements shown before; only when all of them were.
    void derived(std::string_view text);

    /// While it lives, lines are indented one step deeper.
    class deeper {
    public:
        explicit deeper(field_printer& p) : printer(p) { ++printer.depth; }
        deeper(const deeper&) = delete;
        deeper& operator=(const deeper&) = delete;
        ~deeper() { --printer.depth; }

    private:
        field_printer& printer;
    };

private:
    void element(std::size_t bits, std::string_view name, std::string_view value, std::string_view note);

    std::string& lines;
    std::size_t last_bit;
    std::size_t position = 0;
    int depth;
};

} // namespace orv_h264
