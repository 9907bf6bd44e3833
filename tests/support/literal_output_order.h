// The output order of a decoder written down from H.264 clauses C.4.2 to C.4.5.3, with each frame buffer as a record of
// its own, for sound streams. The tests hold the library against it; they share nothing.
#pragma once

#include "support/literal_marking.h"
#include "support/literal_picture_order_count.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace literal {

/// What an SPS says of it.
struct output_sequence {
    std::int64_t max_dec_frame_buffering = 1; ///< or what is inferred for it
    std::int64_t max_num_ref_frames = 1;
    bool gaps_in_frame_num_value_allowed_flag = true;
    counted_sequence counting;
};

struct output_picture {
    marked_picture marking;
    counted_picture counting;
    bool no_output_of_prior_pics_flag = false;
};

struct frame_buffer {
    std::int64_t frame = 0; ///< below 0: a non-existing one
    bool needed_for_output = false;
    std::int64_t PicOrderCnt = 0; ///< the lower one of two fields
};

/// A frame in the order of its output.
struct output_frame {
    std::int64_t frame = 0;
    std::int64_t sequence = 0; ///< IDR pictures and operations 5 up to it
    std::int64_t PicOrderCnt = 0;
    bool discarded = false; ///< emptied without output
};

class output_order {
public:
    /// The next picture in decoding order.
    /// @param p it
    /// @param sps active for it
    void take(const output_picture& p, const output_sequence& sps)
    {
        if (p.marking.second_field)
            return take_second_field(p);
        complete();
        if (p.marking.idr)
            activate(sps);
        store_non_existing_frames(p.marking, sps.gaps_in_frame_num_value_allowed_flag);
        current = {p.marking.frame, true, PicOrderCnt(p)};
        remove_pictures(p);
        stored = p.marking.reference ? store_reference() : store_other();
        is_open = true;
        if (!p.marking.field)
            complete();
    }
    /// The stream has ended.
    void flush()
    {
        complete();
        bump_all();
    }

    std::vector<output_frame> order;
    /// "[2] 0 1-": frame 2 is complete, frame 0 is output, frame 1 is emptied without output.
    std::string log;
    int gaps_that_bump = 0; ///< non-existing frames that others made room for
    int lost = 0;           ///< frames of gaps that are not allowed
    int not_stored = 0;     ///< non-reference pictures that found no room

private:
    void activate(const output_sequence& sps)
    {
        DPB_size = static_cast<std::size_t>(std::max<std::int64_t>(sps.max_dec_frame_buffering, 1));
        references.max_num_ref_frames = sps.max_num_ref_frames;
        references.MaxFrameNum = sps.counting.MaxFrameNum;
        counting.emplace(sps.counting);
    }

    // C.4.2. Of frames that are lost the clause says nothing: they take room, and none is made for them.
    void store_non_existing_frames(const marked_picture& p, bool allowed)
    {
        references.infer_frames(p, [&](std::int64_t frame) {
            empty_buffers();
            lost += allowed ? 0 : 1;
            gaps_that_bump += allowed && DPB.size() >= DPB_size ? 1 : 0;
            while (allowed && DPB.size() >= DPB_size)
                bump();
            DPB.push_back({frame, false, 0});
        });
    }

    std::int64_t PicOrderCnt(const output_picture& p)
    {
        const counts c = picture_order_count::after_operation_5(p.counting, counting->next(p.counting));
        if (!p.counting.field)
            return std::min(c.TopFieldOrderCnt, c.BottomFieldOrderCnt);
        return p.counting.bottom ? c.BottomFieldOrderCnt : c.TopFieldOrderCnt;
    }

    // C.4.4. With another size of pictures or of the buffer the HRD infers no_output_of_prior_pics_flag, and decoders
    // should do better than it, as the NOTE says: here it is as sent.
    void remove_pictures(const output_picture& p)
    {
        if (p.marking.idr) {
            references.fields.clear();
            if (p.no_output_of_prior_pics_flag)
                empty_without_output();
            bump_all();
        }
        mark(p.marking);
        if (p.counting.operation_5)
            bump_all();
        if (p.marking.idr || p.counting.operation_5)
            ++sequence;
        empty_buffers();
    }
    void mark(const marked_picture& p)
    {
        for (const operation& o : p.operations)
            references.operate(p, o);
        references.mark_picture(p);
    }

    // C.4.5.1
    bool store_reference()
    {
        while (DPB.size() >= DPB_size)
            bump();
        DPB.push_back(current);
        return true;
    }
    // C.4.5.2
    bool store_other()
    {
        while (DPB.size() >= DPB_size) {
            const bool lower_than_all = std::all_of(DPB.begin(), DPB.end(), [&](const frame_buffer& b) {
                return !b.needed_for_output || current.PicOrderCnt < b.PicOrderCnt;
            });
            if (lower_than_all) {
                ++not_stored;
                return false;
            }
            bump();
        }
        DPB.push_back(current);
        return true;
    }
    // In the frame buffer of the first field, or at once behind it.
    void take_second_field(const output_picture& p)
    {
        current.PicOrderCnt = std::min(current.PicOrderCnt, PicOrderCnt(p));
        mark(p.marking);
        for (frame_buffer& b : DPB)
            if (b.frame == current.frame)
                b.PicOrderCnt = current.PicOrderCnt;
        empty_buffers();
        complete();
    }
    void complete()
    {
        if (!is_open)
            return;
        is_open = false;
        log += "[" + std::to_string(current.frame) + "] ";
        if (!stored)
            output(current, false);
    }

    // C.4.5.3
    void bump()
    {
        const auto first = lowest();
        output(*first, false);
        first->needed_for_output = false;
        empty_buffers();
    }
    void bump_all()
    {
        while (waits())
            bump();
        empty_buffers();
    }
    void empty_without_output()
    {
        while (waits()) {
            const auto first = lowest();
            output(*first, true);
            first->needed_for_output = false;
        }
    }
    void empty_buffers()
    {
        const auto empty = std::remove_if(DPB.begin(), DPB.end(), [&](const frame_buffer& b) {
            return !b.needed_for_output && !references.uses(b.frame);
        });
        DPB.erase(empty, DPB.end());
    }
    bool waits() const
    {
        return std::any_of(DPB.begin(), DPB.end(), [](const frame_buffer& b) { return b.needed_for_output; });
    }
    std::vector<frame_buffer>::iterator lowest()
    {
        auto first = DPB.end();
        for (auto b = DPB.begin(); b != DPB.end(); ++b)
            if (b->needed_for_output && (first == DPB.end() || b->PicOrderCnt < first->PicOrderCnt))
                first = b;
        return first;
    }
    void output(const frame_buffer& b, bool discarded)
    {
        order.push_back({b.frame, sequence, b.PicOrderCnt, discarded});
        log += std::to_string(b.frame) + (discarded ? "- " : " ");
    }

    literal::marking references;
    std::optional<picture_order_count> counting;
    std::vector<frame_buffer> DPB;
    std::size_t DPB_size = 1;
    frame_buffer current; ///< "temporarily stored (not in the DPB)", C.4.3
    bool stored = false;  ///< in the DPB
    bool is_open = false; ///< its second field may follow
    std::int64_t sequence = 0;
};

} // namespace literal
