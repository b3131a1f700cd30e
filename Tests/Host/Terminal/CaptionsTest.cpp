#include "Terminal/Captions.h"

#include <gtest/gtest.h>

namespace {

using namespace Host::Cli;

TEST(Captions, AlignsValuesAndLeavesOutWhatIsEmpty)
{
    EXPECT_EQ(captionsText({{"A", "1"}, {"Longest", ""}, {"Mid", "2\n3"}}, Screen(), 2),
              "  A        1\n  Mid      2?3\n");
    EXPECT_EQ(captionsText({{"A", ""}}, Screen(), 2), "");
}

TEST(Captions, StandAboveTheirValuesOnANarrowTerminal)
{
    Screen screen;
    screen.m_Width = 20;
    EXPECT_EQ(captionsText({{"A longer caption", "1"}, {"A", "2"}}, screen, 1),
              " A longer caption\n   1\n A\n   2\n");
}

} // namespace
