#include "Journal/Journal.h"

#include <PI/EventCode.h>

#include <gmock/gmock.h>

namespace {

using namespace Host::Journal;
using Host::Cli::ObservedDrive;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

ObservedDrive drive(const std::string& serial, const std::string& address = "0000:01:00.0")
{
    ObservedDrive result;
    result.m_Key = serial;
    result.m_Serial = serial;
    result.m_Model = "MODEL";
    result.m_PciAddress = address;
    return result;
}

ObservedDrive at(const std::string& serial, const std::string& address)
{
    ObservedDrive result = drive(serial, address);
    result.m_Key = "pci-" + address;
    return result;
}

auto is(Kind kind, Phase phase, const std::string& key)
{
    return AllOf(Field(&Entry::m_Kind, kind), Field(&Entry::m_Phase, phase), Field(&Entry::m_Key, key));
}

class JournalTest : public testing::Test
{
protected:
    /** The entries of the next look, ten milliseconds after the last. */
    std::vector<Entry> look(std::vector<ObservedDrive> drives)
    {
        m_Time += 10;
        Outcome outcome = advance(m_State, {{m_Time, m_Time, "boot"}, std::move(drives)});
        m_State = std::move(outcome.m_State);
        return outcome.m_Entries;
    }

    State m_State;
    std::uint64_t m_Time = 100;
};

TEST_F(JournalTest, TheFirstLookAdoptsWhatIsThere)
{
    ObservedDrive sound = drive("A");
    sound.m_Firmware = "1";
    sound.m_CapacityMiB = 1;
    sound.m_BlockSize = 512;
    sound.m_Warnings = 0;
    sound.m_BelowNew = false;
    sound.m_Temperature = 30.0F;
    sound.m_TemperatureLimit = 70.0F;
    sound.m_MediaErrors = 0;
    sound.m_Spare = 60;
    sound.m_Wear = 79;
    EXPECT_THAT(look({sound, drive("B")}), IsEmpty());
    EXPECT_THAT(look({sound, drive("B")}), IsEmpty());
}

TEST_F(JournalTest, MediaErrorsOfADriveThatIsFirstSeenAreToldOnce)
{
    ObservedDrive one = drive("A");
    one.m_MediaErrors = 1;
    ObservedDrive unread = drive("B");
    const std::vector<Entry> first = look({one, unread});
    ASSERT_EQ(first.size(), 1U);
    EXPECT_EQ(first[0].m_Kind, Kind::MediaErrorsGrew);
    EXPECT_EQ(first[0].m_Phase, Phase::Present);
    EXPECT_EQ(first[0].m_Severity, Severity::Warning);
    EXPECT_THAT(first[0].m_Text, testing::EndsWith(": the drive has counted 1 media error so far."));
    unread.m_MediaErrors = 7;
    const std::vector<Entry> second = look({one, unread});
    ASSERT_EQ(second.size(), 1U) << "it was not read before";
    EXPECT_THAT(second[0].m_Text, testing::EndsWith(": the drive has counted 7 media errors so far."));
    EXPECT_THAT(look({one, unread}), IsEmpty());
}

TEST_F(JournalTest, ADriveThatDoesNotAnswerIsToldOnceAndNeverGone)
{
    ObservedDrive each = drive("A");
    each.m_Silent = false;
    each.m_Warnings = 0;
    EXPECT_THAT(look({each}), IsEmpty());
    each.m_Silent = true;
    const std::vector<Entry> began = look({each});
    ASSERT_THAT(began, ElementsAre(is(Kind::DoesNotAnswer, Phase::Began, "A")));
    EXPECT_EQ(began[0].m_Text,
              "MODEL (A): the drive does not answer; what is shown of it is from its last answer.");
    EXPECT_EQ(began[0].m_Severity, Severity::Warning);
    EXPECT_THAT(look({each}), IsEmpty());
    each.m_Silent.reset();
    EXPECT_THAT(look({each}), IsEmpty()) << "nobody knows";
    each.m_Silent = false;
    const std::vector<Entry> ended = look({each});
    ASSERT_THAT(ended, ElementsAre(is(Kind::DoesNotAnswer, Phase::Ended, "A")));
    EXPECT_EQ(ended[0].m_Text, "MODEL (A): the drive answers again.");
}

TEST_F(JournalTest, ADriveThatHasNeverAnsweredIsNotNewWhenItDoes)
{
    ObservedDrive each = drive("A");
    each.m_Silent = true;
    EXPECT_THAT(look({each}), ElementsAre(is(Kind::DoesNotAnswer, Phase::Present, "A")));
    each.m_Silent = false;
    each.m_Warnings = 0;
    EXPECT_THAT(look({each}), ElementsAre(is(Kind::DoesNotAnswer, Phase::Ended, "A")));
}

TEST_F(JournalTest, DrivesComeAndGo)
{
    (void)look({drive("A"), drive("B")});
    const std::vector<Entry> entries = look({drive("B"), drive("C")});
    ASSERT_EQ(entries.size(), 2U);
    ObservedDrive gone = drive("A");
    EXPECT_EQ(entries[0], (Entry{Kind::DriveRemoved, Phase::Change, Severity::Warning,
                                 PI::EVENT_ADAPTER_REMOVED, "A", gone, "MODEL (A) was removed.", 110, 120}));
    EXPECT_EQ(entries[1],
              (Entry{Kind::DriveAdded, Phase::Change, Severity::Information, PI::EVENT_ADAPTER_ADDED, "C",
                     drive("C"), "MODEL (C) was added.", 110, 120}));
    EXPECT_THAT(look({drive("B"), drive("C")}), IsEmpty());
    EXPECT_THAT(look({}), UnorderedElementsAre(is(Kind::DriveRemoved, Phase::Change, "B"),
                                               is(Kind::DriveRemoved, Phase::Change, "C")));
    EXPECT_THAT(look({}), IsEmpty());
}

TEST_F(JournalTest, EachWarningBeginsAndEndsOnce)
{
    struct Row
    {
        std::uint8_t m_Warning;
        Kind m_Kind;
        Severity m_Severity;
        std::optional<std::uint32_t> m_Event;
    };
    const Row rows[] = {{0x01, Kind::SpareLow, Severity::Error, PI::EVENT_SPARE_LOW},
                        {0x02, Kind::OverTemperature, Severity::Warning, std::nullopt},
                        {0x04, Kind::ReliabilityDegraded, Severity::Warning, PI::EVENT_RELIABILITY_DEGRADED},
                        {0x08, Kind::ReadOnly, Severity::Error, std::nullopt},
                        {0x10, Kind::MemoryBackupFailed, Severity::Error, PI::EVENT_MEMORY_BACKUP_FAILED}};
    ObservedDrive warned = drive("A");
    warned.m_Warnings = 0;
    EXPECT_THAT(look({warned}), IsEmpty());
    for (const Row& row : rows) {
        warned.m_Warnings = row.m_Warning;
        const std::vector<Entry> began = look({warned});
        ASSERT_THAT(began, ElementsAre(is(row.m_Kind, Phase::Began, "A")));
        EXPECT_EQ(began[0].m_Severity, row.m_Severity);
        EXPECT_EQ(began[0].m_Event, row.m_Event);
        EXPECT_EQ(began[0].m_Begin, m_Time - 10);
        EXPECT_EQ(began[0].m_End, m_Time);
        EXPECT_THAT(look({warned}), IsEmpty());
        warned.m_Warnings = 0;
        const std::vector<Entry> ended = look({warned});
        ASSERT_THAT(ended, ElementsAre(is(row.m_Kind, Phase::Ended, "A")));
        EXPECT_EQ(ended[0].m_Severity, Severity::Information);
        EXPECT_EQ(ended[0].m_Event, PI::EVENT_WARNINGS_CLEARED);
    }
}

TEST_F(JournalTest, OnlyTheEndOfTheLastWarningHasAnEvent)
{
    ObservedDrive warned = drive("A");
    warned.m_Warnings = 0x0C;
    (void)look({warned});
    warned.m_Warnings = 0x04;
    EXPECT_EQ(look({warned}).at(0).m_Event, std::nullopt);
    warned.m_Warnings = 0;
    EXPECT_EQ(look({warned}).at(0).m_Event, PI::EVENT_WARNINGS_CLEARED);
}

TEST_F(JournalTest, WhatIsThereAtFirstIsToldAsPresent)
{
    ObservedDrive sick = drive("A");
    sick.m_Warnings = 0x08;
    sick.m_BelowNew = true;
    sick.m_Wear = 95;
    const std::vector<Entry> entries = look({sick});
    ASSERT_THAT(entries, UnorderedElementsAre(is(Kind::ReadOnly, Phase::Present, "A"),
                                              is(Kind::BelowNew, Phase::Present, "A"),
                                              is(Kind::WearGrew, Phase::Present, "A")));
    EXPECT_EQ(entries[0].m_Begin, std::nullopt);
    EXPECT_EQ(entries[0].m_Text, "MODEL (A): the drive is read-only and takes no data any more.");
    EXPECT_THAT(look({sick}), IsEmpty());
    ObservedDrive newcomer = sick;
    newcomer.m_Key = newcomer.m_Serial = "B";
    EXPECT_THAT(look({sick, newcomer}), UnorderedElementsAre(is(Kind::DriveAdded, Phase::Change, "B"),
                                                             is(Kind::ReadOnly, Phase::Present, "B"),
                                                             is(Kind::BelowNew, Phase::Present, "B"),
                                                             is(Kind::WearGrew, Phase::Present, "B")));
}

TEST_F(JournalTest, WhatIsNotKnownChangesNothing)
{
    ObservedDrive full = drive("A");
    full.m_Firmware = "1";
    full.m_CapacityMiB = 7;
    full.m_BlockSize = 512;
    full.m_Warnings = 0x1F;
    full.m_BelowNew = true;
    full.m_Temperature = 90.0F;
    full.m_CriticalTemperatureLimit = 80.0F;
    full.m_MediaErrors = 3;
    full.m_Spare = 5;
    full.m_Wear = 100;
    (void)look({full});
    ObservedDrive silent = drive("A");
    silent.m_PciAddress.clear();
    EXPECT_THAT(look({silent}), IsEmpty());
    EXPECT_THAT(look({full}), IsEmpty());
    (void)look({silent});
    full.m_Warnings = 0x1E;
    const std::vector<Entry> entries = look({full});
    ASSERT_THAT(entries, ElementsAre(is(Kind::SpareLow, Phase::Ended, "A")));
    EXPECT_EQ(entries[0].m_Begin, 130U) << "the last look that told it";
    EXPECT_EQ(entries[0].m_End, 150U);
}

TEST_F(JournalTest, ATemperatureSwingsAroundItsLimitWithoutAWord)
{
    ObservedDrive warm = drive("A");
    warm.m_TemperatureLimit = 70.0F;
    warm.m_CriticalTemperatureLimit = 80.0F;
    warm.m_Warnings = 0;
    const auto told = [&](float temperature) {
        warm.m_Temperature = temperature;
        return look({warm});
    };
    EXPECT_THAT(told(69.9F), IsEmpty());
    EXPECT_THAT(told(70.0F), ElementsAre(is(Kind::OverTemperature, Phase::Began, "A")));
    EXPECT_THAT(told(67.1F), IsEmpty());
    EXPECT_THAT(told(70.0F), IsEmpty());
    EXPECT_THAT(told(80.0F), ElementsAre(is(Kind::OverCriticalTemperature, Phase::Began, "A")));
    EXPECT_THAT(told(77.1F), IsEmpty());
    EXPECT_THAT(told(77.0F), ElementsAre(is(Kind::OverCriticalTemperature, Phase::Ended, "A")));
    EXPECT_THAT(told(67.0F), ElementsAre(is(Kind::OverTemperature, Phase::Ended, "A")));
}

TEST_F(JournalTest, TheDrivesWarningAndItsLimitAreOneThing)
{
    ObservedDrive warm = drive("A");
    warm.m_TemperatureLimit = 70.0F;
    warm.m_Temperature = 75.0F;
    warm.m_Warnings = 0;
    EXPECT_THAT(look({warm}), ElementsAre(is(Kind::OverTemperature, Phase::Present, "A")));
    warm.m_Warnings = 0x02;
    EXPECT_THAT(look({warm}), IsEmpty());
    warm.m_Temperature = 60.0F;
    EXPECT_THAT(look({warm}), IsEmpty());
    warm.m_Warnings.reset();
    EXPECT_THAT(look({warm}), IsEmpty()) << "the warning may still be there";
    warm.m_Warnings = 0;
    warm.m_Temperature.reset();
    EXPECT_THAT(look({warm}), IsEmpty()) << "the temperature may still be there";
    warm.m_Temperature = 60.0F;
    EXPECT_THAT(look({warm}), ElementsAre(is(Kind::OverTemperature, Phase::Ended, "A")));
}

TEST_F(JournalTest, AMarginOfTheTemperatureIsToldByItsDegree)
{
    using enum TLXX::ETemperatureMargin;
    ObservedDrive warm = drive("A");
    warm.m_Warnings = 0;
    const auto told = [&](std::optional<TLXX::ETemperatureMargin> margin) {
        warm.m_TemperatureMargin = margin;
        return look({warm});
    };
    EXPECT_THAT(told(std::nullopt), IsEmpty());
    std::vector<Entry> entries = told(Critical);
    ASSERT_THAT(entries, ElementsAre(is(Kind::TemperatureMargin, Phase::Present, "A")));
    EXPECT_EQ(entries[0].m_Severity, Severity::Error);
    EXPECT_EQ(entries[0].m_Event, PI::EVENT_TEMPERATURE_CRITICAL);
    EXPECT_EQ(entries[0].m_Text, "MODEL (A): the temperature has reached the critical level.");
    EXPECT_THAT(told(Critical), IsEmpty());
    EXPECT_THAT(told(std::nullopt), IsEmpty());
    entries = told(AboveCritical);
    ASSERT_THAT(entries, ElementsAre(is(Kind::TemperatureMargin, Phase::Began, "A")));
    EXPECT_EQ(entries[0].m_Severity, Severity::Error);
    EXPECT_EQ(entries[0].m_Event, PI::EVENT_TEMPERATURE_ABOVE_CRITICAL);
    entries = told(NearCritical);
    ASSERT_THAT(entries, ElementsAre(is(Kind::TemperatureMargin, Phase::Began, "A")));
    EXPECT_EQ(entries[0].m_Severity, Severity::Warning);
    EXPECT_EQ(entries[0].m_Event, PI::EVENT_TEMPERATURE_NEAR_CRITICAL);
    entries = told(Safe);
    ASSERT_THAT(entries, ElementsAre(is(Kind::TemperatureMargin, Phase::Ended, "A")));
    EXPECT_EQ(entries[0].m_Severity, Severity::Information);
    EXPECT_EQ(entries[0].m_Event, PI::EVENT_WARNINGS_CLEARED);
    EXPECT_THAT(told(Safe), IsEmpty());
}

TEST_F(JournalTest, TheMarginOfTheTemperatureIsAWarningLikeOthers)
{
    using enum TLXX::ETemperatureMargin;
    ObservedDrive warm = drive("A");
    warm.m_Warnings = 0x04;
    warm.m_TemperatureMargin = NearCritical;
    (void)look({warm});
    warm.m_Warnings = 0;
    EXPECT_EQ(look({warm}).at(0).m_Event, std::nullopt) << "the temperature is still near its limit";
    warm.m_Warnings = 0x04;
    (void)look({warm});
    warm.m_TemperatureMargin = Safe;
    EXPECT_EQ(look({warm}).at(0).m_Event, std::nullopt) << "the reliability is still degraded";
    warm.m_Warnings = 0;
    EXPECT_EQ(look({warm}).at(0).m_Event, PI::EVENT_WARNINGS_CLEARED);
}

TEST_F(JournalTest, StepsAreToldOnceAndTheFurthestCounts)
{
    ObservedDrive ageing = drive("A");
    const auto told = [&](std::int32_t spare, std::int32_t wear) {
        ageing.m_Spare = spare;
        ageing.m_Wear = wear;
        return look({ageing});
    };
    EXPECT_THAT(told(76, 49), IsEmpty());
    const std::vector<Entry> first = told(75, 50);
    ASSERT_EQ(first.size(), 2U);
    EXPECT_EQ(first[0].m_Kind, Kind::SpareFell);
    EXPECT_EQ(first[0].m_Severity, Severity::Information);
    EXPECT_EQ(first[0].m_Text, "MODEL (A): the available spare is down to 75 %.");
    EXPECT_EQ(first[1].m_Kind, Kind::WearGrew);
    EXPECT_EQ(first[1].m_Severity, Severity::Information);
    EXPECT_EQ(first[1].m_Text, "MODEL (A): 50 % of the rated life is used.");
    EXPECT_THAT(told(76, 49), IsEmpty());
    EXPECT_THAT(told(75, 50), IsEmpty());
    EXPECT_EQ(told(49, 50).at(0).m_Severity, Severity::Warning);
    EXPECT_EQ(told(9, 50).at(0).m_Severity, Severity::Error) << "two steps at once";
    EXPECT_EQ(told(9, 80).at(0).m_Severity, Severity::Warning);
    EXPECT_EQ(told(9, 180).at(0).m_Severity, Severity::Error);
    EXPECT_THAT(told(0, 255), IsEmpty());
}

TEST_F(JournalTest, ASpareBelowItsThresholdSaysMoreThanAStep)
{
    ObservedDrive ageing = drive("A");
    ageing.m_Spare = 4;
    ageing.m_Warnings = 0x01;
    EXPECT_THAT(look({ageing}), ElementsAre(is(Kind::SpareLow, Phase::Present, "A")));
    ageing.m_Warnings = 0;
    EXPECT_THAT(look({ageing}), ElementsAre(is(Kind::SpareLow, Phase::Ended, "A")));
}

TEST_F(JournalTest, FiguresAndTextsThatBecomeOthers)
{
    ObservedDrive changing = drive("A", "0000:01:00.0");
    changing.m_Firmware = "1";
    changing.m_CapacityMiB = 1000;
    changing.m_BlockSize = 512;
    changing.m_MediaErrors = 2;
    (void)look({changing});
    changing.m_PciAddress = "0000:02:00.0";
    changing.m_Firmware = "2";
    changing.m_CapacityMiB = 900;
    changing.m_BlockSize = 4096;
    changing.m_MediaErrors = 5;
    const std::vector<Entry> entries = look({changing});
    ASSERT_THAT(entries, ElementsAre(is(Kind::MediaErrorsGrew, Phase::Change, "A"),
                                     is(Kind::CapacityChanged, Phase::Change, "A"),
                                     is(Kind::BlockSizeChanged, Phase::Change, "A"),
                                     is(Kind::FirmwareChanged, Phase::Change, "A"),
                                     is(Kind::Moved, Phase::Change, "A")));
    EXPECT_EQ(entries[0].m_Text, "MODEL (A): the media errors grew from 2 to 5.");
    EXPECT_EQ(entries[1].m_Text, "MODEL (A): the capacity changed from 1000 to 900 MiB.");
    EXPECT_EQ(entries[2].m_Text, "MODEL (A): the block size changed from 512 to 4096 bytes.");
    EXPECT_EQ(entries[2].m_Event, PI::EVENT_DRIVE_CHANGED);
    EXPECT_EQ(entries[3].m_Text, "MODEL (A): the firmware changed from 1 to 2.");
    EXPECT_EQ(entries[4].m_Text, "MODEL (A): the drive moved from 0000:01:00.0 to 0000:02:00.0.");
    EXPECT_THAT(look({changing}), IsEmpty());
    changing.m_MediaErrors = 1;
    EXPECT_THAT(look({changing}), ElementsAre(is(Kind::CounterWentBack, Phase::Change, "A")));
    changing.m_MediaErrors = 2;
    EXPECT_EQ(look({changing}).at(0).m_Text, "MODEL (A): the media errors grew from 1 to 2.");
}

TEST_F(JournalTest, TwoDrivesThatChangePlacesMove)
{
    (void)look({drive("A", "0000:01:00.0"), drive("B", "0000:02:00.0")});
    EXPECT_THAT(look({drive("B", "0000:01:00.0"), drive("A", "0000:02:00.0")}),
                ElementsAre(is(Kind::Moved, Phase::Change, "B"), is(Kind::Moved, Phase::Change, "A")));
}

TEST_F(JournalTest, ASharedSerialNumberMakesNoDriveAnotherOne)
{
    (void)look({drive("A", "0000:01:00.0")});
    EXPECT_THAT(look({at("A", "0000:01:00.0"), at("A", "0000:02:00.0")}),
                ElementsAre(is(Kind::DriveAdded, Phase::Change, "pci-0000:02:00.0")));
    EXPECT_THAT(look({drive("A", "0000:02:00.0")}),
                ElementsAre(is(Kind::DriveRemoved, Phase::Change, "pci-0000:01:00.0")));
    EXPECT_THAT(look({drive("A", "0000:02:00.0")}), IsEmpty());
}

TEST_F(JournalTest, APlaceIsNoDrive)
{
    (void)look({at("A", "0000:01:00.0"), at("", "0000:02:00.0"), at("", "0000:03:00.0")});
    ObservedDrive other = at("", "0000:02:00.0");
    other.m_Model = "OTHER";
    EXPECT_THAT(look({at("B", "0000:01:00.0"), other, at("", "0000:03:00.0")}),
                UnorderedElementsAre(is(Kind::DriveRemoved, Phase::Change, "pci-0000:01:00.0"),
                                     is(Kind::DriveRemoved, Phase::Change, "pci-0000:02:00.0"),
                                     is(Kind::DriveAdded, Phase::Change, "pci-0000:01:00.0"),
                                     is(Kind::DriveAdded, Phase::Change, "pci-0000:02:00.0")));
}

TEST_F(JournalTest, NamelessDrivesWithoutAPlaceStayApart)
{
    ObservedDrive one = drive("", "");
    one.m_Key = "device-1";
    ObservedDrive other = drive("", "");
    other.m_Key = "device-2";
    (void)look({one});
    EXPECT_THAT(look({other}), ElementsAre(is(Kind::DriveRemoved, Phase::Change, "device-1"),
                                           is(Kind::DriveAdded, Phase::Change, "device-2")));
}

} // namespace
