#include "annotated_trace.h"

#include "support/annotated_notes.h"
#include "support/told_elements.h"

#include <orv-utils-v4/h264_syntax.h>

#include <gtest/gtest.h>

#include <new>
#include <string>

namespace {

using support::annotated_notes;
using support::lines;
using support::noted_trace;

TEST(AnnotatedTrace, BytesOfOneNameAreARunAtThePlaceOfTheFirst)
{
    noted_trace t;
    t.trace.open("x");
    t.trace.element(told::b({"payload_byte", 0}, 1, 16));
    t.trace.element(told::b({"payload_byte", 1}, 2, 24));
    t.trace.element(told::b({"payload_byte", 2}, 3, 32));
    t.trace.element(told::u(8, "tail", 4, 40));
    t.trace.close();
    EXPECT_EQ(t.notes.lines, (lines{"x {", "payload_byte[0]: 3 bytes", "tail 4", "}"}));
    EXPECT_EQ(t.notes.places, (std::vector<annotated_notes::place>{{"payload_byte", 102}, {"tail", 105}}));
}

TEST(AnnotatedTrace, ARunEndsAtAnotherNameAndWhereAStructureBeginsOrEnds)
{
    noted_trace t;
    t.trace.open("x");
    t.trace.element(told::b("first", 1));
    t.trace.element(told::b("second", 2));
    t.trace.open("y");
    t.trace.element(told::b("second", 3));
    t.trace.close();
    t.trace.element(told::b("second", 4));
    t.trace.close();
    EXPECT_EQ(t.notes.lines, (lines{"x {", "first: 1 bytes", "second: 1 bytes", "y {", "second: 1 bytes", "}",
                                    "second: 1 bytes", "}"}));
}

TEST(AnnotatedTrace, OnlyARunOfOneByteHasWords)
{
    for (const bool two : {false, true}) {
        noted_trace t;
        t.trace.open("x");
        t.trace.element(told::b("itu_t_t35_country_code", 0xB5));
        if (two)
            t.trace.element(told::b("itu_t_t35_country_code", 0xB5));
        t.trace.close();
        EXPECT_EQ(t.notes.lines[1],
                  two ? "itu_t_t35_country_code: 2 bytes" : "itu_t_t35_country_code: 1 bytes (United States)");
    }
}

TEST(AnnotatedTrace, AFixedPatternIsToldWhereItIsWrongOrAskedFor)
{
    for (const bool all : {false, true}) {
        noted_trace t(all);
        t.trace.open("x");
        t.trace.element(told::f("marker_bits", 1, 1));
        t.trace.element(told::f("marker_bits", 0, 1));
        t.trace.close();
        EXPECT_EQ(t.notes.lines,
                  all ? (lines{"x {", "marker_bits 1", "marker_bits 0", "}"}) : (lines{"x {", "marker_bits 0", "}"}));
    }
}

TEST(AnnotatedTrace, StructuresOfFixedPatternsAloneAreHiddenUnlessOneIsWrongOrAskedFor)
{
    for (const std::string name :
         {"rbsp_trailing_bits", "slice_data", "slice_data_in_scalable_extension", "slice_data_in_3davc_extension"}) {
        for (const int last_bit : {0, 1}) {
            noted_trace t;
            t.trace.open("x");
            t.trace.open(name.c_str());
            t.trace.element(told::f("bit", 1, 1));
            t.trace.element(told::f("bit", last_bit, 0));
            t.trace.close();
            t.trace.element(told::u(1, "behind", 1));
            t.trace.close();
            EXPECT_EQ(t.notes.lines, last_bit == 0 ? (lines{"x {", "behind 1", "}"})
                                                   : (lines{"x {", name + " {", "bit 1", "}", "behind 1", "}"}));
        }
    }
    noted_trace all(true);
    all.trace.open("rbsp_trailing_bits");
    all.trace.close();
    EXPECT_EQ(all.notes.lines, (lines{"rbsp_trailing_bits {", "}"}));
}

TEST(AnnotatedTrace, APartitionIsNoStructureOfFixedPatterns)
{
    noted_trace t;
    t.trace.open("slice_data_partition_a_layer_rbsp");
    t.trace.element(told::u(3, "slice_id", 0));
    t.trace.close();
    EXPECT_EQ(t.notes.lines, (lines{"slice_data_partition_a_layer_rbsp {", "slice_id 0", "}"}));
}

TEST(AnnotatedTrace, WhatTheLineOfTheUnitTellsIsHiddenUnlessAskedFor)
{
    for (const bool all : {false, true}) {
        noted_trace t(all);
        t.trace.open("nal_unit");
        t.trace.element(told::u(2, "nal_ref_idc", 3));
        t.trace.element(told::u(5, "nal_unit_type", 20));
        t.trace.element(told::u(1, "svc_extension_flag", 1));
        t.trace.close();
        EXPECT_EQ(t.notes.lines.size(), all ? 5U : 3U);
        EXPECT_EQ(t.notes.lines[t.notes.lines.size() - 2], "svc_extension_flag 1");
    }
}

/// A message up to its payload, with so many bytes FF before the last of its type and its size.
void tell_message(orv_h264::annotated_trace& trace, unsigned type_ff, std::int64_t type, unsigned size_ff,
                  std::int64_t size)
{
    trace.open("sei_message");
    for (unsigned i = 0; i < type_ff; ++i)
        trace.element(told::f("ff_byte", 0xFF, 0xFF));
    trace.element(told::u(8, "last_payload_type_byte", type));
    for (unsigned i = 0; i < size_ff; ++i)
        trace.element(told::f("ff_byte", 0xFF, 0xFF));
    trace.element(told::u(8, "last_payload_size_byte", size));
    trace.open("sei_payload");
}

TEST(AnnotatedTrace, AMessageIsHeadedByItsTypeAndSizeInPlaceOfTheirBytes)
{
    noted_trace t;
    tell_message(t.trace, 0, 1, 0, 7);
    EXPECT_EQ(t.notes.lines, (lines{"sei_message {", "= payloadType 1", "= payloadSize 7", "= payload \"pic_timing\"",
                                    "sei_message payloadType 1 (pic_timing), payloadSize 7 {"}));
    EXPECT_EQ(t.notes.texts, (lines{"", "", ""})) << "the heading says it";
}

TEST(AnnotatedTrace, TypesAndSizesAbove255AreSums)
{
    noted_trace t;
    tell_message(t.trace, 2, 10, 1, 0);
    EXPECT_EQ(t.notes.lines, (lines{"sei_message {", "= payloadType 520", "= payloadSize 255", "= payload null",
                                    "sei_message payloadType 520, payloadSize 255 {"}));
}

TEST(AnnotatedTrace, AllElementsOfAMessageAreToldWhereTheyAreAskedFor)
{
    noted_trace t(true);
    tell_message(t.trace, 1, 3, 0, 0);
    EXPECT_EQ(t.notes.lines[1], "ff_byte 255");
    EXPECT_EQ(t.notes.lines[2], "last_payload_type_byte 3");
    EXPECT_EQ(t.notes.lines[3], "last_payload_size_byte 0");
}

TEST(AnnotatedTrace, ANestedMessageHasAHeadingOfItsOwn)
{
    // all layer representations, and a full_frame_freeze() with a period of 0 in it
    const unsigned char unit[] = {6, 30, 4, 0x80, 13, 1, 0xC0, 0x80};
    annotated_notes notes;
    orv_h264::annotated_trace trace(notes, false);
    trace.begin({unit, sizeof unit, 0, 0});
    orv_h264::h264::nal_unit held;
    orv_h264::h264::outcome result;
    orv_h264::h264::trace(held, unit, sizeof unit, {}, result, trace);
    EXPECT_TRUE(result.sound());
    EXPECT_EQ(notes.lines, (lines{"nal_unit {",
                                  "}",
                                  "sei_rbsp {",
                                  "sei_message {",
                                  "= payloadType 30",
                                  "= payloadSize 4",
                                  "= payload \"scalable_nesting\"",
                                  "sei_message payloadType 30 (scalable_nesting), payloadSize 4 {",
                                  "scalable_nesting {",
                                  "all_layer_representations_in_au_flag 1",
                                  "sei_message {",
                                  "= payloadType 13",
                                  "= payloadSize 1",
                                  "= payload \"full_frame_freeze\"",
                                  "sei_message payloadType 13 (full_frame_freeze), payloadSize 1 {",
                                  "full_frame_freeze {",
                                  "full_frame_freeze_repetition_period 0",
                                  "}",
                                  "}",
                                  "}",
                                  "}",
                                  "}",
                                  "}",
                                  "}"}));
}

TEST(AnnotatedTrace, AnElementWithoutAnIndexOfItsOwnIsRepeated)
{
    noted_trace t;
    t.trace.open("dec_ref_pic_marking");
    t.trace.element(told::u(1, "adaptive_ref_pic_marking_mode_flag", 1));
    t.trace.element(told::u(3, "memory_management_control_operation", 0));
    EXPECT_EQ(t.notes.lines[1], "adaptive_ref_pic_marking_mode_flag 1");
    EXPECT_EQ(t.notes.lines[2], "memory_management_control_operation 0 (end of the operations) repeated");
}

/// Has no memory for its second element.
class forgetful final : public annotated_notes {
    void put(const std::string& line) override
    {
        if (lines.size() == 2)
            throw std::bad_alloc();
        lines.push_back(line);
    }
};

TEST(AnnotatedTrace, AFailedAllocationEndsTheTellingAndIsThrownBehindTheUnit)
{
    forgetful sink;
    orv_h264::annotated_trace trace(sink, false);
    const unsigned char unit[] = {6, 0x41};
    trace.begin({unit, sizeof unit, 0, 0});
    trace.open("x");
    for (int i = 0; i < 3; ++i)
        trace.element(told::u(1, "flag", i));
    trace.close();
    EXPECT_EQ(sink.lines, (lines{"x {", "flag 0"}));
    EXPECT_THROW(trace.end(), std::bad_alloc);
    trace.begin({unit, sizeof unit, 0, 0});
    EXPECT_NO_THROW(trace.end()) << "the next unit begins anew";
}

TEST(AnnotatedTrace, ARunOfAUnitThatFoundNoMemoryIsNotToldInTheNext)
{
    forgetful sink;
    orv_h264::annotated_trace trace(sink, false);
    const unsigned char unit[] = {6, 0x41};
    trace.begin({unit, sizeof unit, 0, 0});
    trace.open("x");
    trace.open("y");
    trace.element(told::b("payload_byte", 1));
    trace.element(told::u(1, "flag", 0));
    trace.begin({unit, sizeof unit, 0, 0});
    sink.lines.clear();
    trace.open("x");
    trace.element(told::b("payload_byte", 2));
    trace.close();
    EXPECT_EQ(sink.lines, (lines{"x {", "payload_byte: 1 bytes"}));
}

} // namespace
