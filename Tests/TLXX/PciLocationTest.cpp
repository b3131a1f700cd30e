#include <TLXX/PciLocation.h>

#include <gtest/gtest.h>

namespace {

using TLXX::CPciLocation;

TEST(PciLocationTest, ReadsHexadecimalAddresses)
{
    EXPECT_EQ(CPciLocation::Parse("0000:01:00.0"), (CPciLocation{0, 1, 0, 0}));
    EXPECT_EQ(CPciLocation::Parse("10000:e1:1f.7"), (CPciLocation{0x10000, 0xE1, 0x1F, 7}));
    EXPECT_EQ(CPciLocation::Parse("ABCD:Ff:1A.3"), (CPciLocation{0xABCD, 0xFF, 0x1A, 3}));
}

TEST(PciLocationTest, ReadsTheLargestNumbersAndNothingAbove)
{
    EXPECT_EQ(CPciLocation::Parse("7fffffff:ff:1f.7"), (CPciLocation{0x7FFFFFFF, 0xFF, 0x1F, 7}));
    for (const char* address : {"80000000:00:00.0", "100000000:00:00.0", "0000:100:00.0", "0000:00:20.0",
                                "0000:00:00.8", "0000:00:00.10"})
        EXPECT_EQ(CPciLocation::Parse(address), std::nullopt) << address;
}

TEST(PciLocationTest, TakesNothingElseForAnAddress)
{
    for (const char* text : {"", "0000", "0000:01:00", "0000:01:00.", "0000:01:00:0", "0000.01.00.0",
                             ":01:00.0", "01:00.0", "0000:01:00.0 ", " 0000:01:00.0", "0000:01:00.0\n",
                             "-1:01:00.0", "0000:-1:00.0", "0x0:01:00.0", "0000:01:0g.0", "0000: 1:00.0"})
        EXPECT_EQ(CPciLocation::Parse(text), std::nullopt) << '"' << text << '"';
}

TEST(PciLocationTest, WritesTheAddressAsItIsRead)
{
    EXPECT_EQ((CPciLocation{0, 1, 0, 0}).Text(), "0000:01:00.0");
    EXPECT_EQ((CPciLocation{0x10000, 0xE1, 0x1F, 7}).Text(), "10000:e1:1f.7");
    for (const char* address : {"0000:00:00.0", "abcd:3b:0a.1", "7fffffff:ff:1f.7"})
        EXPECT_EQ(CPciLocation::Parse(address).value_or(CPciLocation{1, 1, 1, 1}).Text(), address);
}

} // namespace
