#include "Journal/Journal.h"

#include <gmock/gmock.h>

namespace {

using namespace Host::Journal;
using Host::Cli::ObservedDrive;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t MINUTE = 60'000;
constexpr std::uint64_t HOUR = 60 * MINUTE;

ObservedDrive drive()
{
    ObservedDrive result;
    result.m_Key = result.m_Serial = "A";
    result.m_Model = "MODEL";
    result.m_PowerCycles = 10;
    result.m_UnsafeShutdowns = 2;
    result.m_PowerOnHours = 100;
    result.m_DataUnitsWritten = 1000;
    result.m_MediaErrors = 0;
    result.m_ErrorLogEntries = 5;
    return result;
}

std::vector<Kind> kindsOf(const std::vector<Entry>& entries)
{
    std::vector<Kind> kinds;
    for (const Entry& entry : entries)
        kinds.push_back(entry.m_Kind);
    return kinds;
}

class ProofsTest : public testing::Test
{
protected:
    /** The entries of a look, a minute after the last one. */
    std::vector<Entry> look(std::vector<ObservedDrive> drives)
    {
        pass(MINUTE);
        Outcome outcome = advance(m_State, {m_Now, std::move(drives)});
        m_State = std::move(outcome.m_State);
        return outcome.m_Entries;
    }

    void pass(std::uint64_t time)
    {
        m_Now.m_Time += time;
        *m_Now.m_Uptime += time;
    }

    /** The machine starts again, an hour later. */
    void restart() { m_Now = {m_Now.m_Time + HOUR, MINUTE, m_Now.m_Boot + "+"}; }

    State m_State;
    Host::Moment m_Now{100 * HOUR, 50 * HOUR, "boot"};
};

TEST_F(ProofsTest, UnsafeShutdownsThatGrewProveALossOfPower)
{
    ObservedDrive each = drive();
    EXPECT_THAT(look({each}), IsEmpty()) << "nothing is known of before";
    *each.m_UnsafeShutdowns += 1;
    *each.m_PowerCycles += 1;
    const std::vector<Entry> entries = look({each});
    ASSERT_THAT(kindsOf(entries), ElementsAre(Kind::PowerLost)) << "one loss, although two counters show it";
    EXPECT_EQ(entries[0].m_Text, "MODEL (A): the drive lost its power without notice: it counts the unsafe "
                                 "shutdowns from 2 to 3.");
    EXPECT_EQ(entries[0].m_Severity, Severity::Warning);
    EXPECT_EQ(entries[0].m_Event, std::nullopt);
    EXPECT_EQ(entries[0].m_Begin, m_Now.m_Time - MINUTE);
    EXPECT_EQ(entries[0].m_End, m_Now.m_Time);
    EXPECT_THAT(look({each}), IsEmpty());
}

TEST_F(ProofsTest, ARestartOfTheMachineIsNoLossOfPower)
{
    ObservedDrive each = drive();
    (void)look({each});
    restart();
    *each.m_PowerCycles += 1;
    const std::vector<Entry> entries = look({each});
    ASSERT_THAT(kindsOf(entries), ElementsAre(Kind::MachineRestarted));
    EXPECT_EQ(entries[0].m_Text, "The machine was restarted.");
    EXPECT_EQ(entries[0].m_Severity, Severity::Information);
    EXPECT_EQ(entries[0].m_Key, "");
    EXPECT_EQ(entries[0].m_Begin, m_Now.m_Time - HOUR - MINUTE);
    restart();
    *each.m_UnsafeShutdowns += 1;
    EXPECT_THAT(kindsOf(look({each})), ElementsAre(Kind::MachineRestarted, Kind::PowerLost));
}

TEST_F(ProofsTest, PowerCyclesProveALossOfPowerWithinOneBoot)
{
    ObservedDrive each = drive();
    (void)look({each});
    *each.m_PowerCycles += 1;
    const std::vector<Entry> entries = look({each});
    ASSERT_THAT(kindsOf(entries), ElementsAre(Kind::PowerLost));
    EXPECT_EQ(entries[0].m_Text, "MODEL (A): the drive lost its power while the machine was running: it "
                                 "counts the power cycles from 10 to 11.");
    // It is silent while the machine restarts. Nothing is proven when it answers again in the new boot.
    restart();
    ObservedDrive silent = each;
    silent.m_PowerCycles.reset();
    EXPECT_THAT(kindsOf(look({silent})), ElementsAre(Kind::MachineRestarted));
    *each.m_PowerCycles += 1;
    EXPECT_THAT(look({each}), IsEmpty());
    *each.m_PowerCycles += 1;
    EXPECT_THAT(kindsOf(look({each})), ElementsAre(Kind::PowerLost));
}

TEST_F(ProofsTest, WithoutABootIdentityPowerCyclesProveNothing)
{
    m_Now.m_Boot.clear();
    ObservedDrive each = drive();
    (void)look({each});
    *each.m_PowerCycles += 1;
    EXPECT_THAT(look({each}), IsEmpty());
    m_Now.m_Uptime = 0;
    EXPECT_THAT(kindsOf(look({each})), ElementsAre(Kind::MachineRestarted)) << "the uptime tells it";
}

TEST_F(ProofsTest, CountersThatWentBackAreToldTogether)
{
    ObservedDrive each = drive();
    each.m_MediaErrors = 3;
    (void)look({each});
    each.m_MediaErrors = 0;
    each.m_PowerOnHours = 7;
    each.m_ErrorLogEntries = 0;
    const std::vector<Entry> entries = look({each});
    ASSERT_THAT(kindsOf(entries), ElementsAre(Kind::CounterWentBack));
    EXPECT_EQ(entries[0].m_Text, "MODEL (A): what the drive counts went backwards: the power-on hours from "
                                 "100 to 7, the media errors from 3 to 0.");
    EXPECT_EQ(entries[0].m_Severity, Severity::Warning);
    EXPECT_THAT(look({each}), IsEmpty());
}

TEST_F(ProofsTest, ADriveThatRanLongerThanItWasHereWorkedElsewhere)
{
    ObservedDrive each = drive();
    (void)look({each});
    (void)look({});
    pass(100 * HOUR);
    EXPECT_THAT(look({}), IsEmpty());
    each.m_PowerOnHours = 120;
    *each.m_PowerCycles += 1;
    *each.m_UnsafeShutdowns += 1;
    const std::vector<Entry> entries = look({each});
    ASSERT_THAT(kindsOf(entries), ElementsAre(Kind::DriveAdded, Kind::WorkedElsewhere))
        << "a drive that was pulled lost its power, which is no news";
    EXPECT_EQ(
        entries[1].m_Text,
        "MODEL (A): the drive worked elsewhere while it was gone: it counts the power cycles from 10 to "
        "11, the unsafe shutdowns from 2 to 3, the power-on hours from 100 to 120.");
    EXPECT_EQ(entries[1].m_End - *entries[1].m_Begin, 100 * HOUR + 3 * MINUTE);
    EXPECT_THAT(look({each}), IsEmpty());
}

TEST_F(ProofsTest, ADriveThatWorkedBetweenTwoPowerCyclesWorkedElsewhere)
{
    ObservedDrive each = drive();
    (void)look({each});
    (void)look({});
    *each.m_DataUnitsWritten += 5;
    *each.m_PowerCycles += 1;
    EXPECT_THAT(kindsOf(look({each})), ElementsAre(Kind::DriveAdded)) << "it may have written before it went";
    (void)look({});
    *each.m_PowerCycles += 2;
    EXPECT_THAT(kindsOf(look({each})), ElementsAre(Kind::DriveAdded)) << "it may have been plugged in twice";
    (void)look({});
    *each.m_PowerCycles += 2;
    *each.m_DataUnitsWritten += 5;
    EXPECT_THAT(kindsOf(look({each})), ElementsAre(Kind::DriveAdded, Kind::WorkedElsewhere));
    (void)look({});
    restart();
    *each.m_PowerCycles += 2;
    *each.m_DataUnitsWritten += 5;
    EXPECT_THAT(kindsOf(look({each})), ElementsAre(Kind::MachineRestarted, Kind::DriveAdded))
        << "it may have worked here while nobody watched";
}

TEST_F(ProofsTest, AReturnedDriveIsComparedWhenItIsRead)
{
    ObservedDrive each = drive();
    (void)look({each});
    (void)look({});
    ObservedDrive unread;
    unread.m_Key = unread.m_Serial = "A";
    unread.m_Model = "MODEL";
    EXPECT_THAT(kindsOf(look({unread})), ElementsAre(Kind::DriveAdded));
    pass(20 * HOUR);
    each.m_PowerOnHours = 120;
    State before = m_State;
    EXPECT_THAT(look({each}), IsEmpty()) << "it was here all the time";
    m_State = before;
    each.m_PowerOnHours = 130;
    EXPECT_THAT(kindsOf(look({each})), ElementsAre(Kind::WorkedElsewhere));
}

TEST_F(ProofsTest, ABoundedNumberOfGoneDrivesIsRemembered)
{
    std::vector<ObservedDrive> drives;
    for (int i = 0; i < 300; ++i) {
        drives.push_back(drive());
        drives.back().m_Key = drives.back().m_Serial = std::to_string(i);
    }
    (void)look(drives);
    (void)look({});
    EXPECT_EQ(m_State.m_Gone.size(), 256U);
    EXPECT_EQ(m_State.m_Gone.front().m_Drive.m_Serial, "44");
    (void)look({drives.back()});
    EXPECT_EQ(m_State.m_Gone.size(), 255U);
}

TEST_F(ProofsTest, DrivesThatShareASerialNumberAreNotMistakenForOneAnother)
{
    ObservedDrive one = drive();
    one.m_Key = one.m_PciAddress = "1";
    ObservedDrive other = drive();
    other.m_Key = other.m_PciAddress = "2";
    other.m_PowerOnHours = 5000;
    (void)look({one, other});
    (void)look({});
    EXPECT_THAT(kindsOf(look({one, other})), ElementsAre(Kind::DriveAdded, Kind::DriveAdded));
}

TEST_F(ProofsTest, TheErrorLogIsToldOnceADayAtMost)
{
    ObservedDrive each = drive();
    EXPECT_THAT(look({each}), IsEmpty());
    each.m_ErrorLogEntries = 6;
    std::vector<Entry> entries = look({each});
    ASSERT_THAT(kindsOf(entries), ElementsAre(Kind::ErrorLogGrew)) << "the first is told at once";
    EXPECT_EQ(entries[0].m_Severity, Severity::Information);
    EXPECT_EQ(entries[0].m_Text, "MODEL (A): the entries in the error log grew from 5 to 6.");
    each.m_ErrorLogEntries = 7;
    EXPECT_THAT(look({each}), IsEmpty());
    pass(23 * HOUR);
    each.m_ErrorLogEntries = 9;
    EXPECT_THAT(look({each}), IsEmpty());
    pass(HOUR);
    entries = look({each});
    ASSERT_THAT(kindsOf(entries), ElementsAre(Kind::ErrorLogGrew));
    EXPECT_EQ(entries[0].m_Text, "MODEL (A): the entries in the error log grew from 6 to 9.");
    EXPECT_EQ(entries[0].m_End - *entries[0].m_Begin, 24 * HOUR + 3 * MINUTE);
}

} // namespace
