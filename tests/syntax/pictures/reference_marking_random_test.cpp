// Reference marking of random sound streams against clause 8.2.5 written down a second time, and of hostile ones.
#include "support/literal_marking.h"
#include "support/marked_frames.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;
using support::pick;
using support::random_source;

constexpr std::uint32_t highest_index = 3;

/// What the model has, as the library tells it.
std::vector<reference_frame> frames_of(const literal::marking& model)
{
    std::vector<reference_frame> frames;
    std::vector<std::int64_t> ids;
    for (const literal::field_record& f : model.fields) {
        if (f.marking == literal::mark::unused)
            continue;
        const auto at = std::find(ids.begin(), ids.end(), f.frame);
        const auto i = static_cast<std::size_t>(at - ids.begin());
        if (at == ids.end()) {
            ids.push_back(f.frame);
            frames.push_back({static_cast<std::uint64_t>(std::max<std::int64_t>(f.frame, 0)),
                              static_cast<std::uint32_t>(f.FrameNum), 0, 0, 0, f.frame < 0});
        }
        const auto bit = static_cast<std::uint8_t>(f.bottom ? 2 : 1);
        if (f.marking == literal::mark::short_term) {
            frames[i].short_term |= bit;
        } else {
            frames[i].long_term |= bit;
            frames[i].long_term_frame_idx = static_cast<std::uint32_t>(f.LongTermFrameIdx);
        }
    }
    return frames;
}

std::string frame_nums_of(const auto& frames)
{
    std::string text;
    for (const reference_frame& f : frames)
        text += " " + std::to_string(f.frame_num);
    return text;
}

/// Makes a sound stream at random while the model marks it.
class random_stream {
public:
    explicit random_stream(random_source& source) : random(source)
    {
        model.max_num_ref_frames = static_cast<std::int64_t>(pick(random, 17));
        model.MaxFrameNum = pick(random, 2) == 0 ? 32 : 64;
        fields_too = pick(random, 3) != 0;
        gaps_too = pick(random, 2) == 0;
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
        if (p.field && !p.second_field && pick(random, 5) != 0) {
            second_field_follows = true;
            first_field = p;
            index_of_first_field = index_of_current(p);
        }
        return p;
    }

    literal::marking model;

private:
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
        p.idr = frame == 0 || pick(random, 80) == 0;
        p.reference = p.idr || pick(random, 4) != 0;
        p.long_term_reference_flag = p.idr && model.max_num_ref_frames > 0 && pick(random, 3) == 0;
        p.field = fields_too && pick(random, 2) == 0;
        p.bottom = p.field && pick(random, 2) == 0;
        const bool window_slides = model.frames_with(literal::mark::long_term).size() < window();
        const std::int64_t gap =
            gaps_too && window_slides && pick(random, 10) == 0 ? static_cast<std::int64_t>(pick(random, 20)) : 0;
        p.frame_num = p.idr ? 0 : (reference_frame_num + 1 + gap) % model.MaxFrameNum;
        return p;
    }
    std::size_t window() const { return static_cast<std::size_t>(std::max<std::int64_t>(model.max_num_ref_frames, 1)); }

    void choose_operations(literal::marked_picture& p)
    {
        const bool all_long = model.frames_with(literal::mark::long_term).size() >= window();
        const bool first_is_long = p.second_field && index_of_first_field >= 0;
        if (!all_long && !first_is_long && pick(random, 2) == 0)
            return;
        p.adaptive = true;
        if (first_is_long)
            return operate(p, {6, 0, index_of_first_field});
        for (std::size_t n = pick(random, 4); n > 0; --n)
            choose_operation(p);
        if (!p.second_field && pick(random, 40) == 0 && p.operations.empty())
            operate(p, {5, 0, 0});
        while (model.marked_frames(p.frame) + 1 > window())
            make_room(p);
        if (!p.second_field && pick(random, 6) == 0)
            operate(p, {6, 0, static_cast<std::int64_t>(pick(random, highest_index + 1))});
    }
    void choose_operation(literal::marked_picture& p)
    {
        const std::size_t kind = 1 + pick(random, 4);
        const auto index = static_cast<std::int64_t>(pick(random, highest_index + 1));
        const std::int64_t CurrPicNum = p.field ? 2 * p.frame_num + 1 : p.frame_num;
        const auto difference = static_cast<std::int64_t>(pick(random, 40));
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
        for (std::int64_t number = 0; number < 2 * highest_index + 2; ++number) {
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

    random_source& random;
    std::int64_t frame = -1;
    std::int64_t reference_frame_num = 0;
    bool fields_too = false;
    bool gaps_too = false;
    bool second_field_follows = false;
    literal::marked_picture first_field;
    std::int64_t index_of_first_field = -1;
};

made_slice slice_of(const literal::marked_picture& p)
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

TEST(RandomReferenceMarking, IsThatOfTheClause)
{
    random_source random(11);
    std::size_t operations[7] = {};
    for (int i = 0; i < 300; ++i) {
        random_stream stream(random);
        seq_parameter_set_data sps = sps_data();
        sps.max_num_ref_frames = static_cast<std::uint32_t>(stream.model.max_num_ref_frames);
        sps.log2_max_frame_num_minus4 = stream.model.MaxFrameNum == 32 ? 1 : 2;
        reference_marking marking;
        for (int n = 0; n < 80; ++n) {
            const literal::marked_picture p = stream.next();
            const made_slice slice = slice_of(p);
            const marked_picture marked{sps,   slice.header,   slice.nal_ref_idc,
                                        p.idr, p.second_field, static_cast<std::uint64_t>(p.frame)};
            marking.before_picture(marked);
            const marking_result result = marking.after_picture(marked);
            const std::vector<reference_frame> wanted = frames_of(stream.model);
            ASSERT_EQ(text_of_frames(marking), text_of_frames(wanted)) << "stream " << i << " picture " << n;
            ASSERT_EQ(frame_nums_of(marking), frame_nums_of(wanted)) << "stream " << i << " picture " << n;
            ASSERT_FALSE(result.no_such_picture) << "stream " << i << " picture " << n;
            ASSERT_FALSE(result.too_many) << "stream " << i << " picture " << n;
            for (const literal::operation& o : p.operations)
                ++operations[o.memory_management_control_operation];
        }
    }
    for (int kind = 1; kind <= 6; ++kind)
        EXPECT_GT(operations[kind], 50U) << kind; // the streams have what they are there for
}

made_slice hostile_slice(random_source& random)
{
    made_slice slice = pick(random, 30) == 0 ? idr() : reference(static_cast<std::uint32_t>(pick(random, 20)));
    slice.nal_ref_idc = static_cast<unsigned>(pick(random, 4));
    slice.header.dec_ref_pic_marking.long_term_reference_flag = pick(random, 2) == 0;
    if (pick(random, 100) == 0)
        slice.header.frame_num = static_cast<std::uint32_t>(random());
    if (pick(random, 2) == 0)
        slice = pick(random, 2) == 0 ? bottom(slice) : top(slice);
    if (pick(random, 3) == 0)
        return slice;
    std::vector<marking_operation> operations(pick(random, 66));
    for (marking_operation& o : operations) {
        const auto number = [&] {
            return static_cast<std::uint32_t>(pick(random, 20) == 0 ? random() : pick(random, 20));
        };
        o = {static_cast<std::uint32_t>(pick(random, 8)), number(), number(), number(), number()};
        if (o.memory_management_control_operation == 5 && pick(random, 10) != 0)
            o.memory_management_control_operation = 6;
    }
    return with_operations(slice, operations);
}

TEST(RandomReferenceMarking, OfHostileStreamsKeepsWhatItPromises)
{
    random_source random(12);
    for (int i = 0; i < 300; ++i) {
        seq_parameter_set_data sps = sps_data();
        sps.max_num_ref_frames = static_cast<std::uint32_t>(pick(random, 5) == 0 ? random() : pick(random, 18));
        sps.log2_max_frame_num_minus4 = static_cast<std::uint32_t>(pick(random, 5) == 0 ? random() : pick(random, 2));
        const std::size_t most = std::clamp<std::size_t>(sps.max_num_ref_frames, 1, reference_marking::most_frames);
        reference_marking marking;
        for (std::uint64_t n = 0; n < 100; ++n) {
            const made_slice slice = hostile_slice(random);
            const marked_picture picture{sps, slice.header, slice.nal_ref_idc, slice.idr(), pick(random, 3) == 0, n};
            marking.before_picture(picture);
            marking.after_picture(picture);
            ASSERT_LE(marking.size(), most + (slice.nal_ref_idc == 0 ? 1 : 0));
            for (const reference_frame& f : marking) {
                ASSERT_NE(f.short_term | f.long_term, 0);
                ASSERT_EQ(f.short_term & f.long_term, 0);
                ASSERT_LE(f.short_term | f.long_term, 3);
            }
            if (slice.nal_ref_idc != 0) {
                ASSERT_TRUE(marking.uses(n)); // the current one stays, whatever it breaks
            }
        }
    }
}

} // namespace
