// orv-h264 edit as a user runs it: the bytes, the messages, the exit status, and what lies in the folder afterwards.
#include "support/run_tool.h"
#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace {

namespace h264 = orv_utils_v4::h264;
using support::bytes;
using support::read_file;
using support::run_tool;
using support::stream_builder;
using support::tool_result;

const std::string streams = ORV_TEST_STREAMS "/";

struct unit_list final : h264::split_sink {
    void unit(const h264::split_unit& u) override
    {
        units.emplace_back(u.bytes, u.bytes + u.size);
        framing.push_back(u.framing_size);
    }
    void gap(const h264::split_gap&) override { ++gaps; }

    std::vector<bytes> units;
    std::vector<unsigned> framing;
    int gaps = 0;
};

unit_list split(const bytes& stream, h264::framing framing = h264::framing::annex_b)
{
    unit_list list;
    h264::unit_splitter splitter(framing);
    splitter.push(stream.data(), stream.size(), list);
    splitter.flush(list);
    return list;
}

unsigned type_of(const bytes& unit)
{
    return unit[0] & 0x1FU;
}

class Edit : public testing::Test {
protected:
    tool_result edit(const std::string& in, const std::vector<std::string>& options)
    {
        std::vector<std::string> arguments = {"edit", in, out};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return run_tool(arguments);
    }

    /// It has to be fine.
    bytes edited(const std::string& in, const std::vector<std::string>& options)
    {
        const tool_result result = edit(in, options);
        EXPECT_EQ("", result.err);
        EXPECT_EQ(0, result.status);
        report = result.out;
        return read_file(out);
    }

    /// All values of elements with this name in the output, in order.
    std::vector<std::string> values(const std::string& name)
    {
        std::istringstream lines(run_tool({"inspect", "--tsv", out}).out);
        std::vector<std::string> found;
        for (std::string line; std::getline(lines, line);) {
            std::vector<std::string> columns;
            std::istringstream row(line);
            for (std::string column; std::getline(row, column, '\t');)
                columns.push_back(column);
            if (columns.size() == 11 && columns[8] == name)
                found.push_back(columns[9]);
        }
        return found;
    }

    /// Refused with this in the message, and nothing is left behind.
    void expect_refused(const std::string& in, const std::vector<std::string>& options, const std::string& why)
    {
        const bytes before = {1, 2, 3};
        folder.write("out", before);
        const std::ptrdiff_t files = folder.files();
        const tool_result result = edit(in, options);
        EXPECT_EQ(2, result.status) << result.out;
        EXPECT_NE(std::string::npos, result.err.find(why)) << result.err;
        EXPECT_EQ("", result.out);
        EXPECT_EQ(before, read_file(out));
        EXPECT_EQ(files, folder.files());
        std::filesystem::remove(out);
    }

    /// Parameter sets with NAL and VCL HRD parameters, whose elements have the same paths.
    std::string with_two_hrds()
    {
        const tool_result result = run_tool({"edit", streams + "hrd_vbr_aud.264", folder.path("two"), "--delete", "1-6",
                                             "--set", "vcl_hrd_parameters_present_flag=1"});
        EXPECT_EQ(0, result.status) << result.err;
        return folder.path("two");
    }

    bool reported(const std::string& text) const { return report.find(text) != std::string::npos; }

    support::temporary_folder folder;
    std::string out = folder.path("out");
    std::string report;
};

const std::string hrd = streams + "hrd_vbr_aud.264";
const std::string cavlc = streams + "baseline_slices.264";
const std::string cabac = streams + "main_bpyramid_weighted.264";
const std::string prefixed = streams + "main_bpyramid_weighted.length4";
const std::string uuid = "01234567-89ab-cdef-0123-456789abcdef";

using strings = std::vector<std::string>;

} // namespace

TEST_F(Edit, AnElementGetsItsValueInEveryUnitThatHasIt)
{
    edited(hrd, {"--set", "vui_parameters.max_num_reorder_frames=0"});
    EXPECT_EQ(strings({"0", "0", "0"}), values("max_num_reorder_frames"));
    EXPECT_TRUE(reported("max_num_reorder_frames 2 -> 0, 3 units, the first 1"));
}

TEST_F(Edit, UnitsThatNothingTouchesKeepTheirBytesAndFraming)
{
    const unit_list before = split(read_file(hrd));
    const unit_list after = split(edited(hrd, {"--set", "time_scale=0x3c"}));
    ASSERT_EQ(before.units.size(), after.units.size());
    EXPECT_EQ(before.framing, after.framing);
    for (std::size_t i = 0; i < before.units.size(); ++i)
        EXPECT_EQ(type_of(before.units[i]) != 7, before.units[i] == after.units[i]) << "unit " << i;
    EXPECT_EQ(strings({"60", "60", "60"}), values("time_scale"));
}

TEST_F(Edit, AValueThatIsThereAlreadyChangesNoByte)
{
    EXPECT_TRUE(read_file(hrd) == edited(hrd, {"--set", "time_scale=50"}));
    EXPECT_TRUE(reported("235 units copied byte for byte, 0 rewritten"));
}

TEST_F(Edit, APresenceFlagBringsWhatIsInferred)
{
    edited(hrd, {"--set", "video_signal_type_present_flag=1"});
    EXPECT_EQ(strings({"5", "5", "5"}), values("video_format"));
    EXPECT_TRUE(
        reported("added    seq_parameter_set_rbsp.seq_parameter_set_data.vui_parameters.video_format 5 (implied)"));
}

TEST_F(Edit, LaterSetsSeeWhatEarlierOnesBring)
{
    edited(hrd, {"--set", "overscan_info_present_flag=1", "--set", "overscan_appropriate_flag=1"});
    EXPECT_EQ(strings({"1", "1", "1"}), values("overscan_appropriate_flag"));
    expect_refused(hrd, {"--set", "overscan_appropriate_flag=1"}, "no unit has an element overscan_appropriate_flag");
}

TEST_F(Edit, IndicesTellElementsApart)
{
    edited(hrd, {"--set", "bit_rate_value_minus1[0]=77"});
    EXPECT_EQ(strings({"77", "77", "77"}), values("bit_rate_value_minus1[0]"));
    expect_refused(hrd, {"--set", "bit_rate_value_minus1[1]=77"}, "no unit has an element bit_rate_value_minus1[1]");
}

TEST_F(Edit, ConditionsNameElementsOfTheUnit)
{
    edited(hrd, {"--set", "nal_ref_idc=1 where nal_unit_type=7 and unit=1"});
    EXPECT_EQ("changed  nal_unit.nal_ref_idc 3 -> 1, 1 unit, the first 1", report.substr(0, report.find('\n')));
    edited(hrd, {"--set", "nal_ref_idc=2 where time_scale=50 and level_idc=11"});
    EXPECT_TRUE(reported("nal_ref_idc 3 -> 2, 3 units"));
    expect_refused(hrd, {"--set", "nal_ref_idc=2 where time_scale=51"}, "no unit meets the condition");
}

TEST_F(Edit, AnAmbiguousEndIsRefusedWithItsCandidates)
{
    expect_refused(hrd, {"--set", "nal_unit_type=7"}, "nal_unit_type cannot be set");
    const std::string two = with_two_hrds();
    expect_refused(two, {"--set", "cpb_cnt_minus1=1"}, "cpb_cnt_minus1 names several elements: ");
    expect_refused(two, {"--set", "cpb_cnt_minus1=1"},
                   "seq_parameter_set_rbsp.seq_parameter_set_data.vui_parameters.hrd_parameters.cpb_cnt_minus1 0");
}

TEST_F(Edit, ValuesThatAnElementCannotHoldAreRefusedAndOthersTold)
{
    expect_refused(hrd, {"--set", "video_format=8", "--set", "video_signal_type_present_flag=1"}, "no unit has");
    expect_refused(hrd, {"--set", "video_signal_type_present_flag=1", "--set", "video_format=8"},
                   "video_format cannot be 8: video_format more than 7");
    expect_refused(hrd, {"--set", "max_num_reorder_frames=-1"}, "max_num_reorder_frames less than 0");
    const tool_result result = edit(hrd, {"--set", "max_num_reorder_frames=17"});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("orv-h264: " + hrd + ": offset 6: max_num_reorder_frames 17: outside of 0 to 16\n", result.err);
}

TEST_F(Edit, LongerFrameNumbersAreWrittenIntoSlicesAndBack)
{
    for (const std::string& stream : {cavlc, cabac, prefixed}) {
        edited(stream, {"--set", "time_scale=50"});
        const strings before = values("log2_max_frame_num_minus4");
        edited(stream, {"--set", "log2_max_frame_num_minus4=11"});
        EXPECT_EQ(strings(before.size(), "11"), values("log2_max_frame_num_minus4"));
        EXPECT_FALSE(reported(" 0 rewritten")) << report;
        const std::string wide = folder.path("wide");
        std::filesystem::copy(out, wide, std::filesystem::copy_options::overwrite_existing);
        edited(wide, {"--set", "log2_max_frame_num_minus4=" + before.at(0)});
        EXPECT_TRUE(read_file(stream) == read_file(out)) << stream;
    }
}

TEST_F(Edit, FrameNumbersGoOnWhereTheyWrapped)
{
    edited(cabac, {"--set", "log2_max_frame_num_minus4=0"});
    const strings narrow = values("frame_num");
    std::filesystem::copy(out, folder.path("narrow"));
    edited(folder.path("narrow"), {"--set", "log2_max_frame_num_minus4=4"});
    const strings wide = values("frame_num");
    ASSERT_EQ(narrow.size(), wide.size());
    bool beyond = false;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        EXPECT_EQ(std::stoi(narrow[i]), std::stoi(wide[i]) % 16) << i;
        beyond = beyond || std::stoi(wide[i]) > 15;
    }
    EXPECT_TRUE(beyond);
}

TEST_F(Edit, PictureOrderCountsAreWrittenInAnotherWay)
{
    edited(cavlc, {"--set", "pic_order_cnt_type=0", "--set", "log2_max_pic_order_cnt_lsb_minus4=4"});
    const strings counts = values("pic_order_cnt_lsb");
    ASSERT_FALSE(counts.empty());
    EXPECT_EQ("0", counts[0]);
    EXPECT_EQ("2", counts[4]) << "four slices a picture";
    expect_refused(cabac, {"--set", "pic_order_cnt_type=2"}, "picture order count");
}

TEST_F(Edit, SlicesKeepTheirNumberOfReferences)
{
    edited(cavlc, {"--set", "num_ref_idx_l0_default_active_minus1=9"});
    EXPECT_TRUE(reported("num_ref_idx_active_override_flag"));
    EXPECT_EQ(strings(3, "9"), values("num_ref_idx_l0_default_active_minus1"));
}

TEST_F(Edit, WhatStandsOnAnIdFollowsIt)
{
    edited(hrd, {"--set", "seq_parameter_set_id=9 where nal_unit_type=7"});
    EXPECT_EQ(strings(9, "9"), values("seq_parameter_set_id")) << "of 3 SPSs, 3 PPSs and 3 buffering periods";
    EXPECT_TRUE(reported("pic_parameter_set_rbsp.seq_parameter_set_id several values (renumbered)") ||
                reported("pic_parameter_set_rbsp.seq_parameter_set_id 0 -> 9 (renumbered)"));
}

TEST_F(Edit, SeiMessagesAreWrittenWithTheLengthsOfTheHrd)
{
    const strings before = [&] {
        edited(hrd, {"--set", "time_scale=50"});
        return values("cpb_removal_delay");
    }();
    edited(hrd, {"--set", "cpb_removal_delay_length_minus1=31", "--set", "dpb_output_delay_length_minus1=20"});
    EXPECT_EQ(before, values("cpb_removal_delay"));
    expect_refused(hrd, {"--set", "cpb_removal_delay_length_minus1=1"}, "cpb_removal_delay");
    expect_refused(hrd, {"--set", "pic_struct_present_flag=0"}, "pic_struct 0 would not be sent");
    expect_refused(hrd, {"--set", "cpb_cnt_minus1=1"}, "is needed, and has no value");
}

TEST_F(Edit, WhatSliceDataStandOnIsRefusedUnlessForced)
{
    const std::pair<const char*, const char*> edits[] = {
        {"entropy_coding_mode_flag=0", "slice data would be read otherwise (H.264 7.3.4, 9.3)"},
        {"transform_8x8_mode_flag=0", "slice data would be read otherwise (H.264 7.3.5)"},
        {"pic_width_in_mbs_minus1=9", "slice data would be read otherwise (H.264 6.4, 7.3.4)"},
        {"pic_init_qp_minus26=3", "slice data would be decoded otherwise (H.264 7.4.3, 9.3.1.1)"},
        {"chroma_qp_index_offset=3", "slice data would be decoded otherwise (H.264 8.5.8)"},
        {"max_num_ref_frames=1", "slice data would be decoded otherwise (H.264 8.2.5.3)"},
        {"slice_qp_delta=1", "slice data would be decoded otherwise (H.264 7.4.3, 9.3.1.1)"},
        {"disable_deblocking_filter_idc=1", "slice data would be decoded otherwise (H.264 8.7)"},
        {"frame_num=1", "by frame_num would be frame"},
    };
    for (const auto& [set, why] : edits) {
        expect_refused(hrd, {"--set", set}, why);
        EXPECT_EQ(0, edit(hrd, {"--set", set, "--force"}).status) << set;
    }
}

TEST_F(Edit, ScalingListsThatStayInEffectMayMove)
{
    expect_refused(streams + "high_cqmfile.264", {"--set", "pic_scaling_matrix_present_flag=0"}, "scaling lists");
}

TEST_F(Edit, UnitsAreDeletedByTypeAndCondition)
{
    const std::vector<bytes> before = split(read_file(hrd)).units;
    std::vector<bytes> wanted;
    for (const bytes& unit : before)
        if (type_of(unit) != 9)
            wanted.push_back(unit);
    EXPECT_EQ(wanted, split(edited(hrd, {"--delete", "aud"})).units);
    EXPECT_TRUE(reported("deleted  75 units AUD"));
    EXPECT_EQ(wanted, split(edited(hrd, {"--remove-aud"})).units);
    wanted = before;
    wanted.erase(wanted.begin() + 3);
    EXPECT_EQ(wanted, split(edited(hrd, {"--delete", "sei where unit=3"})).units);
}

TEST_F(Edit, TheFirstUnitOfAPictureHasALongStartCode)
{
    const unit_list after = split(edited(hrd, {"--remove-aud", "--remove-sei", "0,1,5"}));
    ASSERT_EQ(81U, after.units.size());
    for (std::size_t i = 0; i < after.units.size(); ++i)
        EXPECT_EQ(type_of(after.units[i]) == 5 ? 3U : 4U, after.framing[i])
            << "parameter sets stand before IDR pictures, others begin with their slice (B.1.2)";
}

TEST_F(Edit, ParameterSetsMayGo)
{
    const tool_result result = edit(cabac, {"--delete", "sps,pps"});
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_NE(std::string::npos, result.out.find("cannot be read: compared byte by byte alone"));
}

TEST_F(Edit, SeiMessagesGoAndTheirUnitsWithThem)
{
    edited(hrd, {"--remove-sei", "pic_timing,user_data_unregistered"});
    EXPECT_TRUE(reported("deleted  75 messages pic_timing"));
    EXPECT_TRUE(reported("deleted  1 message user_data_unregistered"));
    EXPECT_EQ(strings(), values("cpb_removal_delay"));
    EXPECT_EQ(3U, values("initial_cpb_removal_delay[0]").size());
    edited(hrd, {"--remove-sei", "0"});
    EXPECT_EQ(75U, values("cpb_removal_delay").size());
    expect_refused(hrd, {"--remove-sei", "pic_time"}, "'pic_time' is no SEI payload type");
}

TEST_F(Edit, OneMessageOfAUnitGoesAndTheOthersStay)
{
    const bytes two = stream_builder().zeros(1).annexb_unit(
        support::sei, support::sei_rbsp({{3, {0xFF, 0xFF}}, {100, {1, 2, 3}}, {3, {0xFF}}}));
    const bytes one = stream_builder().zeros(1).annexb_unit(support::sei, support::sei_rbsp({{100, {1, 2, 3}}}));
    EXPECT_EQ(one, edited(folder.write("in", two), {"--remove-filler"}));
    EXPECT_TRUE(reported("deleted  2 messages filler_payload"));
}

TEST_F(Edit, FillerGoes)
{
    edited(streams + "hrd_cbr_filler.264", {"--remove-filler"});
    EXPECT_TRUE(reported("deleted  71 units filler"));
    EXPECT_EQ(75U, values("primary_pic_type").size());
}

TEST_F(Edit, DelimitersComeWithTheTypesOfTheirSlices)
{
    edited(hrd, {"--remove-aud"});
    std::filesystem::copy(out, folder.path("without"));
    edited(folder.path("without"), {"--add-aud"});
    const strings made = values("primary_pic_type");
    EXPECT_EQ(75U, made.size());
    EXPECT_EQ("0", made[0]) << "I";
    for (const std::string& type : made)
        EXPECT_TRUE(type == "0" || type == "1" || type == "2") << type;
    EXPECT_NE(made.end(), std::find(made.begin(), made.end(), "2")) << "B";
    EXPECT_TRUE(read_file(hrd) == edited(hrd, {"--add-aud"})) << "there is one before each picture";
}

TEST_F(Edit, HeadersAreRepeatedWhereTheyLack)
{
    edited(hrd, {"--delete", "sps where unit=81", "--delete", "7,8"});
    const std::string second = streams + "two_sizes.264";
    const bytes stream = read_file(hrd);
    const std::vector<bytes> units = split(stream).units;
    stream_builder lacking; // the sets of the first IDR picture alone
    int sets = 0;
    for (const bytes& unit : units)
        if ((type_of(unit) != 7 && type_of(unit) != 8) || ++sets <= 2)
            lacking.zeros(1).start_code().raw(unit);
    const bytes made = edited(folder.write("lacking", lacking), {"--repeat-headers"});
    EXPECT_EQ(units, split(made).units);
    EXPECT_TRUE(reported("inserted 2 units SPS"));
    EXPECT_TRUE(reported("inserted 2 units PPS"));
}

TEST_F(Edit, ASetOfThePictureItselfIsAmongThoseThatAreRepeated)
{
    const std::vector<bytes> units = split(read_file(streams + "two_sizes.264")).units;
    stream_builder lacking; // the second SPS without its PPS, behind the other one: which sets are lacking it tells
    int pictures = 0;
    for (const bytes& unit : units) {
        pictures += type_of(unit) == 5 ? 1 : 0;
        if (pictures == 0 || type_of(unit) != 8)
            lacking.zeros(1).start_code().raw(unit);
    }
    const tool_result result = edit(folder.write("in", lacking), {"--repeat-headers", "--level", "3", "--force"});
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_EQ(strings({"30", "30"}), values("level_idc"));
}

TEST_F(Edit, RepeatedHeadersAreTheEditedOnes)
{
    const std::vector<bytes> units = split(read_file(hrd)).units;
    stream_builder lacking;
    int sets = 0;
    for (const bytes& unit : units)
        if ((type_of(unit) != 7 && type_of(unit) != 8) || ++sets <= 2)
            lacking.zeros(1).start_code().raw(unit);
    edited(folder.write("lacking", lacking), {"--repeat-headers", "--level", "3"});
    EXPECT_EQ(strings({"30", "30", "30"}), values("level_idc"));
}

TEST_F(Edit, UnitsAreInsertedWhereTheyBelong)
{
    const std::vector<bytes> before = split(read_file(hrd)).units;
    const bytes filler = {0x0C, 0xFF, 0x80};
    const auto types = [&](const std::string& where) {
        std::string list;
        for (const bytes& unit : split(edited(hrd, {"--insert", "hex:0cFF80 " + where})).units)
            list += unit == filler ? "F" : std::to_string(type_of(unit));
        return list.substr(0, 12);
    };
    EXPECT_EQ("F97866659619", types("before unit 0"));
    EXPECT_EQ("9F7866659619", types("after unit 0"));
    EXPECT_EQ("9F7866659619", types("before idr"));
    EXPECT_EQ("9786665F9619", types("after first"));
    EXPECT_EQ("9F7866659F61", types("before picture"));
    EXPECT_TRUE(reported("inserted 75 units filler"));
    folder.write("unit", {0, 0, 0, 1, 0x0C, 0xFF, 0x80});
    edited(hrd, {"--insert", "file:" + folder.path("unit") + " after first"});
    EXPECT_TRUE(reported("inserted 1 unit filler"));
    expect_refused(hrd, {"--insert", "hex:0C80 before unit 4711"}, "the stream has no such place");
    expect_refused(hrd, {"--insert", "hex:0C80 beside unit 1"}, "names no place");
    expect_refused(hrd, {"--insert", "hex:0C8 before unit 1"}, "two digits");
    expect_refused(hrd, {"--insert", "hex:0C000001 before unit 1"}, "emulation-prevention");
}

TEST_F(Edit, UserDataComeBeforeTheSlices)
{
    edited(hrd, {"--insert-sei", uuid + ":a:b"});
    EXPECT_TRUE(reported("inserted 1 unit SEI"));
    EXPECT_EQ(strings({"97", "58", "98"}), [&] {
        strings all = values("user_data_payload_byte[0]");
        strings bytes = {all.back()};
        bytes.push_back(values("user_data_payload_byte[1]").back());
        bytes.push_back(values("user_data_payload_byte[2]").back());
        return bytes;
    }());
    edited(hrd, {"--insert-sei", uuid + ":x", "--sei-at", "idr"});
    EXPECT_TRUE(reported("inserted 3 units SEI"));
    edited(hrd, {"--insert-sei", uuid + ":x", "--sei-at", "picture"});
    EXPECT_TRUE(reported("inserted 75 units SEI"));
    expect_refused(hrd, {"--insert-sei", "0123:x"}, "is no UUID");
}

TEST_F(Edit, ShapesAreThoseOfTheTableOrSent)
{
    edited(hrd, {"--sar", "4:3"});
    EXPECT_EQ(strings(3, "14"), values("aspect_ratio_idc"));
    edited(hrd, {"--sar", "77:78"});
    EXPECT_EQ(strings(3, "255"), values("aspect_ratio_idc"));
    EXPECT_EQ(strings(3, "77"), values("sar_width"));
    EXPECT_EQ(strings(3, "78"), values("sar_height"));
    expect_refused(hrd, {"--sar", "0:1"}, "is no sample aspect ratio");
}

TEST_F(Edit, RatesAreThoseOfFrames)
{
    edited(hrd, {"--rate", "30000/1001"});
    EXPECT_EQ(strings(3, "1001"), values("num_units_in_tick"));
    EXPECT_EQ(strings(3, "60000"), values("time_scale"));
    EXPECT_EQ(strings(3, "1"), values("fixed_frame_rate_flag")) << "as it was";
    edited(hrd, {"--rate", "24"});
    EXPECT_EQ(strings(3, "48"), values("time_scale"));
    expect_refused(hrd, {"--rate", "25/0"}, "is no frame rate");
}

TEST_F(Edit, LevelsAreWrittenAsTheProfileHasThem)
{
    edited(hrd, {"--level", "4.1"});
    EXPECT_EQ(strings(3, "41"), values("level_idc"));
    edited(hrd, {"--level", "2"});
    EXPECT_EQ(strings(3, "20"), values("level_idc"));
    const tool_result high = edit(hrd, {"--level", "1b"});
    EXPECT_EQ(0, high.status);
    EXPECT_NE(std::string::npos, high.err.find("does not allow the pictures")) << "at 25 pictures a second";
    EXPECT_EQ(strings(3, "9"), values("level_idc")) << "High";
    edit(cavlc, {"--level", "1b"});
    EXPECT_EQ(strings(3, "11"), values("level_idc")) << "Baseline";
    EXPECT_EQ(strings(3, "1"), values("constraint_set3_flag"));
    edited(hrd, {"--level", "auto"});
    EXPECT_EQ(strings(3, "11"), values("level_idc")) << "176x144 with 4 references at 25 a second";
    edited(hrd, {"--level", "auto", "--rate", "60"});
    EXPECT_EQ(strings(3, "12"), values("level_idc")) << "5940 macroblocks a second";
    expect_refused(hrd, {"--level", "4.3"}, "is no level");
}

TEST_F(Edit, ColoursHaveNamesAndNumbers)
{
    edited(hrd, {"--colour", "bt2020:pq:9"});
    EXPECT_EQ(strings(3, "9"), values("colour_primaries"));
    EXPECT_EQ(strings(3, "16"), values("transfer_characteristics"));
    EXPECT_EQ(strings(3, "9"), values("matrix_coefficients"));
    edited(hrd, {"--full-range", "on"});
    EXPECT_EQ(strings(3, "1"), values("video_full_range_flag"));
    EXPECT_EQ(strings(3, "0"), values("colour_description_present_flag"));
    expect_refused(hrd, {"--colour", "bt2020:bt709"}, "is no colour");
    expect_refused(hrd, {"--colour", "bt2020:bt709:nonsense"}, "is no name or number of matrix coefficients");
    expect_refused(hrd, {"--full-range", "yes"}, "is no range");
}

TEST_F(Edit, CroppingIsInLumaSamples)
{
    edited(hrd, {"--crop", "2,4,6,8"});
    EXPECT_EQ(strings(3, "1"), values("frame_crop_left_offset"));
    EXPECT_EQ(strings(3, "2"), values("frame_crop_top_offset"));
    EXPECT_EQ(strings(3, "3"), values("frame_crop_right_offset"));
    EXPECT_EQ(strings(3, "4"), values("frame_crop_bottom_offset"));
    edited(streams + "high422_10_mbaff_tff.264", {"--crop", "0,0,0,2"});
    EXPECT_EQ(strings(1, "1"), values("frame_crop_bottom_offset")) << "4:2:2 in fields";
    edited(streams + "high444_lossless_odd.264", {"--crop", "0,0,0,0"});
    EXPECT_EQ(strings(1, "0"), values("frame_cropping_flag"));
    expect_refused(hrd, {"--crop", "1,0,0,0"}, "no multiple of 2");
    expect_refused(hrd, {"--crop", "176,0,0,0"}, "nothing is left");
    expect_refused(hrd, {"--crop", "1,2,3"}, "is no crop");
}

TEST_F(Edit, EveryFramingStays)
{
    const std::vector<bytes> wanted = split(edited(cabac, {"--rate", "30"})).units;
    for (const unsigned size : {1U, 2U, 3U, 4U}) {
        const std::string name = "length" + std::to_string(size);
        const std::string in = folder.path(name);
        if (run_tool({"convert", cabac, in, "--to", name}).status != 0)
            continue; // units too long for it
        const bytes made = edited(in, {"--rate", "30", "--format", name});
        EXPECT_EQ(wanted, split(made, static_cast<h264::framing>(size)).units) << name;
    }
}

TEST_F(Edit, WhatStandsBetweenUnitsStays)
{
    const bytes sps_and_more = [&] {
        const std::vector<bytes> units = split(read_file(hrd)).units;
        stream_builder stream;
        stream.junk(3).zeros(5).start_code().raw(units[1]).zeros(4).junk(5).zeros(9).start_code().raw(units[2]);
        stream.zeros(1).start_code().start_code().raw(units[4]).zeros(7);
        return stream.made();
    }();
    const std::string in = folder.write("in", sps_and_more);
    const tool_result same = edit(in, {"--set", "time_scale=50", "--format", "annexb"});
    EXPECT_EQ(1, same.status) << "bytes that belong to no unit are wrong";
    EXPECT_TRUE(sps_and_more == read_file(out));
    edit(in, {"--set", "time_scale=51", "--format", "annexb"});
    const bytes other = read_file(out);
    ASSERT_EQ(sps_and_more.size(), other.size());
    int differ = 0;
    for (std::size_t i = 0; i < other.size(); ++i)
        differ += other[i] != sps_and_more[i] ? 1 : 0;
    EXPECT_GT(differ, 0);
    EXPECT_LE(differ, 2) << "time_scale alone";
}

TEST_F(Edit, BrokenStreamsAreCopiedWhereTheyCannotBeRead)
{
    for (const char* name : {"broken_cut.264", "broken_forbidden_bit.264"}) {
        const tool_result result = edit(streams + name, {"--set", "gaps_in_frame_num_value_allowed_flag=1"});
        EXPECT_EQ(1, result.status) << result.err;
        EXPECT_EQ(split(read_file(streams + name)).units.size(), split(read_file(out)).units.size());
    }
}

TEST_F(Edit, ACutUnitBehindALengthStaysAsItIs)
{
    bytes cut = read_file(prefixed);
    cut.resize(cut.size() - 100);
    const std::string in = folder.write("in", cut);
    EXPECT_EQ(1, edit(in, {"--set", "gaps_in_frame_num_value_allowed_flag=1"}).status);
    const bytes made = read_file(out);
    ASSERT_GT(made.size(), 1000U);
    EXPECT_TRUE(std::equal(cut.end() - 1000, cut.end(), made.end() - 1000));
}

TEST_F(Edit, ItMayReplaceItsInput)
{
    const std::string in = folder.write("in", read_file(hrd));
    EXPECT_EQ(0, run_tool({"edit", in, in, "--level", "3"}).status);
    EXPECT_EQ(1, folder.files());
    out = in;
    EXPECT_EQ(strings(3, "30"), values("level_idc"));
}

TEST_F(Edit, PipesAreReadAndWritten)
{
    const bytes wanted = edited(hrd, {"--level", "3"});
    const tool_result result = run_tool({"edit", "-", "-", "--level", "3"}, {.piped = read_file(hrd)});
    EXPECT_EQ(0, result.status);
    EXPECT_TRUE(wanted == bytes(result.out.begin(), result.out.end()));
    EXPECT_NE(std::string::npos, result.err.find("level_idc 11 -> 30")) << "the proof goes elsewhere";
    const tool_result wrong = run_tool({"edit", "-", out, "--level", "3"}, {.piped = bytes{1, 2, 3}});
    EXPECT_EQ(1, wrong.status);
    EXPECT_NE(std::string::npos, wrong.err.find("orv-h264: standard input: offset 3: no NAL unit found")) << wrong.err;
}

TEST_F(Edit, ADryRunWritesNothing)
{
    const std::ptrdiff_t files = folder.files();
    const tool_result result = run_tool({"edit", hrd, "--dry-run", "--level", "3"});
    EXPECT_EQ(0, result.status);
    EXPECT_NE(std::string::npos, result.out.find("level_idc 11 -> 30, 3 units"));
    EXPECT_NE(std::string::npos, result.out.find("nothing is written"));
    const tool_result with_out = edit(hrd, {"--dry-run", "--level", "3"});
    EXPECT_EQ(0, with_out.status);
    EXPECT_EQ(files, folder.files());
}

TEST_F(Edit, UsageIsChecked)
{
    EXPECT_EQ(2, run_tool({"edit", hrd, out}).status) << "nothing to do";
    EXPECT_EQ(2, run_tool({"edit", hrd, "--level", "3"}).status) << "no OUT";
    EXPECT_EQ(2, run_tool({"edit", hrd, "-", "--level", "3", "--json"}).status) << "two things on one output";
    EXPECT_EQ(2, edit(hrd, {"--set", "level_idc"}).status);
    EXPECT_EQ(2, edit(hrd, {"--set", "level_idc=x"}).status);
    EXPECT_EQ(2, edit(hrd, {"--set", "level_idc=1 where x"}).status);
    EXPECT_EQ(2, edit(hrd, {"--delete", "nonsense"}).status);
    EXPECT_EQ(0, folder.files());
}

TEST_F(Edit, AnInputWithoutAUnitLeavesTheOutputAlone)
{
    const tool_result result = edit(folder.write("in", {}), {"--level", "3"});
    EXPECT_EQ(1, result.status);
    EXPECT_FALSE(std::filesystem::exists(out));
}
