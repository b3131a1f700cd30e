#include "Host/Checks.h"
#include "Support/TemporaryFolder.h"

#include <Database/Database.h>
#include <Database/Maintenance.h>
#include <DatabaseORM/DatabaseException.h>
#include <PI/ConfigFile.h>

#include <algorithm>
#include <fstream>

namespace {

using namespace Host::Cli;
using Host::ExitCode;
using HostTest::finding;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(CheckSettings, TellsOfAFileThatIsIgnored)
{
    const TestSupport::CTemporaryFolder folder;
    EXPECT_THAT(checkSettings(folder.Path()), finding(Finding::Ok, "Ostrel.ini, so the defaults are used"));
    folder.Write("Ostrel.ini", "PollInterval=45\n");
    EXPECT_THAT(checkSettings(folder.Path()), finding(Finding::Ok, "Ostrel.ini"));
    folder.Write("Ostrel.ini", std::string("PollInterval=45\n\0", 17));
    const Check torn = checkSettings(folder.Path());
    EXPECT_THAT(torn, finding(Finding::Problem, "contains zero bytes"));
    EXPECT_THAT(torn.m_Remedy, HasSubstr("Write it again"));
    std::filesystem::remove(folder.Path() / "Ostrel.ini");
    std::filesystem::create_directory(folder.Path() / "Ostrel.ini");
    const Check unreadable = checkSettings(folder.Path());
    EXPECT_THAT(unreadable, finding(Finding::Problem, "cannot be read"));
    EXPECT_THAT(unreadable.m_Remedy, HasSubstr("may read"));
}

TEST(CheckSettings, ReadsTheFileOfAFolderThatIsNamedByARelativePath)
{
    const TestSupport::CTemporaryFolder folder;
    folder.Write("Ostrel.ini", "PollInterval=abc\n");
    // The folder of all settings must not be put before the path.
    PI::CConfigFile::SetFolder((folder.Path() / "other").native());
    EXPECT_THAT(checkSettings(std::filesystem::relative(folder.Path())),
                finding(Finding::Problem, "PollInterval is \"abc\""));
    PI::CConfigFile::SetFolder({});
}

TEST(CheckSettings, TellsOfAnIntervalThatIsNotTakenAsItStands)
{
    const TestSupport::CTemporaryFolder folder;
    for (const char* good : {"2", "30", "255", " 45", "+45"}) {
        folder.Write("Ostrel.ini", std::string("PollInterval=") + good + "\r\n");
        EXPECT_THAT(checkSettings(folder.Path()), finding(Finding::Ok, "Ostrel.ini")) << good;
    }
    for (const char* bad : {"", "abc", "30 s", "45 ", "1.5", "4294967296"}) {
        folder.Write("Ostrel.ini", std::string("PollInterval=") + bad + "\n");
        const Check check = checkSettings(folder.Path());
        EXPECT_THAT(
            check, finding(Finding::Problem, "PollInterval is \"" + std::string(bad) +
                                                 "\", which is no whole number, so the default, 30, is used"))
            << bad;
        EXPECT_THAT(check.m_Remedy, HasSubstr("from 2 to 255"));
    }
    for (const auto& [far, near] : {std::pair("0", "2"), {"1", "2"}, {"256", "255"}, {"-5", "255"}}) {
        folder.Write("Ostrel.ini", std::string("PollInterval=") + far + "\n");
        EXPECT_THAT(checkSettings(folder.Path()),
                    finding(Finding::Problem, "nearest possible value, " + std::string(near) + ", is used"))
            << far;
    }
    folder.Write("Ostrel.ini", "PolInterval=45\n");
    EXPECT_THAT(checkSettings(folder.Path()), finding(Finding::Note, "no line \"PollInterval=...\""));
}

class CheckKeptRows : public testing::Test
{
protected:
    ~CheckKeptRows() override { setDatabaseFile({}); }

    std::filesystem::path file() const { return m_Folder.Path() / "a#b%41" / "Ostrel.db"; }

    void make(const std::string& sql) const
    {
        std::filesystem::create_directories(file().parent_path());
        setDatabaseFile(file());
        (void)getDatabasePointer()->m_Access->query(sql);
        setDatabaseFile({});
    }

    /** Names, sizes and times. */
    std::vector<std::string> folder() const
    {
        std::vector<std::string> entries;
        for (const auto& entry : std::filesystem::directory_iterator(file().parent_path()))
            entries.push_back(entry.path().filename().string() + " " + std::to_string(entry.file_size()) +
                              " " + std::to_string(entry.last_write_time().time_since_epoch().count()));
        std::sort(entries.begin(), entries.end());
        return entries;
    }

    TestSupport::CTemporaryFolder m_Folder;
};

TEST_F(CheckKeptRows, SaysWhenThereAreNoneYet)
{
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Ok, "Ostrel.db yet"));
    EXPECT_TRUE(std::filesystem::is_empty(m_Folder.Path()));
}

TEST_F(CheckKeptRows, SaysWhenNoneCouldBeMade)
{
    const std::filesystem::path blocked = m_Folder.Write("file", "");
    for (const char* name : {"Ostrel.db", "a/Ostrel.db", "a/b/Ostrel.db"}) {
        const Check check = checkKeptRows(blocked / name);
        EXPECT_THAT(check,
                    finding(Finding::Problem, "it cannot be created: " + blocked.string() + " is no folder"));
        EXPECT_EQ(check.m_ExitCode, ExitCode::RequestFailed);
        EXPECT_THAT(check.m_Remedy, HasSubstr("--data"));
    }
}

TEST_F(CheckKeptRows, LooksAndLeavesNothingBehind)
{
    make("SELECT 1");
    const std::vector<std::string> before = folder();
    EXPECT_THAT(before, testing::SizeIs(1));
    EXPECT_THAT(checkKeptRows(file()),
                finding(Finding::Ok, file().string() + "; this run does not change it"));
    EXPECT_EQ(folder(), before);
}

TEST_F(CheckKeptRows, ReadsBesideWhoeverWrites)
{
    std::filesystem::create_directories(file().parent_path());
    setDatabaseFile(file());
    const auto database = getDatabasePointer();
    (void)database->m_Access->query("BEGIN IMMEDIATE; CREATE TABLE Other (ID INTEGER)");
    // Content that is not yet in the file itself also counts: the tables are only in the log beside it.
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Ok, "this run does not change it"));
    (void)database->m_Access->query("COMMIT; DROP TABLE Plugin");
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Problem, "there is no table Plugin"));
}

TEST_F(CheckKeptRows, KnowsTablesOfAnotherReleaseAndEmptyFiles)
{
    make("PRAGMA user_version = 1");
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Note, "tables of another release"));
    std::filesystem::remove(file());
    make("PRAGMA user_version = 4711");
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Problem, "tables of a newer release"));
    std::filesystem::remove(file());
    std::ofstream(file(), std::ios::trunc).close();
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Ok, "is empty"));
}

TEST_F(CheckKeptRows, NamesAColumnThatIsMissing)
{
    make("DROP TRIGGER IgnoreUnchangedAdapter; ALTER TABLE Adapter DROP COLUMN ReserveSpace");
    EXPECT_THAT(checkKeptRows(file()),
                finding(Finding::Problem, "the table Adapter has no column ReserveSpace"));
    setDatabaseFile(file());
    EXPECT_THROW(checkDatabase(), DBEXCEPTION::DatabaseException);
}

TEST_F(CheckKeptRows, NamesWhatIsWrongWithTheFile)
{
    make("SELECT 1");
    std::ofstream(file(), std::ios::trunc) << std::string(4096, 'x');
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Problem, "file is not a database"));
    std::filesystem::remove(file());
    std::filesystem::create_directory(file());
    const Check check = checkKeptRows(file());
    EXPECT_THAT(check, finding(Finding::Problem, "Ostrel.db is no file"));
    EXPECT_EQ(check.m_ExitCode, ExitCode::RequestFailed);
}

TEST_F(CheckKeptRows, FindsDamage)
{
    // A page that belongs to no table or index.
    make("CREATE TABLE Other (Text TEXT UNIQUE); PRAGMA writable_schema = ON; "
         "UPDATE sqlite_master SET sql = 'CREATE TABLE Other (Text TEXT)' WHERE name = 'Other'; "
         "DELETE FROM sqlite_master WHERE tbl_name = 'Other' AND type = 'index'");
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Problem, "Ostrel.db': damaged: "));
}

} // namespace
