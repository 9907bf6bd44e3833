#include "registered_trace.h"

#include "support/annotated_notes.h"
#include "support/framed_unit.h"
#include "support/traced_elements.h"

#include <orv-utils-v4/h264_syntax.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace orv_utils_v4::h264;
using orv_h264::place_finder;
using orv_h264::registered_trace;
using bytes = std::vector<unsigned char>;

const std::string payload = "sei_rbsp.sei_message.sei_payload.user_data_registered_itu_t_t35.";
const std::string atsc = payload + "registered_user_data.ATSC_user_data.";

/// ATSC captions: cc_count is 1, and the construct is all zeros but for its marker.
const bytes captions = {0xB5, 0x00, 0x31, 'G', 'A', '9', '4', 0x03, 0x41, 0xFF, 0xF8, 0x00, 0x00, 0xFF};
/// Any user data whose last bytes are zeros.
const bytes of_zeros = {0xB5, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00};

/// An SEI unit of registered user data, without emulation prevention.
bytes unit_of(const std::vector<bytes>& payloads)
{
    bytes unit = {6};
    for (const bytes& p : payloads) {
        unit.insert(unit.end(), {4, static_cast<unsigned char>(p.size())});
        unit.insert(unit.end(), p.begin(), p.end());
    }
    unit.push_back(0x80);
    return unit;
}

std::vector<kept_element> elements_of(const bytes& unit)
{
    traced_elements listener;
    registered_trace source(listener);
    nal_unit held;
    outcome result;
    trace(held, unit.data(), unit.size(), {}, result, source);
    return listener.elements;
}

/// The elements whose names begin like this, their values and first bits.
std::vector<kept_element> below(const std::string& path, const std::vector<kept_element>& elements)
{
    std::vector<kept_element> found;
    for (const kept_element& e : elements)
        if (e.path.starts_with(path))
            found.push_back(e);
    return found;
}

TEST(RegisteredTrace, WhatIsKnownOfTheBytesFollowsThemInTheirStructure)
{
    const std::vector<kept_element> elements = elements_of(unit_of({captions}));
    const std::vector<kept_element> known = below(payload + "registered_user_data", elements);
    const std::vector<kept_element> expected = {
        {payload + "registered_user_data.itu_t_t35_provider_code", 32, 16, 0x31},
        {payload + "registered_user_data.user_identifier", 48, 32, 0x47413934},
        {atsc + "user_data_type_code", 80, 8, 3},
        {atsc + "cc_data.process_em_data_flag", 88, 1, 0},
        {atsc + "cc_data.process_cc_data_flag", 89, 1, 1},
        {atsc + "cc_data.additional_data_flag", 90, 1, 0},
        {atsc + "cc_data.cc_count", 91, 5, 1},
        {atsc + "cc_data.em_data", 96, 8, 0xFF},
        {atsc + "cc_data.marker_bits[0]", 104, 5, 0x1F},
        {atsc + "cc_data.cc_valid[0]", 109, 1, 0},
        {atsc + "cc_data.cc_type[0]", 110, 2, 0},
        {atsc + "cc_data.cc_data_1[0]", 112, 8, 0},
        {atsc + "cc_data.cc_data_2[0]", 120, 8, 0},
        {atsc + "cc_data.marker_bits", 128, 8, 0xFF},
    };
    EXPECT_EQ(known, expected);
    const std::size_t all_bytes = below(payload + "itu_t_t35_", elements).size();
    EXPECT_EQ(all_bytes, captions.size()) << "the bytes are told too";
    EXPECT_EQ(elements.back().path, "sei_rbsp.rbsp_trailing_bits.rbsp_alignment_zero_bit");
}

TEST(RegisteredTrace, EachMessageOfAUnitIsReadAtItsOwnPlace)
{
    const std::vector<kept_element> known =
        below(atsc + "user_data_type_code", elements_of(unit_of({captions, captions})));
    ASSERT_EQ(known.size(), 2U);
    EXPECT_EQ(known[0].bit, 80U);
    EXPECT_EQ(known[1].bit, 80U + 8 * (captions.size() + 2));
}

TEST(RegisteredTrace, AMessageAfterAnotherTakesNothingFromIt)
{
    const std::vector<kept_element> known =
        below(payload + "registered_user_data", elements_of(unit_of({captions, {0xB5, 0x00}, {0xB5}, {}})));
    EXPECT_EQ(known.size(), 14U) << "those of the first";
}

TEST(RegisteredTrace, APayloadThatIsCutIsToldAsFarAsItGoes)
{
    const bytes cut(captions.begin(), captions.begin() + 9);
    const std::vector<kept_element> elements = elements_of(unit_of({cut, captions}));
    EXPECT_EQ(below(atsc, elements).size(), 5U + 12U);
    EXPECT_EQ(below(atsc + "cc_data.em_data", elements).size(), 1U);
}

TEST(RegisteredTrace, OfAnotherCountryNothingIsKnown)
{
    for (const unsigned char country : bytes{0x26, 0xFF}) {
        bytes foreign = captions;
        foreign[0] = country;
        const std::vector<kept_element> elements = elements_of(unit_of({foreign}));
        EXPECT_EQ(below(payload, elements).size(), captions.size());
        EXPECT_TRUE(below(payload + "registered_user_data", elements).empty());
    }
}

/// Where annotated_trace has the elements of a name in a file whose unit lies at 1000.
std::vector<std::uint64_t> places_of(const std::string& element, const bytes& unescaped)
{
    const bytes unit = escaped_bytes(unescaped);
    support::annotated_notes notes;
    orv_h264::annotated_trace trace_of_unit(notes, true);
    trace_of_unit.begin({unit.data(), unit.size(), 1000, 0});
    registered_trace source(trace_of_unit);
    nal_unit held;
    outcome result;
    trace(held, unescaped.data(), unescaped.size(), {}, result, source);
    std::vector<std::uint64_t> places;
    for (const auto& [name, byte] : notes.places)
        if (name == element)
            places.push_back(byte);
    return places;
}

TEST(RegisteredTrace, PlacesCountTheEmulationPreventionBytesBeforeThem)
{
    // 06, 04 07 B5 00 00 03 00 01 00 00, 04 0E B5 00 31 ...
    const bytes unit = unit_of({of_zeros, captions});
    EXPECT_EQ(places_of("itu_t_t35_country_code", unit), (std::vector<std::uint64_t>{1003, 1013}));
    EXPECT_EQ(places_of("user_identifier", unit), (std::vector<std::uint64_t>{1016}));
}

TEST(RegisteredTrace, PlacesGoOnBehindAnEscapeInsideThePayloadAndInTheNextMessage)
{
    bytes escaped = captions;
    escaped[13] = 0x01; // 00 00 03 01
    const bytes unit = unit_of({escaped, captions});
    EXPECT_EQ(places_of("cc_data_2", unit), (std::vector<std::uint64_t>{1015, 1032}));
    EXPECT_EQ(places_of("marker_bits", unit), (std::vector<std::uint64_t>{1013, 1017, 1030, 1033}));
    EXPECT_EQ(places_of("itu_t_t35_country_code", unit), (std::vector<std::uint64_t>{1003, 1020}));
    EXPECT_EQ(places_of("rbsp_stop_one_bit", unit), (std::vector<std::uint64_t>{1034}));
}

TEST(PlaceFinder, GoesBackToTheMarkAndOnFromThere)
{
    const bytes unit = {6, 0x41, 0, 0, 3, 1, 0x41, 0, 0, 3, 0, 0x41};
    place_finder place_of;
    place_of.begin({unit.data(), unit.size(), 50, 0});
    EXPECT_EQ(place_of(0), 50U);
    EXPECT_EQ(place_of(33), 55U);
    place_of.mark();
    EXPECT_EQ(place_of(71), 60U);
    EXPECT_EQ(place_of(32), 55U);
    EXPECT_EQ(place_of(40), 56U);
    EXPECT_EQ(place_of(72), 61U);
    EXPECT_EQ(place_of(32), 55U) << "as often as one likes";
    place_of.begin({unit.data(), unit.size(), 0, 0});
    EXPECT_EQ(place_of(32), 5U);
}

} // namespace
