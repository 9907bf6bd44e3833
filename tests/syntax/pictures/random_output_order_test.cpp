// The order of output of random sound streams against clause C.4 written down a second time.
#include "support/random_output_stream.h"
#include "support/told_pictures.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace {

using namespace orv_utils_v4::h264;

/// Notes what comes, as the model does.
class noted : public picture_sink {
public:
    void decoded(const picture& p) override
    {
        log += "[" + std::to_string(p.number) + "] ";
        ++waiting;
    }
    void output(const picture& p) override
    {
        log += std::to_string(p.number) + (p.discarded ? "- " : " ");
        order.push_back({static_cast<std::int64_t>(p.number), 0, p.count.lower(), p.discarded});
        --waiting;
    }
    std::string log;
    std::vector<literal::output_frame> order;
    std::uint32_t waiting = 0; ///< complete pictures
};

/// Takes access units into both modes.
class both_modes : public access_unit_sink {
public:
    void take(const access_unit& unit) override
    {
        bumping.take(unit, bumped);
        early.take(unit, early_ones);
        EXPECT_LE(early_ones.waiting, most_reordered_frames(*unit.sps));
    }
    void flush()
    {
        bumping.flush(bumped);
        early.flush(early_ones);
    }
    noted bumped, early_ones;

private:
    pictures bumping{output_mode::bumping};
    pictures early{output_mode::early};
};

literal::output_order modelled(const random_output_stream& stream)
{
    literal::output_order model;
    for (const output_slice& p : stream.pictures)
        model.take(p.model, stream.sets[p.sets].model);
    model.flush();
    return model;
}

void read(const random_output_stream& stream, both_modes& to)
{
    access_units join;
    const std::vector<std::vector<unsigned char>> units = stream.units();
    for (const std::vector<unsigned char>& unit : units)
        join.push({unit.data(), unit.size(), 0, 0}, to, true);
    join.flush(to);
    to.flush();
}

/// The pictures are output by their counts: the buffer suffices for that.
bool in_order_of_counts(const std::vector<literal::output_frame>& order)
{
    for (std::size_t i = 1; i < order.size(); ++i) {
        const literal::output_frame &a = order[i - 1], &b = order[i];
        if (a.sequence > b.sequence || (a.sequence == b.sequence && a.PicOrderCnt >= b.PicOrderCnt))
            return false;
    }
    return true;
}

/// Of each SPS the most frames that come before one in decoding order and follow it in output order (E.2.1).
void set_reordering(random_output_stream& stream, const std::vector<literal::output_frame>& order)
{
    std::vector<std::size_t> sets_of_frame;
    for (const output_slice& p : stream.pictures)
        if (!p.model.marking.second_field)
            sets_of_frame.push_back(p.sets);
    for (output_sets& s : stream.sets)
        s.sps.vui_parameters.max_num_reorder_frames = 0;
    for (auto f = order.begin(); f != order.end(); ++f) {
        const auto before = [&](const literal::output_frame& other) { return other.frame < f->frame; };
        const auto reordered = static_cast<std::uint32_t>(std::count_if(f, order.end(), before));
        const std::size_t sets = sets_of_frame[static_cast<std::size_t>(f->frame)];
        std::uint32_t& most = stream.sets[sets].sps.vui_parameters.max_num_reorder_frames;
        most = std::max(most, reordered);
    }
}

/// The stream is in the order of its counts, with the reordering that its SPS may have.
bool conforms(const random_output_stream& stream, const literal::output_order& model)
{
    return in_order_of_counts(model.order) &&
           std::all_of(stream.sets.begin(), stream.sets.end(), [](const output_sets& s) {
               return s.sps.vui_parameters.max_num_reorder_frames <= s.model.max_dec_frame_buffering;
           });
}

/// What the streams have, each counted once a stream; the test stands on it.
class tally {
public:
    void add(const random_output_stream& stream, const literal::output_order& model)
    {
        std::set<std::string> has;
        const output_slice* before = nullptr;
        for (const output_slice& p : stream.pictures) {
            const output_sets& s = stream.sets[p.sets];
            const literal::marked_picture& m = p.model.marking;
            has.insert("count type " + std::to_string(s.model.counting.pic_order_cnt_type));
            has.insert(s.model.max_dec_frame_buffering == 0 ? "no buffer" : "a buffer");
            has.insert(s.sps.vui_parameters.bitstream_restriction_flag ? "a buffer sent" : "a buffer inferred");
            has.insert(!m.field ? "a frame" : m.second_field ? "a pair" : "a first field");
            has.insert(p.model.no_output_of_prior_pics_flag ? "discarding" : "not discarding");
            if (before != nullptr && before->model.marking.frame != m.frame && before->is_first_field())
                has.insert("a lone field");
            if (before != nullptr && before->sets != p.sets)
                has.insert("another SPS");
            before = &p;
            for (const literal::operation& o : m.operations)
                has.insert("operation " + std::to_string(o.memory_management_control_operation));
        }
        if (model.log.find('-') != std::string::npos)
            has.insert("pictures discarded");
        if (model.gaps_that_bump != 0)
            has.insert("a gap that bumps");
        if (model.lost != 0)
            has.insert("frames that are lost");
        if (model.not_stored != 0)
            has.insert("a picture that is not stored");
        if (conforms(stream, model))
            has.insert("the order of counts");
        for (const std::string& what : has)
            ++streams[what];
    }
    void expect_each(std::size_t most_seldom) const
    {
        EXPECT_EQ(streams.size(), 25U);
        for (const auto& [what, count] : streams)
            EXPECT_GE(count, most_seldom) << what;
    }

private:
    std::map<std::string, std::size_t> streams;
};

void expect_early_as(const literal::output_order& model, const noted& early, const std::string& context)
{
    ASSERT_EQ(early.order.size(), model.order.size()) << context;
    for (std::size_t i = 0; i < model.order.size(); ++i) {
        ASSERT_EQ(early.order[i].frame, model.order[i].frame) << context;
        ASSERT_LE(early.order[i].discarded, model.order[i].discarded) << context; // it may have gone before
    }
}

// Early output is in the same order where the buffer suffices for the order of the counts, as a stream must have it. It
// keeps no more pictures waiting than may be reordered.
TEST(RandomOutputOrder, IsThatOfTheClause)
{
    tally streams;
    for (std::uint32_t seed = 0; seed < 3000; ++seed) {
        random_output_stream stream(seed);
        const literal::output_order model = modelled(stream);
        set_reordering(stream, model.order);
        both_modes told;
        read(stream, told);
        const std::string context = "seed " + std::to_string(seed) + "\n" + stream.words();
        ASSERT_EQ(told.bumped.log, model.log) << context;
        if (conforms(stream, model)) {
            ASSERT_NO_FATAL_FAILURE(expect_early_as(model, told.early_ones, context));
        }
        streams.add(stream, model);
    }
    streams.expect_each(100);
}

} // namespace
