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
        EXPECT_EQ("", support::difference(slice, info));
        ++slices;
    }

    void read_sei(const h264_nal_parser_state& st)
    {
        EXPECT_EQ("", support::messages_difference(st.nal, st.nal_fence, [this](const h264_sei_pair& pair) {
                      ++messages;
                      return pair.payload_type == 1 && pair.payload_size != 0 ? read_timing(pair) : std::string();
                  }));
    }

    std::string read_timing(const h264_sei_pair& pair)
    {
        const brenik::h264_nal_sps* const seq = sps_store.find(last_sps);
        const auto legacy = legacy_spss.find(last_sps);
        if (seq == nullptr || legacy == legacy_spss.end() || !support::same_widths(*seq, legacy->second))
            return "";
        ++timings;
        return support::timing_difference(*seq, legacy->second, pair);
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
