// Sound streams of frames and fields at random, as far as clause 8.2.5 tells them apart: reference pictures and others,
// pairs and lone fields, operations 1 to 6, gaps in frame_num. No frame has a short-term and a long-term field at once.
#pragma once

#include "support/literal_marking.h"
#include "support/made_slice.h"
#include "support/zero_heavy.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace orv_utils_v4::h264 {

/// What the pictures of a sequence may be; each IDR picture chooses one of several.
struct marked_limits {
    std::int64_t max_num_ref_frames = 1;
    std::int64_t MaxFrameNum = 32;
    bool fields = true;
    bool gaps = true;
    bool others_in_a_row = true; ///< non-reference pictures; not with pic_order_cnt_type 2 (7.4.2.1.1)
};

/// Makes a sound stream at random while the model marks it.
class random_marked_stream {
public:
    /// Of 80 pictures `idr_pictures` are IDR pictures.
    random_marked_stream(support::random_source& source, std::vector<marked_limits> choice,
                         std::size_t idr_pictures = 1)
        : random(source), limits(std::move(choice)), idr_rate(idr_pictures)
    {
    }

    /// The next picture, marked by the model.
    literal::marked_picture next()
    {
        literal::marked_picture p;
        if (second_field_follows) {
            p = first_field;
            p.idr = p.long_term_reference_flag = false;
            p.second_field = true;
            p.bottom = !p.bottom;
            if (has_operation(first_field, 5))
                p.frame_num = 0;
            second_field_follows = false;
        } else {
            p = new_frame();
        }
        p.adaptive = false;
        p.operations.clear();
        model.infer_frames(p);
        if (p.reference && !p.idr)
            choose_operations(p);
        model.mark_picture(p);
        if (p.reference)
            reference_frame_num = has_operation(p, 5) ? 0 : p.frame_num;
        else if (!p.second_field)
            reference_frame_num = (p.frame_num + model.MaxFrameNum - 1) % model.MaxFrameNum;
        latest = p;
        if (p.field && !p.second_field && pick(5) != 0) {
            second_field_follows = true;
            first_field = p;
            index_of_first_field = index_of_current(p);
        }
        return p;
    }
    /// Those of the latest picture, by their place in the choice.
    std::size_t chosen() const { return active; }

    literal::marking model;

private:
    static constexpr std::size_t highest_index = 3; // of long-term frames

    static bool has_operation(const literal::marked_picture& p, int kind)
    {
        return std::any_of(p.operations.begin(), p.operations.end(),
                           [&](const literal::operation& o) { return o.memory_management_control_operation == kind; });
    }
    /// The index that the picture was given, or -1.
    static std::int64_t index_of_current(const literal::marked_picture& p)
    {
        if (p.idr)
            return p.long_term_reference_flag ? 0 : -1;
        for (const literal::operation& o : p.operations)
            if (o.memory_management_control_operation == 6)
                return o.long_term_frame_idx;
        return -1;
    }
    literal::marked_picture new_frame()
    {
        literal::marked_picture p;
        p.frame = ++frame;
        p.idr = frame == 0 || pick(80) < idr_rate;
        if (p.idr)
            choose_limits();
        const marked_limits& may = limits[active];
        p.reference = p.idr || (!may.others_in_a_row && !latest.reference) || pick(4) != 0;
        p.long_term_reference_flag = p.idr && may.max_num_ref_frames > 0 && pick(3) == 0;
        p.field = may.fields && pick(2) == 0;
        p.bottom = p.field && pick(2) == 0;
        const bool window_slides = model.frames_with(literal::mark::long_term).size() < window();
        const std::int64_t gap = may.gaps && window_slides && pick(10) == 0 ? static_cast<std::int64_t>(pick(20)) : 0;
        p.frame_num = p.idr ? 0 : (reference_frame_num + 1 + gap) % may.MaxFrameNum;
        const bool behind_first_field = latest.field && !latest.second_field;
        if (behind_first_field && !p.reference && !latest.reference && p.frame_num == latest.frame_num)
            p.bottom = p.field && latest.bottom; // else it were the second field
        return p;
    }
    void choose_limits()
    {
        active = pick(limits.size());
        model.max_num_ref_frames = limits[active].max_num_ref_frames;
        model.MaxFrameNum = limits[active].MaxFrameNum;
    }
    std::size_t pick(std::size_t count) { return support::pick(random, count); }
    std::size_t window() const { return static_cast<std::size_t>(std::max<std::int64_t>(model.max_num_ref_frames, 1)); }

    void choose_operations(literal::marked_picture& p)
    {
        const bool all_long = model.frames_with(literal::mark::long_term).size() >= window();
        const bool first_is_long = p.second_field && index_of_first_field >= 0;
        if (!all_long && !first_is_long && pick(2) == 0)
            return;
        p.adaptive = true;
        if (first_is_long)
            return operate(p, {6, 0, index_of_first_field});
        for (std::size_t n = pick(4); n > 0; --n)
            choose_operation(p);
        if (!p.second_field && pick(40) == 0 && p.operations.empty())
            operate(p, {5, 0, 0});
        while (model.marked_frames(p.frame) + 1 > window())
            make_room(p);
        if (!p.second_field && pick(6) == 0)
            operate(p, {6, 0, static_cast<std::int64_t>(pick(highest_index + 1))});
    }
    void choose_operation(literal::marked_picture& p)
    {
        const std::size_t kind = 1 + pick(4);
        const auto index = static_cast<std::int64_t>(pick(highest_index + 1));
        const std::int64_t CurrPicNum = p.field ? 2 * p.frame_num + 1 : p.frame_num;
        const auto difference = static_cast<std::int64_t>(pick(40));
        if (kind == 1 && !model.with_PicNum(p, CurrPicNum - (difference + 1)).empty())
            operate(p, {1, difference, 0});
        else if (kind == 2 && !model.with_LongTermPicNum(p, index).empty())
            operate(p, {2, index, 0});
        else if (kind == 3 && named_is_free(p, CurrPicNum - (difference + 1)))
            make_long_term(p, difference, index);
        else if (kind == 4 && !has_operation(p, 4))
            operate(p, {4, index, 0});
    }
    /// It is a frame, or a field of a frame that came before.
    bool named_is_free(const literal::marked_picture& p, std::int64_t PicNum)
    {
        const auto named = model.with_PicNum(p, PicNum);
        return !named.empty() && named.front()->frame != p.frame && named.front()->frame >= 0;
    }
    /// Both fields of a frame, so that none has one of each kind.
    void make_long_term(literal::marked_picture& p, std::int64_t difference, std::int64_t index)
    {
        const std::int64_t CurrPicNum = p.field ? 2 * p.frame_num + 1 : p.frame_num;
        const std::int64_t PicNum = CurrPicNum - (difference + 1);
        operate(p, {3, difference, index});
        if (!p.field)
            return;
        const std::int64_t others = PicNum % 2 == 0 ? PicNum + 1 : PicNum - 1; // CurrPicNum is odd
        if (!model.with_PicNum(p, others).empty())
            operate(p, {3, CurrPicNum - others - 1, index});
    }
    // Unmarks something of another frame.
    void make_room(literal::marked_picture& p)
    {
        const std::int64_t CurrPicNum = p.field ? 2 * p.frame_num + 1 : p.frame_num;
        for (std::int64_t difference = 0; difference < 2 * model.MaxFrameNum; ++difference) {
            const auto named = model.with_PicNum(p, CurrPicNum - (difference + 1));
            if (!named.empty() && named.front()->frame != p.frame)
                return operate(p, {1, difference, 0});
        }
        for (std::int64_t number = 0; number < 2 * static_cast<std::int64_t>(highest_index) + 2; ++number) {
            if (!model.with_LongTermPicNum(p, number).empty())
                return operate(p, {2, number, 0});
        }
        operate(p, {5, 0, 0}); // frames with one field alone have no number for frames
    }
    void operate(literal::marked_picture& p, const literal::operation& o)
    {
        p.operations.push_back(o);
        model.operate(p, o);
    }

    support::random_source& random;
    std::vector<marked_limits> limits;
    std::size_t idr_rate;
    std::size_t active = 0;
    std::int64_t frame = -1;
    std::int64_t reference_frame_num = 0;
    literal::marked_picture latest;
    bool second_field_follows = false;
    literal::marked_picture first_field;
    std::int64_t index_of_first_field = -1;
};

inline made_slice slice_of(const literal::marked_picture& p)
{
    made_slice slice = p.idr ? idr() : reference(static_cast<std::uint32_t>(p.frame_num));
    slice.nal_ref_idc = p.reference ? 1 : 0;
    slice.header.dec_ref_pic_marking.long_term_reference_flag = p.long_term_reference_flag;
    if (p.field)
        slice = p.bottom ? bottom(slice) : top(slice);
    if (!p.adaptive)
        return slice;
    std::vector<marking_operation> operations;
    for (const literal::operation& o : p.operations) {
        const auto argument = static_cast<std::uint32_t>(o.argument);
        const auto index = static_cast<std::uint32_t>(o.long_term_frame_idx);
        const marking_operation made[] = {
            unmark_short(argument),    unmark_long(argument), short_to_long(argument, index),
            keep_long_below(argument), forget_all(),          current_to_long(index)};
        operations.push_back(made[o.memory_management_control_operation - 1]);
    }
    return with_operations(slice, operations);
}

} // namespace orv_utils_v4::h264
