/// @file
/// Which decoded frames and fields are used for reference: H.264 clauses 8.2.4.1 and 8.2.5, without their samples.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_syntax/bounded_list.h>
#include <orv-utils-v4/h264_syntax/seq_parameter_set.h>
#include <orv-utils-v4/h264_syntax/slice_header.h>

#include <cstddef>
#include <cstdint>

namespace orv_utils_v4::h264 {

/// A frame, a complementary field pair or a field of which something is used for reference. Fields are told by bits: 1
/// is the top field, 2 the bottom field, 3 both.
struct reference_frame {
    std::uint64_t number;              ///< the caller's; of non-existing frames nothing
    std::uint32_t frame_num;           ///< FrameNum
    std::uint32_t long_term_frame_idx; ///< LongTermFrameIdx, with long_term not 0
    std::uint8_t short_term;           ///< fields marked as used for short-term reference
    std::uint8_t long_term;            ///< fields marked as used for long-term reference
    bool non_existing;                 ///< inferred for a gap in frame_num (clause 8.2.5.2)
};

/// A picture as the marking process takes it.
struct marked_picture {
    const seq_parameter_set_data& sps; ///< active for it
    const slice_header& header;        ///< its first slice
    unsigned nal_ref_idc = 0;
    bool idr = false;          ///< IdrPicFlag
    bool second_field = false; ///< of the frame that came before; then `number` is that of the first field
    std::uint64_t number = 0;  ///< of its frame
};

/// A frame by one of its numbers (clause 8.2.4.1), and those of its fields that are meant.
struct named_reference {
    const reference_frame* frame; ///< null: nothing is marked so
    std::uint8_t fields;
};

/// What a picture broke.
struct marking_result {
    std::uint64_t missing = 0;    ///< reference frames, by a gap in frame_num (clause 7.4.3)
    bool no_such_picture = false; ///< an operation names a picture that is not marked so
    bool too_many = false;        ///< more frames than max_num_ref_frames: the oldest ones went
};

/// The marking of a stream's pictures, given in decoding order: of each before_picture(), then after_picture().
class ORV_UTILS_V4_EXPORT reference_marking {
public:
    /// The most frames that are kept, whatever the SPS says (A.3.1).
    static constexpr std::uint32_t most_frames = 16;

    /// Frames that a gap in frame_num stands for are inferred (clause 8.2.5.2), whether or not the SPS allows gaps.
    marking_result before_picture(const marked_picture& picture) noexcept;
    /// Marks the frames before a reference picture by its sliding window or operations, and then itself.
    marking_result after_picture(const marked_picture& picture) noexcept;

    /// One operation of a picture, as after_picture() carries out each of them in turn: for a caller who looks at the
    /// marking between them. Frames beyond the limit stay.
    /// @return false when it names a picture that is not marked so
    bool operate(const marked_picture& picture, const marking_operation& operation) noexcept;
    /// What this PicNum names where `picture` is the current one: the two fields of a frame, or a field.
    named_reference short_term(const marked_picture& picture, std::int64_t PicNum) const noexcept;
    /// Likewise, by a LongTermPicNum.
    named_reference long_term(const marked_picture& picture, std::uint32_t LongTermPicNum) const noexcept;

    /// Frames of which something is used for reference, in decoding order.
    const reference_frame* begin() const noexcept { return frames.begin(); }
    /// Behind the last one.
    const reference_frame* end() const noexcept { return frames.end(); }
    /// How many.
    std::size_t size() const noexcept { return frames.size(); }
    /// Something of the frame with this number is used for reference.
    bool uses(std::uint64_t number) const noexcept;

private:
    /// A frame, and those of its fields that are meant.
    struct named_fields {
        reference_frame* of;
        std::uint8_t fields;
    };

    /// Its first field has one, at the end of all.
    bool has_entry(const marked_picture& picture) const noexcept
    {
        return picture.second_field && !frames.empty() && frames.back().number == picture.number &&
               !frames.back().non_existing;
    }
    void infer_frame(std::uint32_t frame_num, const seq_parameter_set_data& sps) noexcept;
    reference_frame& entry_of(const marked_picture& picture) noexcept;
    void slide(std::uint32_t frame_num, const seq_parameter_set_data& sps) noexcept;
    bool operate(const marked_picture& picture, const marking_operation& operation, reference_frame& current) noexcept;
    named_fields find_short_term(const marked_picture& picture, std::int64_t picNumX) noexcept;
    named_fields find_long_term(const marked_picture& picture, std::uint32_t LongTermPicNum) noexcept;
    void make_long_term(named_fields named, std::uint32_t long_term_frame_idx) noexcept;
    void drop_unused() noexcept;
    bool drop_what_is_too_much(const seq_parameter_set_data& sps) noexcept;

    bounded_list<reference_frame, most_frames + 2> frames;
    std::uint32_t PrevRefFrameNum = 0;
    bool any_picture = false;
};

} // namespace orv_utils_v4::h264
