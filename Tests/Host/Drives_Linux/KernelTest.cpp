#include "Drives_Linux/Kernel.h"

#include "Base/Platform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Host::Platform::isSupportedKernel;

TEST(Kernel, IsSupportedFromFourFifteenOn)
{
    for (const char* release : {"4.15", "4.15.0-213-generic", "4.100.1", "5.0", "6.1.0-32-amd64", "10.0"})
        EXPECT_TRUE(isSupportedKernel(release)) << release;
    for (const char* release : {"4.14.336", "4.9.0", "3.99", "4", "", "x", "99999999999999999999.1"})
        EXPECT_FALSE(isSupportedKernel(release)) << release;
}

TEST(Kernel, OfThisMachineHasAName)
{
    EXPECT_THAT(Host::Platform::runningSystem().m_Name, testing::MatchesRegex("Linux [0-9].*"));
}

} // namespace
