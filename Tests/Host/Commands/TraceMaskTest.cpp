#include "Commands/TraceMask.h"

#include <gtest/gtest.h>

namespace {

using namespace Host::Cli;

TEST(TraceMask, IsReadInBothBases)
{
    EXPECT_EQ(parseMask("0"), 0U);
    EXPECT_EQ(parseMask("010"), 10U);
    EXPECT_EQ(parseMask("0x10"), 16U);
    EXPECT_EQ(parseMask("0XfF"), 255U);
    EXPECT_EQ(parseMask("4294967295"), 4294967295U);
    for (const char* text : {"", "0x", "4294967296", "0x100000000", "-1", "+1", " 1", "1 ", "1.5"})
        EXPECT_EQ(parseMask(text), std::nullopt) << text;
}

} // namespace
