// The store of parameter sets: what is kept, what replaces what, and the order in which it is handed out.
#include "support/guarded_buffer.h"
#include "support/sets_of_stream.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace orv_utils_v4::h264;
using support::bytes;
using support::copies_of;
using support::pps_bytes;
using support::pps_with_lists;
using support::sps_bytes;
using support::sps_extension_bytes;
using support::sps_with_chroma;
using support::subset_sps_bytes;
using support::unit_list;
using how = set_arrival;

/// A store that reads from memory which ends with the unit.
class ParameterSetStore : public testing::Test {
protected:
    set_arrival push(const bytes& unit)
    {
        const support::guarded_buffer in(unit);
        return store.push(unit_view{in.begin(), in.size()});
    }
    void push(const unit_list& units)
    {
        for (const bytes& unit : units)
            push(unit);
    }
    unit_list all() const { return copies_of(store.all()); }

    parameter_set_store store;
};

TEST_F(ParameterSetStore, UnitsOfOtherKindsAreNoSets)
{
    for (unsigned char type = 0; type < 32; ++type) {
        const bool kept = type == 7 || type == 8 || type == 13 || type == 15;
        EXPECT_EQ(push({type, 0x80}), kept ? how::damaged : how::no_set) << int{type};
    }
    EXPECT_EQ(push(bytes()), how::no_set);
    EXPECT_EQ(push({0, 0, 0}), how::no_set);
    EXPECT_TRUE(all().empty());
    EXPECT_EQ(store.changes(), 0U);
}

TEST_F(ParameterSetStore, TellsWhatIsNewAndWhatWasThere)
{
    EXPECT_EQ(push(sps_bytes()), how::added);
    EXPECT_EQ(push(pps_bytes()), how::added);
    EXPECT_EQ(store.changes(), 2U);
    EXPECT_EQ(push(sps_bytes()), how::same);
    EXPECT_EQ(store.changes(), 2U);
    EXPECT_EQ(push(sps_bytes(sps_data(0, 7))), how::changed);
    EXPECT_EQ(store.changes(), 3U);
    EXPECT_EQ(all(), (unit_list{sps_bytes(sps_data(0, 7)), pps_bytes()}));
}

TEST_F(ParameterSetStore, SetsAreHandedOutByKindAndId)
{
    push({pps_bytes(255, 31), pps_bytes(3, 1), subset_sps_bytes(31), sps_bytes(sps_data(31)), sps_bytes(sps_data(1)),
          sps_extension_bytes(1), subset_sps_bytes(0), pps_bytes(0, 31), sps_bytes()});
    EXPECT_EQ(all(), (unit_list{sps_bytes(), sps_bytes(sps_data(1)), sps_extension_bytes(1), sps_bytes(sps_data(31)),
                                subset_sps_bytes(0), subset_sps_bytes(31), pps_bytes(0, 31), pps_bytes(3, 1),
                                pps_bytes(255, 31)}));
    EXPECT_EQ(copies_of(store.of_sps(31)),
              (unit_list{sps_bytes(sps_data(31)), subset_sps_bytes(31), pps_bytes(0, 31), pps_bytes(255, 31)}));
    EXPECT_EQ(copies_of(store.of_sps(1)), (unit_list{sps_bytes(sps_data(1)), sps_extension_bytes(1), pps_bytes(3, 1)}));
    EXPECT_TRUE(store.of_sps(2).empty());
    EXPECT_TRUE(store.of_sps(1000).empty());
}

TEST_F(ParameterSetStore, EveryIdHasItsPlace)
{
    for (std::uint32_t id = 0; id < 32; ++id)
        push({sps_bytes(sps_data(id)), sps_extension_bytes(id), subset_sps_bytes(id)});
    for (std::uint32_t id = 0; id < 256; ++id)
        EXPECT_EQ(push(pps_bytes(id, id % 32)), how::added);
    EXPECT_EQ(store.all().size(), parameter_set_list::capacity());
    EXPECT_EQ(store.of_sps(7).size(), 3U + 8U);
}

TEST_F(ParameterSetStore, AnIdAboveTheStandardsIsRefused)
{
    EXPECT_EQ(push(sps_bytes(sps_data(32))), how::damaged);
    EXPECT_EQ(push(subset_sps_bytes(32)), how::damaged);
    EXPECT_EQ(push(sps_extension_bytes(32)), how::damaged);
    EXPECT_EQ(push(pps_bytes(256, 0)), how::damaged);
    EXPECT_EQ(push(pps_bytes(0, 32)), how::damaged);
    EXPECT_TRUE(all().empty());
}

TEST_F(ParameterSetStore, ACutSetDoesNotReplaceASoundOne)
{
    const unit_list sets = {sps_bytes(timed_sps_data(0, 24)), sps_extension_bytes(), subset_sps_bytes(), pps_bytes()};
    push(sets);
    for (const bytes& set : sets) {
        for (std::size_t size = 1; size < set.size(); ++size) {
            const bytes cut(set.begin(), set.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_EQ(push(cut), how::damaged) << int{set[0]} << " " << size;
        }
    }
    EXPECT_EQ(all(), sets);
    EXPECT_EQ(store.changes(), 4U);
}

TEST_F(ParameterSetStore, TheForbiddenBitIsDamage)
{
    bytes set = sps_bytes();
    set[0] |= 0x80;
    EXPECT_EQ(push(set), how::damaged);
}

// Whatever a flipped bit makes of a set: what is kept can be read.
TEST_F(ParameterSetStore, WhatIsKeptCanBeRead)
{
    for (const bytes& set : {sps_bytes(timed_sps_data(0, 24)), sps_with_chroma(3), subset_sps_bytes(), pps_bytes()}) {
        for (std::size_t bit = 8; bit < 8 * set.size(); ++bit) {
            bytes flipped = set;
            flipped[bit / 8] = static_cast<unsigned char>(flipped[bit / 8] ^ 1U << bit % 8);
            push(flipped);
        }
    }
    EXPECT_GT(store.changes(), 50U);
    for (const unit_view& set : store.all()) {
        bytes clean(set.size);
        clean.resize(unescape(set.bytes, set.size, clean.data(), clean.size()));
        nal_unit unit;
        outcome result;
        read(unit, clean.data(), clean.size(), {}, result);
        EXPECT_FALSE(result.failure) << result.failure.element.name();
    }
}

TEST_F(ParameterSetStore, ASetWithoutItsEndIsKeptUntilOneWithAnEndComes)
{
    bytes endless = sps_bytes();
    endless.insert(endless.end(), {0xFF, 0xFF});
    EXPECT_EQ(push(endless), how::added);
    bytes other = sps_bytes(sps_data(0, 9));
    other.insert(other.end(), {0xFF, 0xFF});
    EXPECT_EQ(push(other), how::changed);
    EXPECT_EQ(push(sps_bytes()), how::changed);
    EXPECT_EQ(push(other), how::damaged);
    EXPECT_EQ(all(), unit_list{sps_bytes()});
}

TEST_F(ParameterSetStore, ASetOfTheMostBytesIsKeptAndALongerOneIsNot)
{
    bytes set = sps_bytes();
    set.resize(stream::most_parameter_set_bytes + 1, 0xFF);
    EXPECT_EQ(push(set), how::too_long);
    set.resize(stream::most_parameter_set_bytes);
    EXPECT_EQ(push(set), how::added);
    set.resize(2 * stream::most_parameter_set_bytes, 0); // which are no bytes of the unit
    EXPECT_EQ(push(set), how::same);
}

TEST_F(ParameterSetStore, ZeroBytesAtTheEndAreNotKept)
{
    bytes set = sps_bytes();
    set.resize(set.size() + 3);
    EXPECT_EQ(push(set), how::added);
    EXPECT_EQ(push(sps_bytes()), how::same);
    EXPECT_EQ(all(), unit_list{sps_bytes()});
}

TEST_F(ParameterSetStore, AnSpsThatChangesTakesItsExtensionAway)
{
    push({sps_bytes(), sps_extension_bytes(), sps_extension_bytes(1), sps_bytes()});
    EXPECT_EQ(all(), (unit_list{sps_bytes(), sps_extension_bytes(), sps_extension_bytes(1)}));
    push(sps_bytes(sps_data(0, 9)));
    EXPECT_EQ(all(), (unit_list{sps_bytes(sps_data(0, 9)), sps_extension_bytes(1)}));
}

TEST_F(ParameterSetStore, APpsBeforeItsSpsIsKeptInEitherForm)
{
    for (const std::uint32_t chroma_format_idc : {3U, 1U}) {
        const bytes set = pps_with_lists(chroma_format_idc);
        EXPECT_EQ(push(set), chroma_format_idc == 3 ? how::added : how::changed);
        bytes endless = set;
        endless.insert(endless.end(), {0xFF, 0xFF});
        EXPECT_EQ(push(endless), how::damaged) << "so the end of the one before was found, and this one has none";
    }
}

TEST_F(ParameterSetStore, TakesTheUnitsOfAStream)
{
    const bytes unit = sps_bytes();
    EXPECT_EQ(store.push(unit_place{unit.data(), unit.size(), 4, 0}), how::added);
    EXPECT_EQ(all(), unit_list{unit});
}

TEST_F(ParameterSetStore, APpsIsReadWithItsSps)
{
    push(sps_with_chroma(3));
    EXPECT_EQ(push(pps_with_lists(3)), how::added);
    EXPECT_EQ(push(pps_with_lists(1)), how::damaged);
    push(sps_with_chroma(1));
    EXPECT_EQ(push(pps_with_lists(1)), how::changed);
    EXPECT_EQ(push(pps_with_lists(3)), how::damaged);
}

TEST_F(ParameterSetStore, TheSetsOfARecordAreTakenAndTheLostOnesCounted)
{
    const unit_list sps = {sps_bytes(), sps_bytes(sps_data(32))};
    const unit_list pps = {pps_bytes(), pps_bytes(), {0x68}, {}};
    const bytes extension = sps_extension_bytes();
    AVCDecoderConfigurationRecord record;
    for (const unit_view& view : support::views_of(sps)) {
        record.sequenceParameterSetNALUnit.grow();
        record.sequenceParameterSetNALUnit.back() = view;
    }
    for (const unit_view& view : support::views_of(pps)) {
        record.pictureParameterSetNALUnit.grow();
        record.pictureParameterSetNALUnit.back() = view;
    }
    record.sequenceParameterSetExtNALUnit.grow();
    record.sequenceParameterSetExtNALUnit.back() = {extension.data(), extension.size()};
    EXPECT_EQ(store.push(record), 3U);
    EXPECT_EQ(all(), (unit_list{sps_bytes(), extension, pps_bytes()}));
}

TEST_F(ParameterSetStore, AnyBytesMayBePushed)
{
    std::mt19937 random(352);
    constexpr unsigned char types[] = {7, 8, 13, 15, 0x67, 0x68};
    std::size_t kept = 0;
    for (int round = 0; round < 3000; ++round) {
        bytes unit(1 + random() % 40);
        for (unsigned char& byte : unit)
            byte = static_cast<unsigned char>(random());
        unit[0] = types[random() % std::size(types)];
        kept += push(unit) == how::added ? 1 : 0;
    }
    EXPECT_GT(kept, 100U);
}

} // namespace
