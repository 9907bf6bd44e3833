// Pictures out of access units: fields put together, places in the order, findings.
#include "support/made_stream.h"
#include "support/told_pictures.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;

/// A stream of frames and fields with picture order count type 0, up to 4 reference frames.
class count_stream : public made_stream {
public:
    explicit count_stream(std::uint32_t max_num_ref_frames = 4) : made_stream(sps_of(max_num_ref_frames))
    {
        add_sets();
    }

private:
    static seq_parameter_set_data sps_of(std::uint32_t max_num_ref_frames)
    {
        seq_parameter_set_data sps = sps_data();
        sps.pic_order_cnt_type = 0;
        sps.log2_max_pic_order_cnt_lsb_minus4 = 4;
        sps.frame_mbs_only_flag = false;
        sps.max_num_ref_frames = max_num_ref_frames;
        sps.vui_parameters_present_flag = true;
        sps.vui_parameters.bitstream_restriction_flag = true;
        sps.vui_parameters.max_dec_frame_buffering = max_num_ref_frames;
        sps.vui_parameters.max_num_reorder_frames = max_num_ref_frames;
        return sps;
    }
};

told_pictures told_of(const made_stream& stream, output_mode mode = output_mode::bumping)
{
    return orv_utils_v4::h264::told_of(stream.bytes, 0, mode);
}

/// Of each picture in decoding order: both fields ("tb" or "bt"), a field alone ("t", "b") or a frame ("f").
std::string shapes(const told_pictures& told)
{
    std::string text;
    for (const picture& p : told.decoding_order) {
        const bool is_top = p.structure == picture_structure::top_field;
        text += text.empty() ? "" : " ";
        if (p.both_fields)
            text += is_top ? "tb" : "bt";
        else
            text += p.lone_field() ? (is_top ? "t" : "b") : "f";
    }
    return text;
}

struct field_case {
    const char* name;
    made_slice first;
    made_slice second;
    const char* shape;
};

TEST(Pictures, FieldsArePutTogetherWhereTheyAreComplementary)
{
    made_slice of_other_idc = bottom(reference(1, 3));
    of_other_idc.nal_ref_idc = 3;
    const field_case table[] = {
        {"reference fields, top first", top(reference(1, 2)), bottom(reference(1, 3)), "f tb"},
        {"reference fields, bottom first", bottom(reference(1, 2)), top(reference(1, 3)), "f bt"},
        {"other fields, top first", top(other(1, 2)), bottom(other(1, 3)), "f tb"},
        {"other fields, bottom first", bottom(other(1, 2)), top(other(1, 3)), "f bt"},
        {"reference fields with another nal_ref_idc", top(reference(1, 2)), of_other_idc, "f tb"},
        {"a first field that is an IDR picture", top(idr(1)), bottom(reference(0, 1)), "f tb"},
        {"a second field that is an IDR picture", top(reference(0, 1)), bottom(idr(1)), "f t b"},
        {"IDR pictures both", top(idr(1)), bottom(idr(1)), "f t b"},
        {"operation 5 in the first field", with(top(reference(1, 2)), {forget_all()}), bottom(reference(0, 1)), "f tb"},
        {"operation 5 and the same frame_num", with(top(reference(1, 2)), {forget_all()}), bottom(reference(1, 3)),
         "f t b"},
        {"operation 5 in the second field", top(reference(1, 2)), with(bottom(reference(1, 3)), {forget_all()}),
         "f t b"},
        {"another frame_num", top(reference(1, 2)), bottom(reference(2, 3)), "f t b"},
        {"reference and other", top(reference(1, 2)), bottom(other(1, 3)), "f t b"},
        {"other and reference", top(other(1, 2)), bottom(reference(1, 3)), "f t b"},
        {"the same parity", top(reference(1, 2)), top(reference(1, 4)), "f t t"},
        {"a field and a frame", top(reference(1, 2)), reference(2, 4), "f t f"},
        {"a frame and a field", reference(1, 2), bottom(reference(2, 4)), "f f b"},
    };
    for (const field_case& c : table) {
        count_stream stream;
        stream.add(idr()).add(c.first).add(c.second);
        const told_pictures told = told_of(stream);
        EXPECT_EQ(shapes(told), c.shape) << c.name;
        for (const picture& p : told.decoding_order)
            EXPECT_EQ(p.findings.has(picture_finding::second_field_missing), p.lone_field()) << c.name;
        EXPECT_EQ(told.output_order.size(), told.decoding_order.size()) << c.name;
    }
}

TEST(Pictures, AThirdFieldBeginsAnotherFrame)
{
    count_stream stream;
    stream.add(top(idr())).add(bottom(reference(0, 1))).add(top(reference(0, 2))).add(bottom(reference(0, 3)));
    EXPECT_EQ(shapes(told_of(stream)), "tb tb");
}

TEST(Pictures, AFieldAtTheEndOfASequenceIsAlone)
{
    count_stream stream;
    stream.add(top(idr())).add_bytes(10, {}).add(bottom(reference(0, 1)));
    EXPECT_EQ(shapes(told_of(stream)), "t b");
}

TEST(Pictures, AreWhatTheirAccessUnitsAre)
{
    count_stream stream;
    stream.add(idr()).add(unit_of(6, sei_rbsp{{message_of(6, recovery_point())}}));
    made_slice predicted = bottom(reference(1, 7));
    predicted.header.slice_type = 0;
    predicted.nal_ref_idc = 3;
    stream.add(top(reference(1, 6))).add(predicted).add(other(2, 4));
    const told_pictures told = told_of(stream);
    ASSERT_EQ(shapes(told), "f tb f");
    const picture& pair = told.decoding_order[1];
    EXPECT_EQ(pair.number, 1U);
    EXPECT_EQ(pair.access_unit, 1U);
    EXPECT_EQ(pair.structure, picture_structure::top_field);
    EXPECT_EQ(pair.nal_ref_idc, 3);
    EXPECT_EQ(pair.slice_kinds,
              1U << static_cast<unsigned>(slice_kind::I) | 1U << static_cast<unsigned>(slice_kind::P));
    EXPECT_TRUE(pair.recovery_point);
    EXPECT_FALSE(pair.idr);
    EXPECT_EQ(pair.count.top, 6);
    EXPECT_EQ(pair.count.bottom, 7);
    EXPECT_TRUE(told.decoding_order[0].idr);
    EXPECT_EQ(told.decoding_order[2].access_unit, 3U);
    EXPECT_FALSE(told.decoding_order[2].recovery_point);
    // from the SEI unit to the end of the second field, and the next one behind its start code
    EXPECT_EQ(pair.end + 4, told.decoding_order[2].offset);
    EXPECT_EQ(pair.offset, told.decoding_order[0].end + 4);
    EXPECT_EQ(told.decoding_order[2].end, stream.bytes.size());
    ASSERT_EQ(told.access_units.size(), 4U);
    EXPECT_EQ(told.access_units[2].picture, 1);
}

TEST(Pictures, AreOutputByTheirCounts)
{
    count_stream stream;
    stream.add(idr()).add(reference(1, 8)).add(reference(2, 4)).add(other(3, 2)).add(other(3, 6));
    for (const output_mode mode : {output_mode::bumping, output_mode::early})
        EXPECT_EQ(told_of(stream, mode).output_numbers(), (std::vector<std::uint64_t>{0, 3, 2, 4, 1}));
    EXPECT_EQ(told_of(stream, output_mode::when_decoded).output_numbers(), (std::vector<std::uint64_t>{0, 1, 2, 3, 4}));
}

TEST(Pictures, PairsOfFieldsAreOutputByTheLowerCount)
{
    count_stream stream;
    stream.add(idr()).add(top(reference(1, 8))).add(bottom(reference(1, 3))).add(reference(2, 4));
    EXPECT_EQ(told_of(stream).output_numbers(), (std::vector<std::uint64_t>{0, 1, 2}));
}

TEST(Pictures, OfOtherSequencesComeLaterWhateverTheirCounts)
{
    count_stream stream;
    stream.add(idr(1)).add(reference(1, 100)).add(with(reference(2, 50), {forget_all()})).add(reference(1, 4));
    stream.add(idr(2)).add(reference(1, 2));
    const told_pictures told = told_of(stream);
    EXPECT_EQ(told.output_numbers(), (std::vector<std::uint64_t>{0, 1, 2, 3, 4, 5}));
    std::vector<std::uint64_t> sequences;
    for (const picture& p : told.decoding_order)
        sequences.push_back(p.sequence - told.decoding_order[0].sequence);
    EXPECT_EQ(sequences, (std::vector<std::uint64_t>{0, 0, 1, 1, 2, 2}));
    EXPECT_EQ(told.decoding_order[2].count.top, 0); // operation 5
    EXPECT_EQ(told.decoding_order[3].count.top, 4);
}

TEST(Pictures, NoOutputOfPriorPicsIsToldOfThoseThatWait)
{
    made_slice discarding = idr(1);
    discarding.header.dec_ref_pic_marking.no_output_of_prior_pics_flag = true;
    count_stream stream(2);
    stream.add(idr()).add(reference(1, 8)).add(reference(2, 4)).add(discarding);
    std::vector<bool> discarded;
    for (const picture& p : told_of(stream).output_order)
        discarded.push_back(p.discarded);
    EXPECT_EQ(discarded, (std::vector<bool>{false, true, true, false}));
}

// Pictures 0 and 1 are long-term, and output. The frame that is missing before picture 4 pushes picture 2 out of the
// references and, where the SPS allows it, out of the buffer, before picture 4 lets the long-term ones go.
TEST(Pictures, AnInferredFrameTakesItsRoomBeforeTheMarkingOfThePictureBehindIt)
{
    made_slice discarding = idr(1);
    discarding.header.dec_ref_pic_marking.no_output_of_prior_pics_flag = true;
    for (const bool allowed : {true, false}) {
        count_stream stream(3);
        stream.sps().gaps_in_frame_num_value_allowed_flag = allowed;
        stream.add_sets().add(idr()).add(with(reference(1, 2), {short_to_long(0, 0), current_to_long(1)}));
        stream.add(reference(2, 6)).add(other(3, 4));
        stream.add(with(reference(4, 8), {keep_long_below(0)})).add(discarding);
        std::string text;
        for (const picture& p : told_of(stream).output_order)
            text += std::to_string(p.number) + (p.discarded ? "- " : " ");
        EXPECT_EQ(text, allowed ? "0 1 3 2 4- 5 " : "0 1 3 2- 4- 5 ");
    }
}

TEST(Pictures, WithoutAPlaceFollowAllThatCameBefore)
{
    count_stream stream;
    stream.add(idr()).add(reference(1, 8)).add(reference(2, 4)).add_bytes(0x21, {0xE0, 0x80}).add(reference(4, 6));
    const told_pictures told = told_of(stream);
    EXPECT_EQ(told.output_numbers(), (std::vector<std::uint64_t>{0, 2, 1, 3, 4}));
    EXPECT_TRUE(told.decoding_order[3].findings.has(picture_finding::slice_damaged));
    EXPECT_LT(told.decoding_order[2].sequence, told.decoding_order[3].sequence);
    EXPECT_LT(told.decoding_order[3].sequence, told.decoding_order[4].sequence);
}

TEST(Pictures, WithoutParameterSetsComeInDecodingOrder)
{
    count_stream stream;
    stream.add(idr()).add(reference(1, 8)).add(reference(2, 4));
    const std::vector<unsigned char> cut(
        stream.bytes.begin() + static_cast<std::ptrdiff_t>(stream.units[0].size() + stream.units[1].size() + 8),
        stream.bytes.end());
    const told_pictures told = orv_utils_v4::h264::told_of(cut);
    EXPECT_EQ(told.output_numbers(), (std::vector<std::uint64_t>{0, 1, 2}));
    for (const picture& p : told.output_order)
        EXPECT_TRUE(p.findings.has(picture_finding::no_parameter_sets));
}

TEST(Pictures, TellWhatTheyBreak)
{
    struct breaking {
        picture_finding what;
        made_slice slice;
    };
    const breaking table[] = {
        {picture_finding::frame_num_gap, reference(3, 4)},
        {picture_finding::no_such_reference, with(reference(1, 4), {unmark_short(3)})},
        {picture_finding::too_many_frames, with(reference(1, 4), {keep_long_below(1)})},
    };
    for (const breaking& b : table) {
        count_stream stream(1);
        stream.add(idr()).add(b.slice).add(reference(b.slice.header.frame_num + 1, 8));
        const told_pictures told = told_of(stream);
        ASSERT_EQ(told.decoding_order.size(), 3U);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(told.decoding_order[i].findings.has(b.what), i == 1) << text_of(b.what);
            EXPECT_EQ(told.decoding_order[i].findings.empty(), i != 1) << text_of(b.what);
        }
    }
}

TEST(Pictures, GapsThatTheSpsAllowsAreNoFinding)
{
    count_stream stream(2);
    stream.sps().gaps_in_frame_num_value_allowed_flag = true;
    stream.add_sets().add(idr()).add(reference(3, 4));
    const told_pictures told = told_of(stream);
    ASSERT_EQ(told.decoding_order.size(), 2U);
    EXPECT_TRUE(told.decoding_order[1].findings.empty());
}

TEST(Pictures, ACountBeyond32BitsIsTold)
{
    made_stream stream;
    stream.sps().pic_order_cnt_type = 1;
    stream.sps().num_ref_frames_in_pic_order_cnt_cycle = 1;
    stream.sps().offset_for_ref_frame[0] = 2000000000;
    stream.add_sets().add(idr()).add(reference(1)).add(reference(2));
    const told_pictures told = told_of(stream);
    ASSERT_EQ(told.decoding_order.size(), 3U);
    EXPECT_FALSE(told.decoding_order[1].findings.has(picture_finding::count_out_of_range));
    EXPECT_TRUE(told.decoding_order[2].findings.has(picture_finding::count_out_of_range));
    EXPECT_EQ(told.decoding_order[2].count.top, 4000000000);
}

TEST(Pictures, AnAccessUnitWithoutAPictureIsOfNone)
{
    made_stream stream;
    stream.add_sets();
    const told_pictures told = told_of(stream);
    ASSERT_EQ(told.access_units.size(), 1U);
    EXPECT_EQ(told.access_units[0].picture, -1);
    EXPECT_TRUE(told.decoding_order.empty());
}

TEST(Pictures, OfPiecesThatStayAreThoseOfTheWhole)
{
    count_stream stream;
    stream.add(idr())
        .add(reference(1, 8))
        .add_bytes(12, {0xFF, 0xFF, 0x80})
        .add(top(other(2, 2)))
        .add(bottom(other(2, 3)));
    const told_pictures whole = told_of(stream);
    for (std::size_t size = 1; size < stream.bytes.size(); ++size) {
        told_pictures told;
        picture_reader reader(framing::annex_b);
        for (std::size_t at = 0; at < stream.bytes.size(); at += size)
            reader.push(&stream.bytes[at], std::min(size, stream.bytes.size() - at), told, {nullptr, true});
        reader.flush(told);
        EXPECT_EQ(told.lines(), whole.lines());
        ASSERT_EQ(told.access_units.size(), whole.access_units.size());
        for (std::size_t i = 0; i < told.access_units.size(); ++i)
            EXPECT_EQ(told.access_units[i].units, whole.access_units[i].units) << size;
    }
}

TEST(Pictures, MarkingTellsTheReferencesByNow)
{
    class sink : public access_unit_sink {
    public:
        void take(const access_unit& unit) override { stage.take(unit, told); }
        pictures stage;
        told_pictures told;
    } to;
    count_stream stream(2);
    stream.add(idr()).add(reference(1, 4)).add(other(2, 2)).add(reference(2, 8));
    access_units units;
    for (const auto& unit : stream.units)
        units.push({unit.data(), unit.size(), 0, 0}, to);
    units.flush(to);
    to.stage.flush(to.told);
    ASSERT_EQ(to.stage.marking().size(), 2U);
    EXPECT_TRUE(to.stage.marking().uses(1));
    EXPECT_TRUE(to.stage.marking().uses(3));
    EXPECT_EQ(to.told.output_order.size(), 4U);
}

TEST(Pictures, WhatIsMovedGoesOnWhereItStood)
{
    count_stream stream;
    stream.add(idr(1)).add(reference(1, 8)).add(other(2, 4)).add(reference(2, 16)).add(other(3, 12));
    const std::string whole = told_of(stream).lines();

    told_pictures of_reader;
    picture_reader reader(framing::annex_b);
    const std::size_t half = stream.bytes.size() / 2;
    reader.push(stream.bytes.data(), half, of_reader);
    picture_reader moved_reader = std::move(reader);
    moved_reader.push(stream.bytes.data() + half, stream.bytes.size() - half, of_reader);
    reader = std::move(moved_reader);
    EXPECT_NE(reader.sets().find_sps(0), nullptr);
    reader.flush(of_reader);
    EXPECT_EQ(of_reader.lines(), whole);

    struct to_pictures : access_unit_sink {
        void take(const access_unit& unit) override { stage.take(unit, told); }
        pictures stage;
        told_pictures told;
    } sink;
    access_units units;
    std::uint64_t offset = 0;
    for (std::size_t i = 0; i < stream.units.size(); ++i) {
        units.push({stream.units[i].data(), stream.units[i].size(), offset += 4, i}, sink);
        offset += stream.units[i].size();
        access_units moved_units = std::move(units);
        units = std::move(moved_units);
        pictures moved_stage = std::move(sink.stage);
        sink.stage = std::move(moved_stage);
    }
    EXPECT_NE(units.sets().find_pps(0), nullptr);
    units.flush(sink);
    sink.stage.flush(sink.told);
    EXPECT_EQ(sink.told.lines(), whole);
}

} // namespace
