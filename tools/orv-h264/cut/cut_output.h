// Where cut writes to: units in the framing of the input, with the start codes that they had, and how much that was.
#pragma once

#include "stream_input.h"
#include "unit_writer.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>

namespace orv_h264 {

class cut_output {
public:
    /// Told of what becomes of a unit that cannot be written as it is, with the offset of that.
    using complaint = std::function<void(std::uint64_t, const std::string&)>;

    /// What comes out of a container gets start codes.
    cut_output(const stream_input& from, output_file& into, complaint tell);

    /// A unit, whose framing of so many bytes begins there. Throws refusal where a length prefix does not hold its
    /// length.
    void write(std::span<const unsigned char> unit, std::uint64_t begin, unsigned framing_size);
    /// Zero bytes around start codes.
    void pad(std::uint64_t zeros);
    void flush() { output.flush(); }

    h264::framing framing() const noexcept { return output.framing(); }
    /// Written so far.
    std::uint64_t bytes() const noexcept { return output.bytes(); }

private:
    const stream_input& input;
    complaint complain;
    unit_writer output;
};

} // namespace orv_h264
