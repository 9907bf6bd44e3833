// User data registered by T.35: samples spelled by hand, cut and damaged, made up and read back; and the names.
#include "support/generator.h"
#include "support/traced_elements.h"

#include "texts/registered_user_data.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

using namespace orv_utils_v4::h264;

namespace {

using bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t usa = 0xB5;

const bytes captions = {0x00, 0x31, 'G',  'A',  '9',  '4',  0x03, 0xC3, 0xFF, 0xFC,
                        0x94, 0x2C, 0xF9, 0x80, 0x81, 0xFF, 0x42, 0x21, 0xFF};
const bytes letterbox = {0x00, 0x31, 'G', 'A', '9', '4', 0x06, 0xCF, 0xC0, 0x8A, 0xC3, 0xAF};
const bytes pillarbox = {0x00, 0x31, 'G', 'A', '9', '4', 0x06, 0x3F, 0xC0, 0xF0, 0xFF, 0xFF};
const bytes format = {0x00, 0x31, 'D', 'T', 'G', '1', 0x41, 0xFA};

user_data_registered_itu_t_t35 payload_of(const bytes& behind_country, std::uint8_t country = usa)
{
    user_data_registered_itu_t_t35 payload;
    payload.itu_t_t35_country_code = country;
    payload.itu_t_t35_payload_byte = behind_country;
    payload.itu_t_t35_payload_byte.shrink_to_fit(); // so that a sanitizer sees a read past them
    return payload;
}

struct told_user_data {
    registered_user_data read;
    outcome result;
    std::vector<kept_element> elements;
};

/// Read silently, too, which has to give the same.
told_user_data told_of(const user_data_registered_itu_t_t35& payload)
{
    told_user_data all;
    traced_elements listener;
    trace_registered_user_data(all.read, payload, all.result, listener);
    all.elements = std::move(listener.elements);

    registered_user_data silent;
    silent.data.emplace<bar_data>().top_bar_flag = true; // nothing of it may stay
    outcome untold;
    read_registered_user_data(silent, payload, untold);
    EXPECT_TRUE(silent == all.read);
    EXPECT_EQ(untold.failure.why, all.result.failure.why);
    EXPECT_EQ(untold.failure.bit, all.result.failure.bit);
    EXPECT_EQ(untold.finding_count, all.result.finding_count);
    EXPECT_EQ(untold.ending, all.result.ending);
    EXPECT_EQ(untold.bits, all.result.bits);
    return all;
}

told_user_data told_of(const bytes& behind_country)
{
    return told_of(payload_of(behind_country));
}

const std::string in_atsc = "registered_user_data.ATSC_user_data.";

TEST(RegisteredUserData, CaptionsAreTold)
{
    const told_user_data told = told_of(captions);
    const std::string cc = in_atsc + "cc_data.";
    const std::vector<kept_element> expected = {
        {"registered_user_data.itu_t_t35_provider_code", 8, 16, 0x31},
        {"registered_user_data.user_identifier", 24, 32, 0x47413934},
        {in_atsc + "user_data_type_code", 56, 8, 3},
        {cc + "process_em_data_flag", 64, 1, 1},
        {cc + "process_cc_data_flag", 65, 1, 1},
        {cc + "additional_data_flag", 66, 1, 0},
        {cc + "cc_count", 67, 5, 3},
        {cc + "em_data", 72, 8, 0xFF},
        {cc + "marker_bits[0]", 80, 5, 0x1F},
        {cc + "cc_valid[0]", 85, 1, 1},
        {cc + "cc_type[0]", 86, 2, 0},
        {cc + "cc_data_1[0]", 88, 8, 0x94},
        {cc + "cc_data_2[0]", 96, 8, 0x2C},
        {cc + "marker_bits[1]", 104, 5, 0x1F},
        {cc + "cc_valid[1]", 109, 1, 0},
        {cc + "cc_type[1]", 110, 2, 1},
        {cc + "cc_data_1[1]", 112, 8, 0x80},
        {cc + "cc_data_2[1]", 120, 8, 0x81},
        {cc + "marker_bits[2]", 128, 5, 0x1F},
        {cc + "cc_valid[2]", 133, 1, 1},
        {cc + "cc_type[2]", 134, 2, 3},
        {cc + "cc_data_1[2]", 136, 8, 0x42},
        {cc + "cc_data_2[2]", 144, 8, 0x21},
        {cc + "marker_bits", 152, 8, 0xFF},
    };
    EXPECT_EQ(told.elements, expected);
    EXPECT_TRUE(told.result.sound());
    EXPECT_EQ(told.result.ending, ending::sound);
    EXPECT_EQ(told.result.bits, 160U);
}

TEST(RegisteredUserData, CaptionsAreKept)
{
    const told_user_data told = told_of(captions);
    EXPECT_EQ(told.read.itu_t_t35_provider_code, registered_user_data::provider_atsc);
    EXPECT_EQ(told.read.user_identifier, registered_user_data::identifier_atsc);
    EXPECT_EQ(told.read.user_data_type_code, 3);
    const auto& cc = std::get<cc_data>(told.read.data);
    EXPECT_TRUE(cc.process_cc_data_flag);
    ASSERT_EQ(cc.cc_constructs.size(), 3U);
    EXPECT_TRUE((cc.cc_constructs[0] == cc_construct{true, 0, 0x94, 0x2C}));
    EXPECT_TRUE((cc.cc_constructs[1] == cc_construct{false, 1, 0x80, 0x81}));
    EXPECT_TRUE((cc.cc_constructs[2] == cc_construct{true, 3, 0x42, 0x21}));
}

TEST(RegisteredUserData, BarsAreTold)
{
    const told_user_data wide = told_of(letterbox);
    const std::string bar = in_atsc + "bar_data.";
    const std::vector<kept_element> behind_code = {
        {bar + "top_bar_flag", 64, 1, 1},
        {bar + "bottom_bar_flag", 65, 1, 1},
        {bar + "left_bar_flag", 66, 1, 0},
        {bar + "right_bar_flag", 67, 1, 0},
        {bar + "reserved", 68, 4, 0xF},
        {bar + "marker_bits", 72, 2, 3},
        {bar + "line_number_end_of_top_bar", 74, 14, 138},
        {bar + "marker_bits", 88, 2, 3},
        {bar + "line_number_start_of_bottom_bar", 90, 14, 943},
    };
    EXPECT_EQ(std::vector(wide.elements.begin() + 3, wide.elements.end()), behind_code);
    EXPECT_EQ(wide.result.ending, ending::sound);

    const auto narrow = std::get<bar_data>(told_of(pillarbox).read.data);
    EXPECT_TRUE(narrow.left_bar_flag && narrow.right_bar_flag);
    EXPECT_FALSE(narrow.top_bar_flag || narrow.bottom_bar_flag);
    EXPECT_EQ(narrow.line_number_end_of_top_bar, 0);
    EXPECT_EQ(narrow.pixel_number_end_of_left_bar, 240);
    EXPECT_EQ(narrow.pixel_number_start_of_right_bar, 0x3FFF);
}

TEST(RegisteredUserData, ActiveFormatIsTold)
{
    const told_user_data told = told_of(format);
    const std::vector<kept_element> expected = {
        {"registered_user_data.itu_t_t35_provider_code", 8, 16, 0x31},
        {"registered_user_data.user_identifier", 24, 32, 0x44544731},
        {"registered_user_data.afd_data.zero", 56, 1, 0},
        {"registered_user_data.afd_data.active_format_flag", 57, 1, 1},
        {"registered_user_data.afd_data.reserved", 58, 6, 1},
        {"registered_user_data.afd_data.reserved", 64, 4, 0xF},
        {"registered_user_data.afd_data.active_format", 68, 4, 10},
    };
    EXPECT_EQ(told.elements, expected);
    EXPECT_EQ(std::get<afd_data>(told.read.data).active_format, 10);

    const told_user_data without = told_of({0x00, 0x31, 'D', 'T', 'G', '1', 0x01});
    EXPECT_TRUE(without.result.sound());
    EXPECT_FALSE(std::get<afd_data>(without.read.data).active_format_flag);
    EXPECT_EQ(without.result.ending, ending::sound);
}

TEST(RegisteredUserData, CutAtEveryByteTellsAPrefixAndTheLoss)
{
    for (const bytes& whole : {captions, letterbox, pillarbox, format}) {
        const told_user_data all = told_of(whole);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const told_user_data cut = told_of({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)});
            ASSERT_EQ(cut.result.failure.why, reason::payload_ends) << size;
            ASSERT_EQ(cut.result.ending, ending::unknown) << size;
            ASSERT_LT(cut.elements.size(), all.elements.size());
            const kept_element& lost = all.elements[cut.elements.size()];
            ASSERT_TRUE(std::equal(cut.elements.begin(), cut.elements.end(), all.elements.begin())) << size;
            ASSERT_EQ(cut.result.failure.bit, lost.bit) << size;
            ASSERT_EQ(cut.result.bits, lost.bit) << size;
            ASSERT_LE(lost.bit, 8 + 8 * size);
            ASSERT_GT(lost.bit + lost.bits, 8 + 8 * size);
        }
    }
}

TEST(RegisteredUserData, ACountThatIsTooLargeEndsAtTheEndOfThePayload)
{
    bytes damaged = captions;
    damaged[7] = 0xC0 | 31;
    const told_user_data told = told_of(damaged);
    EXPECT_EQ(told.result.failure.why, reason::payload_ends);
    EXPECT_STREQ(told.result.failure.element.name(), "cc_data_1"); // marker bits pass for a construct
    EXPECT_EQ(told.result.failure.element.index(0), 3U);
    EXPECT_EQ(std::get<cc_data>(told.read.data).cc_count, 31);
    EXPECT_EQ(std::get<cc_data>(told.read.data).cc_constructs.size(), 4U);
}

TEST(RegisteredUserData, ACountThatIsTooSmallLeavesBytesBehind)
{
    bytes damaged = captions;
    damaged[7] = 0xC2;
    const told_user_data told = told_of(damaged);
    EXPECT_FALSE(told.result.failure);
    EXPECT_EQ(told.result.finding_count, 0U); // FF begins the third construct, and passes for the marker bits
    EXPECT_EQ(told.result.ending, ending::bytes_behind);
    EXPECT_EQ(told.result.bits, 136U);
}

TEST(RegisteredUserData, AllConstructsThatACountCanSayAreRead)
{
    bytes full = {0x00, 0x31, 'G', 'A', '9', '4', 0x03, 0x40 | 31, 0x00};
    for (std::uint8_t i = 0; i < 31; ++i)
        full.insert(full.end(), {0xFE, i, static_cast<std::uint8_t>(200 + i)});
    full.push_back(0xFF);
    const told_user_data told = told_of(full);
    EXPECT_TRUE(told.result.sound());
    const auto& cc = std::get<cc_data>(told.read.data);
    ASSERT_EQ(cc.cc_constructs.size(), cc_data::most_constructs);
    EXPECT_TRUE((cc.cc_constructs[30] == cc_construct{true, 2, 30, 230}));
}

TEST(RegisteredUserData, PatternsThatAreOtherwiseAreFindings)
{
    bytes damaged = captions;
    damaged[9] = 0x04; // marker_bits[0]
    damaged[18] = 0x7F;
    const told_user_data told = told_of(damaged);
    EXPECT_FALSE(told.result.failure);
    ASSERT_EQ(told.result.finding_count, 2U);
    EXPECT_EQ(told.result.findings[0].bit, 80U);
    EXPECT_EQ(told.result.findings[0].value, 0);
    EXPECT_EQ(told.result.findings[1].bit, 152U);
    EXPECT_EQ(told.result.findings[1].lowest, 0xFF);
}

TEST(RegisteredUserData, WhatIsNotKnownIsNoFailure)
{
    const struct {
        std::uint8_t country;
        bytes behind_country;
        std::size_t elements;
        std::uint64_t bits;
    } rows[] = {
        {0xB4, captions, 0, 8},                                                 // another country
        {0xFF, captions, 0, 16},                                                // with an extension byte
        {usa, {0x00, 0x3C, 0x00, 0x01, 0x04}, 1, 24},                           // another provider
        {usa, {0x00, 0x31, 'G', 'A', '9', '5', 0x03, 0xC0, 0xFF, 0xFF}, 2, 56}, // another identifier
        {usa, {0x00, 0x31, 'G', 'A', '9', '4', 0x04, 0xC0, 0xFF, 0xFF}, 3, 64}, // another type
    };
    for (const auto& row : rows) {
        const told_user_data told = told_of(payload_of(row.behind_country, row.country));
        EXPECT_TRUE(told.result.sound());
        EXPECT_EQ(told.result.ending, ending::unknown);
        EXPECT_TRUE(std::holds_alternative<std::monostate>(told.read.data));
        EXPECT_EQ(told.elements.size(), row.elements);
        EXPECT_EQ(told.result.bits, row.bits);
    }
}

TEST(RegisteredUserData, RandomBytesStayInsideThePayload)
{
    std::mt19937 random(35);
    std::size_t whole = 0;
    for (int i = 0; i < 20000 && !HasFailure(); ++i) {
        bytes input(random() % 120);
        for (std::uint8_t& byte : input)
            byte = static_cast<std::uint8_t>(random());
        const bytes& begin = i % 4 == 0 ? captions : i % 4 == 1 ? letterbox : format;
        std::copy_n(begin.begin(), std::min<std::size_t>({input.size(), begin.size(), random() % 10}), input.begin());
        const told_user_data told = told_of(input);
        std::uint64_t bit = 8;
        for (const kept_element& e : told.elements) {
            ASSERT_EQ(e.bit, bit) << e.path;
            bit += e.bits;
        }
        ASSERT_EQ(told.result.bits, bit);
        ASSERT_LE(bit, 8 + 8 * input.size());
        ASSERT_TRUE(!told.result.failure || told.result.failure.bit == bit);
        whole += told.result.ending == ending::unknown ? 0 : 1;
    }
    EXPECT_GT(whole, 1000U);
}

/// What the coder that writes makes of it.
bytes written(const registered_user_data& x, outcome& result)
{
    bytes room(256);
    bit_writer bits(room.data(), room.size());
    writer c(bits, result);
    code(c, x, usa);
    EXPECT_TRUE(bits.fits());
    room.resize(bits.bytes());
    return room;
}

TEST(RegisteredUserData, WhatIsMadeUpAndWrittenIsReadBack)
{
    generator random(135);
    random.force("itu_t_t35_provider_code", registered_user_data::provider_atsc);
    for (int i = 0; i < 600 && !HasFailure(); ++i) {
        random.force("user_identifier",
                     i % 3 == 2 ? registered_user_data::identifier_afd : registered_user_data::identifier_atsc);
        random.force("user_data_type_code", i % 3 == 0 ? 3 : 6);
        registered_user_data made;
        code(random, made, usa);
        ASSERT_EQ(made.data.index(), static_cast<std::size_t>(i % 3 + 1));
        outcome result;
        const told_user_data told = told_of(written(made, result));
        EXPECT_FALSE(result.failure);
        EXPECT_TRUE(told.result.sound());
        EXPECT_EQ(told.result.ending, ending::sound);
        EXPECT_TRUE(told.read == made);
    }
}

TEST(RegisteredUserData, WhatIsReadIsWrittenToTheSameBytes)
{
    for (const bytes& sample : {captions, letterbox, pillarbox, format}) {
        outcome result;
        EXPECT_EQ(written(told_of(sample).read, result), sample);
        EXPECT_FALSE(result.failure);
    }
}

TEST(RegisteredUserData, NamesAreThoseOfCountryAndProvider)
{
    EXPECT_STREQ(country_name(0xB5), "United States");
    EXPECT_STREQ(country_name(0xB4), "United Kingdom");
    EXPECT_STREQ(country_name(0x00), "Japan");
    EXPECT_STREQ(country_name(0xFF), "");
    EXPECT_STREQ(registered_name(payload_of(captions)), "ATSC");
    EXPECT_STREQ(registered_name(payload_of(captions, 0xB4)), "");
    EXPECT_STREQ(registered_name(payload_of({0x00, 0x2F, 0x03})), "DirecTV");
    EXPECT_STREQ(registered_name(payload_of({0x00, 0x3C, 0x00, 0x01, 0x04})), "SMPTE ST 2094-40 (HDR10+)");
    EXPECT_STREQ(registered_name(payload_of({0x00, 0x3C, 0x00, 0x02})), "Samsung");
    EXPECT_STREQ(registered_name(payload_of({0x00, 0x3C, 0x00})), "Samsung");
    EXPECT_STREQ(registered_name(payload_of({0x00})), "");
    EXPECT_STREQ(registered_name(payload_of({})), "");
}

} // namespace
