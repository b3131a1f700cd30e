#include "Journal/StateText.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

namespace {

using namespace Host::Journal;

class RandomState
{
public:
    explicit RandomState(std::uint32_t seed) : m_Random(seed) {}

    State make()
    {
        State state;
        state.m_Runs = sometimes();
        state.m_BootTime = number();
        if (sometimes())
            state.m_Time = number();
        if (sometimes()) {
            state.m_Moment.emplace();
            state.m_Moment->m_Time = number();
            state.m_Moment->m_Boot = text();
            if (sometimes())
                state.m_Moment->m_Uptime = number();
        }
        for (std::uint64_t count = m_Random() % 4; count > 0; --count) {
            DriveState drive{text(), identity(), {}, figures(state), {}, number()};
            for (std::uint64_t known = m_Random() % 8; known > 0; --known)
                drive.m_Known[kind()] = {value(), time(state)};
            if (sometimes())
                drive.m_Told[kind()] = time(state);
            state.m_Drives.push_back(drive);
        }
        for (std::uint64_t count = m_Random() % 3; count > 0; --count)
            state.m_Gone.push_back({identity(), figures(state), time(state)});
        return state;
    }

private:
    bool sometimes() { return m_Random() % 2 == 0; }

    std::uint64_t number()
    {
        const std::uint64_t numbers[] = {0, 1, 1'767'225'600'000, ~0ULL, m_Random()};
        return numbers[m_Random() % std::size(numbers)];
    }

    std::uint64_t time(const State& state) { return sometimes() ? state.m_Time.value_or(0) : number(); }

    std::string text()
    {
        const std::string texts[] = {
            "", "S", "x');DROP TABLE State;--", "\"\\\n\t", "\xc3\xa4 \xe2\x82\xac", std::string("\0b", 2)};
        return texts[m_Random() % std::size(texts)];
    }

    Kind kind() { return static_cast<Kind>(m_Random() % (static_cast<unsigned>(Kind::ServiceEnded) + 1)); }

    std::variant<bool, std::uint64_t, std::string> value()
    {
        switch (m_Random() % 3) {
        case 0:
            return sometimes();
        case 1:
            return number();
        default:
            return text();
        }
    }

    Figures figures(const State& state)
    {
        Figures figures;
        for (const CounterRow& row : counterRows())
            if (sometimes())
                figures[row.m_Counter] = {number(), time(state)};
        return figures;
    }

    Host::Cli::DriveIdentity identity()
    {
        return {text(), text(), text(), text(),
                text(), text(), text(), static_cast<Host::Cli::ShownPlace>(m_Random() % 3)};
    }

    std::mt19937_64 m_Random;
};

TEST(StateTextTest, WhatIsWrittenIsReadBackUnchanged)
{
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        const State state = RandomState(seed).make();
        State read = parseLook(lookText(state));
        for (const DriveState& drive : state.m_Drives)
            read.m_Drives.push_back(
                parseDrive(driveText(drive, state.m_Time.value_or(0)), state.m_Time.value_or(0)));
        for (const GoneDrive& drive : state.m_Gone)
            read.m_Gone.push_back(parseGone(goneText(drive)));
        ASSERT_EQ(read, state) << "seed " << seed;
    }
}

TEST(StateTextTest, TheTextOfAnUnchangedDriveDoesNotChangeFromLookToLook)
{
    DriveState drive;
    drive.m_Known[Kind::ReadOnly] = {true, 10};
    drive.m_Counters[Counter::PowerCycles] = {3, 10};
    const std::string text = driveText(drive, 10);
    drive.m_Known[Kind::ReadOnly].m_Time = 20;
    drive.m_Counters[Counter::PowerCycles].m_Time = 20;
    EXPECT_EQ(driveText(drive, 20), text);
    EXPECT_NE(driveText(drive, 30), text) << "it was not read at that look";
}

/** The drive with one of its members changed, as it would be at `look`. */
DriveState changed(DriveState drive, unsigned member, std::uint64_t look)
{
    switch (member) {
    case 0:
        drive.m_Key += "x";
        break;
    case 1:
        drive.m_Drive.m_Model += "x";
        break;
    case 2:
        drive.m_Known[Kind::ReadOnly].m_Value = std::string("other");
        break;
    case 3:
        drive.m_Known[Kind::ReadOnly].m_Time = look - 1;
        break;
    case 4:
        drive.m_Known[Kind::FirmwareChanged] = {true, look};
        break;
    case 5:
        ++drive.m_Counters[Counter::PowerCycles].m_Value;
        break;
    case 6:
        drive.m_Counters[Counter::PowerCycles].m_Time = look - 1;
        break;
    case 7:
        drive.m_Counters.clear();
        break;
    case 8:
        drive.m_Told[Kind::ReadOnly] = 4;
        break;
    default:
        ++drive.m_Since;
    }
    return drive;
}

TEST(StateTextTest, DrivesHaveTheSameTextExactlyWhenNothingButTheLookDiffers)
{
    DriveState drive{"key", {}, {}, {}, {}, 3};
    drive.m_Known[Kind::ReadOnly] = {true, 10};
    drive.m_Counters[Counter::PowerCycles] = {3, 10};
    EXPECT_TRUE(haveSameText(drive, 10, drive, 10));
    EXPECT_FALSE(haveSameText(drive, 10, drive, 20)) << "it was not read at the second look";
    DriveState later = drive;
    later.m_Known[Kind::ReadOnly].m_Time = 20;
    later.m_Counters[Counter::PowerCycles].m_Time = 20;
    EXPECT_TRUE(haveSameText(drive, 10, later, 20));
    for (unsigned member = 0; member < 10; ++member) {
        const DriveState other = changed(later, member, 20);
        EXPECT_FALSE(haveSameText(drive, 10, other, 20)) << member;
        EXPECT_NE(driveText(drive, 10), driveText(other, 20)) << member;
    }
}

TEST(StateTextTest, DrivesWithTheSameTextAreFoundAmongRandomOnes)
{
    int same = 0;
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        const State state = RandomState(seed).make();
        const State other = RandomState(seed + 1 - seed % 2).make();
        for (std::size_t i = 0; i < std::min(state.m_Drives.size(), other.m_Drives.size()); ++i) {
            const std::uint64_t look = state.m_Time.value_or(0);
            const std::uint64_t otherLook = other.m_Time.value_or(0);
            const bool isSame = haveSameText(state.m_Drives[i], look, other.m_Drives[i], otherLook);
            same += isSame ? 1 : 0;
            EXPECT_EQ(isSame, driveText(state.m_Drives[i], look) == driveText(other.m_Drives[i], otherLook))
                << "seed " << seed;
        }
    }
    EXPECT_GT(same, 0);
}

TEST(StateTextTest, OtherTextsAreRefused)
{
    for (const char* text : {"", "{", "[]", "7", "{\"runs\":1,\"bootTime\":0}", "{\"runs\":true}"})
        EXPECT_THROW((void)parseLook(text), std::exception) << text;
    EXPECT_THROW((void)parseDrive("{}", 0), std::exception);
    EXPECT_THROW((void)parseGone("{}"), std::exception);
    const std::string drive =
        R"({"key":"","drive":{},"counters":{},"told":{},"since":0,"known":{"unheard-of":[true]}})";
    EXPECT_THROW((void)parseDrive(drive, 0), std::exception);
}

} // namespace
