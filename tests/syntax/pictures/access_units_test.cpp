// Where access units begin and end: H.264 clauses 7.4.1.2.3 and 7.4.1.2.4.
#include "support/told_access_units.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

using namespace orv_utils_v4::h264;

seq_parameter_set_data sps_with_count_type(std::uint32_t pic_order_cnt_type)
{
    seq_parameter_set_data sps = sps_data();
    sps.pic_order_cnt_type = pic_order_cnt_type;
    sps.frame_mbs_only_flag = false;
    sps.log2_max_pic_order_cnt_lsb_minus4 = 4;
    sps.max_num_ref_frames = 4;
    return sps;
}

/// What is sent of a picture order count is sent whole, and there is a PPS 1 too.
class two_sets : public made_stream {
public:
    explicit two_sets(std::uint32_t pic_order_cnt_type) : made_stream(sps_with_count_type(pic_order_cnt_type))
    {
        pps().bottom_field_pic_order_in_frame_present_flag = true;
        pps().deblocking_filter_control_present_flag = true;
        second = pps();
        second.pic_parameter_set_id = 1;
        sets.sets.pps[1] = &second;
        add_sets().add(unit_of(8, second));
    }

private:
    pic_parameter_set_rbsp second;
};

/// A second slice of the picture that the slice begins.
made_slice next_slice(made_slice slice)
{
    slice.header.first_mb_in_slice = 2;
    return slice;
}

struct difference {
    const char* name;
    std::uint32_t pic_order_cnt_type;
    made_slice (*first)();
    void (*change)(made_slice&);
};

std::ostream& operator<<(std::ostream& out, const difference& d)
{
    return out << d.name;
}

made_slice a_frame()
{
    return reference(1, 4);
}
made_slice a_field()
{
    return top(reference(1, 4));
}
made_slice an_idr()
{
    return idr(3);
}

const difference conditions[] = {
    {"frame_num", 2, a_frame, [](made_slice& s) { s.header.frame_num = 2; }},
    {"pic_parameter_set_id", 2, a_frame, [](made_slice& s) { s.header.pic_parameter_set_id = 1; }},
    {"field_pic_flag", 2, a_frame, [](made_slice& s) { s.header.field_pic_flag = true; }},
    {"bottom_field_flag", 2, a_field, [](made_slice& s) { s.header.bottom_field_flag = true; }},
    {"nal_ref_idc", 2, a_frame, [](made_slice& s) { s.nal_ref_idc = 0; }},
    {"pic_order_cnt_lsb", 0, a_frame, [](made_slice& s) { s.header.pic_order_cnt_lsb = 6; }},
    {"delta_pic_order_cnt_bottom", 0, a_frame, [](made_slice& s) { s.header.delta_pic_order_cnt_bottom = -1; }},
    {"delta_pic_order_cnt_0", 1, a_frame, [](made_slice& s) { s.header.delta_pic_order_cnt[0] = 1; }},
    {"delta_pic_order_cnt_1", 1, a_frame, [](made_slice& s) { s.header.delta_pic_order_cnt[1] = 1; }},
    {"IdrPicFlag", 2,
     [] {
         made_slice s = an_idr();
         s.header.idr_pic_id = 0;
         return s;
     },
     [](made_slice& s) { s.nal_unit_type = 1; }},
    {"idr_pic_id", 2, an_idr, [](made_slice& s) { s.header.idr_pic_id = 4; }},
};

const difference no_conditions[] = {
    {"nothing", 0, a_frame, [](made_slice&) {}},
    {"nal_ref_idc_1_and_2", 0, a_frame, [](made_slice& s) { s.nal_ref_idc = 2; }},
    {"slice_type", 0, a_frame, [](made_slice& s) { s.header.slice_type = 2; }},
    {"first_mb_in_slice", 0, a_frame, [](made_slice& s) { s.header.first_mb_in_slice = 1; }},
    {"slice_qp_delta", 0, a_frame, [](made_slice& s) { s.header.slice_qp_delta = 5; }},
    {"disable_deblocking_filter_idc", 0, a_frame, [](made_slice& s) { s.header.disable_deblocking_filter_idc = 1; }},
    {"slice_alpha_c0_offset_div2", 0, a_frame, [](made_slice& s) { s.header.slice_alpha_c0_offset_div2 = 2; }},
    {"slice_beta_offset_div2", 0, a_frame, [](made_slice& s) { s.header.slice_beta_offset_div2 = -2; }},
    {"dec_ref_pic_marking", 0, a_frame, [](made_slice& s) { s = with(s, {keep_long_below(0)}); }},
    {"long_term_reference_flag", 0, an_idr,
     [](made_slice& s) { s.header.dec_ref_pic_marking.long_term_reference_flag = true; }},
    {"num_ref_idx_active_override", 0, a_frame,
     [](made_slice& s) {
         s.header.slice_type = 0;
         s.header.num_ref_idx_active_override_flag = true;
         s.header.num_ref_idx_l0_active_minus1 = 3;
     }},
    {"direct_spatial_mv_pred_flag", 0, a_frame,
     [](made_slice& s) {
         s.header.slice_type = 1;
         s.header.direct_spatial_mv_pred_flag = true;
     }},
};

std::string types_of_both(const difference& d)
{
    two_sets stream(d.pic_order_cnt_type);
    const made_slice first = d.first();
    made_slice second = next_slice(first);
    d.change(second);
    stream.add(first).add(second);
    return told_access_units(stream).types();
}

class AccessUnitsBeginWhere : public testing::TestWithParam<difference> {};
TEST_P(AccessUnitsBeginWhere, ThisAloneDiffers)
{
    const char* const second = GetParam().first().idr() && GetParam().name != std::string("IdrPicFlag") ? "5" : "1";
    const std::string first = GetParam().first().idr() ? "5" : "1";
    EXPECT_EQ(types_of_both(GetParam()), "7 8 8 " + first + "|" + second);
}

class AccessUnitsGoOnWhere : public testing::TestWithParam<difference> {};
TEST_P(AccessUnitsGoOnWhere, ThisDiffers)
{
    const std::string type = GetParam().first().idr() ? "5" : "1";
    EXPECT_EQ(types_of_both(GetParam()), "7 8 8 " + type + " " + type);
}

const auto name_of = [](const auto& parameter) { return std::string(parameter.param.name); };
INSTANTIATE_TEST_SUITE_P(Elements, AccessUnitsBeginWhere, testing::ValuesIn(conditions), name_of);
INSTANTIATE_TEST_SUITE_P(Elements, AccessUnitsGoOnWhere, testing::ValuesIn(no_conditions), name_of);

/// The payload of a unit that is put between others: sound ones of those types that are read.
const std::vector<unsigned char> payload = {0x80};

/// Types that come between pictures; slices and partitions have tests of their own.
bool goes_between(unsigned type)
{
    return type == 0 || (type >= 6 && type != 19 && type != 20 && type != 21);
}

/// Behind the last slice of a primary coded picture these begin another access unit (7.4.1.2.3).
bool begins_another(unsigned type)
{
    return (type >= 6 && type <= 9) || (type >= 14 && type <= 18);
}

TEST(AccessUnits, UnitsBetweenPicturesGoToTheNextOneOrTheLastOneByTheirType)
{
    for (unsigned type = 0; type < 32; ++type) {
        if (!goes_between(type))
            continue;
        made_stream stream;
        stream.add_sets().add(idr(1)).add_bytes(type, payload).add(idr(2));
        const std::string t = std::to_string(type);
        EXPECT_EQ(told_access_units(stream).types(), begins_another(type) ? "7 8 5|" + t + " 5" : "7 8 5 " + t + "|5");
    }
}

TEST(AccessUnits, UnitsThatFollowAUnitOfTheNextOneGoWithIt)
{
    for (unsigned type = 0; type < 32; ++type) {
        if (!goes_between(type) || type == 9 || type == 10 || type == 11)
            continue;
        made_stream stream;
        stream.add_sets().add(idr(1)).add_bytes(16, payload).add_bytes(type, payload).add(idr(2));
        EXPECT_EQ(told_access_units(stream).types(), "7 8 5|16 " + std::to_string(type) + " 5");
    }
}

// What belongs before the primary coded picture is told; only a delimiter and the ends close the picture for good.
TEST(AccessUnits, UnitsBetweenSlicesOfAPictureStayThereAndAreTold)
{
    for (unsigned type = 0; type < 32; ++type) {
        if (!goes_between(type))
            continue;
        made_stream stream;
        stream.add_sets().add(idr(1)).add_bytes(type, payload).add(next_slice(idr(1)));
        const told_access_units told(stream);
        const std::string t = std::to_string(type);
        const std::string apart = type == 9 ? "7 8 5|9 5" : "7 8 5 " + t + "|5";
        const bool closes = type >= 9 && type <= 11;
        EXPECT_EQ(told.types(), closes ? apart : "7 8 5 " + t + " 5");
        const bool out_of_place = begins_another(type) && type != 9 && type != 14;
        EXPECT_EQ(told.findings().has(picture_finding::unit_out_of_place), out_of_place) << type;
        EXPECT_EQ(told.findings().has(picture_finding::first_slice_missing), closes) << type;
    }
}

TEST(AccessUnits, ADelimiterBehindOtherUnitsIsTold)
{
    made_stream stream;
    stream.add_sets().add_bytes(9, {0xF0}).add(idr());
    const told_access_units told(stream);
    EXPECT_EQ(told.types(), "7 8 9 5");
    EXPECT_TRUE(told.findings().has(picture_finding::unit_out_of_place));
}

/// What is pushed behind a picture, and how many pushes later that is handed on.
TEST(AccessUnits, AreHandedOnAsSoonAsTheyAreComplete)
{
    struct behind {
        const char* what;
        unsigned type;
        std::size_t access_units; ///< that have come behind it
    };
    const behind table[] = {{"a delimiter", 9, 1},
                            {"the end of the stream", 11, 1},
                            {"the end of the sequence, which an end of stream may follow", 10, 0},
                            {"a parameter set", 16, 0},
                            {"filler data", 12, 0}};
    for (const behind& b : table) {
        made_stream stream;
        stream.add_sets().add(idr());
        told_access_units told;
        for (const auto& unit : stream.units)
            told.push(unit);
        EXPECT_TRUE(told.all.empty());
        told.push({static_cast<unsigned char>(b.type), 0x80});
        EXPECT_EQ(told.all.size(), b.access_units) << b.what;
        told.flush();
        EXPECT_EQ(told.all.size(), begins_another(b.type) ? 2U : 1U) << b.what;
    }
}

TEST(AccessUnits, AreHandedOnWithTheFirstSliceOfTheNext)
{
    made_stream stream;
    stream.add_sets().add(idr(1)).add(unit_of(6, sei_rbsp{{message_of(6, recovery_point())}}));
    stream.add(idr(2)).add(idr(3));
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 5|6 5|5");
    EXPECT_EQ(told.all[0].behind, 5U);
    EXPECT_EQ(told.all[1].behind, 6U);
    EXPECT_EQ(told.all[2].behind, 6U); // flush
    EXPECT_EQ(told.all[2].unit.number, 2U);
}

TEST(AccessUnits, EndWithTheEndsOfSequenceAndStream)
{
    made_stream stream;
    stream.add_sets().add(idr(1)).add_bytes(10, {}).add_bytes(11, {}).add(idr(1)).add_bytes(10, {}).add_bytes(12,
                                                                                                              {0x80});
    stream.add(idr(1)).add_bytes(16, payload).add_bytes(10, {});
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8 5 10 11|5 10|12 5|16 10");
    EXPECT_EQ(told.all[0].behind, 5U); // at once
    EXPECT_EQ(told.all[1].behind, 8U); // with whatever follows
    EXPECT_TRUE(told.all[0].unit.ends_sequence());
    EXPECT_TRUE(told.all[1].unit.ends_sequence());
    EXPECT_FALSE(told.all[2].unit.ends_sequence());
}

TEST(AccessUnits, AnEndBehindUnitsOfTheNextOneClosesThat)
{
    for (const unsigned end : {10U, 11U}) {
        made_stream stream;
        stream.add_sets().add(idr(1)).add_bytes(16, payload).add_bytes(end, {}).add(idr(1));
        const std::string e = std::to_string(end);
        EXPECT_EQ(told_access_units(stream).types(), "7 8 5|16 " + e + "|5");
    }
}

TEST(AccessUnits, WithoutSlicesAreHandedOnToo)
{
    made_stream stream;
    stream.add_sets();
    const told_access_units told(stream);
    ASSERT_EQ(told.types(), "7 8");
    EXPECT_FALSE(told.all[0].header);
    EXPECT_TRUE(told.findings().empty());
    EXPECT_EQ(told_access_units(made_stream()).types(), "");
}

} // namespace
