#include "Journal/Remaining.h"

#include "Journal/Rules.h"

#include <PI/EventCode.h>

#include <gmock/gmock.h>

namespace {

using namespace Host::Journal;
using Host::Cli::DriveEvent;
using Host::Cli::ObservedDrive;
using testing::IsEmpty;

/** A drive above the limit that it reports, and without a warning of its own. */
ObservedDrive warmDrive(const std::string& serial, const std::string& address = {})
{
    ObservedDrive result;
    result.m_Key = serial + address;
    result.m_Serial = serial;
    result.m_PciAddress = address;
    result.m_Model = "MODEL";
    result.m_Warnings = 0;
    result.m_Temperature = 71.0F;
    result.m_TemperatureLimit = 70.0F;
    return result;
}

DriveEvent eventOf(const ObservedDrive& drive, std::uint32_t id = PI::EVENT_WARNINGS_CLEARED)
{
    DriveEvent result;
    result.m_Event.m_Id = id;
    result.m_Drive.emplace();
    static_cast<Host::Cli::DriveIdentity&>(*result.m_Drive) = drive;
    return result;
}

TEST(RemainingTest, NamesWhatStillHoldsAfterAnAllClear)
{
    ObservedDrive drive = warmDrive("A");
    drive.m_BelowNew = true;
    const std::vector<Entry> entries =
        remaining({{7, {}, {}}, {drive, warmDrive("B")}}, {eventOf(drive)}, {});
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].m_Kind, Kind::OverTemperature);
    EXPECT_EQ(entries[0].m_Phase, Phase::Remains);
    EXPECT_EQ(entries[0].m_Severity, Severity::Warning);
    EXPECT_EQ(entries[0].m_Event, std::nullopt);
    EXPECT_EQ(entries[0].m_Key, "A");
    EXPECT_EQ(entries[0].m_End, 7U);
    EXPECT_EQ(entries[0].m_Text, Host::Cli::subjectText(drive) +
                                     ": this remains: the temperature is outside the drive's limits.");
    EXPECT_EQ(entries[1].m_Kind, Kind::BelowNew);
}

TEST(RemainingTest, SaysNothingWithoutAnAllClearOrWhenNothingHolds)
{
    ObservedDrive drive = warmDrive("A");
    EXPECT_THAT(remaining({{7, {}, {}}, {drive}}, {}, {}), IsEmpty());
    EXPECT_THAT(remaining({{7, {}, {}}, {drive}}, {eventOf(drive, PI::EVENT_RELIABILITY_DEGRADED)}, {}),
                IsEmpty());
    drive.m_Temperature = 69.0F;
    EXPECT_THAT(remaining({{7, {}, {}}, {drive}}, {eventOf(drive)}, {}), IsEmpty())
        << "it is below its limit";
}

TEST(RemainingTest, SaysNothingOfWhatTheSameLookTells)
{
    const ObservedDrive drive = warmDrive("A");
    Entry began;
    began.m_Kind = Kind::OverTemperature;
    began.m_Key = "A";
    EXPECT_THAT(remaining({{7, {}, {}}, {drive}}, {eventOf(drive)}, {began}), IsEmpty());
    began.m_Key = "B";
    EXPECT_EQ(remaining({{7, {}, {}}, {drive}}, {eventOf(drive)}, {began}).size(), 1U);
}

TEST(RemainingTest, TellsDrivesWithOneSerialNumberApart)
{
    const ObservedDrive one = warmDrive("A", "0000:01:00.0");
    const ObservedDrive other = warmDrive("A", "0000:02:00.0");
    const std::vector<Entry> entries = remaining({{7, {}, {}}, {one, other}}, {eventOf(other)}, {});
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].m_Key, other.m_Key);
}

} // namespace
