// Names of profiles and of codecs.
#include "support/small_units.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using namespace orv_utils_v4::h264;

/// With the constraint flags whose numbers are in `flags`.
seq_parameter_set_data of_profile(int profile_idc, const std::set<int>& flags)
{
    seq_parameter_set_data sps = sps_data();
    sps.profile_idc = static_cast<std::uint8_t>(profile_idc);
    sps.constraint_set0_flag = flags.contains(0);
    sps.constraint_set1_flag = flags.contains(1);
    sps.constraint_set2_flag = flags.contains(2);
    sps.constraint_set3_flag = flags.contains(3);
    sps.constraint_set4_flag = flags.contains(4);
    sps.constraint_set5_flag = flags.contains(5);
    return sps;
}

// A.2.1 to A.2.11, G.10.1, H.10.1, I.10.1, J.10.1
TEST(DerivedNames, ProfilesHaveTheirNamesByNumberAndFlags)
{
    struct row {
        int profile_idc;
        std::set<int> flags;
        std::string name;
    };
    const row table[] = {
        {66, {}, "Baseline"},
        {66, {0}, "Baseline"},
        {66, {0, 1}, "Constrained Baseline"},
        {77, {}, "Main"},
        {77, {1}, "Main"},
        {88, {}, "Extended"},
        {100, {}, "High"},
        {100, {5}, "High"},
        {100, {4}, "Progressive High"},
        {100, {4, 5}, "Constrained High"},
        {110, {}, "High 10"},
        {110, {4}, "Progressive High 10"},
        {110, {3}, "High 10 Intra"},
        {122, {}, "High 4:2:2"},
        {122, {3}, "High 4:2:2 Intra"},
        {244, {}, "High 4:4:4 Predictive"},
        {244, {3}, "High 4:4:4 Intra"},
        {44, {}, "CAVLC 4:4:4 Intra"},
        {83, {}, "Scalable Baseline"},
        {83, {5}, "Scalable Constrained Baseline"},
        {86, {}, "Scalable High"},
        {86, {5}, "Scalable Constrained High"},
        {86, {3}, "Scalable High Intra"},
        {118, {}, "Multiview High"},
        {128, {}, "Stereo High"},
        {134, {}, "MFC High"},
        {135, {}, "MFC Depth High"},
        {138, {}, "Multiview Depth High"},
        {139, {}, "Enhanced Multiview Depth High"},
    };
    std::set<int> named;
    for (const row& r : table) {
        EXPECT_EQ(profile_name(of_profile(r.profile_idc, r.flags)), r.name) << r.profile_idc;
        named.insert(r.profile_idc);
    }
    for (int profile_idc = 0; profile_idc < 256; ++profile_idc)
        EXPECT_EQ(*profile_name(of_profile(profile_idc, {})) != 0, named.contains(profile_idc)) << profile_idc;
}

TEST(DerivedNames, TheCodecIsProfileFlagsAndLevelInHexadecimal)
{
    seq_parameter_set_data sps = of_profile(100, {});
    sps.level_idc = 31;
    EXPECT_STREQ(codec_string(sps).data(), "avc1.64001F");
    sps = of_profile(66, {0, 1});
    sps.level_idc = 0xFE;
    EXPECT_STREQ(codec_string(sps).data(), "avc1.42C0FE");
    constexpr const char* one_flag[] = {"avc1.4D800A", "avc1.4D400A", "avc1.4D200A",
                                        "avc1.4D100A", "avc1.4D080A", "avc1.4D040A"};
    for (int flag = 0; flag < 6; ++flag) {
        sps = of_profile(77, {flag});
        sps.level_idc = 10;
        EXPECT_STREQ(codec_string(sps).data(), one_flag[flag]);
    }
    sps = of_profile(77, {});
    sps.level_idc = 10;
    sps.reserved_zero_2bits = 3;
    EXPECT_STREQ(codec_string(sps).data(), "avc1.4D030A");
}

} // namespace
