// The pictures of every real stream beside the frames that h264_common_frame_scan cuts by its own rules: each departure
// has a name here, and shows in the streams that the table says.
#include "support/stream_files.h"
#include "support/told_pictures.h"

#include <orv-utils-v4/h264_legacy.h>

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace {

using namespace orv_utils_v4::h264;
using support::bytes;

/// Where each frame of the scan begins: its 00 00 01.
std::vector<std::uint64_t> scanned_starts(bytes stream)
{
    const bytes end = {0, 0, 0, 0, 1, 11}; // an end of stream ends the last frame
    stream.insert(stream.end(), end.begin(), end.end());
    bytes scratch(stream.size());
    std::vector<std::uint64_t> starts;
    h264_sps sps{};
    const unsigned char* const fence = stream.data() + stream.size();
    for (const unsigned char* at = stream.data();;) {
        h264_common_frame_scan_info info;
        bool updated = false;
        at = h264_common_frame_scan(info, updated, sps, at, fence, 0, scratch.data(), scratch.size(), 0);
        if (info.complete == 0)
            return starts;
        starts.push_back(static_cast<std::uint64_t>(info.frame_start - stream.data()));
    }
}

/// A picture begins three bytes before the header of its first unit.
std::vector<std::uint64_t> picture_starts(const bytes& stream)
{
    std::vector<std::uint64_t> starts;
    for (const picture& p : told_of(stream).decoding_order)
        starts.push_back(p.offset - 3);
    return starts;
}

/// A departure, and the streams that it shows in.
struct departure {
    const char* why;
    std::set<std::string> streams;
};

const std::map<std::string, departure> table = {
    {"joined",
     {"7.4.1.2.4: pictures of one frame_num with no unit of type 6 to 11 between stay together, and so do two that the "
      "scan cannot read frame_num of",
      {"broken_cut.264",
       "high10.264",
       "high_cqm_jvt_crop_sar.264",
       "high_cqmfile.264",
       "high_monochrome.264",
       "main_bpyramid_weighted.264",
       "open_gop_frame_packing.264",
       "two_sizes.264",
       "CI1_FT_B.264",
       "NRF_MW_E.264",
       "Zhling_1280x720.264",
       "d02_main_bpyramid.264",
       "d03_high_cqmjvt.264",
       "d06_high444_cqm.264",
       "d08_gray.264",
       "d12_slices.264",
       "d14_framepack_sbs.264",
       "d15_odd_vui.264",
       "d16_opengop.264",
       "d17_concat_eos.264",
       "d19_fakeint_hdr.264",
       "d21_syntax.264",
       "d22_paff.264"}}},
    {"elsewhere",
     {"7.4.1.2.3: parameter sets without a picture are a frame to the scan; a unit of type 12 to 15 ends the units "
      "that "
      "lead to one; an end of stream follows the picture it belongs to",
      {"d17_concat_eos.264", "d21_syntax.264", "d23_svc.264"}}},
};

std::set<std::string> departures(const bytes& stream)
{
    const auto scanned = scanned_starts(stream);
    const auto told = picture_starts(stream);
    std::set<std::string> found;
    for (std::size_t i = 0; i < scanned.size(); ++i) {
        const auto begin = std::lower_bound(told.begin(), told.end(), scanned[i]);
        const auto end = i + 1 == scanned.size() ? told.end() : std::lower_bound(begin, told.end(), scanned[i + 1]);
        if (end - begin > 1)
            found.insert("joined");
    }
    for (const std::uint64_t start : scanned)
        if (!std::binary_search(told.begin(), told.end(), start))
            found.insert("elsewhere");
    return found;
}

class FrameScanDepartures : public testing::TestWithParam<std::filesystem::path> {};

INSTANTIATE_TEST_SUITE_P(Streams, FrameScanDepartures, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& parameter) { return support::test_name(parameter.param); });

TEST_P(FrameScanDepartures, AreThoseOfTheTable)
{
    const std::set<std::string> found = departures(support::read_file(GetParam()));
    for (const auto& [name, of] : table)
        EXPECT_EQ(of.streams.contains(GetParam().filename().string()), found.contains(name)) << name << ": " << of.why;
}

} // namespace
