/// @file
/// The NAL writer: appends NAL units to a caller's buffer, in Annex B or length-prefixed framing, and inserts the
/// emulation-prevention bytes (H.264 clause 7.3.1 and Annex B). It allocates nothing; a unit goes into the buffer whole
/// or not at all. `brenik::h264_nal_writer` is the writer for H.264.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h2645_common/nalfmt.h>

#include <cstddef>

namespace brenik {

/// The NAL writer for the header class `Nal` (a class with `encode_header()`) and the framing enumeration `Nalfmt`.
/// `buffer` <= `write` <= `fence` whenever `buffer` is not null.
template <class Nal, class Nalfmt>
class h2645_common_nal_writer {
public:
    Nalfmt nalfmt;         ///< the framing written
    unsigned char* buffer; ///< the start of the output buffer
    unsigned char* write;  ///< where the next unit goes
    unsigned char* fence;  ///< one past the last byte that may be written

    /// A writer without framing and without a buffer: it writes nothing.
    h2645_common_nal_writer() noexcept;

    /// A writer that appends at `write_start` in [`buffer_start`, `buffer_fence`).
    h2645_common_nal_writer(unsigned char* buffer_start, unsigned char* write_start, unsigned char* buffer_fence,
                            Nalfmt format) noexcept;

    /// Replaces the buffer; the framing is kept.
    void setbuf(unsigned char* buffer_start, unsigned char* write_start, unsigned char* buffer_fence) noexcept;

    /// The bytes written so far, `write` - `buffer`.
    std::size_t data_length() const noexcept;

    /// True when no byte of room is left.
    bool full() const noexcept;

    /// A buffer size that holds one unit with a payload of `n` bytes in the worst case of escaping, with up to 28 zero
    /// bytes before its start code: floor(1.5 n) + 32. A buffer for several units has to be as large as their sum.
    static std::size_t recommended_output_size(std::size_t n) noexcept;

    /// Writes one unit: framing, header byte, and the payload with emulation-prevention bytes.
    ///
    /// A header whose `valid` is false goes out as the byte FF. Asserts "buffer <= write" and "write <= fence", but
    /// only with a buffer that is there and has room.
    /// @param data the RBSP after the header byte, `length` bytes outside of the buffer
    /// @param length its size; `data` may be null when it is 0
    /// @param nal the header; `valid` has to be set in one that is made by hand
    /// @param zero_bytes Annex B: zero bytes written before the 00 00 01; 1 makes the four-byte start code
    /// @return the bytes added, framing included. 0, with `write` where it was, when there is no buffer, it is too
    ///     small, the unit is longer than its prefix can tell, or the framing is `nalfmt_none`
    std::size_t block_encode(unsigned char* data, std::size_t length, const Nal& nal, unsigned int zero_bytes);
};

} // namespace brenik
