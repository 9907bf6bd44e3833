// Parameter sets and pictures in a framing: sets before IDR pictures, and samples without theirs.
#include "support/guarded_buffer.h"
#include "support/sets_of_stream.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace {

using namespace orv_utils_v4::h264;
using support::bytes;
using support::guarded_buffer;
using support::pps_bytes;
using support::sps_bytes;
using support::sps_extension_bytes;
using support::subset_sps_bytes;
using support::unit_list;
using support::units_in;
using support::views_of;

const bytes delimiter = {9, 0xF0};
const bytes message = {6, 5, 1, 9, 0x80};

/// first_mb_in_slice 0, slice_type 7, the PPS, and what may follow.
bytes slice(unsigned type = 5, std::uint32_t pps_id = 0)
{
    bytes unit(20);
    bit_writer w(unit.data(), unit.size());
    w.u(8, 0x60 + type);
    if (type == 20)
        w.u(24, 0x400007); // nal_unit_header_mvc_extension()
    w.ue(0);
    w.ue(7);
    w.ue(pps_id);
    w.u(32, 0x5A5A5A5A);
    w.trailing_bits();
    unit.resize(static_cast<std::size_t>(w.bytes()));
    return support::escaped(unit);
}

class SetsInFraming : public testing::Test {
protected:
    void push(const unit_list& units)
    {
        for (const bytes& unit : units)
            store.push(unit_view{unit.data(), unit.size()});
    }
    /// The units of the picture as they are written, which is the same in every framing.
    unit_list picture(const unit_list& units, in_band_sets sets)
    {
        const std::vector<unit_view> views = views_of(units);
        unit_list first;
        for (const framing how :
             {framing::annex_b, framing::length_1, framing::length_2, framing::length_3, framing::length_4}) {
            const framed_size size = store.write_picture(views.data(), views.size(), how, sets, nullptr, 0);
            const guarded_buffer room(size.bytes);
            const framed_size again =
                store.write_picture(views.data(), views.size(), how, sets, room.begin(), room.size());
            EXPECT_EQ(again.why, reason::none);
            EXPECT_EQ(again.bytes, size.bytes);
            EXPECT_TRUE(room.surroundings_untouched());
            const unit_list made = units_in({room.begin(), room.end()}, how);
            if (how == framing::annex_b)
                first = made;
            EXPECT_EQ(made, first);
        }
        return first;
    }
    bool carries(const unit_list& units)
    {
        const std::vector<unit_view> views = views_of(units);
        return carries_its_sets(views.data(), views.size());
    }

    parameter_set_store store;
};

TEST_F(SetsInFraming, SetsStandBehindStartCodesOrLengths)
{
    push({sps_bytes(), pps_bytes(), sps_extension_bytes()});
    support::stream_builder annex_b;
    for (const bytes& unit : {sps_bytes(), sps_extension_bytes(), pps_bytes()})
        annex_b.raw({0, 0, 0, 1}).raw(unit);
    bytes out(annex_b.made().size());
    EXPECT_EQ(write(store.all(), framing::annex_b, out.data(), out.size()).why, reason::none);
    EXPECT_EQ(out, annex_b.made());
    for (unsigned size = 1; size <= 4; ++size) {
        support::stream_builder prefixed;
        for (const bytes& unit : {sps_bytes(), sps_extension_bytes(), pps_bytes()})
            prefixed.prefix(size, static_cast<std::uint32_t>(unit.size())).raw(unit);
        bytes of_size(prefixed.made().size());
        EXPECT_EQ(write(store.all(), static_cast<framing>(size), of_size.data(), of_size.size()).bytes, of_size.size());
        EXPECT_EQ(of_size, prefixed.made());
    }
}

TEST_F(SetsInFraming, NothingIsWrittenOutsideOfAnyRoom)
{
    push({sps_bytes(), pps_bytes()});
    const std::size_t needed = sps_bytes().size() + pps_bytes().size() + 8;
    bytes whole(needed);
    ASSERT_EQ(write(store.all(), framing::length_4, whole.data(), whole.size()).why, reason::none);
    for (std::size_t size = 0; size <= needed + 1; ++size) {
        const guarded_buffer room(size);
        const framed_size result = write(store.all(), framing::length_4, room.begin(), room.size());
        EXPECT_EQ(result.why, size < needed ? reason::no_room : reason::none) << size;
        EXPECT_EQ(result.bytes, needed);
        EXPECT_TRUE(std::equal(room.begin(), room.begin() + std::min(size, needed), whole.begin())) << size;
        EXPECT_TRUE(room.surroundings_untouched());
    }
}

TEST_F(SetsInFraming, AUnitLongerThanItsPrefixTellsIsRefused)
{
    const std::size_t most[] = {0, 255, 65535, 16777215};
    for (unsigned size = 1; size <= 3; ++size) {
        bytes unit(most[size] + 1, 0x55);
        unit[0] = 1;
        const auto how = static_cast<framing>(size);
        unit_view view = {unit.data(), most[size]};
        EXPECT_EQ(store.write_picture(&view, 1, how, in_band_sets::as_found, nullptr, 0).why, reason::no_room);
        view.size = most[size] + 1;
        EXPECT_EQ(store.write_picture(&view, 1, how, in_band_sets::as_found, nullptr, 0).why, reason::too_large);
    }
}

TEST_F(SetsInFraming, APictureCarriesItsSetsWhenThoseOfEachSliceStandBeforeIt)
{
    EXPECT_TRUE(carries({}));
    EXPECT_TRUE(carries({delimiter, message}));
    EXPECT_FALSE(carries({slice()}));
    EXPECT_FALSE(carries({sps_bytes(), slice()}));
    EXPECT_FALSE(carries({pps_bytes(), slice()}));
    EXPECT_TRUE(carries({sps_bytes(), pps_bytes(), slice()}));
    EXPECT_TRUE(carries({pps_bytes(), sps_bytes(), slice(1), slice(5)}));
    EXPECT_FALSE(carries({sps_bytes(), slice(), pps_bytes()}));
    EXPECT_FALSE(carries({sps_bytes(), pps_bytes(0), slice(5, 1)}));
    EXPECT_TRUE(carries({sps_bytes(), pps_bytes(0), pps_bytes(1), slice(), slice(5, 1)}));
    EXPECT_FALSE(carries({sps_bytes(), pps_bytes(0, 1), slice()}));
    EXPECT_TRUE(carries({sps_bytes(sps_data(1)), pps_bytes(255, 1), slice(5, 255)}));
    EXPECT_FALSE(carries({sps_bytes(), pps_bytes(), slice(5, 256)}));
}

TEST_F(SetsInFraming, ASliceOfAnotherViewNeedsTheSubsetSps)
{
    EXPECT_FALSE(carries({sps_bytes(), pps_bytes(), slice(), slice(20)}));
    EXPECT_TRUE(carries({sps_bytes(), subset_sps_bytes(), pps_bytes(), slice(), slice(20)}));
    EXPECT_FALSE(carries({subset_sps_bytes(), pps_bytes(), slice()}));
}

TEST_F(SetsInFraming, SetsComeBeforeAnIdrPictureThatLacksThem)
{
    push({sps_bytes(), pps_bytes()});
    const auto how = in_band_sets::before_idr;
    EXPECT_EQ(picture({slice()}, how), (unit_list{sps_bytes(), pps_bytes(), slice()}));
    EXPECT_EQ(picture({message, slice()}, how), (unit_list{sps_bytes(), pps_bytes(), message, slice()}));
    EXPECT_EQ(picture({message, slice(1)}, how), (unit_list{message, slice(1)}));
    EXPECT_EQ(picture({}, how), unit_list());
    EXPECT_EQ(picture({{}, slice(), {}}, how), (unit_list{sps_bytes(), pps_bytes(), slice()}));
}

TEST_F(SetsInFraming, TheDelimiterStaysInFront)
{
    push({sps_bytes(), pps_bytes()});
    EXPECT_EQ(picture({delimiter, message, slice()}, in_band_sets::before_idr),
              (unit_list{delimiter, sps_bytes(), pps_bytes(), message, slice()}));
}

TEST_F(SetsInFraming, SetsThatStandInThePictureAreNotDoubled)
{
    push({sps_bytes(), pps_bytes(), pps_bytes(1)});
    const unit_list carried = {delimiter, sps_bytes(), pps_bytes(), message, slice()};
    EXPECT_EQ(picture(carried, in_band_sets::before_idr), carried);
    EXPECT_EQ(picture({pps_bytes(), message, slice()}, in_band_sets::before_idr),
              (unit_list{sps_bytes(), pps_bytes(), pps_bytes(1), message, slice()}));
}

TEST_F(SetsInFraming, SetsOfAPictureAreInForceFromItOn)
{
    push({sps_bytes(), pps_bytes()});
    const bytes wider = sps_bytes(sps_data(0, 9));
    EXPECT_EQ(picture({wider, slice(1)}, in_band_sets::as_found), (unit_list{wider, slice(1)}));
    EXPECT_EQ(picture({slice()}, in_band_sets::before_idr), (unit_list{wider, pps_bytes(), slice()}));
    EXPECT_EQ(picture({sps_bytes(), slice()}, in_band_sets::before_idr),
              (unit_list{sps_bytes(), pps_bytes(), slice()}));
}

TEST_F(SetsInFraming, ASetBehindTheSlicesIsOfThePicturesToCome)
{
    push({sps_bytes(), pps_bytes()});
    const bytes wider = sps_bytes(sps_data(0, 9));
    const unit_list units = {slice(), wider};
    const std::vector<unit_view> views = views_of(units);
    bytes out(200);
    out.resize(
        store.write_picture(views.data(), 2, framing::length_2, in_band_sets::before_idr, out.data(), 200).bytes);
    EXPECT_EQ(units_in(out, framing::length_2), (unit_list{sps_bytes(), pps_bytes(), slice(), wider}));
    EXPECT_EQ(support::copies_of(store.all()), (unit_list{wider, pps_bytes()}));
}

TEST_F(SetsInFraming, ADamagedSetGivesWayToTheOneInForce)
{
    push({sps_bytes(), pps_bytes()});
    bytes damaged = sps_bytes();
    damaged.resize(damaged.size() - 3);
    EXPECT_EQ(picture({damaged, slice()}, in_band_sets::before_idr), (unit_list{sps_bytes(), pps_bytes(), slice()}));
}

TEST_F(SetsInFraming, APpsBeforeItsSpsInAPictureGoesWithThat)
{
    push({support::sps_with_chroma(1), pps_bytes(), pps_bytes(1)});
    const unit_list sets = {support::sps_with_chroma(3), support::pps_with_lists(3), pps_bytes(1)};
    EXPECT_EQ(picture({sets[1], sets[0], slice(5, 1)}, in_band_sets::before_idr),
              (unit_list{sets[0], sets[1], sets[2], slice(5, 1)}));
}

TEST_F(SetsInFraming, SetsThatTheRecordHasAreLeftOut)
{
    const unit_list units = {delimiter, sps_bytes(), sps_extension_bytes(), pps_bytes(), message, slice(), pps_bytes()};
    EXPECT_EQ(picture(units, in_band_sets::left_out), (unit_list{delimiter, message, slice()}));
    EXPECT_EQ(support::copies_of(store.all()), (unit_list{sps_bytes(), sps_extension_bytes(), pps_bytes()}));
}

TEST_F(SetsInFraming, SetsThatNoRecordHasStayInSamples)
{
    const bytes damaged = {0x67, 77};
    EXPECT_EQ(picture({damaged, sps_bytes(sps_data(1)), subset_sps_bytes(), pps_bytes(0, 0), pps_bytes(1, 1), slice()},
                      in_band_sets::left_out),
              (unit_list{damaged, subset_sps_bytes(), pps_bytes(0, 0), slice()}));
}

TEST_F(SetsInFraming, AsFoundNothingChanges)
{
    push({sps_bytes(), pps_bytes()});
    for (const unit_list& units : {unit_list{slice()}, unit_list{message, pps_bytes(), slice(), sps_bytes()}})
        EXPECT_EQ(picture(units, in_band_sets::as_found), units);
}

TEST_F(SetsInFraming, AnAccessUnitIsWrittenAsItsUnits)
{
    const unit_list units = {delimiter, message, slice()};
    const unit_list set_units = {sps_bytes(), pps_bytes()};
    push(set_units);
    access_unit picture_of_units;
    for (const bytes& unit : units) {
        picture_of_units.parts.emplace_back();
        picture_of_units.parts.back().place = {unit.data(), unit.size(), 0, 0};
    }
    EXPECT_FALSE(carries_its_sets(picture_of_units));
    bytes out(200);
    const framed_size size =
        store.write_picture(picture_of_units, framing::length_4, in_band_sets::before_idr, out.data(), out.size());
    EXPECT_EQ(size.why, reason::none);
    out.resize(size.bytes);
    EXPECT_EQ(units_in(out, framing::length_4), picture(units, in_band_sets::before_idr));
}

// Units of every kind, whole, cut and made of anything, in any room.
TEST_F(SetsInFraming, AnyUnitsAreWrittenInsideOfAnyRoom)
{
    std::mt19937 random(14);
    const unit_list sound = {delimiter,          sps_bytes(),        pps_bytes(), sps_extension_bytes(),
                             subset_sps_bytes(), pps_bytes(200, 31), slice(),     slice(1),
                             slice(20),          slice(5, 255)};
    std::size_t whole = 0;
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        unit_list units(random() % 6);
        std::size_t bytes_of_units = 0;
        std::vector<std::unique_ptr<guarded_buffer>> memory;
        std::vector<unit_view> views;
        for (bytes& unit : units) {
            unit = sound[random() % sound.size()];
            if (random() % 3 == 0)
                unit.resize(random() % (unit.size() + 1));
            for (unsigned char& byte : unit) {
                if (random() % 40 == 0)
                    byte = static_cast<unsigned char>(random());
            }
            memory.push_back(std::make_unique<guarded_buffer>(unit));
            views.push_back({memory.back()->begin(), memory.back()->size()});
            bytes_of_units += 4 + unit.size();
        }
        const auto how = static_cast<framing>(random() % 5);
        const auto sets = static_cast<in_band_sets>(random() % 3);
        const std::size_t needed = store.write_picture(views.data(), views.size(), how, sets, nullptr, 0).bytes;
        const std::size_t sets_size = write(store.all(), framing::annex_b, nullptr, 0).bytes;
        EXPECT_LE(needed, bytes_of_units + sets_size);
        const guarded_buffer room(random() % (needed + 2));
        const framed_size size = store.write_picture(views.data(), views.size(), how, sets, room.begin(), room.size());
        EXPECT_EQ(size.why, room.size() < needed ? reason::no_room : reason::none);
        EXPECT_EQ(size.bytes, needed);
        EXPECT_TRUE(room.surroundings_untouched());
        whole += size.why == reason::none && needed != 0 ? 1 : 0;
        carries_its_sets(views.data(), views.size());
    }
    EXPECT_GT(whole, 50U);
}

/// Pictures with their parameter sets in a record and not in the samples; then back, out of the record's bytes alone.
void expect_there_and_back(const std::vector<unit_list>& pictures, const std::string& name)
{
    parameter_set_store muxer;
    parameter_set_store demuxer;
    std::uint64_t recorded = 0;
    for (const unit_list& units : pictures) {
        const std::vector<unit_view> views = views_of(units);
        bytes sample(views.size() * 4 + 100000);
        const framed_size in = muxer.write_picture(views.data(), views.size(), framing::length_4,
                                                   in_band_sets::left_out, sample.data(), sample.size());
        ASSERT_EQ(in.why, reason::none) << name;
        sample.resize(in.bytes);
        if (muxer.changes() != recorded) {
            recorded = muxer.changes();
            AVCDecoderConfigurationRecord record;
            ASSERT_TRUE(make_configuration(record, muxer.all(), 4).sound()) << name;
            bytes box(write(record, nullptr, 0).bytes);
            ASSERT_TRUE(write(record, box.data(), box.size()).sound());
            AVCDecoderConfigurationRecord of_file;
            ASSERT_TRUE(read(of_file, box.data(), box.size()).sound());
            ASSERT_EQ(demuxer.push(of_file), 0U);
        }
        const unit_list in_sample = units_in(sample, framing::length_4);
        for (const bytes& unit : in_sample)
            ASSERT_TRUE((unit[0] & 0x1F) != 7 && (unit[0] & 0x1F) != 8) << name;
        const std::vector<unit_view> again = views_of(in_sample);
        bytes out(sample.size() + 1000);
        const framed_size back = demuxer.write_picture(again.data(), again.size(), framing::annex_b,
                                                       in_band_sets::before_idr, out.data(), out.size());
        ASSERT_EQ(back.why, reason::none) << name;
        out.resize(back.bytes);
        ASSERT_EQ(units_in(out), units) << name;
    }
}

// These repeat their parameter sets before each IDR picture.
TEST_F(SetsInFraming, RealStreamsComeBackFromTheirSamplesAsTheyWere)
{
    std::size_t idr_pictures = 0;
    for (const char* const name : {"baseline_slices", "main_bpyramid_weighted", "high_cqm_jvt_crop_sar", "high_cqmfile",
                                   "high10", "high422_10_mbaff_tff", "high444_lossless_odd", "high_monochrome",
                                   "hrd_vbr_aud", "hrd_cbr_filler", "pulldown32", "two_sizes"}) {
        const unit_list units = units_in(support::read_file(std::string(ORV_TEST_STREAMS "/") + name + ".264"));
        const std::vector<unit_list> pictures = support::pictures_of(units);
        for (const unit_list& one : pictures)
            idr_pictures += std::any_of(one.begin(), one.end(), [](const bytes& u) { return (u[0] & 0x1F) == 5; });
        expect_there_and_back(pictures, name);
    }
    EXPECT_GT(idr_pictures, 15U);
}

} // namespace
