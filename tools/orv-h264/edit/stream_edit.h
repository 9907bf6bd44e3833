// The run of an edit over a stream: puts its units together to pictures, has each edited, and writes what comes of it
// in the framing that it had, with all that stands between the units. Of a container the units are written behind start
// codes, with the parameter sets of its record before the pictures that lack them.
#pragma once

#include "edit/edit_log.h"
#include "edit/edit_plan.h"
#include "edit/unit_editor.h"
#include "input_file.h"
#include "messages.h"
#include "progress.h"
#include "stream_input.h"
#include "unit_writer.h"

#include <exception>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace orv_h264::editing {

class stream_edit final : h264::split_sink, h264::access_unit_sink, h264::unit_sink {
public:
    /// @param path of the input, to be read a second time for what stands between units
    stream_edit(const edit_plan& with, stream_input& from, const std::string& path, output_file& to);
    stream_edit(const stream_edit&) = delete;
    stream_edit& operator=(const stream_edit&) = delete;
    ~stream_edit() override = default;

    /// Reads and writes all of it. Throws refusal when the edit cannot be done, and for an input without a unit.
    exit_status run();

    const edit_log& log() const { return done; }

private:
    /// Where a unit lay.
    struct unit_source {
        std::uint64_t behind_last = 0; ///< the end of the unit before it
        std::uint64_t offset = 0;      ///< of its header byte
        unsigned framing_size = 0;
        bool raw = false; ///< what stands before it is more than zero bytes and its framing
    };
    /// A unit on its way out.
    struct leaving_unit {
        unit_fate fate = unit_fate::copied;
        const h264::access_unit_part* part = nullptr; ///< of the input, or null
        std::span<const unsigned char> bytes;
    };
    using picture_units = std::vector<leaving_unit>;

    void unit(const h264::split_unit& u) override;
    void gap(const h264::split_gap& g) override;
    void take(const h264::access_unit& picture) override;
    void take(const h264::unit_reading& reading) override;

    void take_record_sets();
    void read_unit(const h264::unit_place& place);
    void rethrow() const;
    void keep_set(std::span<const unsigned char> bytes);
    void put_headers(picture_units& leaving, const h264::access_unit& picture);
    void put_delimiter(picture_units& leaving, const h264::access_unit& picture);
    void put_insertions(picture_units& leaving, const h264::access_unit& picture);
    void put_at(picture_units& leaving, std::size_t place, std::span<const unsigned char> bytes);
    std::size_t place_in_picture(const picture_units& leaving, const unit_insertion& insertion) const;
    void write(const picture_units& leaving);
    void write_before_insertion(picture_units::const_iterator next, picture_units::const_iterator end);
    void write_unit(const leaving_unit& unit, unsigned least_start_code);
    void write_framed(std::span<const unsigned char> bytes, h264::framing from, unsigned start_code_size,
                      std::uint64_t offset);
    void write_between(std::uint64_t begin, std::uint64_t end, bool raw);
    void complain(std::uint64_t offset, const std::string& what, bool is_problem = true);
    [[noreturn]] void stop(exit_status status, std::uint64_t offset, const std::string& why);

    const edit_plan& plan;
    stream_input& input;
    input_file raw_input;
    unit_writer output;
    complaints problems;
    progress shown_progress;
    unit_editor editor;
    edit_log done;
    h264::access_units pictures;
    h264::stream units;                           // as they were
    h264::parameter_set_store sets;               // as they have become
    std::map<std::uint64_t, unit_source> sources; // by number
    std::vector<edited_unit> edited;              // of the picture
    std::vector<std::vector<unsigned char>> made; // units that come into the picture
    std::exception_ptr failed;
    std::vector<bool> inserted; // by insertion
    std::uint64_t count = 0;    // of units
    std::uint64_t passed = 0;   // the end of the last unit
    std::uint64_t picture_count = 0;
    bool gap_open = false;
    bool any_picture = false;
};

} // namespace orv_h264::editing
