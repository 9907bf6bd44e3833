/// @file
/// The NAL reader: finds one unit after another in a byte buffer, in Annex B or length-prefixed framing, and hands
/// out its RBSP without the emulation-prevention bytes (H.264 clause 7.3.1 and Annex B). It allocates nothing and
/// never writes to the buffer, which must outlive it. `brenik::h264_nal_reader` is the reader for H.264.
///
/// **A buffer that holds the whole input.** scan() from its start; while `found`, read `nal`, call block_decode(), and
/// scan again from `next`, unless `incomplete`: then the length-prefixed unit is cut, and `next` is its start again.
///
/// **Input that comes in pieces.** As long as more is to come, each scan tells which bytes to keep; append the next
/// piece to them, and scan again from the first byte kept:
/// - Annex B, nothing found: keep the last three bytes, or all when there are fewer. A start code may begin there.
/// - Annex B, a unit found: ask find_unit_end() before block_decode(). `data_fence` means that the unit may go on: keep
///   it from `nal_start` on. Otherwise it is whole: decode it, and go on from `next`. `incomplete` stays false.
/// - Length prefixes, `incomplete`: keep the bytes from `next` on, whether a unit was found or not. Otherwise the unit
/// is
///   whole: decode it, and go on from `next`.
/// - Length prefixes, `gave_up`: after a length of 0 stop, or go on behind that prefix; after a forbidden header go on
///   from `next`, and where that lies past `data_fence`, so many bytes of what is to come belong to the skipped unit.
///
/// With the last piece it is a whole buffer, and a unit that might have gone on ends there.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h2645_common/nalfmt.h>

#include <cstddef>
#include <cstdint>

namespace brenik {

/// The scanning state, common to every header class. All pointers point into the caller's buffer.
class ORV_UTILS_V4_EXPORT h2645_common_nal_reader_base {
public:
    /// Where the following scan should begin. After a length-prefixed unit whose header has the forbidden bit it may
    /// lie past `data_fence`: that many bytes of later data belong to the skipped unit.
    unsigned char* next = nullptr;
    unsigned char* data = nullptr;       ///< the start of the range given to the latest scan
    unsigned char* data_fence = nullptr; ///< the end of that range
    unsigned char* nal_header = nullptr; ///< the unit's header byte
    /// The first byte of the unit's framing: of the 00 00 01, or of the length prefix. `orv-h264` counts a zero byte
    /// before 00 00 01 to the start code, so that its offsets are one less where `zero_count` is not 0.
    unsigned char* nal_start = nullptr;
    unsigned char* payload = nullptr; ///< the first byte after the header byte
    std::uint32_t nal_length = 0;     ///< the length prefix: header byte and payload; 0 in Annex B
    std::uint32_t payload_length = 0; ///< `nal_length` - 1; 0 in Annex B
    std::uint32_t zero_count = 0;     ///< Annex B: zero bytes seen directly before the 00 00 01
    bool found = false;               ///< the latest scan found a unit
    /// The latest scan abandoned data: see do_give_up(). A loop that asks `found` alone takes it for the end: behind a
    /// length of 0 it drops the rest of the buffer without a word.
    bool gave_up = false;
    bool incomplete = false;               ///< the data ended too early: append to what lies from `next` on
    bool length_known = false;             ///< the unit's extent is known from a length prefix
    unsigned char* decode_ptr = nullptr;   ///< the next unit byte that `block_decode` reads
    unsigned char* decode_fence = nullptr; ///< the end of what `block_decode` may read
    h2645_common_nalfmt nalfmt;            ///< the framing, set when the reader is made

    /// A reader that has scanned nothing yet.
    explicit h2645_common_nal_reader_base(h2645_common_nalfmt format = nalfmt_none) noexcept;

    /// Makes `block_decode` start over at the unit's payload. The unit ends where its length prefix says, but not
    /// beyond `data_fence`; in Annex B `data_fence` bounds it. When nothing was found there is nothing to decode.
    void rewind() noexcept;

    /// Records in `gave_up` that the latest scan abandoned data: a length prefix of 0, or a unit whose header has the
    /// forbidden bit set.
    void do_give_up() noexcept;
};

/// The NAL reader for the header class `Nal` (a default-constructible class with `valid` and `decode_header(byte)`)
/// and the framing enumeration `Nalfmt`.
template <class Nal, class Nalfmt>
class h2645_common_nal_reader : public h2645_common_nal_reader_base {
public:
    /// The header of the unit found; `valid` is false when there is none.
    Nal nal = {};

    /// A reader for units framed as `format`.
    explicit h2645_common_nal_reader(Nalfmt format = nalfmt_none) noexcept;

    /// Looks for the next unit in [`start`, `end`); the members tell the result. A framing value above 5 aborts the
    /// process.
    ///
    /// Annex B: the unit is found as soon as its header byte is seen, and ends where block_decode() meets the next
    /// start code; start codes before a header with the forbidden bit are passed over. Length-prefixed: a unit that
    /// reaches past `end` is `found` and `incomplete`, with `next` at its prefix; a header with the forbidden bit is
    /// given up on with `next` behind the unit; a prefix of 0 is given up on with `next` at `end`.
    void scan(unsigned char* start, unsigned char* end);

    /// The Annex B search of scan(). Asserts "data_ptr <= fence".
    /// @param data_ptr where to begin
    /// @param fence the end of the data
    void scan_annex_b(unsigned char* data_ptr, unsigned char* fence);

    /// Copies up to `size` bytes of the unit's RBSP to `out`, emulation-prevention bytes removed, and goes on where
    /// the call before stopped. Never reads at or past `decode_fence`.
    ///
    /// The last two bytes of room are filled without examination: a block that comes back full is not to be trusted
    /// there, and neither is going on from it: rewind() and decode again into a larger one. Large enough for certain is
    /// a block with three bytes more than the payload, and one as large as the buffer that was scanned. It may lie over
    /// the unit itself, to decode in place.
    ///
    /// What points into the block, as an SEI message or user data does, holds until the block is written again or goes;
    /// what a `parse` stored does not point there.
    /// @return the bytes written; 0 when nothing is left
    std::size_t block_decode(unsigned char* out, std::size_t size);

    /// Where block_decode(), going on from `decode_ptr`, would stop: at the next 00 00 00, 00 00 01 or 00 00 02, or at
    /// `decode_fence` when there is none. Moves nothing.
    unsigned char* find_unit_end() const;
};

} // namespace brenik
