// The pictures of a stream as rows of a table: takes units and gaps, and gives a row a frame, or a row a field, in
// decoding order, each with its place in output order and its time. Every byte of the stream is in a unit of a row,
// padding of a row, or outside of all rows. Memory is bounded: a row that waits for its place for too long goes
// without.
#pragma once

#include "container/packet_log.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// A unit of a row.
struct row_unit {
    std::uint8_t nal_unit_type = 0;
    std::optional<h264::slice_kind> slice; ///< of a primary slice whose header was read
};

/// A layer or view that a row has slices of.
struct row_layer {
    bool scalable = false; ///< dependency_id, quality_id and temporal_id tell it; else view_id, and `depth`
    h264::slice_layer what;
};

/// What is wrong at a place of the stream, or odd about it.
struct row_problem {
    std::uint64_t offset = 0; ///< of the framing of its unit
    std::string message;
    std::uint64_t bytes = 0; ///< of a stretch that belongs to no unit, which `message` does not tell
    bool finding = false;    ///< nothing is lost by it: the exit status stays
};

enum class row_structure : std::uint8_t { frame, mbaff_frame, top_field, bottom_field, both_fields };

/// A frame, two fields, or a field alone; or each field by itself.
struct picture_row {
    std::uint64_t number = 0;                   ///< of the row, from 0
    std::uint64_t picture = 0;                  ///< number of its picture in decoding order, from 0
    std::optional<std::uint64_t> output_number; ///< of its picture in output order, from 0; not told where not output
    bool given_up = false;                      ///< its output number would have come after too many other pictures

    std::uint64_t offset = 0;     ///< of the framing of its first unit, in the file; or that of the packet it begins in
    std::uint64_t in_stream = 0;  ///< the same in the stream
    std::uint64_t size = 0;       ///< from there to the end of its last unit
    std::uint64_t unit_bytes = 0; ///< of its units with their framing: `size` without what lies between them
    std::uint64_t padding = 0;    ///< zero bytes between its units, and behind the last one up to the next unit
    std::uint64_t filler = 0;     ///< of unit_bytes: filler data units whole, and filler payload messages' payloads
    std::vector<row_unit> units;
    std::uint32_t coded_pictures = 0; ///< 2 of two fields

    bool idr = false;
    std::optional<std::uint32_t> recovery_frame_cnt; ///< of its first recovery point SEI message
    std::uint8_t slice_kinds = 0;                    ///< as in h264::access_unit
    row_structure structure = row_structure::frame;
    std::uint8_t nal_ref_idc = 0; ///< the higher one of two fields
    // Of its first field; not told where the slice header or a parameter set is missing.
    std::optional<std::uint32_t> frame_num;
    std::optional<std::uint32_t> sps_id;
    std::optional<std::uint32_t> pps_id;
    std::optional<std::uint8_t> pic_struct; ///< of its first field
    std::optional<std::int64_t> poc;        ///< PicOrderCnt, where it can be told and has 32 bits
    std::vector<row_layer> layers;          ///< each once, as they come; none where nothing tells of layers or views

    std::uint32_t field_duration = 0; ///< fields that it is shown for
    h264::exact_time duration;        ///< the same in seconds, where the SPS tells the field rate
    h264::exact_time pts;
    h264::exact_time dts;
    h264::time_source time_source = h264::time_source::none;

    std::optional<logged_packet> packet; ///< of a container: the one that it is the first to begin in

    bool cut = false;                  ///< it has more units or bytes than the library keeps
    bool last = false;                 ///< it ends with the input
    std::vector<row_problem> problems; ///< in it, and since the row before

    /// An IDR picture, or a recovery point: where decoding can begin.
    bool key() const { return idr || recovery_frame_cnt.has_value(); }
};

/// Who takes the rows.
class row_sink {
public:
    virtual ~row_sink() = default;
    /// The next access unit, one without a picture too; the rows come later.
    virtual void access_unit_came(const h264::access_unit& unit) { static_cast<void>(unit); }
    /// The next row in decoding order.
    virtual void row(picture_row&& row) = 0;
    /// What no row comes behind.
    virtual void problem(const row_problem& problem) = 0;

protected:
    row_sink() = default;
    row_sink(const row_sink&) = default;
    row_sink& operator=(const row_sink&) = default;
};

class picture_rows final : public h264::split_sink, h264::access_unit_sink, h264::picture_sink {
public:
    /// Behind so many later pictures a row goes without its output number.
    static constexpr std::uint64_t most_waiting_pictures = 1024;
    /// Likewise when the rows that wait have more units and problems than this.
    static constexpr std::size_t most_waiting_units = std::size_t{256} * 1024;
    /// The most problems that wait for a row.
    static constexpr std::size_t most_waiting_problems = 1024;

    /// Each field is a row of its own when they are split. `most_unit_bytes` is the limit of the splitter, `log` tells
    /// where the bytes of the stream lie in its file.
    picture_rows(bool split_fields, std::uint64_t most_unit_bytes, row_sink& sink, const packet_log* log = nullptr)
        : split(split_fields), most_bytes(most_unit_bytes), to(sink), packets(log)
    {
    }

    /// Parameter sets that hold before the first unit, and belong to no row.
    void begin_with(std::span<const h264::split_unit> sets);
    void unit(const h264::split_unit& unit) override;
    void gap(const h264::split_gap& gap) override;
    /// The stream has ended, and has so many bytes. All rows that are left are told.
    void finish(std::uint64_t stream_end);

    /// The parameter sets as they stand.
    const h264::parameter_sets& sets() const noexcept { return units.sets(); }

private:
    struct fed_unit {
        std::uint64_t begin;  // of its framing
        std::uint64_t header; // behind that
        std::uint64_t end;
        std::uint64_t padding; // behind it; of the newest unit not all is known
    };
    struct waiting_row {
        picture_row row;
        std::uint64_t header = 0; // where its first unit has it
        h264::ratio tick;         // seconds a field
        h264::picture_times own;  // of its field by itself
        bool complete = false;    // all fields have come
        bool settled = false;     // its output is known
    };
    using row_place = std::deque<waiting_row>::iterator;

    void take(const h264::access_unit& unit) override;
    void access_unit_came(const h264::access_unit& unit, const h264::picture* of) override;
    void decoded(const h264::picture& picture) override;
    void output(const h264::picture& picture) override;

    void add_padding(std::uint64_t offset);
    waiting_row& row_of(const h264::access_unit& unit, const h264::picture& of);
    void add_units(picture_row& row, const h264::access_unit& unit);
    std::vector<row_problem> problems_of(const h264::access_unit& unit) const;
    void keep(std::vector<row_problem> found);
    void take_problems(picture_row& row, std::vector<row_problem> found);
    std::pair<row_place, row_place> rows_of(std::uint64_t picture);
    void set_times(const h264::picture& picture);
    bool next_is_ready() const;
    bool waits_for_too_long() const;
    void tell_ready();
    void tell_next();
    void tell_problems(std::size_t kept);
    void place_in_file(picture_row& row, std::uint64_t header);
    std::uint64_t shown(std::uint64_t offset) const { return packets != nullptr ? packets->shown(offset) : offset; }
    const fed_unit& fed_of(const h264::access_unit_part& part) const { return fed[part.place.number - first_fed]; }

    bool split;
    std::uint64_t most_bytes;
    row_sink& to;
    const packet_log* packets;
    std::optional<std::uint64_t> last_packet; // in which a row began
    h264::access_units units;
    h264::pictures pictures{h264::output_mode::early};
    std::deque<fed_unit> fed; // those that no access unit has taken yet
    std::uint64_t first_fed = 0;
    std::uint64_t end = 0;            // of what came last
    bool end_is_open = false;         // more padding may come to the newest row
    std::deque<row_problem> problems; // that no row has taken yet, by offset
    std::deque<waiting_row> waiting;
    std::size_t waiting_units = 0; // theirs, and their problems
    std::uint64_t row_count = 0;
    std::uint64_t output_count = 0;
    bool finished = false;
};

} // namespace orv_h264
