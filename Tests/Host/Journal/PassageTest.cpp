#include "Journal/Passage.h"

#include "Journal/Journal.h"
#include "Journal/ServiceLife.h"

#include <gmock/gmock.h>

namespace {

using namespace Host::Journal;
using Host::Moment;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t AN_HOUR = 3'600'000;

Entry entry(Kind kind, const std::string& text, std::optional<std::uint64_t> begin, std::uint64_t end,
            Severity severity = Severity::Information)
{
    return {kind, Phase::Change, severity, std::nullopt, {}, {}, text, begin, end};
}

Outcome lookAt(const State& state, const Moment& moment, bool isHot)
{
    Host::Cli::ObservedDrive drive;
    drive.m_Key = drive.m_Serial = "A";
    drive.m_Warnings = isHot ? 2 : 0;
    drive.m_PowerCycles = 1;
    return advance(state, {moment, {drive}});
}

TEST(PassageTest, AClockThatWasSetIsToldAndIntervalsStayTrue)
{
    for (const bool forward : {true, false}) {
        const std::uint64_t second = forward ? 102 * AN_HOUR + 60'000 : 99 * AN_HOUR + 60'000;
        const State first = lookAt({}, {100 * AN_HOUR, 7, "b"}, false).m_State;
        const Outcome outcome = lookAt(first, {second, 60'007, "b"}, true);
        ASSERT_EQ(outcome.m_Entries.size(), 2U);
        EXPECT_EQ(outcome.m_Entries[0], entry(Kind::ClockStepped,
                                              forward ? "The machine's clock was set forward by 7200 seconds."
                                                      : "The machine's clock was set back by 3600 seconds.",
                                              second - 60'000, second));
        EXPECT_EQ(outcome.m_Entries[1].m_Begin, second - 60'000) << "on the clock as it is now";
        EXPECT_EQ(outcome.m_State.m_BootTime, forward ? 102 * AN_HOUR : 99 * AN_HOUR);
    }
}

TEST(PassageTest, ASmallDifferenceOfTheClocksIsNoNews)
{
    const State first = lookAt({}, {100 * AN_HOUR, 7, "b"}, false).m_State;
    EXPECT_THAT(lookAt(first, {100 * AN_HOUR + 61'999, 60'007, "b"}, false).m_Entries, IsEmpty());
    EXPECT_THAT(lookAt(first, {100 * AN_HOUR + 58'001, 60'007, "b"}, false).m_Entries, IsEmpty());
    EXPECT_EQ(lookAt(first, {100 * AN_HOUR + 62'000, 60'007, "b"}, false).m_Entries.size(), 1U);
    EXPECT_EQ(lookAt(first, {100 * AN_HOUR + 58'000, 60'007, "b"}, false).m_Entries.size(), 1U);
    EXPECT_THAT(lookAt(first, {200 * AN_HOUR, std::nullopt, "b"}, false).m_Entries, IsEmpty())
        << "nobody knows the uptime";
}

TEST(PassageTest, NoIntervalEndsBeforeItBegins)
{
    const State first = lookAt({}, {100 * AN_HOUR, 7, "b"}, false).m_State;
    const Outcome outcome = lookAt(first, {AN_HOUR, 7, "c"}, true);
    ASSERT_EQ(outcome.m_Entries.size(), 2U);
    EXPECT_EQ(outcome.m_Entries[0],
              entry(Kind::MachineRestarted, "The machine was restarted.", AN_HOUR, AN_HOUR));
    EXPECT_EQ(outcome.m_Entries[1].m_Begin, AN_HOUR);
}

TEST(PassageTest, AClockThatWasSetBeforeTheEpochLosesNothing)
{
    const State first = lookAt({}, {100 * AN_HOUR, 200 * AN_HOUR, "b"}, false).m_State;
    EXPECT_EQ(lookAt(first, {5, 201 * AN_HOUR, "b"}, true).m_Entries.size(), 2U);
}

TEST(ServiceLifeTest, StartAndEndAreToldWithTheTimeBetween)
{
    const Outcome start = serviceStarted({}, {10, 10, "b"});
    EXPECT_THAT(start.m_Entries, ElementsAre(entry(Kind::ServiceStarted, "The service started.", {}, 10)));
    const Outcome look = lookAt(start.m_State, {20, 20, "b"}, false);
    EXPECT_THAT(look.m_Entries, IsEmpty()) << "the first look adopts what is there";
    EXPECT_TRUE(look.m_State.m_Runs);

    const Outcome end = serviceEnded(look.m_State, {30, 30, "b"});
    EXPECT_THAT(end.m_Entries, ElementsAre(entry(Kind::ServiceEnded, "The service ended.", 30, 30)));
    const Outcome again = serviceStarted(end.m_State, {50, 50, "b"});
    EXPECT_THAT(again.m_Entries, ElementsAre(entry(Kind::ServiceStarted, "The service started.", 30, 50)));
    EXPECT_EQ(lookAt(again.m_State, {60, 60, "b"}, true).m_Entries.at(0).m_Begin, 20U);
}

TEST(ServiceLifeTest, AServiceThatDidNotEndIsAWarning)
{
    const State look = lookAt(serviceStarted({}, {10, 10, "b"}).m_State, {20, 20, "b"}, false).m_State;
    const Outcome again = serviceStarted(look, {5000, 1, "c"});
    EXPECT_THAT(again.m_Entries,
                ElementsAre(entry(Kind::MachineRestarted, "The machine was restarted.", 20, 5000),
                            entry(Kind::ServiceStarted, "The service started. It had not been ended before.",
                                  20, 5000, Severity::Warning)));
    EXPECT_THAT(kindName(again.m_Entries[0].m_Kind), "machine-restarted");
    EXPECT_THAT(lookAt(again.m_State, {5010, 11, "c"}, false).m_Entries, IsEmpty()) << "it was told once";
}

} // namespace
