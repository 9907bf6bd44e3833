// hrd_parameters() spelled by hand, which several structures hold; H.264 clause E.1.2.
#pragma once

#include "support/literal_unit.h"

namespace literal {

/// One schedule, every length another.
inline lines hrd_of_one()
{
    return {{"cpb_cnt_minus1", ue, 0},
            {"bit_rate_scale", u(4), 5},
            {"cpb_size_scale", u(4), 3},
            {"bit_rate_value_minus1[0]", ue, 999},
            {"cpb_size_value_minus1[0]", ue, 1999},
            {"cbr_flag[0]", u(1), 1},
            {"initial_cpb_removal_delay_length_minus1", u(5), 18},
            {"cpb_removal_delay_length_minus1", u(5), 15},
            {"dpb_output_delay_length_minus1", u(5), 5},
            {"time_offset_length", u(5), 12}};
}

/// Two specifications.
inline lines hrd_of_two()
{
    return {{"cpb_cnt_minus1", ue, 1},
            {"bit_rate_scale", u(4), 1},
            {"cpb_size_scale", u(4), 15},
            {"bit_rate_value_minus1[0]", ue, 4294967293},
            {"cpb_size_value_minus1[0]", ue, 70000},
            {"cbr_flag[0]", u(1), 0},
            {"bit_rate_value_minus1[1]", ue, 4294967294},
            {"cpb_size_value_minus1[1]", ue, 60000},
            {"cbr_flag[1]", u(1), 1},
            {"initial_cpb_removal_delay_length_minus1", u(5), 30},
            {"cpb_removal_delay_length_minus1", u(5), 0},
            {"dpb_output_delay_length_minus1", u(5), 31},
            {"time_offset_length", u(5), 0}};
}

/// Members of hrd_of_two().
inline void expect_hrd_of_two(const hrd_parameters& x)
{
    EXPECT_EQ(x.cpb_cnt_minus1, 1U);
    EXPECT_EQ(x.bit_rate_scale, 1);
    EXPECT_EQ(x.cpb_size_scale, 15);
    EXPECT_EQ(x.bit_rate_value_minus1[1], 4294967294U);
    EXPECT_EQ(x.cpb_size_value_minus1[1], 60000U);
    EXPECT_TRUE(x.cbr_flag[1]);
    EXPECT_EQ(x.initial_cpb_removal_delay_length_minus1, 30);
    EXPECT_EQ(x.cpb_removal_delay_length_minus1, 0);
    EXPECT_EQ(x.dpb_output_delay_length_minus1, 31);
    EXPECT_EQ(x.time_offset_length, 0);
}

} // namespace literal
