// What hostile bytes cost the syntax library, and what fuzzing found. Figures are counted, not timed.
#include "support/literal_unit.h"

#include <orv-utils-v4/h264_syntax.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace orv_utils_v4::h264;
using bytes = std::vector<unsigned char>;

/// Units and gaps as text.
class split_texts : public split_sink {
public:
    void unit(const split_unit& u) override { texts.push_back("unit " + place(u.offset, u.size)); }
    void gap(const split_gap& g) override { texts.push_back("gap " + place(g.offset, g.size)); }
    static std::string place(std::uint64_t offset, std::uint64_t size)
    {
        return std::to_string(offset) + "+" + std::to_string(size);
    }
    std::vector<std::string> texts;
};

std::vector<std::string> split(const bytes& stream, std::size_t most, std::size_t piece)
{
    split_texts sink;
    unit_splitter splitter(framing::annex_b, most);
    for (std::size_t at = 0; at < stream.size(); at += piece)
        splitter.push(stream.data() + at, std::min(piece, stream.size() - at), sink);
    splitter.flush(sink);
    return sink.texts;
}

TEST(SyntaxRobustness, TheEndOfAUnitAboveTheLimitIsFoundWherePiecesMeet)
{
    // as in seed unit_splitter/d97ab71c1525b63c0389ea3c9f0cb6de96a3d0be: the bytes of the start code behind the large
    // unit lie in two pieces
    const bytes stream = {0, 0, 1, 0x67, 1, 2, 3, 4, 5, 0, 0, 1, 0x68, 7, 0, 0, 1, 9, 0xF0};
    const std::vector<std::string> whole = split(stream, 3, stream.size());
    EXPECT_EQ(whole, (std::vector<std::string>{"gap 0+9", "unit 12+2", "unit 17+2"}));
    for (std::size_t piece = 1; piece < stream.size(); ++piece)
        EXPECT_EQ(split(stream, 3, piece), whole) << piece;
}

TEST(SyntaxRobustness, AUnitAtTheLimitIsWholeWhereverItsEndBegins)
{
    const bytes stream = {0, 0, 1, 0x67, 1, 2, 0, 0, 1, 0x68, 7, 8, 0, 0};
    for (std::size_t piece = 1; piece <= stream.size(); ++piece)
        EXPECT_EQ(split(stream, 3, piece), (std::vector<std::string>{"unit 3+3", "unit 9+3"})) << piece;
}

std::size_t messages_in(const std::vector<sei_message>& list)
{
    std::size_t count = list.size();
    for (const sei_message& m : list) {
        if (const auto* const nesting = std::get_if<scalable_nesting>(&m.payload))
            count += messages_in(nesting->messages);
    }
    return count;
}

/// scalable_nesting() with so many empty reserved messages.
bytes nesting_of(const bytes& message, std::size_t count)
{
    bytes payload = {0x80}; // all_layer_representations_in_au_flag
    for (std::size_t i = 0; i < count; ++i)
        payload.insert(payload.end(), message.begin(), message.end());
    bytes made = {30};
    std::size_t size = payload.size();
    for (; size >= 255; size -= 255)
        made.push_back(255);
    made.push_back(static_cast<unsigned char>(size));
    made.insert(made.end(), payload.begin(), payload.end());
    return made;
}

TEST(SyntaxRobustness, NestedMessagesCountForTheMostOfAUnit)
{
    const bytes inner = nesting_of({200, 0}, 128);
    const bytes outer = nesting_of(inner, 128);
    bytes unit = {6};
    for (int i = 0; i < 16; ++i)
        unit.insert(unit.end(), outer.begin(), outer.end());
    unit.push_back(0x80);
    nal_unit read_unit;
    outcome result;
    read(read_unit, unit.data(), unit.size(), {}, result);
    ASSERT_TRUE(std::holds_alternative<sei_rbsp>(read_unit.rbsp));
    EXPECT_EQ(result.failure.why, reason::payload_ends); // a reserved manifest is cut: type 200
    const std::size_t messages = messages_in(std::get<sei_rbsp>(read_unit.rbsp).sei_messages);
    EXPECT_GE(messages, sei_rbsp::most_messages);
    EXPECT_LE(messages, sei_rbsp::most_messages + 4); // one at each depth is begun
}

TEST(SyntaxRobustness, AreasAboveWhatANumberHoldsAreTheLargest)
{
    seq_parameter_set_data sps;
    sps.pic_width_in_mbs_minus1 = 0xFFFFFFFE;
    sps.pic_height_in_map_units_minus1 = 0xFFFFFFFE;
    const std::uint64_t most = ~std::uint64_t{0} >> 1;
    EXPECT_EQ(PicSizeInMbs(sps, false), most);
    EXPECT_EQ(PicSizeInMapUnits(sps), most);
    sps.pic_height_in_map_units_minus1 = 0;
    EXPECT_EQ(PicSizeInMbs(sps, false), 2 * std::uint64_t{0xFFFFFFFF});
    sps.frame_mbs_only_flag = true; // a field of one macroblock row, which no slice has
    EXPECT_EQ(PicSizeInMbs(sps, true), 0U);
}

/// Counts the elements of one stream.
class counting_sink : public unit_sink, public visitor {
public:
    visitor* before(const unit_place&) override { return this; }
    void take(const unit_reading& reading) override { last = reading.result; }
    void open(const char*) override {}
    void close() override {}
    void element(const traced_element&) override { ++elements; }

    std::size_t elements = 0;
    outcome last;
};

void push(stream& to, const bytes& unit, unit_sink& sink)
{
    to.push({unit.data(), unit.size(), 0, 0}, sink);
}

/// An SPS of profile 244 with the id 0.
bytes sps_with(std::uint32_t chroma_format_idc)
{
    nal_unit unit;
    unit.header.nal_ref_idc = 1;
    unit.header.nal_unit_type = 7;
    seq_parameter_set_rbsp set;
    set.seq_parameter_set_data.profile_idc = 244;
    set.seq_parameter_set_data.chroma_format_idc = chroma_format_idc;
    set.seq_parameter_set_data.frame_mbs_only_flag = true;
    unit.rbsp = set;
    return written(unit, {});
}

/// A PPS with the lists that a set of this chroma_format_idc brings.
bytes pps_with_lists(std::size_t lists)
{
    using namespace literal;
    lines pps = {{"pic_parameter_set_id", literal::ue, 0},
                 {"seq_parameter_set_id", literal::ue, 0},
                 {"flags and groups", literal::u(3), 1},
                 {"num_ref_idx", literal::ue, 0},
                 {"num_ref_idx", literal::ue, 0},
                 {"weights", literal::u(3), 0},
                 {"qp", literal::se, 0},
                 {"qs", literal::se, 0},
                 {"chroma", literal::se, 0},
                 {"flags", literal::u(3), 0},
                 {"transform_8x8_mode_flag", literal::u(1), 1},
                 {"pic_scaling_matrix_present_flag", literal::u(1), 1},
                 {"no lists", literal::u(static_cast<unsigned>(lists)), 0},
                 {"second_chroma_qp_index_offset", literal::se, 5}};
    return in_bits(unit_of(8, pps)).bytes();
}

std::int32_t second_offset(const stream& of)
{
    const pic_parameter_set_rbsp* const pps = of.sets().find_pps(0);
    return pps == nullptr ? -99 : pps->second_chroma_qp_index_offset;
}

TEST(SyntaxRobustness, APpsGoesWithWhicheverSpsComesWithoutBeingReadAgain)
{
    counting_sink sink;
    stream reader;
    push(reader, pps_with_lists(12), sink); // waits: as it stands it has eight lists
    push(reader, sps_with(3), sink);
    EXPECT_EQ(second_offset(reader), 5);
    push(reader, sps_with(1), sink);
    push(reader, pps_with_lists(8), sink);
    EXPECT_EQ(second_offset(reader), 5);
    const pic_parameter_set_rbsp* const before = reader.sets().find_pps(0);
    push(reader, sps_with(2), sink);
    EXPECT_EQ(second_offset(reader), 5);
    EXPECT_EQ(reader.sets().find_pps(0), before);
    push(reader, sps_with(3), sink);
    push(reader, sps_with(1), sink);
    EXPECT_EQ(second_offset(reader), 5);
}

TEST(SyntaxRobustness, AParameterSetAboveItsLimitIsNotKept)
{
    bytes pps = pps_with_lists(8);
    counting_sink sink;
    stream reader;
    push(reader, sps_with(1), sink);
    pps.resize(stream::most_parameter_set_bytes + 1, 0);
    push(reader, pps, sink);
    EXPECT_EQ(sink.last.failure.why, reason::unit_too_long);
    EXPECT_EQ(reader.sets().find_pps(0), nullptr);
    pps.resize(stream::most_parameter_set_bytes);
    push(reader, pps, sink);
    EXPECT_FALSE(sink.last.failure);
    EXPECT_NE(reader.sets().find_pps(0), nullptr);
}

} // namespace
