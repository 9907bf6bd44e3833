// Every SPS, slice and SEI message of the real streams through both interfaces, which share no syntax code: what both
// read is the same. Where they differ on purpose is in generations_syntax_departures_test.cpp.
#include "support/both_generations.h"
#include "support/stream_files.h"

#include <orv-utils-v4/h264.h>
#include <orv-utils-v4/h264_legacy/nal_parser.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <map>

namespace {

using support::both_spss;
using support::bytes;

/// The two interfaces over the units of one stream, and how many structures both read.
class two_readers {
public:
    void read(const h264_nal_parser_state& st)
    {
        const bytes rbsp(st.nal, st.nal_fence);
        const brenik::h2645_common_bitreader br(st.nal, st.nal_fence);
        try {
            if (st.nal_unit_type == 7)
                read_sps(rbsp);
            else if (st.nal_unit_type == 8)
                read_pps(br);
            else if (st.nal_unit_type == 1 || st.nal_unit_type == 5)
                read_slice(st, br);
            else if (st.nal_unit_type == 6)
                read_sei(st);
        } catch (const brenik::h2645_common_malformed_code&) {
            ++malformed;
        }
    }

    std::size_t spss = 0;
    std::size_t slices = 0;
    std::size_t messages = 0;
    std::size_t timings = 0;
    std::size_t parted = 0; ///< SPSs that the two interfaces read otherwise on purpose
    std::size_t malformed = 0;

private:
    void read_sps(const bytes& rbsp)
    {
        const both_spss both(rbsp);
        if (!both.newer_result)
            return;
        sps_store.insert_or_assign(both.newer.seq_parameter_set_id, both.newer);
        legacy_spss.erase(both.newer.seq_parameter_set_id);
        if (support::parting(both.newer) != nullptr) {
            ++parted;
            return;
        }
        EXPECT_EQ("", difference(both));
        legacy_spss[both.newer.seq_parameter_set_id] = both.legacy;
        last_sps = both.newer.seq_parameter_set_id;
        ++spss;
    }

    void read_pps(brenik::h2645_common_bitreader br)
    {
        brenik::h264_nal_pps pps;
        if (pps.parse(br, sps_store))
            pps_store.insert_or_assign(pps.pic_parameter_set_id, pps);
    }

    void read_slice(h264_nal_parser_state st, brenik::h2645_common_bitreader br)
    {
        brenik::h264_nal nal;
        nal.decode_header(static_cast<unsigned char>(st.nal_ref_idc << 5 | st.nal_unit_type));
        brenik::h264_nal_slice_header slice;
        if (!slice.parse(br, sps_store, pps_store, nal))
            return;
        const std::uint32_t sps_id = pps_store.at(slice.pic_parameter_set_id).seq_parameter_set_id;
        if (!legacy_spss.contains(sps_id))
            return;
        h264_nal_slice_info info;
        EXPECT_EQ(1, h264_slice_parse(info, st, legacy_spss.at(sps_id)));
        EXPECT_EQ(slice.first_mb_in_slice, info.first_mb_in_slice);
        EXPECT_EQ(slice.slice_type, info.slice_type);
        EXPECT_EQ(slice.pic_parameter_set_id, info.pic_parameter_set_id);
        EXPECT_EQ(slice.colour_plane_id, info.colour_plane_id);
        EXPECT_EQ(slice.frame_num, info.frame_num);
        EXPECT_EQ(slice.field_pic_flag, info.field_pic_flag == 1);
        EXPECT_EQ(slice.bottom_field_flag, info.bottom_field_flag == 1);
        ++slices;
    }

    void read_sei(const h264_nal_parser_state& st)
    {
        brenik::h264_nal_sei_reader newer(st.nal, st.nal_fence);
        const unsigned char* p = st.nal;
        while (newer.next_message() && !newer.truncated) {
            h264_sei_pair pair;
            p = h264_sei_read_pair(&pair, p, st.nal_fence);
            EXPECT_EQ(1, pair.valid);
            EXPECT_EQ(static_cast<std::uint32_t>(newer.payloadType), pair.payload_type);
            EXPECT_EQ(newer.payloadSize, pair.payload_size);
            EXPECT_EQ(newer.message, pair.start);
            EXPECT_EQ(newer.payload, pair.data);
            EXPECT_EQ(newer.payload_fence, pair.fence);
            ++messages;
            if (pair.payload_type == 1)
                read_timing(pair);
        }
        h264_sei_pair rest;
        EXPECT_EQ(st.nal_fence, h264_sei_read_pair(&rest, p, st.nal_fence));
        EXPECT_EQ(0, rest.valid);
    }

    /// Departure: the newer parse takes the length of the initial delay for both delays.
    static bool same_widths(const brenik::h264_nal_sps& seq, const h264_sps& legacy)
    {
        const brenik::h264_vui_parameters& vui = seq.vui;
        if (!vui.nal_hrd_parameters_present_flag && !vui.vcl_hrd_parameters_present_flag)
            return true;
        const unsigned int width = 1U + std::max(vui.nal_hrd.initial_cpb_removal_delay_length_minus1,
                                                 vui.vcl_hrd.initial_cpb_removal_delay_length_minus1);
        return width <= 24 && width == legacy.cpb_removal_delay_length && width == legacy.dpb_output_delay_length;
    }

    void read_timing(const h264_sei_pair& pair)
    {
        const brenik::h264_nal_sps* const seq = sps_store.find(last_sps);
        if (seq == nullptr || !legacy_spss.contains(last_sps) || pair.payload_size == 0 ||
            !same_widths(*seq, legacy_spss.at(last_sps)))
            return;
        brenik::h264_nal_sei_pic_timing newer;
        brenik::h2645_common_bitreader br(pair.data, pair.fence);
        EXPECT_TRUE(newer.parse(br, *seq));
        h264_sei_picture_timing_info legacy;
        EXPECT_EQ(1, h264_sei_picture_timing_info_parse(&legacy, pair.data, pair.fence, legacy_spss.at(last_sps)));
        EXPECT_EQ(newer.cpb_removal_delay, legacy.cpb_removal_delay);
        EXPECT_EQ(newer.dpb_output_delay, legacy.dpb_output_delay);
        EXPECT_EQ(newer.pic_struct, legacy.pic_struct);
        ++timings;
    }

    brenik::h2645_common_base_store<brenik::h264_nal_sps> sps_store;
    brenik::h2645_common_base_store<brenik::h264_nal_pps> pps_store;
    std::map<std::uint32_t, h264_sps> legacy_spss;
    std::uint32_t last_sps = 0;
};

void read_stream(two_readers& readers, const bytes& stream)
{
    const unsigned char* const fence = stream.data() + stream.size();
    bytes out(stream.size());
    for (const unsigned char* p = stream.data(); p < fence;) {
        h264_nal_parser_state st;
        p = h264_nal_parser_scan(&st, out.data(), out.size(), p, fence, 0);
        if (st.found == 0)
            return;
        readers.read(st);
    }
}

} // namespace

TEST(GenerationsSyntax, BothReadTheSameOfEveryRealStream)
{
    std::size_t slices = 0;
    std::size_t messages = 0;
    std::size_t timings = 0;
    for (const auto& path : support::all_annexb_files()) {
        SCOPED_TRACE(path);
        two_readers readers;
        read_stream(readers, support::read_file(path));
        EXPECT_GT(readers.spss, 0U);
        EXPECT_GT(readers.slices, 0U);
        const std::size_t otherwise = readers.parted + readers.malformed;
        if (path.string().find(ORV_TEST_STREAMS) == 0 && !support::is_broken(path)) {
            EXPECT_EQ(0U, otherwise);
        }
        slices += readers.slices;
        messages += readers.messages;
        timings += readers.timings;
    }
    EXPECT_GT(slices, 100U);
    EXPECT_GT(messages, 10U);
    EXPECT_GT(timings, 10U);
    RecordProperty("slices", std::to_string(slices));
    RecordProperty("messages", std::to_string(messages));
    RecordProperty("timings", std::to_string(timings));
}

TEST(GenerationsSyntax, BothReadTheSameOfWrittenSpss)
{
    EXPECT_EQ("", difference(both_spss(support::sps_description())));
    EXPECT_EQ("", difference(both_spss(support::high_sps())));
    support::sps_description seq = support::full_legacy_sps();
    EXPECT_EQ("", difference(both_spss(seq)));
    for (std::uint32_t format = 0; format < 4; ++format)
        for (const bool vcl : {false, true}) {
            seq.chroma_format_idc = format;
            if (!vcl)
                seq.vui->vcl_hrd.reset();
            EXPECT_EQ("", difference(both_spss(seq)));
        }
}
