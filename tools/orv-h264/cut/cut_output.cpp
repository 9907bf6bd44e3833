#include "cut/cut_output.h"

#include "framing.h"

#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

cut_output::cut_output(const stream_input& from, output_file& into, complaint tell)
    : input(from),
      complain(std::move(tell)),
      output(from.in_container() != nullptr ? h264::framing::annex_b : from.framing(), &into)
{
}

void cut_output::write(std::span<const unsigned char> unit, std::uint64_t begin, unsigned framing_size)
{
    const unsigned prefix = prefix_size_of(output.framing());
    const bool as_found = input.framing() == h264::framing::annex_b;
    const unit_written became =
        output.write(unit, as_found ? h264::framing::annex_b : h264::framing::length_4, as_found ? framing_size : 4);
    switch (became) {
    case unit_written::as_it_is:
        return;
    case unit_written::escaped:
        return complain(begin, "start code inside the unit: an emulation-prevention byte is put into it");
    case unit_written::shorter:
        return complain(begin, "unit ends in 00, which start codes cannot carry: left out");
    case unit_written::left_out:
        return complain(begin, "unit of one byte 00, which start codes cannot carry: left out");
    case unit_written::too_long:
        throw refusal(exit_usage_or_io,
                      fmt::format("{}: offset {}: parameter set of {} bytes does not fit behind a length of {} "
                                  "byte{}; nothing is written",
                                  input.name(), begin, unit.size(), prefix, prefix == 1 ? "" : "s"));
    }
}

void cut_output::pad(std::uint64_t zeros)
{
    if (output.framing() == h264::framing::annex_b && input.in_container() == nullptr)
        output.pad(zeros);
}

} // namespace orv_h264
