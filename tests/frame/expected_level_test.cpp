// Detection as a whole, on a processor that somebody else knows: the processor matrix of scripts/test.
#include <vela/frame.h>

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

TEST(ExpectedLevel, IsTheOneThatTheEnvironmentNames)
{
    const char *expected = std::getenv("VELA_EXPECT_LEVEL");
    if (!expected)
        GTEST_SKIP() << "VELA_EXPECT_LEVEL is not set";
    EXPECT_EQ(std::to_string(VCB_GetCPUInsHigh()), expected);
}
