// Units that were read, each with what it was read with, so that it can be traced, edited and written later.
#pragma once

#include "set_snapshot.h"
#include "unit_feed.h"

#include <deque>
#include <memory>
#include <string>

namespace orv_python {

/// A unit that was read.
struct kept_reading {
    found_unit unit;
    std::shared_ptr<h264::nal_unit_header> header;
    std::shared_ptr<void> rbsp; ///< the structure alone
    int rbsp_number = -1;       ///< which one it is; -1 is none
    h264::outcome result;
    kept_context context;
    std::shared_ptr<const h264::seq_parameter_set_data> sps;
    std::shared_ptr<const h264::pic_parameter_set_rbsp> pps;
};

/// Gives the readings of a source, in order.
class reading_feed : h264::unit_sink {
public:
    reading_feed(py::object source, bool pieces, h264::framing framing, std::size_t most_bytes)
        : units(std::move(source), pieces, framing, most_bytes, false)
    {
    }

    /// Some more of them; none at the end.
    py::list next_batch();

private:
    /// So many units are read before Python has its turn; a stream hands on up to 4096 at once.
    static constexpr std::size_t batch_units = 64;

    void take(const h264::unit_reading& reading) override;
    void keep(const h264::unit_reading& reading);
    bool read_some();
    void push(const found_unit& unit);

    bool busy = false;
    unit_feed units;
    std::size_t next = 0; // of the units
    bool flushed = false;
    bool no_memory = false;
    h264::stream stream;
    set_follower follower;
    bool sets_are_held = false;
    std::deque<found_unit> waiting; // that the stream has not handed on
    std::vector<std::shared_ptr<kept_reading>> readings;
};

/// Puts the RBSP of a unit by itself.
void take_rbsp(kept_reading& to, const h264::nal_unit& unit);
/// Puts header and RBSP together: the other way round.
void make_unit(h264::nal_unit& to, py::handle header, py::handle rbsp);

/// What a failure says: (reason, element, bit, value, bound, a line of text).
py::tuple failure_tuple(const h264::failure& failure);

/// Adds Reading and ReadingFeed to the module.
void add_reading_types(py::module_& m);

} // namespace orv_python
