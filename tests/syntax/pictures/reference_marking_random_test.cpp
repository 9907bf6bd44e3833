// Reference marking of random sound streams against clause 8.2.5 written down a second time, and of hostile ones.
#include "support/literal_marking.h"
#include "support/marked_frames.h"
#include "support/random_marked_stream.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;
using support::pick;
using support::random_source;

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

TEST(RandomReferenceMarking, IsThatOfTheClause)
{
    random_source random(11);
    std::size_t operations[7] = {};
    for (int i = 0; i < 300; ++i) {
        marked_limits limits;
        limits.max_num_ref_frames = static_cast<std::int64_t>(pick(random, 17));
        limits.MaxFrameNum = pick(random, 2) == 0 ? 32 : 64;
        limits.fields = pick(random, 3) != 0;
        limits.gaps = pick(random, 2) == 0;
        random_marked_stream stream(random, {limits});
        seq_parameter_set_data sps = sps_data();
        sps.max_num_ref_frames = static_cast<std::uint32_t>(limits.max_num_ref_frames);
        sps.log2_max_frame_num_minus4 = limits.MaxFrameNum == 32 ? 1 : 2;
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
