#include "unit_run.h"

#include "support/framed_unit.h"
#include "support/small_units.h"
#include "support/stream_builder.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace orv_utils_v4::h264;
using support::aud;
using support::bytes;
using support::stream_builder;

const bytes delimiter = {0x10};                             // the RBSP
const bytes user_data = {13, 1, 0xC0, 0x80};                // full_frame_freeze()
const bytes two_problems = {6, 1, 0x01, 13, 1, 0x00, 0x80}; // a payload that ends, twice
constexpr unsigned char filler = support::header_byte(0, 12);

/// Notes what it is given: "number:begin+framing_size type", with "!" in front before it is read; gaps and complaints.
class noted_run final : public orv_h264::unit_run {
public:
    noted_run() : unit_run("noted", false) {}

    std::vector<std::string> notes;
    std::size_t most = std::numeric_limits<std::size_t>::max(); ///< units
    bool read = true;

private:
    bool enough() const override { return taken >= most; }
    bool unread() const override { return !read; }
    visitor* before(const orv_h264::listed_unit& unit) override
    {
        notes.push_back("!" + text_of(unit));
        return nullptr;
    }
    void take(const orv_h264::listed_unit& unit, const unit_reading* reading) override
    {
        EXPECT_EQ(reading != nullptr, read);
        ++taken;
        notes.push_back(text_of(unit));
    }
    void take_gap(const split_gap& gap) override
    {
        notes.push_back("gap " + std::to_string(gap.offset) + "+" + std::to_string(gap.size));
    }
    void complain(const orv_h264::listed_unit* unit, std::uint64_t offset, const std::string& what,
                  bool is_problem) override
    {
        notes.push_back((unit == nullptr ? "at " : "of " + std::to_string(unit->place.number) + " at ") +
                        std::to_string(offset) + ": " + what + (is_problem ? "" : " (finding)"));
        unit_run::complain(unit, offset, what, is_problem);
    }
    static std::string text_of(const orv_h264::listed_unit& unit)
    {
        return std::to_string(unit.place.number) + ":" + std::to_string(unit.begin()) + "+" +
               std::to_string(unit.framing_size) + " " + std::to_string(unit.type());
    }

    std::size_t taken = 0;
};

/// The status of the run, its messages thrown away.
orv_h264::exit_status status_of(noted_run& run, const bytes& stream, const orv_h264::stream_options& options = {})
{
    const support::temporary_folder folder;
    orv_h264::stream_options of_file = options;
    of_file.path = folder.write("stream", stream);
    of_file.format = options.format.value_or(framing::annex_b);
    orv_h264::stream_input input(of_file);
    testing::internal::CaptureStderr();
    const orv_h264::exit_status status = run.run(input);
    testing::internal::GetCapturedStderr();
    return status;
}

std::vector<std::string> notes_of(const bytes& stream, const orv_h264::stream_options& options = {})
{
    noted_run run;
    status_of(run, stream, options);
    return run.notes;
}

using notes = std::vector<std::string>;

TEST(UnitRun, EachUnitIsAnnouncedAndTakenWithItsFraming)
{
    const bytes stream = stream_builder()
                             .zeros(1)
                             .annexb_unit(aud, delimiter)
                             .annexb_unit(filler, {0x80})
                             .zeros(2)
                             .annexb_unit(aud, delimiter);
    EXPECT_EQ(notes_of(stream), (notes{"!0:0+4 9", "0:0+4 9", "!1:6+3 12", "1:6+3 12", "!2:12+4 9", "2:12+4 9"}));
}

TEST(UnitRun, UnitsThatAreHeldBackKeepTheirFraming)
{
    const bytes stream = stream_builder()
                             .annexb_unit(support::sei, user_data)
                             .zeros(1)
                             .annexb_unit(support::sei, user_data)
                             .annexb_unit(filler, {0x80})
                             .zeros(1)
                             .annexb_unit(aud, delimiter);
    EXPECT_EQ(notes_of(stream), (notes{"!0:0+3 6", "0:0+3 6", "!1:8+4 6", "1:8+4 6", "!2:17+3 12", "2:17+3 12",
                                       "!3:22+4 9", "3:22+4 9"}));
}

TEST(UnitRun, WhatIsHeldAtTheEndIsTakenToo)
{
    EXPECT_EQ(notes_of(stream_builder().annexb_unit(support::sei, user_data)), (notes{"!0:0+3 6", "0:0+3 6"}));
}

TEST(UnitRun, AUnitThatIsTooLargeIsAGapThatCounts)
{
    const bytes stream = stream_builder()
                             .annexb_unit(support::sei, user_data)
                             .annexb_unit(filler, bytes(10, 0xFF))
                             .zeros(1)
                             .annexb_unit(support::sei, user_data)
                             .annexb_unit(aud, delimiter);
    orv_h264::stream_options options;
    options.max_unit = 10;
    EXPECT_EQ(notes_of(stream, options),
              (notes{"at 8: unit of type 12 longer than the limit of 10 bytes (14 bytes)", "gap 8+14", "!0:0+3 6",
                     "0:0+3 6", "!2:22+4 6", "2:22+4 6", "!3:31+3 9", "3:31+3 9"}));
}

TEST(UnitRun, EnoughStopsEverything)
{
    const bytes stream = stream_builder()
                             .annexb_unit(support::sei, user_data)
                             .annexb_unit(support::sei, two_problems)
                             .annexb_unit(support::forbidden, {1})
                             .annexb_unit(aud, delimiter);
    const notes all = notes_of(stream);
    const char* const last[] = {"0:0+3 6", "1:8+3 6", "2:19+3 7", "3:24+3 9"};
    for (std::size_t most = 1; most <= std::size(last); ++most) {
        noted_run run;
        run.most = most;
        status_of(run, stream);
        const auto end = std::find(all.begin(), all.end(), last[most - 1]);
        ASSERT_NE(end, all.end()) << last[most - 1];
        EXPECT_EQ(run.notes, notes(all.begin(), end + 1));
    }
}

TEST(UnitRun, OfNothingNothingIsSaidWhereThatIsEnough)
{
    noted_run run;
    run.most = 0;
    EXPECT_EQ(status_of(run, stream_builder().junk(3).annexb_unit(aud, {0})), orv_h264::exit_clean);
    EXPECT_EQ(run.notes, notes{});
}

TEST(UnitRun, GapsAreToldAtTheirOffsetsWithTheUnitsAround)
{
    const bytes stream =
        stream_builder().junk(5).annexb_unit(aud, delimiter).zeros(3).junk(2).annexb_unit(aud, delimiter);
    EXPECT_EQ(notes_of(stream),
              (notes{"at 0: bytes before the first start code (5 bytes)", "gap 0+5", "!0:5+3 9", "0:5+3 9",
                     "at 13: bytes behind a place where the unit's decoding stops (2 bytes)", "gap 13+2", "!1:15+3 9",
                     "1:15+3 9"}));
}

TEST(UnitRun, ComplaintsStandAtTheFramingOfTheirUnitBeforeItIsTaken)
{
    const bytes stream = stream_builder().zeros(1).annexb_unit(aud, {0x50}).zeros(1).annexb_unit(aud, {0x40});
    EXPECT_EQ(notes_of(stream),
              (notes{"!0:0+4 9", "0:0+4 9", "!1:6+4 9", "of 1 at 6: the stop bit is missing", "1:6+4 9"}));
}

TEST(UnitRun, AFailureIsToldOnceAndTheEndingBehindItNot)
{
    EXPECT_EQ(notes_of(stream_builder().annexb_unit(support::sei, two_problems)),
              (notes{"!0:0+3 6", "of 0 at 0: recovery_frame_cnt at bit 24: the payload ends", "0:0+3 6"}));
}

TEST(UnitRun, AFindingLeavesTheStatusAndAFailureDoesNot)
{
    seq_parameter_set_data sps = sps_data();
    sps.max_num_ref_frames = 17;
    noted_run run;
    const std::vector<unsigned char> unit = bytes_of(sps_unit(sps));
    EXPECT_EQ(status_of(run, stream_builder().start_code().raw(unit)), orv_h264::exit_clean);
    EXPECT_EQ(run.notes[1], "of 0 at 0: max_num_ref_frames 17 at bit 37: outside of 0 to 16 (finding)");
    EXPECT_EQ(status_of(run, stream_builder().start_code().raw(bytes(unit.begin(), unit.begin() + 3))),
              orv_h264::exit_broken_stream);
}

TEST(UnitRun, TheForbiddenBitIsAProblem)
{
    noted_run run;
    EXPECT_EQ(status_of(run, stream_builder().annexb_unit(0x80 | aud, delimiter)), orv_h264::exit_broken_stream);
    EXPECT_EQ(run.notes[1], "of 0 at 0: unit whose header has the forbidden bit set");
}

TEST(UnitRun, OfManyFindingsTheFirstAreToldAndTheOthersCounted)
{
    // scaling lists of deltas above 127, six of 16 entries
    seq_parameter_set_data sps = sps_data();
    sps.pic_order_cnt_type = 1;
    sps.profile_idc = 100;
    sps.seq_scaling_matrix_present_flag = true;
    sps.seq_scaling_list_present_flag[0] = true;
    sps.seq_scaling_list_present_flag[1] = true;
    for (unsigned list = 0; list < 2; ++list) {
        sps.lists[list].delta_scale.resize(16);
        for (unsigned j = 0; j < 16; ++j)
            sps.lists[list].delta_scale[j] = 128;
    }
    noted_run run;
    const bytes stream = stream_builder().start_code().raw(bytes_of(sps_unit(sps)));
    EXPECT_EQ(status_of(run, stream), orv_h264::exit_clean);
    ASSERT_EQ(run.notes.size(), 1 + outcome::most_findings + 1 + 1);
    EXPECT_EQ(run.notes[1 + outcome::most_findings], "of 0 at 0: further values outside of their ranges: 16 (finding)");
}

TEST(UnitRun, ACutUnitIsAProblemAtItsPrefix)
{
    orv_h264::stream_options options;
    options.format = framing::length_4;
    noted_run run;
    const bytes stream = stream_builder().prefixed_unit(4, aud, delimiter).prefix(4, 9).unit(aud, delimiter);
    EXPECT_EQ(status_of(run, stream, options), orv_h264::exit_broken_stream);
    EXPECT_EQ(run.notes, (notes{"!0:0+4 9", "0:0+4 9", "of 1 at 6: unit of 9 bytes runs past the end of the input",
                                "!1:6+4 9", "1:6+4 9"}));
}

TEST(UnitRun, WithoutAUnitTheRunIsBroken)
{
    noted_run run;
    EXPECT_EQ(status_of(run, {}), orv_h264::exit_broken_stream);
    EXPECT_EQ(run.notes, (notes{"at 0: no NAL unit found: the input is empty"}));
}

TEST(UnitRun, UnitsThatAreNotReadAreTakenAtOnceAndTheirForbiddenBitIsSeen)
{
    noted_run run;
    run.read = false;
    const bytes stream = stream_builder().annexb_unit(support::sei, two_problems).annexb_unit(support::forbidden, {1});
    EXPECT_EQ(status_of(run, stream), orv_h264::exit_broken_stream);
    EXPECT_EQ(run.notes, (notes{"0:0+3 6", "of 1 at 11: unit whose header has the forbidden bit set", "1:11+3 7"}));
}

} // namespace
