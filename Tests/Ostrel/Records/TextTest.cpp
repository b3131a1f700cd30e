#include "Records/Text.h"

#include <gtest/gtest.h>

using NAMESPACE_Ostrel::equalIgnoringCase;

namespace {

TEST(Text, ComparesWithoutRegardToCase)
{
    EXPECT_TRUE(equalIgnoringCase("", ""));
    EXPECT_TRUE(equalIgnoringCase("INTEL", "intel"));
    EXPECT_TRUE(equalIgnoringCase("a-1", "A-1"));
    EXPECT_FALSE(equalIgnoringCase("INTEL", "INTE"));
    EXPECT_FALSE(equalIgnoringCase("INTE", "INTEL"));
    EXPECT_FALSE(equalIgnoringCase("INTEL", "INTEM"));
    EXPECT_FALSE(equalIgnoringCase("@", "`")) << "only letters have a case";
    EXPECT_FALSE(equalIgnoringCase("\xE4", "\xC4")) << "letters of the classic locale";
}

} // namespace
