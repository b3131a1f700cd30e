#include "DatabaseFixture.h"

#include <Database/Maintenance.h>

#include <fstream>
#include <iterator>

using namespace TestSupport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class Maintenance : public DatabaseFixture
{
protected:
    void Insert(std::int32_t number, const std::string& serial)
    {
        DatabaseORM::insert(*m_Storage, makeAdapter(number, serial));
        DatabaseORM::insert(*m_Storage, makeDrive(serial));
    }

    static void RemoveOthers(const std::vector<std::int32_t>& numbers, const std::vector<std::string>& keys)
    {
        EXPECT_TRUE(removeOtherObjects(numbers, keys, countDatabaseChanges()));
    }

    Values Adapters() { return Query("SELECT SerialNumber FROM Adapter ORDER BY AdapterNumber"); }
    Values Drives() { return Query("SELECT DriveKey FROM PD ORDER BY DriveKey"); }
};

} // namespace

TEST_F(Maintenance, RemovesWhatIsNotNamed)
{
    Insert(1, "S1");
    Insert(2, "x');DROP TABLE PD;--");
    Insert(3, "S3");
    Insert(4, "NULL");
    DatabaseORM::insert(*m_Storage, makeDrive("alone"));
    RemoveOthers({2, 4, 9}, {"x');DROP TABLE PD;--", "NULL", "other"});
    EXPECT_THAT(Adapters(), ElementsAre("x');DROP TABLE PD;--", "NULL"));
    EXPECT_THAT(Drives(), ElementsAre("NULL", "x');DROP TABLE PD;--"));
}

TEST_F(Maintenance, RemovesAllWhenNothingIsNamed)
{
    Insert(1, "S1");
    RaidDataModels::Plugin plugin;
    plugin.m_Name = "NVMe-Plugin";
    DatabaseORM::insert(*m_Storage, plugin);
    RemoveOthers({}, {});
    EXPECT_THAT(Adapters(), IsEmpty());
    EXPECT_THAT(Drives(), IsEmpty());
    EXPECT_THAT(Query("SELECT COUNT(*) FROM Plugin"), ElementsAre("1"));
}

TEST_F(Maintenance, LeavesOtherHostsAlone)
{
    Insert(1, "S1");
    Query("UPDATE Adapter SET HostName = 'elsewhere'; UPDATE PD SET HostName = 'elsewhere'");
    RemoveOthers({}, {});
    EXPECT_THAT(Adapters(), ElementsAre("S1"));
    EXPECT_THAT(Drives(), ElementsAre("S1"));
}

TEST_F(Maintenance, TakesThousandsOfNames)
{
    std::vector<std::int32_t> numbers;
    std::vector<std::string> keys;
    for (std::int32_t number = 0; number < 5000; ++number) {
        numbers.push_back(number);
        keys.push_back("serial number " + std::to_string(number));
    }
    Insert(4999, keys.back());
    Insert(5000, "other");
    RemoveOthers(numbers, keys);
    EXPECT_THAT(Adapters(), ElementsAre(keys.back()));
    EXPECT_THAT(Drives(), ElementsAre(keys.back()));
}

TEST_F(Maintenance, RemovesAllOrNothing)
{
    Insert(1, "S1");
    Query("CREATE TRIGGER Refuse BEFORE DELETE ON PD BEGIN SELECT RAISE(ABORT, 'refused'); END;");
    EXPECT_THAT(databaseError([] { RemoveOthers({}, {}); }), HasSubstr("refused"));
    EXPECT_THAT(Adapters(), ElementsAre("S1"));
    Insert(2, "S2");
}

TEST_F(Maintenance, ASoundDatabaseChecksOut)
{
    Insert(1, "S1");
    checkDatabase();
    EXPECT_THAT(Drives(), ElementsAre("S1"));
}

TEST_F(Maintenance, FindsAFileThatIsNone)
{
    std::ofstream(File()) << std::string(4096, 'x');
    EXPECT_THAT(databaseError(checkDatabase), HasSubstr("file is not a database"));
}

TEST_F(Maintenance, FindsAFolderThatIsMissing)
{
    setDatabaseFile(Folder() / "missing" / "Ostrel.db");
    EXPECT_THAT(databaseError(checkDatabase), HasSubstr("unable to open database file"));
}

TEST_F(Maintenance, FindsAFileThatMayNotBeWritten)
{
    Query("PRAGMA query_only = ON");
    EXPECT_THAT(databaseError(checkDatabase), HasSubstr("attempt to write a readonly database"));
}

TEST_F(Maintenance, FindsDamage)
{
    for (int number = 1; number < 200; ++number)
        Insert(number, std::string(100, 'x') + std::to_string(number));
    m_Storage.reset();
    setDatabaseFile({});
    {
        std::fstream file(File(), std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(0, std::ios::end);
        const auto size = file.tellp();
        ASSERT_GT(size, 4 * 4096);
        file.seekp(size - std::streamoff(2 * 4096));
        file << std::string(2 * 4096, '\x55');
    }
    Reopen();
    EXPECT_THAT(databaseError(checkDatabase), testing::AnyOf(HasSubstr("damaged"), HasSubstr("malformed")));
}

TEST_F(Maintenance, TellsWhoseTablesAFileHolds)
{
    const auto version = [this](const char* number) {
        Query(std::string("PRAGMA user_version = ") + number);
        return inspectDatabase(File());
    };
    EXPECT_EQ(version("2"), EDatabaseTables::Present);
    EXPECT_EQ(version("1"), EDatabaseTables::Foreign);
    EXPECT_EQ(version("-3"), EDatabaseTables::Foreign);
    EXPECT_EQ(version("3"), EDatabaseTables::Newer);
}

TEST_F(Maintenance, RemovesNothingWhenRowsCameMeanwhile)
{
    Insert(1, "S1");
    const std::int64_t changes = countDatabaseChanges();
    Insert(2, "S2");
    EXPECT_FALSE(removeOtherObjects({}, {}, changes));
    EXPECT_THAT(Drives(), ElementsAre("S1", "S2"));
    EXPECT_TRUE(removeOtherObjects({2}, {"S2"}, countDatabaseChanges()));
    EXPECT_THAT(Drives(), ElementsAre("S2"));
}

TEST_F(Maintenance, TellsTheLastFailureOnce)
{
    Query("SELECT 1");
    EXPECT_EQ(takeDatabaseFailure(), std::nullopt);
    const std::string first = databaseError([&] { Query("first"); });
    EXPECT_EQ(takeDatabaseFailure(), first);
    EXPECT_EQ(takeDatabaseFailure(), std::nullopt);
    databaseError([&] { Query("second"); });
    const std::string third = databaseError([&] { Query("third"); });
    Query("SELECT 1");
    EXPECT_EQ(takeDatabaseFailure(), third);
}

TEST_F(Maintenance, AFileThatCannotBeOpenedIsAFailureToTell)
{
    setDatabaseFile(Folder() / "missing" / "Ostrel.db");
    EXPECT_EQ(takeDatabaseFailure(), std::nullopt) << "nobody has asked it for anything";
    const std::string error = databaseError([] { countDatabaseChanges(); });
    EXPECT_EQ(takeDatabaseFailure(), error);
}
