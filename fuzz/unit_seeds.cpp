// Seeds of the targets that read or write units: the same few streams in every framing, behind the bytes that each
// target takes first, which the head of its source tells.
#include "seeds.h"

#include "support/frame_notation.h"

namespace fuzz {

namespace {

namespace frame_notation = support::frame_notation;

/// Units with their header bytes, as they stand in a stream.
const std::map<std::string, std::vector<bytes>> rows = {
    {"empty_units", {{0x68, 0xCE}, {}, {}, {9}, {}, {0x65, 9}}},
    {"early_end", {{0x67, 7, 0, 0, 2, 5, 0}, {0x68, 0xCE}}},
    {"forbidden", {{0x68, 0xCE}, {0xE7, 1, 2}, {0x65, 9}, {9}}},
    {"large_unit", {{0x68, 0xCE}, bytes(61, 0x55), {9, 0xF0}}},
    {"start_code_inside", {{0x67, 9, 0, 0, 1, 1, 7}, {9, 0xF0}}},
    {"units", {{0x67, 0x42, 0, 0, 3, 1, 0, 0, 3, 0, 0, 3}, {0x68, 0xCE}, {0x65, 0, 0, 4, 0xFF, 0, 0, 4}, {9, 0xF0}}},
    {"zeros_at_the_end", {{0x67, 7, 0, 0, 0, 0}, {9, 0xF0}, {0x67, 7, 0, 0}}},
};

/// What no row of units is, in Annex B.
const seeds annexb_oddities = {
    {"junk", {0, 0xEE, 0, 0, 0, 0, 1, 0x68, 0xCE}},
    {"junk_in_padding", {0, 0, 1, 0x68, 0xCE, 0, 0, 0, 0, 0, 0, 7, 0, 0, 0, 1, 0x68, 0xCE}},
    {"no_start_code", {0xEE, 0xEE, 0xEE, 0, 0, 2, 0, 7, 0, 0}},
    {"start_code", {0, 0, 1}},
    {"start_code_at_the_end", {0x65, 1, 2, 0, 0, 4, 0, 0, 1}},
    {"zeros", bytes(40)},
};

/// And behind length prefixes.
seeds prefixed_oddities(unsigned int size)
{
    return {{"cut_prefix", stream_builder().prefixed_unit(size, 0x68, {0xCE}).fill(size - 1, 1)},
            {"cut_unit", stream_builder().prefixed_unit(size, 0x68, {0xCE}).prefix(size, 90).raw({9})},
            {"largest", stream_builder().prefix(size, 0xFFFFFFFF).raw({0x65, 1, 2, 0, 0, 4})},
            {"largest_forbidden", stream_builder().prefix(size, 0xFFFFFFFF).raw({0xE7, 1, 2})}};
}

/// The streams of one framing, 0 for Annex B and else the size of the length prefixes.
seeds streams_in(unsigned int framing)
{
    seeds streams = framing == 0 ? annexb_oddities : prefixed_oddities(framing);
    for (const auto& [name, row] : rows) {
        stream_builder stream;
        for (const bytes& unit : row)
            stream.raw(framing == 0 ? bytes{0, 0, 1} : bytes())
                .prefix(framing, static_cast<std::uint32_t>(unit.size()))
                .raw(unit);
        streams[name] = stream;
    }
    return streams;
}

void add_readers(seed_table& to, unsigned char framing)
{
    const auto nalfmt = static_cast<unsigned char>(framing == 0 ? 5 : framing);
    for (const auto& [what, stream] : streams_in(framing)) {
        const std::string name = "prefix" + std::to_string(framing) + "_" + what;
        to["nal_reader"][name] = behind({nalfmt, 12, 4, 0, 1, 2, 3}, stream);
        to["legacy_nal_parser"][name] = behind({framing, 64, 11}, stream);
        to["unit_splitter"][name] = behind({framing, 2, 19}, stream);
        if (framing <= 2) {
            to["syntax_unit"][name] = to["syntax_identity"][name] = to["shown_units"][name] = behind({framing}, stream);
            to["pictures"][name] = behind({framing, 0, 3}, stream);
            to["syntax_edit"][name] = behind({0, 3, 1, 0, 0, 0, 0, 0, 0, 0, 5, framing}, stream);
        }
        to["generations_nal"][name] = behind({framing, support::sps}, stream);
    }
}

/// Of nal_writer, a unit is nal_ref_idc, from 240 on without a valid header; nal_unit_type; zero bytes; and the size of
/// its payload.
void add_writers(seed_table& to)
{
    const bytes steps = {0x42, 0, 0, 1, 0, 0, 0, 3, 0, 0, 2, 9, 0, 0, 4};
    const bytes unit = {3, 7, 2, 10, 9, 0, 0, 1, 0, 1, 2, 8, 0, 0};
    const bytes others = {2, 1, 3, 8, 1, 2, 3, 0, 0, 4, 0, 7, 255, 0, 0, 3, 0, 0, 3, 3, 8, 0, 4, 0, 0, 0, 0};
    for (const unsigned char framing : bytes{0, 1, 4}) {
        const std::string name = "prefix" + std::to_string(framing);
        add_heads(to["legacy_nal_write"], name, {framing, support::sps, 0}, steps);
        to["legacy_nal_write"][name + "_zeros"] = stream_builder().raw({framing, support::sps, 0}).zeros(40);
        to["legacy_nal_write"][name + "_plain"] = stream_builder().raw({framing, support::sps, 0}).fill(300, 0x55);
    }
    add_heads(to["nal_writer"], "four_units", {5, 0}, behind(others, unit));
    add_heads(to["nal_writer"], "annexb", {5, 18}, unit);
    add_heads(to["nal_writer"], "length4", {4, 18}, unit);
    add_heads(to["nal_writer"], "small_unit", {5, 13, 3, 7, 254, 2}, {0, 7, 0, 7});
    const stream_builder long_body = stream_builder().raw({3, 7, 0, 255}).fill(255, 9).raw({3, 7, 0, 170}).zeros(170);
    to["nal_writer"]["long_body"] = stream_builder().raw({1, 0}).raw(unit).raw(long_body).raw(unit);
    to["nal_writer"]["endless_zeros"] = stream_builder().raw({5, 0}).raw(unit).raw({3, 7, 255, 1, 1}).raw(unit);
}

/// A kind of third byte, a step and the room; data long enough for blocks of 64 bytes and what follows them.
void add_block_twins(seeds& to)
{
    stream_builder escapes;
    while (escapes.here() < 150)
        escapes.raw({0, 0, 3});
    to["escapes"] = behind({0, 0, 0, 97}, escapes);
    to["end"] = stream_builder().raw({0, 2, 3, 0}).zeros(70).raw(escapes).start_code().fill(200, 9);
    to["plain"] = stream_builder().raw({5, 2, 3, 0}).fill(510, 0x55);
    to["small_room"] = stream_builder().raw({0, 2, 0, 97}).fill(66, 9).raw(escapes);
}

/// What makes frames of one and two fields, and what lies between them.
std::map<std::string, frame_notation::units> frames()
{
    using namespace frame_notation;
    support::sps_description timed = field_stream();
    timed.vui->nal_hrd.emplace();
    support::sps_description wide = field_stream();
    wide.log2_max_frame_num_minus4 = 21;
    const unit frames_only = sps(support::sps_description());
    return {
        {"delays", {sps(timed), of_type(6, {1, 7, 1, 2, 3, 4, 5, 6, 8, 0x80}), slice(3), aud}},
        {"empty_units",
         {of_type(6), sps(), empty_slice, slice(1), of_type(5), of_type(6), of_type(7), of_type(8), of_type(9)}},
        {"ends", {filler, sps(), end_of_stream, slice(1), end_of_sequence, end_of_stream}},
        {"frames", {aud, sps(), pps, idr(0), slice(1), slice(1), slice(2), sei(12), slice(3), aud}},
        {"lone_field", {sps(), slice(3, top), aud, sei(7), slice(4, top), sei(1)}},
        {"lone_field_before_a_frame", {sps(), slice(3, top), aud, slice(4), filler, end_of_stream}},
        {"no_frame", {filler, end_of_stream, filler, end_of_sequence}},
        {"pair", {sps(), pps, sei(1), slice(3, top), sei(2), slice(3, bottom), aud}},
        {"sps_changes", {sps(), slice(1, top), frames_only, slice(2), sps(), slice(3, bottom)}},
        {"wide_frame_num", {sps(wide), slice(0, top), sps(), slice(3, bottom), slice(4)}},
    };
}

void add_frames(seed_table& to)
{
    for (const auto& [name, units] : frames()) {
        const bytes stream = frame_notation::framed(units, frame_notation::annexb).data;
        to["legacy_frame_scan"][name] = behind({0, 0, 255}, stream);
        to["legacy_frame_scan"][name + "_cut"] = behind({0, 1, 255}, {stream.begin(), stream.end() - 3});
        to["legacy_frame_scan"][name + "_little_room"] = behind({0, 0, 6}, stream);
        to["legacy_frame_scan"][name + "_prefixed"] = behind({2, 1, 255}, frame_notation::framed(units, {2}).data);
    }
}

} // namespace

void add_unit_seeds(seed_table& to)
{
    for (unsigned char framing = 0; framing < 5; ++framing)
        add_readers(to, framing);
    const bytes units = streams_in(0).at("units");
    add_heads(to["nal_reader"], "annexb", {5, 12, 0}, units);
    add_heads(to["legacy_nal_parser"], "annexb", {0, 64, 11}, units);
    add_writers(to);
    add_block_twins(to["block_twins"]);
    add_frames(to);
}

} // namespace fuzz
