// The marking of reference pictures over time: what its rules, and those of reference lists, look at.
#pragma once

#include "check/check_part.h"
#include "check/reference_facts.h"

#include <deque>
#include <optional>

namespace orv_h264 {

/// Where a stream begins with an IDR picture or one with operation 5, and nothing is missing since, all that is used
/// for reference is known; else only what an operation says by itself is judged.
class marking_part final : public check_part {
public:
    explicit marking_part(violation_log& to) : log(to) {}

    void unit(const listed_unit& unit, const h264::unit_reading& reading) override;
    void access_unit(const h264::access_unit& unit, const h264::picture* of) override;

private:
    /// What is asked about the lists of a slice that has come, until its picture is told.
    struct waiting_slice {
        std::uint64_t unit;
        h264::slice_kind kind;
        std::uint32_t num_ref_idx_active_minus1[2];
        bool modified[2];
        std::vector<h264::pic_num_modification> modifications[2];
    };
    /// A field whose other field may come.
    struct first_field {
        bool bottom;
        std::uint32_t frame_num;
        std::optional<std::uint32_t> long_term_idx; ///< by long_term_reference_flag or operation 6
    };

    void take_picture(const h264::access_unit& unit, const h264::marked_picture& picture);
    void judge_lists(const h264::access_unit& unit, const h264::marked_picture& picture);
    void judge_operations(const h264::marked_picture& picture, std::uint64_t unit);
    void judge_picture(const h264::marked_picture& picture, const h264::reference_marking& before,
                       h264::marking_result result, std::uint64_t unit);
    void drop_slices_of(const h264::access_unit& unit);
    void keep_first_field(const h264::marked_picture& picture);
    const h264::reference_marking* known_marking() const { return known ? &marking : nullptr; }

    violation_log& log;
    h264::reference_marking marking;
    bool known = false;
    std::optional<std::int64_t> highest_idx; // MaxLongTermFrameIdx
    std::optional<first_field> open_field;   // of the picture before, a reference one
    std::deque<waiting_slice> slices;
};

} // namespace orv_h264
