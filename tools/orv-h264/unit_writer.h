// NAL units in a framing, as bytes that go to a file. A unit keeps its bytes wherever the framing can carry them.
#pragma once

#include "output_file.h"

#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// What became of a unit.
enum class unit_written {
    as_it_is,
    escaped,  ///< Annex B: start codes inside it got emulation-prevention bytes (H.264 7.4.1)
    shorter,  ///< Annex B: a zero byte at its end is left out, which is none of the unit's behind start codes
    left_out, ///< Annex B: it is that zero byte alone
    too_long, ///< for its length prefix; nothing is written
};

class unit_writer {
public:
    /// Units go to `into`, which has to live as long; without one they go nowhere.
    unit_writer(h264::framing how, output_file* into) : frames(how), output(into) {}

    h264::framing framing() const noexcept { return frames; }

    /// A unit with its header byte, behind a start code of so many bytes, 3 or 4, or its length.
    /// @param from the framing that it was in: within Annex B nothing is looked for
    unit_written write(std::span<const unsigned char> unit, h264::framing from, unsigned start_code_size = 4);
    /// Zero bytes between units, in Annex B.
    void pad(std::uint64_t zeros);
    /// Bytes that are written as they are.
    void put_raw(std::span<const unsigned char> bytes) { put(bytes); }
    /// What was gathered goes to the file.
    void flush();
    /// All that was given to it takes, whether it was flushed or not.
    std::uint64_t bytes() const noexcept { return given; }

private:
    unit_written write_as_escaped(std::span<const unsigned char> unit, unsigned start_code_size);
    unit_written write_escaped(std::span<const unsigned char> unit, unsigned start_code_size);
    unsigned char* room_for(std::size_t size);
    void add(std::size_t size);
    void put(std::span<const unsigned char> bytes);
    void put_start_code(unsigned size);
    void put_length(std::size_t length);

    h264::framing frames;
    output_file* output;
    std::unique_ptr<unsigned char[]> out; // what is gathered, and room behind it that nothing was written to
    std::size_t room = 0;                 // of it all
    std::size_t gathered = 0;
    std::uint64_t given = 0;
};

} // namespace orv_h264
