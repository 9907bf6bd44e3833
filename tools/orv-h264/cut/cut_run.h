// The run of cut that writes: takes the units of the input, hands those on that lie between two places.
#pragma once

#include "cut/cut.h"
#include "cut/cut_output.h"
#include "cut/seam_notes.h"
#include "json_output.h"
#include "messages.h"
#include "progress.h"

#include <orv-utils-v4/h264_syntax/parameter_set_store.h>

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

namespace orv_h264 {

class cut_run final : h264::split_sink, h264::access_unit_sink, h264::picture_sink {
public:
    /// @param where the places, none of which is a time
    cut_run(const cut_options& chosen, const cut_range& where, stream_input& from, output_file& into);

    /// Writes all that lies between the places. Throws refusal where that is nothing.
    exit_status run();
    /// Something odd about the whole.
    void note(std::uint64_t offset, const std::string& text);
    /// docs/schema/cut.schema.json describes it.
    json summary() const;

private:
    enum class stretch : std::uint8_t { before, inside, behind };

    /// A unit that no access unit has taken yet.
    struct fed_unit {
        std::uint64_t begin;  // of its framing
        std::uint64_t header; // behind that
        std::uint64_t end;
        std::uint64_t zeros; // before its framing
    };
    /// What is wrong at a place, for when it is known whether that is written.
    struct found_problem {
        std::uint64_t offset;
        std::string text;
        bool lost_unit; // a copy without it would be none
    };

    void unit(const h264::split_unit& u) override;
    void gap(const h264::split_gap& g) override;
    void take(const h264::access_unit& unit) override;
    void access_unit_came(const h264::access_unit& unit, const h264::picture* of) override;
    void decoded(const h264::picture& picture) override;

    void move_on(const h264::access_unit& unit, const h264::picture* of);
    bool is_at(const cut_place& place, const h264::access_unit& unit, const h264::picture* of) const;
    void write_unit(const h264::access_unit& unit, const std::vector<bool>& stays);
    void write_part(const h264::access_unit_part& part, bool stays);
    void write_sets(const std::vector<h264::unit_view>& more);
    void keep_sets(const h264::access_unit& unit);
    void tell_problems(std::uint64_t fence, bool written);
    void tell_seams();
    void complain(std::uint64_t offset, const std::string& what);
    [[noreturn]] void refuse_nothing() const;
    const fed_unit& fed_of(const h264::access_unit_part& part) const { return fed[part.place.number - first_fed]; }

    const cut_options& options;
    const cut_range& range;
    stream_input& input;
    cut_output output;
    complaints problems;
    progress shown_progress;
    layer_choice layers;
    h264::access_units units;
    h264::pictures pictures{h264::output_mode::early};
    h264::parameter_set_store sets; // in force before what is written
    std::deque<fed_unit> fed;
    std::uint64_t first_fed = 0;
    std::uint64_t passed = 0; // bytes of the input up to the end of the last unit or gap
    std::deque<found_problem> found;
    std::vector<seam_note> other_notes;
    seam_notes seams;

    stretch where = stretch::before;
    bool last_stayed = true; // zero bytes behind a unit go with it; those before the first one stay
    bool any_written = false;
    std::optional<std::uint64_t> latest_picture; // its number
    std::uint64_t latest_offset = 0;
    struct {
        std::uint64_t first_offset = 0;
        std::optional<std::uint64_t> first_picture;
        std::uint64_t pictures = 0;
        std::uint64_t access_units = 0;
        std::uint64_t units = 0;
        std::uint64_t left_out = 0; // units between the places
        std::uint64_t sets_added = 0;
    } totals;
};

} // namespace orv_h264
