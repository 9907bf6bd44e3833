// A run over the units of a stream, each read with the parameter sets that are active for it. What is wrong on the way
// is complained of.
#pragma once

#include "messages.h"
#include "stream_input.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

namespace orv_h264 {

/// A unit with its framing.
struct listed_unit {
    h264::unit_place place; ///< its offset is the one in the file; in the stream where it has none of its own there
    unsigned framing_size = 0;
    std::optional<std::uint64_t> packet =
        {};                 ///< of a container's stream that has no offsets of its own: that of its packet
    bool in_record = false; ///< it comes from the decoder configuration record of a container

    /// Where its framing begins, as its place counts.
    std::uint64_t begin() const { return place.offset - framing_size; }
    /// The offset for a person.
    std::uint64_t shown() const { return packet.value_or(begin()); }
    /// The five bits of nal_unit_type.
    unsigned type() const { return place.bytes[0] & 0x1FU; }
};

class unit_run : h264::split_sink, h264::unit_sink {
public:
    unit_run(const std::string& name, bool in_json) : problems(name, in_json) {}
    unit_run(const unit_run&) = delete;
    unit_run& operator=(const unit_run&) = delete;
    ~unit_run() override = default;

    /// Reads the stream until it ends or there was enough of it.
    exit_status run(stream_input& input);

protected:
    /// Nothing that comes is taken or complained of any more.
    virtual bool enough() const = 0;
    /// Units are not read, but taken as they are: all of them or none.
    virtual bool unread() const { return false; }
    /// The unit is about to be read, its elements are told to the visitor that is returned; or null.
    virtual h264::visitor* before(const listed_unit& unit) = 0;
    /// The unit was read; null where it is not.
    virtual void take(const listed_unit& unit, const h264::unit_reading* reading) = 0;
    virtual void take_gap(const h264::split_gap& gap) { static_cast<void>(gap); }
    /// The stream ends inside the unit, which comes to the others behind this.
    virtual void take_cut(const listed_unit& unit, const h264::split_unit& as_split);

    /// For one that is not run, but given the units that are read for something else, and told when they have ended.
    void begin_units(const stream_input& input);
    h264::split_sink& units_in() { return *this; }
    void end_units() { stream.flush(*this); }

    /// Something is wrong; with the unit, if any.
    virtual void complain(const listed_unit* unit, std::uint64_t offset, const std::string& what, bool is_problem);

private:
    void unit(const h264::split_unit& u) override;
    void gap(const h264::split_gap& g) override;
    h264::visitor* before(const h264::unit_place& place) override;
    void take(const h264::unit_reading& reading) override;
    listed_unit listed(const h264::split_unit& u) const;
    listed_unit next(const h264::unit_place& place) const;
    void complain_of(const listed_unit& unit, const h264::outcome& result);

    complaints problems;
    h264::stream stream;
    const packet_log* packets = nullptr;
    std::uint64_t most_bytes = 0;
    std::uint64_t units = 0;         // all that there are
    std::deque<listed_unit> waiting; // that the stream has not handed on
};

} // namespace orv_h264
