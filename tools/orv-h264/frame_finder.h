// The frames of a stream: takes whole units, as the piece feeder hands them on, and gives the pictures of the syntax
// library in decoding order, each with its number in output order. It holds those that wait for that, in bounded
// memory.
#pragma once

#include "piece_feeder.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// A unit of a frame.
struct frame_unit {
    brenik::h264_nal_unit_type type = brenik::h264_nal_unit_type_unspecified_0;
    std::optional<h264::slice_kind> slice; ///< of a primary slice whose header was read
};

/// A frame, two fields, or a field alone.
struct frame {
    std::uint64_t offset = 0; ///< of the framing of its first unit
    std::uint64_t size = 0;   ///< from there to the end of its last unit
    std::vector<frame_unit> units;
    std::uint32_t coded_pictures = 0; ///< 2 of two fields
    std::uint32_t field_duration = 0;
    std::optional<double> seconds; ///< how long it is shown, where the SPS of its slices tells the field rate
    h264::exact_time duration;     ///< likewise
    bool idr = false;
    std::optional<std::uint32_t> recovery_frame_cnt; ///< of its first recovery point SEI message
    std::optional<std::int64_t> poc;                 ///< PicOrderCnt, where it can be told and has 32 bits
    std::optional<std::uint64_t> output_number;      ///< of its picture; not told when it waits for too long
    bool last = false;                               ///< the end of the input ended it
    bool cut = false;                                ///< it has more units or bytes than the library keeps

    /// An IDR picture, or a recovery point: where decoding can begin.
    bool key() const { return idr || recovery_frame_cnt.has_value(); }
};

/// What is wrong with a frame that is cut, as text for a person.
std::string describe_cut(const frame& f);

class frame_finder : h264::access_unit_sink, h264::picture_sink {
public:
    /// The most units of frames that wait for their output; the oldest frame then goes without.
    static constexpr std::size_t most_waiting_units = std::size_t{256} * 1024;

    /// Each field is a frame of its own when they are split.
    explicit frame_finder(bool split_fields) : split(split_fields) {}

    /// Takes the next unit of the stream: `bytes` are its `where.length` bytes from the header on.
    void add(const unit& where, std::span<const unsigned char> bytes);

    /// No unit will come any more.
    void finish();

    /// Gives the next frame that is certain. False: more units are needed, or after finish(), there is no more.
    bool next(frame& found);

private:
    struct waiting_frame {
        std::uint64_t picture; // its number
        bool complete;
        frame what;
    };

    void take(const h264::access_unit& unit) override;
    void access_unit_came(const h264::access_unit& unit, const h264::picture* of) override;
    void decoded(const h264::picture& picture) override;
    void output(const h264::picture& picture) override;
    void add_units(frame& to, const h264::access_unit& unit);

    bool split;
    h264::access_units units;
    h264::pictures pictures{h264::output_mode::early};
    std::deque<unit> fed; // those that no access unit has taken yet
    std::uint64_t first_fed = 0;
    std::deque<waiting_frame> waiting;
    std::size_t waiting_units = 0;
    bool finished = false;
};

} // namespace orv_h264
