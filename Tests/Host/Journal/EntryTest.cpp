#include "Journal/Entry.h"

#include <gmock/gmock.h>

#include <set>

namespace {

using namespace Host::Journal;

TEST(EntryTest, EachKindAndPhaseHasAWordOfItsOwn)
{
    std::set<std::string_view> words;
    constexpr auto kinds = static_cast<int>(Kind::ServiceEnded) + 1;
    for (int kind = 0; kind < kinds; ++kind)
        words.insert(kindName(static_cast<Kind>(kind)));
    EXPECT_EQ(words.size(), static_cast<std::size_t>(kinds));
    EXPECT_FALSE(words.contains(""));
    EXPECT_EQ(kindName(Kind::ReadOnly), "read-only");
    for (int kind = 0; kind < kinds; ++kind)
        EXPECT_EQ(kindByName(kindName(static_cast<Kind>(kind))), static_cast<Kind>(kind));
    EXPECT_EQ(kindByName("unheard-of"), std::nullopt);
    for (const Phase phase : {Phase::Change, Phase::Present, Phase::Began, Phase::Ended, Phase::Remains})
        EXPECT_EQ(phaseByName(phaseName(phase)), phase);
    EXPECT_EQ(phaseByName(""), std::nullopt);
    EXPECT_EQ(phaseName(Phase::Change), "change");
    EXPECT_EQ(phaseName(Phase::Present), "present");
    EXPECT_EQ(phaseName(Phase::Began), "began");
    EXPECT_EQ(phaseName(Phase::Ended), "ended");
    EXPECT_EQ(phaseName(Phase::Remains), "remains");
}

} // namespace
