#include "Base/Suggestion.h"

#include <gtest/gtest.h>

namespace {

using Host::didYouMean;

const std::vector<std::string> COMMANDS = {"list", "topology", "show", "set", "watch", "doctor"};

TEST(DidYouMean, ForgivesACharacterThatIsMissingWrongOrTooMany)
{
    EXPECT_EQ(didYouMean("lst", COMMANDS), " Did you mean \"list\"?");
    EXPECT_EQ(didYouMean("lust", COMMANDS), " Did you mean \"list\"?");
    EXPECT_EQ(didYouMean("llist", COMMANDS), " Did you mean \"list\"?");
}

TEST(DidYouMean, TakesTwoSwappedCharactersForOneMistake)
{
    EXPECT_EQ(didYouMean("lsit", COMMANDS), " Did you mean \"list\"?");
    EXPECT_EQ(didYouMean("ste", {"set"}), " Did you mean \"set\"?");
}

TEST(DidYouMean, ForgivesMoreInALongWord)
{
    EXPECT_EQ(didYouMean("toplgy", COMMANDS), " Did you mean \"topology\"?");
    EXPECT_EQ(didYouMean("tplg", COMMANDS), "");
}

TEST(DidYouMean, LeavesCaseAside)
{
    EXPECT_EQ(didYouMean("DOCTR", COMMANDS), " Did you mean \"doctor\"?");
}

TEST(DidYouMean, TakesTheNearestAndOfEquallyNearOnesTheFirst)
{
    EXPECT_EQ(didYouMean("nvme11n1", {"nvme0n1", "nvme1n1", "nvme12n1"}), " Did you mean \"nvme1n1\"?");
    EXPECT_EQ(didYouMean("shot", {"shop", "show"}), " Did you mean \"shop\"?");
}

TEST(DidYouMean, KeepsQuietWhereNothingIsNear)
{
    for (const char* word : {"", "x", "remove", "li"})
        EXPECT_EQ(didYouMean(word, COMMANDS), "") << word;
    EXPECT_EQ(didYouMean("a", {"b", ""}), "");
    EXPECT_EQ(didYouMean(std::string(1000, 'a'), {std::string(1000, 'a')}), "");
}

TEST(DidYouMean, ShowsNoControlCharacters)
{
    EXPECT_EQ(didYouMean("list", {"li\nst"}), " Did you mean \"li?st\"?");
}

} // namespace
