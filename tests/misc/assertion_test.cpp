#include <orv-utils-v4/misc/assertion.h>

#include "support/whole_message.h"

#include <gtest/gtest.h>

TEST(AssertionDeathTest, FailurePrintsSourceLineAndTextAndAborts)
{
    EXPECT_EXIT(orv_utils_v4::assertion_failed("lib/x", 37, "buffer <= write"), testing::KilledBySignal(SIGABRT),
                support::whole_message("lib/x:37: assertion failed: buffer <= write\n"));
}

TEST(AssertionDeathTest, CheckAbortsOnAFalseConditionInEveryBuildType)
{
    EXPECT_EXIT(orv_utils_v4::check(false, "lib/x", 1, "never"), testing::KilledBySignal(SIGABRT), "never");
}

TEST(Assertion, CheckReturnsOnATrueCondition)
{
    orv_utils_v4::check(true, "lib/x", 1, "always");
}
