// Units out of a source, a batch at a time: out of a buffer, or out of the pieces that an iterator gives.
#pragma once

#include "unit_object.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace orv_python {

/// A timestamp that came with a piece: (presentation, decoding or None).
struct piece_stamp {
    std::uint64_t start = 0; ///< of its piece in the stream
    std::uint64_t end = 0;
    std::int64_t presentation = 0;
    std::optional<std::int64_t> decoding;
};

class unit_feed : h264::split_sink {
public:
    /// `source` has the buffer protocol, or is an iterator of such objects, or of tuples of one and its timestamps.
    unit_feed(py::object source, bool pieces, h264::framing framing, std::size_t most_bytes, bool gaps);

    /// Further units are in `units`; false at the end of the source. The interpreter's lock is held, and let go of
    /// while bytes are read that nobody can write to.
    bool read_more();

    std::vector<found_unit> units;   ///< of the batch
    std::vector<piece_stamp> stamps; ///< of the batch
    std::uint64_t bytes_read() const { return position; }
    bool any = false; ///< there was a unit

private:
    /// A batch of a buffer: as many bytes have 256 Ki units at the most.
    static constexpr std::size_t batch_bytes = std::size_t{256} * 1024;

    void unit(const h264::split_unit& unit) override;
    void gap(const h264::split_gap& gap) override;
    bool read_buffer();
    bool read_piece();
    py::object next_piece();
    void push(const unsigned char* bytes, std::size_t size, bool release);
    void flush();
    void keep_copied();

    std::shared_ptr<const source_bytes> buffer; // null where pieces come
    py::object iterator;
    h264::unit_splitter splitter;
    bool want_gaps;
    bool ended = false;
    std::uint64_t position = 0;
    std::uint64_t count = 0;
    std::vector<unsigned char> copied; // units of the batch that came in pieces
};

} // namespace orv_python
