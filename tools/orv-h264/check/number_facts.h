// What rules over frame_num and picture order counts look at: a picture beside those before it.
#pragma once

#include "check/rule.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <optional>
#include <span>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// What later pictures ask of a primary coded picture; one that could not be read is not `known`.
struct numbered_picture {
    bool known = false;
    bool reference = false;
    bool idr = false;
    bool resets = false; ///< by operation 5
    bool second_field = false;
    h264::picture_structure structure = h264::picture_structure::frame;
    std::uint32_t frame_num = 0; ///< as it was sent
    std::int64_t count = 0;      ///< PicOrderCnt

    bool field() const { return structure >= h264::picture_structure::top_field; }
    /// What PrevRefFrameNum is behind a reference picture.
    std::uint32_t number_behind() const { return resets ? 0 : frame_num; }
    bool is_other_field_of(const numbered_picture& other) const
    {
        return field() && other.field() && structure != other.structure;
    }
};

/// A picture, those right before it, and how far its frame_num is behind PrevRefFrameNum.
struct numbering_facts {
    const h264::seq_parameter_set_data& sps;
    const numbered_picture& picture;
    const numbered_picture& last;
    const numbered_picture& last_but_one;
    std::optional<std::uint32_t> PrevRefFrameNum; ///< where it is known
    bool whole;                                   ///< its first slice is there

    /// Frames that the step of frame_num is; 0 is the same one again. Nothing where it is not known.
    std::optional<std::uint64_t> step() const;
    /// It is the picture right before once more.
    bool repeats_last() const;
};

/// A decoded frame, complementary field pair or lone field among those of its sequence.
struct count_facts {
    const h264::picture& picture;
    std::optional<std::int64_t> shared; ///< a count that another picture has
    bool parted;                        ///< a count of another picture lies between those of two fields
};

/// A picture that is output, behind the one that was output before it.
struct output_step_facts {
    const h264::picture& picture;
    std::uint64_t missing; ///< pictures that would go between, were all steps the same
};

std::span<const rule_over<numbering_facts>> numbering_rules();
std::span<const rule_over<count_facts>> count_rules();
std::span<const rule_over<output_step_facts>> output_step_rules();

} // namespace orv_h264
