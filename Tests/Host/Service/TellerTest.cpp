#include "Service/Teller.h"

#include "Base/Sqlite.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace Host;
using Journal::Kind;
using Service::Board;
using Service::Teller;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class TellerTest : public testing::Test
{
protected:
    /** A machine whose drives answer, and are known by serial number alone. */
    static Cli::Snapshot machine(const std::vector<std::string>& serials)
    {
        std::vector<DriveAnswer> answers;
        for (const std::string& serial : serials) {
            DriveAnswer answer;
            answer.m_DeviceName = "/dev/" + serial;
            answer.m_Instance = serial;
            answer.m_SerialNumber = serial;
            answers.push_back(answer);
        }
        return {ObjectStore({}, {}, answers), 1, 1};
    }

    void tell(Teller& teller, const std::vector<std::string>& serials)
    {
        teller.tell(machine(serials), presentMoment());
    }

    std::vector<Kind> kinds() const
    {
        std::vector<Kind> kinds;
        for (const Journal::NumberedEntry& entry : m_Board.journal(0, 1000)) {
            EXPECT_EQ(entry.m_Number, kinds.size() + 1);
            kinds.push_back(entry.m_Entry.m_Kind);
        }
        return kinds;
    }

    const TestSupport::CTemporaryFolder m_Folder;
    const std::filesystem::path m_File = Journal::serviceFile(m_Folder.Path());
    Board m_Board{m_File, false};
    std::vector<std::string> m_Warnings;
    const Warn m_Warn = [this](const std::string& warning) { m_Warnings.push_back(warning); };
};

TEST_F(TellerTest, TellsStartChangesAndEnd)
{
    Teller teller(m_File, m_Board, m_Warn);
    tell(teller, {});
    tell(teller, {"A"});
    tell(teller, {"A"});
    tell(teller, {});
    teller.tellEnd();
    tell(teller, {"A"});
    teller.tellEnd();
    EXPECT_THAT(kinds(), ElementsAre(Kind::ServiceStarted, Kind::DriveAdded, Kind::DoesNotAnswer,
                                     Kind::DriveRemoved, Kind::ServiceEnded));
    EXPECT_EQ(m_Board.figures().m_LastEntry, 5U);
    EXPECT_EQ(m_Board.figures().m_Entries.at("drive-added"), 1U);
    EXPECT_THAT(m_Warnings, IsEmpty());
}

TEST_F(TellerTest, GoesOnWhereAFormerServiceEnded)
{
    {
        Teller former(m_File, m_Board, m_Warn);
        tell(former, {});
    }
    Teller teller(m_File, m_Board, m_Warn);
    tell(teller, {"A"});
    EXPECT_THAT(kinds(), ElementsAre(Kind::ServiceStarted, Kind::ServiceStarted, Kind::DriveAdded,
                                     Kind::DoesNotAnswer));
}

TEST_F(TellerTest, KeepsNewsUntilTheJournalCanBeWritten)
{
    Teller teller(m_File, m_Board, m_Warn);
    tell(teller, {});
    Sqlite::Connection other = Sqlite::Connection::toWrite(m_File);
    other.run("BEGIN IMMEDIATE");
    tell(teller, {"A"});
    tell(teller, {});
    EXPECT_THAT(kinds(), ElementsAre(Kind::ServiceStarted));
    EXPECT_THAT(m_Board.figures().m_JournalFailure, HasSubstr("Service.db"));
    EXPECT_EQ(m_Warnings.size(), 2U);
    other.run("ROLLBACK");
    tell(teller, {});
    EXPECT_THAT(kinds(),
                ElementsAre(Kind::ServiceStarted, Kind::DriveAdded, Kind::DoesNotAnswer, Kind::DriveRemoved));
    EXPECT_EQ(m_Board.figures().m_JournalFailure, "");
}

TEST_F(TellerTest, TellsThatTheClockWasSetAndLosesNothing)
{
    Teller teller(m_File, m_Board, m_Warn);
    Moment moment = presentMoment();
    ASSERT_TRUE(moment.m_Uptime);
    if (moment.m_Boot.empty())
        moment.m_Boot = "a boot that the system does not tell";
    const auto lookAfter = [&](std::int64_t seconds, const std::vector<std::string>& serials) {
        moment.m_Time += static_cast<std::uint64_t>(seconds * 1000);
        *moment.m_Uptime += 10'000;
        teller.tell(machine(serials), moment);
    };
    lookAfter(10, {});
    lookAfter(10 + 3600, {});
    lookAfter(10, {"A"});
    lookAfter(10 - 10800, {});
    EXPECT_THAT(kinds(), ElementsAre(Kind::ServiceStarted, Kind::ClockStepped, Kind::DriveAdded,
                                     Kind::DoesNotAnswer, Kind::ClockStepped, Kind::DriveRemoved));
    const std::vector<Journal::NumberedEntry> journal = m_Board.journal(0, 1000);
    for (const Journal::NumberedEntry& entry : journal)
        EXPECT_LE(entry.m_Entry.m_Begin.value_or(0), entry.m_Entry.m_End) << entry.m_Entry.m_Text;
    EXPECT_THAT(journal.at(1).m_Entry.m_Text, HasSubstr("set forward by 3600 seconds"));
    EXPECT_THAT(journal.at(4).m_Entry.m_Text, HasSubstr("set back by 10800 seconds"));
    EXPECT_EQ(journal.at(5).m_Entry.m_End, moment.m_Time) << "the time is that of the clock as it is now";
}

TEST_F(TellerTest, ComparesNothingUntilTheJournalCanBeOpened)
{
    std::filesystem::create_directory(m_File);
    Teller teller(m_File, m_Board, m_Warn);
    tell(teller, {"A"});
    EXPECT_FALSE(m_Board.figures().m_JournalFailure.empty());
    std::filesystem::remove(m_File);
    tell(teller, {"A"});
    EXPECT_EQ(m_Board.figures().m_JournalFailure, "");
    // The first look adopts what it finds.
    EXPECT_THAT(kinds(), ElementsAre(Kind::ServiceStarted, Kind::DoesNotAnswer));
}

} // namespace
