#include "loss_texts.h"

#include <fmt/format.h>

namespace orv_h264 {

namespace {

std::string describe_too_large(const h264::split_gap& gap, std::uint64_t most_bytes)
{
    const unsigned type = gap.header & 0x1FU;
    if (gap.stated_length == 0)
        return fmt::format("unit of type {} longer than the limit of {} bytes", type, most_bytes);
    return fmt::format("unit of type {} whose declared length of {} bytes is above the limit of {}", type,
                       gap.stated_length, most_bytes);
}

} // namespace

std::string describe(const h264::split_gap& gap, std::uint64_t most_bytes)
{
    using h264::split_gap_reason;
    switch (gap.reason) {
    case split_gap_reason::before_first_unit:
        return "bytes before the first start code";
    case split_gap_reason::between_units:
        return "bytes behind a place where the unit's decoding stops";
    case split_gap_reason::no_header:
        return "start code or length prefix without a unit";
    case split_gap_reason::too_large:
        return describe_too_large(gap, most_bytes);
    case split_gap_reason::cut_prefix:
        return "input ends inside a length prefix";
    case split_gap_reason::no_memory:
        return fmt::format("unit of type {} that there is no memory for", gap.header & 0x1FU);
    }
    return "";
}

std::string describe_with_size(const h264::split_gap& gap, std::uint64_t most_bytes)
{
    return fmt::format("{} ({} bytes)", describe(gap, most_bytes), gap.size);
}

std::string describe_cut(const h264::split_unit& unit)
{
    return fmt::format("unit of {} bytes runs past the end of the input", unit.stated_length);
}

std::string describe_no_unit(bool input_is_empty)
{
    return input_is_empty ? "no NAL unit found: the input is empty" : "no NAL unit found";
}

} // namespace orv_h264
