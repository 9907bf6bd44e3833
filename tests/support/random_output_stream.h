// Random sound streams for the order of output: several SPS, all picture order count types, B pictures in groups, IDR
// pictures with both values of no_output_of_prior_pics_flag, and what random_marked_stream makes.
#pragma once

#include "support/literal_output_order.h"
#include "support/made_stream.h"
#include "support/random_marked_stream.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orv_utils_v4::h264 {

/// A level with its MaxDpbMbs (Table A-1) and pictures that it allows, in macroblocks.
struct level_of_buffer {
    std::uint8_t level_idc;
    std::int64_t MaxDpbMbs;
    std::uint32_t width;
    std::uint32_t height;
};

/// An SPS, and the same as the models take it.
struct output_sets {
    seq_parameter_set_data sps = sps_data();
    literal::output_sequence model;
};

/// A coded picture.
struct output_slice {
    literal::output_picture model;
    made_slice slice;
    std::size_t sets = 0; ///< with an SPS before it

    bool is_first_field() const { return model.marking.field && !model.marking.second_field; }
};

inline std::string words_of(const output_sets& sets)
{
    const literal::output_sequence& s = sets.model;
    const vui_parameters& vui = sets.sps.vui_parameters;
    return "SPS: max_dec_frame_buffering " + std::to_string(s.max_dec_frame_buffering) +
           (vui.bitstream_restriction_flag ? ", reorders " + std::to_string(vui.max_num_reorder_frames)
                                           : " (inferred)") +
           ", references " + std::to_string(s.max_num_ref_frames) + ", MaxFrameNum " +
           std::to_string(s.counting.MaxFrameNum) + ", count type " + std::to_string(s.counting.pic_order_cnt_type) +
           (s.gaps_in_frame_num_value_allowed_flag ? ", gaps allowed" : "") + "\n";
}

inline std::string words_of(const output_slice& picture)
{
    const literal::marked_picture& p = picture.model.marking;
    std::string text = std::to_string(p.frame) + (p.idr ? ": IDR" : p.reference ? ": reference" : ": other");
    text += !p.field ? " frame" : p.bottom ? " bottom field" : " top field";
    text += (p.second_field ? " (second)" : "") + std::string(" frame_num ") + std::to_string(p.frame_num);
    text += picture.model.no_output_of_prior_pics_flag ? " no_output_of_prior_pics_flag" : "";
    text += p.long_term_reference_flag ? " long-term" : "";
    const slice_header& h = picture.slice.header;
    text += " lsb " + std::to_string(h.pic_order_cnt_lsb) + " deltas " + std::to_string(h.delta_pic_order_cnt_bottom) +
            "," + std::to_string(h.delta_pic_order_cnt[0]) + "," + std::to_string(h.delta_pic_order_cnt[1]);
    for (const literal::operation& o : p.operations)
        text += " operation " + std::to_string(o.memory_management_control_operation) + "(" +
                std::to_string(o.argument) + "," + std::to_string(o.long_term_frame_idx) + ")";
    return text + "\n";
}

class random_output_stream {
public:
    explicit random_output_stream(std::uint32_t seed) : random(seed)
    {
        for (std::size_t n = 1 + pick(2); n > 0; --n)
            sets.push_back(choose_sets());
        std::vector<marked_limits> limits;
        for (const output_sets& s : sets)
            limits.push_back({s.model.max_num_ref_frames, s.model.counting.MaxFrameNum, !s.sps.frame_mbs_only_flag,
                              pick(2) == 0, s.model.counting.pic_order_cnt_type != 2});
        random_marked_stream marked(random, limits, pick(6));
        in_order = pick(4) != 0;
        for (std::size_t n = 10 + pick(20); n > 0; --n) {
            const literal::marked_picture p = marked.next();
            add(p, marked.chosen());
        }
    }

    std::string words() const
    {
        std::string text;
        for (const output_slice& p : pictures)
            text += (p.model.marking.idr ? words_of(sets[p.sets]) : "") + words_of(p);
        return text;
    }
    /// Its units.
    std::vector<std::vector<unsigned char>> units() const
    {
        made_stream stream;
        stream.pps().bottom_field_pic_order_in_frame_present_flag = true;
        for (const output_slice& p : pictures) {
            if (p.model.marking.idr) {
                stream.sps() = sets[p.sets].sps;
                stream.add_sets();
            }
            stream.add(p.slice);
        }
        return stream.units;
    }

    std::vector<output_sets> sets;
    std::vector<output_slice> pictures;

private:
    std::size_t pick(std::size_t count) { return support::pick(random, count); }
    std::int64_t between(std::int64_t low, std::int64_t high)
    {
        return low + static_cast<std::int64_t>(pick(static_cast<std::size_t>(high - low + 1)));
    }

    output_sets choose_sets()
    {
        static constexpr level_of_buffer levels[] = {{10, 396, 11, 18},  {10, 396, 11, 10},   {11, 900, 12, 10},
                                                     {20, 2376, 22, 18}, {30, 8100, 45, 36},  {30, 8100, 45, 18},
                                                     {30, 8100, 4, 6},   {40, 32768, 120, 68}};
        const level_of_buffer& level = levels[pick(std::size(levels))];
        output_sets s;
        s.sps.level_idc = level.level_idc;
        s.sps.frame_mbs_only_flag = pick(2) == 0;
        s.sps.pic_width_in_mbs_minus1 = level.width - 1;
        s.sps.pic_height_in_map_units_minus1 = (s.sps.frame_mbs_only_flag ? level.height : level.height / 2) - 1;
        vui_parameters& vui = s.sps.vui_parameters;
        std::int64_t& size = s.model.max_dec_frame_buffering;
        const std::int64_t frame_size = std::int64_t{level.width} * level.height;
        size = std::min<std::int64_t>(level.MaxDpbMbs / frame_size, 16);
        s.sps.vui_parameters_present_flag = pick(4) != 0;
        vui.bitstream_restriction_flag = s.sps.vui_parameters_present_flag && pick(5) != 0;
        if (vui.bitstream_restriction_flag) {
            size = between(0, std::min<std::int64_t>(size, pick(3) == 0 ? 16 : 4));
        } else if (pick(4) == 0) { // of intra pictures alone
            s.sps.profile_idc = 100;
            s.sps.constraint_set3_flag = true;
            size = 0;
        }
        vui.max_dec_frame_buffering = static_cast<std::uint32_t>(size);
        s.model.max_num_ref_frames = between(0, size);
        s.sps.max_num_ref_frames = static_cast<std::uint32_t>(s.model.max_num_ref_frames);
        s.sps.gaps_in_frame_num_value_allowed_flag = s.model.gaps_in_frame_num_value_allowed_flag = pick(3) != 0;
        choose_counting(s.sps, s.model.counting);
        return s;
    }
    void choose_counting(seq_parameter_set_data& sps, literal::counted_sequence& model)
    {
        sps.log2_max_frame_num_minus4 = static_cast<std::uint32_t>(1 + pick(2));
        model.MaxFrameNum = 16 << sps.log2_max_frame_num_minus4;
        model.pic_order_cnt_type = pick(2) == 0 ? 0 : 1 + static_cast<int>(pick(2));
        sps.pic_order_cnt_type = static_cast<std::uint32_t>(model.pic_order_cnt_type);
        if (model.pic_order_cnt_type == 0) {
            sps.log2_max_pic_order_cnt_lsb_minus4 = static_cast<std::uint32_t>(2 + pick(3));
            model.MaxPicOrderCntLsb = 16 << sps.log2_max_pic_order_cnt_lsb_minus4;
        } else if (model.pic_order_cnt_type == 1) {
            sps.offset_for_non_ref_pic = static_cast<std::int32_t>(model.offset_for_non_ref_pic = between(-3, 0));
            sps.offset_for_top_to_bottom_field =
                static_cast<std::int32_t>(model.offset_for_top_to_bottom_field = between(-1, 1));
            sps.num_ref_frames_in_pic_order_cnt_cycle = static_cast<std::uint32_t>(pick(4));
            for (std::uint32_t i = 0; i < sps.num_ref_frames_in_pic_order_cnt_cycle; ++i) {
                model.offset_for_ref_frame.push_back(between(1, 6));
                sps.offset_for_ref_frame[i] = static_cast<std::int32_t>(model.offset_for_ref_frame[i]);
            }
        }
    }

    void add(const literal::marked_picture& p, std::size_t chosen)
    {
        output_slice made;
        made.sets = chosen;
        made.slice = slice_of(p);
        made.model.marking = p;
        made.model.counting = {p.idr, p.reference, p.field, p.bottom, has_operation_5(made.slice.header), p.frame_num};
        if (p.idr) {
            made.slice.header.idr_pic_id = static_cast<std::uint32_t>(++idr_pictures % 2);
            made.model.no_output_of_prior_pics_flag = pick(2) == 0;
            made.slice.header.dec_ref_pic_marking.no_output_of_prior_pics_flag =
                made.model.no_output_of_prior_pics_flag;
            counting = literal::picture_order_count(sets[chosen].model.counting);
        }
        choose_elements(sets[chosen].model.counting, made.model.counting,
                        choose_count(made.model.counting, p.second_field));
        counting.next(made.model.counting);
        slice_header& h = made.slice.header;
        h.pic_order_cnt_lsb = static_cast<std::uint32_t>(made.model.counting.pic_order_cnt_lsb);
        h.delta_pic_order_cnt_bottom = static_cast<std::int32_t>(made.model.counting.delta_pic_order_cnt_bottom);
        h.delta_pic_order_cnt[0] = static_cast<std::int32_t>(made.model.counting.delta_pic_order_cnt[0]);
        h.delta_pic_order_cnt[1] = static_cast<std::int32_t>(made.model.counting.delta_pic_order_cnt[1]);
        pictures.push_back(made);
    }

    /// The count that the frame, or the field, shall have.
    std::int64_t choose_count(const literal::counted_picture& p, bool second_field)
    {
        if (second_field)
            return 4 * (in_order ? place : place + between(-2, 2)) + between(0, 3);
        if (p.idr || p.operation_5) {
            group.clear();
            taken = {0};
            next_place = 1;
            place = 0;
            return p.idr ? 0 : 4 * (std::exchange(highest_place, 0) + 1);
        }
        if (group.empty()) { // an anchor, and what comes before it in output order
            const auto size = static_cast<std::int64_t>(in_order ? 1 + pick(pick(2) == 0 ? 1 : 4) : 1);
            for (std::int64_t i = 0; i < size; ++i)
                group.push_back(next_place + (i + size - 1) % size);
            if (pick(2) == 0)
                std::reverse(group.begin() + 1, group.end());
            next_place += size;
        }
        place = group.front();
        group.erase(group.begin());
        if (!in_order) {
            do
                place = next_place + between(-6, 3);
            while (!taken.insert(place).second);
        }
        highest_place = std::max(highest_place, place);
        return 4 * place + 1;
    }
    /// Elements that make the count; type 2 has none.
    void choose_elements(const literal::counted_sequence& s, literal::counted_picture& p, std::int64_t count)
    {
        if (s.pic_order_cnt_type == 0) {
            p.pic_order_cnt_lsb = ((count % s.MaxPicOrderCntLsb) + s.MaxPicOrderCntLsb) % s.MaxPicOrderCntLsb;
            p.delta_pic_order_cnt_bottom = p.field ? 0 : between(-1, 1);
        } else if (s.pic_order_cnt_type == 1) {
            literal::picture_order_count trial = counting;
            const literal::counts without = trial.next(p);
            const bool bottom = p.field && p.bottom;
            p.delta_pic_order_cnt[0] = count - (bottom ? without.BottomFieldOrderCnt : without.TopFieldOrderCnt);
            p.delta_pic_order_cnt[1] = p.field ? 0 : between(-1, 1);
        }
    }

    support::random_source random;
    literal::picture_order_count counting{literal::counted_sequence()};
    std::set<std::int64_t> taken;
    std::vector<std::int64_t> group; ///< places in the order of output, of pictures that come next
    std::int64_t next_place = 0;
    std::int64_t highest_place = 0;
    std::int64_t place = 0;
    std::int64_t idr_pictures = 0;
    bool in_order = false; ///< the counts are those of a sound structure
};

} // namespace orv_utils_v4::h264
