#include "Records/Text.h"

#include "Support/GroupingLocale.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

using NAMESPACE_Ostrel::equalIgnoringCase;
using NAMESPACE_Ostrel::formatted;

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

TEST(Text, IsFormattedAsPrintfDoes)
{
    EXPECT_EQ(formatted("none"), "none");
    EXPECT_EQ(formatted("%s has %d of %04d", std::string("%d"), -3, 42U), "%d has -3 of 0042");
    EXPECT_EQ(formatted("%04d, %4d", -7, -7), "-007,   -7");
}

TEST(Text, IsFormattedTheSameWhateverTheProcessesLocale)
{
    const TestSupport::CGroupingLocale locale;
    std::ostringstream shown;
    shown << 1234567;
    ASSERT_EQ(shown.str(), "1.234.567") << "the locale has to be one that groups";
    EXPECT_EQ(formatted("%d, %4d, %08d", 1234567, std::uint64_t{12345}, 6789), "1234567, 12345, 00006789");
}

} // namespace
