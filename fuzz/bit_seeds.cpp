// Seeds of the targets that read bits, and inputs of a few bytes for others.
#include "seeds.h"

#include "support/bit_writer.h"

namespace fuzz {

namespace {

using support::bit_writer;

/// What is read: numbers, codes, codes that are too long, and ends of payloads.
const seeds bit_strings = {
    {"codes", bit_writer().ue(0).ue(1).ue(2).ue(3).ue(6).ue(7).ue(8).u(60, 1).bytes()},
    {"longest_codes", bit_writer().ue(16777214).ue(4294967294).u(64, 7).bytes()},
    {"code_of_24_zeros", bit_writer().ue(16777215).u(8, 0x55).bytes()},
    {"code_of_32_zeros", bit_writer().u(33, 1).u(8, 0x55).bytes()},
    {"zeros", bytes(20)},
    {"trailer", {0xAB, 0xD0}},
    {"far_trailer", {0, 0, 0, 0, 0, 0, 0, 0, 0, 1}},
    {"no_stop_bit", {0xE0}},
    {"stray_bit", {0xF1, 0x00}},
};

/// How many operations follow, their numbers in operate(), and an argument for each.
const seed_table programs = {
    {"bitreader",
     {{"widths", {11, 0, 0, 0, 1, 0, 7, 0, 8, 0, 23, 0, 24, 1, 0, 1, 25, 1, 26, 1, 33, 1, 255}},
      {"codes", {8, 4, 0, 4, 0, 5, 0, 4, 0, 5, 0, 5, 0, 4, 0, 5, 0}},
      {"codes_behind_a_bit", {5, 0, 0, 4, 0, 0, 0, 5, 0, 0, 0}},
      {"end", {9, 6, 0, 0, 2, 2, 0, 6, 0, 7, 0, 6, 0, 3, 0, 3, 0, 7, 0}},
      {"end_after_11_bits", {4, 6, 0, 0, 10, 6, 0, 7, 0}}}},
    {"legacy_bits",
     {{"widths", {9, 0, 0, 0, 1, 0, 8, 0, 25, 3, 0, 0, 3, 3, 0, 0, 255, 0, 26}},
      {"codes", {7, 1, 0, 1, 0, 2, 0, 1, 0, 2, 0, 2, 0, 1, 0}},
      {"to_the_end", {9, 4, 0, 5, 7, 4, 0, 5, 7, 4, 0, 5, 7, 4, 0, 5, 7, 4, 0}}}},
};

/// Three SPSs, of which one is empty, and two PPSs.
const bytes record = {1, 100,  0,   31, 255, 0xE3, 0, 4, 0x67, 100,  0, 31, 0,    0,   0,
                      4, 0x67, 100, 0,  31,  2,    0, 2, 0x68, 0xEE, 0, 2,  0x68, 0xEE};
/// The parameter sets of tests/streams/intra_refresh.264, of profile 100, in a record of their own.
const bytes whole_record = {1,  100,  0,    11,   0xFF, 0xE1, 0, 24,   0x67, 100, 0,    11, 0xAC, 0xB4,
                            22, 0x27, 96,   0x22, 0,    0,    3, 0,    2,    0,   0,    3,  0,    0x65,
                            30, 40,   0x55, 64,   1,    0,    6, 0x68, 0xEF, 4,   0x4B, 34, 0xC0};
/// User data of ATSC A/53 behind the country code: two captions; bars at the sides; an active format.
const bytes captions = {0xB5, 0, 0x31, 'G', 'A', '9', '4', 3, 0xC2, 0xFF, 0xFC, 0x94, 0x2C, 0xF9, 0x80, 0x81, 0xFF};
const bytes bars = {0xB5, 0, 0x31, 'G', 'A', '9', '4', 6, 0x3F, 0xC0, 0xF0, 0xC6, 0x90};
const bytes active_format = {0xB5, 0, 0x31, 'D', 'T', 'G', '1', 0x41, 0xFA};
const bytes uuid = {0xDC, 0x45, 0xE9, 0xBD, 0xE6, 0xD9, 0x48, 0xB7, 0x96, 0x2C, 0xD8, 0x20, 0xD9, 0x23, 0xEE, 0xEF};

/// Inputs that a line tells, as the head of each target's source does.
const seed_table small = {
    {"decoder_configuration",
     {{"behind", behind({0}, behind(whole_record, {0xFD, 0xF8, 0xF8, 0, 1, 2}))},
      {"behind_a_profile_without", {0, 1, 66, 0, 30, 0xFF, 0xE0, 0, 0xFD, 0xF8, 0xF8, 0}},
      {"extension_without_sets", {1, 1, 244, 0, 30, 0xFD, 0xE0, 0, 0xFF, 0xFA, 0xFA, 0}},
      {"longest_entry", {0, 1, 100, 0, 30, 0xFF, 0xE1, 0xFF, 0xFF, 0x67, 1}},
      {"reserved_bits", {0, 1, 100, 0, 30, 3, 0, 0, 1, 0, 0, 0}},
      {"sps_extension", behind({2}, behind(whole_record, {0xFD, 0xF8, 0xF8, 1, 0, 2, 0x6D, 0xE0}))},
      {"too_few_sps_extensions", behind({0}, behind(whole_record, {0xFD, 0xF8, 0xF8, 255, 0, 1, 0x6D}))}}},
    {"decoder_configuration_record",
     {{"extension", behind(record, {0xFD, 0xF8, 0xF8, 0})},
      {"longest_entry", {1, 66, 0, 30, 0xFF, 0xE1, 0xFF, 0xFF, 0x67, 1}},
      {"no_pps_and_a_byte", {1, 66, 0, 30, 0xFF, 0xE1, 0, 1, 0x67, 0, 0xFD}},
      {"no_sets", {1, 66, 0, 30, 0xFF, 0xE0, 0}},
      {"too_few_pps", {1, 66, 0, 30, 0xFF, 0xE0, 255, 0, 1, 0x68}},
      {"too_few_sps", {1, 66, 0, 30, 0xFF, 0xFF, 0, 1, 0x67}}}},
    {"generations_nal",
     {{"length_above_its_prefix", stream_builder().raw({1, 0x67}).fill(255, 7)},
      {"many_zeros", stream_builder().raw({4, 0x67}).zeros(400)}}},
    {"legacy_sei", {{"cut_size", {4, 0, 0, 1, 0xFF}}, {"cut_type", {4, 0, 0, 0xFF, 0xFF}}}},
    {"registered_user_data",
     {{"active_format", active_format},
      {"bars", bars},
      {"captions", captions},
      {"country_with_extension", behind({0xFF, 1}, captions)},
      {"other_identifier", {0xB5, 0, 0x31, 'G', 'A', '9', '5', 3}},
      {"other_provider", {0xB5, 0, 0x3C, 0, 1, 4, 1}}}},
    {"sei_reader",
     {{"cut_type", {0xFF, 0xFF}},
      {"cut_size", {5, 0xFF, 0xFF}},
      {"other_last_byte", {5, 0, 0x81}},
      {"truncated", {5, 10, 1, 2, 3}},
      {"two_messages", support::sei_rbsp({{1, {0xAA, 0xBB}}, {6, {}}})},
      {"type_above_255", {0xFF, 10, 1, 0, 0x80}}}},
    {"sei_user_data_unreg",
     {{"known_then_other", stream_builder().raw({17}).raw(uuid).raw({1}).raw(bytes(16, 9))},
      {"known_then_short", stream_builder().raw({16}).raw(uuid).raw(bytes(15, 9))},
      {"short_then_known", stream_builder().raw({15}).raw(bytes(15, 9)).raw(uuid)}}},
};

} // namespace

void add_bit_seeds(seed_table& to)
{
    to.insert(small.begin(), small.end());
    for (const auto& [target, list] : programs)
        for (const auto& [how, program] : list)
            for (const auto& [what, data] : bit_strings)
                to[target][(what + '_').append(how)] = behind(program, data);
    for (const std::ptrdiff_t size : {5, 6, 7, 10, 20, 21, 25, 28, 29})
        to["decoder_configuration_record"]["first_" + std::to_string(size)] = {record.begin(), record.begin() + size};
    for (std::ptrdiff_t size = 0; size <= 41; ++size)
        to["decoder_configuration"]["first_" + std::to_string(size)] =
            behind({0}, {whole_record.begin(), whole_record.begin() + size});
    add_heads(to["decoder_configuration"], "whole", {0, 1, 100, 0, 11, 0xFF, 0xE1},
              behind({whole_record.begin() + 6, whole_record.end()}, {0xFD, 0xF8, 0xF8, 0}));
    for (std::ptrdiff_t size = 1; size < std::ssize(captions); ++size)
        to["registered_user_data"]["first_" + std::to_string(size)] = {captions.begin(), captions.begin() + size};
    add_heads(to["nal_aud"], "delimiter", {0, 0xF0}, {0x80});
    // A unit of 17 bytes, of which 16 are shown, and fields.
    const bytes unit = stream_builder().raw({0, 20}).annexb_unit(support::sps, bytes(16, 0x5A));
    add_heads(to["legacy_dumps"], "shown", {0x80, 0, 0, 16}, stream_builder().raw(unit).fill(60, 0x21));
}

} // namespace fuzz
