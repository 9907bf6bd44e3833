// Reference marking written down from H.264 clauses 8.2.4.1 and 8.2.5 with each field as a record of its own. The tests
// hold the library against it; they share nothing.
#pragma once

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace literal {

enum class mark { unused, short_term, long_term };

struct field_record {
    std::int64_t frame; ///< which frame it is of; below 0: a non-existing one
    bool bottom;
    std::int64_t FrameNum;
    mark marking = mark::unused;
    std::int64_t LongTermFrameIdx = -1;
};

struct operation {
    int memory_management_control_operation;
    std::int64_t argument; ///< difference_of_pic_nums_minus1, long_term_pic_num or max_long_term_frame_idx_plus1
    std::int64_t long_term_frame_idx;
};

struct marked_picture {
    std::int64_t frame = 0;
    bool idr = false;
    bool reference = true;
    bool field = false;
    bool bottom = false;
    bool second_field = false;
    std::int64_t frame_num = 0;
    bool long_term_reference_flag = false;
    bool adaptive = false;
    std::vector<operation> operations;
};

class marking {
public:
    std::int64_t max_num_ref_frames = 1;
    std::int64_t MaxFrameNum = 16;

    /// 8.2.5.2: frames with the values of frame_num that are left out.
    void infer_frames(const marked_picture& p)
    {
        infer_frames(p, [](std::int64_t) {});
    }
    /// `each` takes each of them, by its number, before the next one is inferred.
    template <class Each>
    void infer_frames(const marked_picture& p, Each each)
    {
        if (p.idr || p.second_field || p.frame_num == PrevRefFrameNum ||
            p.frame_num == (PrevRefFrameNum + 1) % MaxFrameNum)
            return;
        std::int64_t UnusedShortTermFrameNum = (PrevRefFrameNum + 1) % MaxFrameNum;
        for (; UnusedShortTermFrameNum != p.frame_num;
             UnusedShortTermFrameNum = (UnusedShortTermFrameNum + 1) % MaxFrameNum) {
            slide(UnusedShortTermFrameNum);
            --non_existing;
            fields.push_back({non_existing, false, UnusedShortTermFrameNum, mark::short_term});
            fields.push_back({non_existing, true, UnusedShortTermFrameNum, mark::short_term});
            PrevRefFrameNum = UnusedShortTermFrameNum;
            each(non_existing);
        }
    }
    /// 8.2.5.1, of a picture whose operations were carried out already.
    void mark_picture(const marked_picture& p)
    {
        if (!p.reference)
            return;
        bool long_term = current_long_term;
        std::int64_t LongTermFrameIdx = current_idx;
        if (p.idr) {
            fields.clear();
            long_term = p.long_term_reference_flag;
            LongTermFrameIdx = 0;
        } else if (!p.adaptive && !(p.second_field && first_field_is(p, mark::short_term))) {
            slide(p.frame_num);
        }
        const bool operation_5 = std::any_of(p.operations.begin(), p.operations.end(), [](const operation& o) {
            return o.memory_management_control_operation == 5;
        });
        const std::int64_t FrameNum = operation_5 ? 0 : p.frame_num;
        for (const bool bottom : {false, true}) {
            if (!p.field || p.bottom == bottom)
                fields.push_back({p.frame, bottom, FrameNum, long_term ? mark::long_term : mark::short_term,
                                  long_term ? LongTermFrameIdx : -1});
        }
        PrevRefFrameNum = FrameNum;
        current_long_term = false;
        const auto unused = std::remove_if(fields.begin(), fields.end(),
                                           [](const field_record& f) { return f.marking == mark::unused; });
        fields.erase(unused, fields.end());
    }
    /// 8.2.5.4
    void operate(const marked_picture& p, const operation& o)
    {
        const std::int64_t CurrPicNum = p.field ? 2 * p.frame_num + 1 : p.frame_num;
        const int kind = o.memory_management_control_operation;
        if (kind == 1 || kind == 3) {
            const std::vector<field_record*> named = with_PicNum(p, CurrPicNum - (o.argument + 1));
            if (kind == 3)
                take_index(o.long_term_frame_idx, named.front()->frame);
            for (field_record* const f : named) {
                f->marking = kind == 1 ? mark::unused : mark::long_term;
                f->LongTermFrameIdx = kind == 1 ? -1 : o.long_term_frame_idx;
            }
        } else if (kind == 2) {
            for (field_record* const f : with_LongTermPicNum(p, o.argument))
                f->marking = mark::unused;
        } else if (kind == 4) {
            for (field_record& f : fields)
                if (f.marking == mark::long_term && f.LongTermFrameIdx > o.argument - 1)
                    f.marking = mark::unused;
        } else if (kind == 5) {
            fields.clear();
        } else if (kind == 6) {
            take_index(o.long_term_frame_idx, p.frame);
            current_long_term = true;
            current_idx = o.long_term_frame_idx;
        }
    }

    /// The fields that a PicNum names for this picture (8-28) to (8-31): both of a frame, or one.
    std::vector<field_record*> with_PicNum(const marked_picture& p, std::int64_t PicNum)
    {
        std::vector<field_record*> found;
        for (field_record& f : fields) {
            const std::int64_t wrap = FrameNumWrap(f, p.frame_num);
            const std::int64_t its = !p.field ? wrap : f.bottom == p.bottom ? 2 * wrap + 1 : 2 * wrap;
            if (f.marking == mark::short_term && its == PicNum)
                found.push_back(&f);
        }
        return found.size() == (p.field ? 1U : 2U) ? found : std::vector<field_record*>();
    }
    /// The same of a LongTermPicNum (8-32) to (8-34).
    std::vector<field_record*> with_LongTermPicNum(const marked_picture& p, std::int64_t LongTermPicNum)
    {
        std::vector<field_record*> found;
        for (field_record& f : fields) {
            const std::int64_t index = f.LongTermFrameIdx;
            const std::int64_t its = !p.field ? index : f.bottom == p.bottom ? 2 * index + 1 : 2 * index;
            if (f.marking == mark::long_term && its == LongTermPicNum)
                found.push_back(&f);
        }
        return found.size() == (p.field ? 1U : 2U) ? found : std::vector<field_record*>();
    }
    /// Frames with a field of this marking, the current one aside.
    std::set<std::int64_t> frames_with(mark what, std::int64_t except = no_frame) const
    {
        std::set<std::int64_t> frames;
        for (const field_record& f : fields)
            if (f.marking == what && f.frame != except)
                frames.insert(f.frame);
        return frames;
    }
    bool uses(std::int64_t frame) const
    {
        return std::any_of(fields.begin(), fields.end(),
                           [&](const field_record& f) { return f.frame == frame && f.marking != mark::unused; });
    }
    std::size_t marked_frames(std::int64_t except = no_frame) const
    {
        std::set<std::int64_t> frames = frames_with(mark::short_term, except);
        frames.merge(frames_with(mark::long_term, except));
        return frames.size();
    }
    static constexpr std::int64_t no_frame = INT64_MIN;

    std::vector<field_record> fields; ///< in decoding order; unused ones may stay up to the next reference picture

private:
    static bool first_field_of(const field_record& f, const marked_picture& p)
    {
        return f.frame == p.frame && f.bottom != p.bottom;
    }
    bool first_field_is(const marked_picture& p, mark what) const
    {
        return std::any_of(fields.begin(), fields.end(),
                           [&](const field_record& f) { return first_field_of(f, p) && f.marking == what; });
    }
    std::int64_t FrameNumWrap(const field_record& f, std::int64_t frame_num) const
    {
        return f.FrameNum > frame_num ? f.FrameNum - MaxFrameNum : f.FrameNum;
    }
    // 8.2.5.3
    void slide(std::int64_t frame_num)
    {
        const std::size_t numShortTerm = frames_with(mark::short_term).size();
        const std::size_t numLongTerm = frames_with(mark::long_term).size();
        if (static_cast<std::int64_t>(numShortTerm + numLongTerm) < std::max<std::int64_t>(max_num_ref_frames, 1))
            return;
        const field_record* oldest = nullptr;
        for (const field_record& f : fields)
            if (f.marking == mark::short_term &&
                (oldest == nullptr || FrameNumWrap(f, frame_num) < FrameNumWrap(*oldest, frame_num)))
                oldest = &f;
        const std::int64_t gone = oldest == nullptr ? no_frame : oldest->frame;
        for (field_record& f : fields)
            if (f.frame == gone && f.marking == mark::short_term)
                f.marking = mark::unused;
    }
    // The index goes from fields of other frames.
    void take_index(std::int64_t long_term_frame_idx, std::int64_t to)
    {
        for (field_record& f : fields)
            if (f.marking == mark::long_term && f.LongTermFrameIdx == long_term_frame_idx && f.frame != to)
                f.marking = mark::unused;
    }

    std::int64_t PrevRefFrameNum = 0;
    std::int64_t non_existing = 0;
    bool current_long_term = false;
    std::int64_t current_idx = 0;
};

} // namespace literal
