#include "Base/PercentCode.h"

#include <gtest/gtest.h>

namespace {

TEST(PercentCodeTest, KeepsOnlyWhatHasNoMeaningInAUrl)
{
    const std::string harmless = "09AZaz-._~";
    EXPECT_EQ(Host::percentEncoded(harmless), harmless);
    EXPECT_EQ(Host::percentEncoded("/ ?%\xFF\n"), "%2F%20%3F%25%FF%0A");
    EXPECT_EQ(Host::percentEncoded(""), "");
}

} // namespace
