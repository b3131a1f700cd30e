#include "Support/FakeDrives.h"
#include "Support/RowFixture.h"
#include "Support/VirtualClock.h"

#include <PI/AdapterNumbers.h>
#include <PI/ErrorCode.h>

#include <memory>
#include <numeric>
#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace TestSupport;
using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

const std::string COUNTS =
    "SELECT COUNT(*) FROM Plugin; SELECT COUNT(*) FROM Adapter; SELECT COUNT(*) FROM PD";

/** The lines of the functions that write rows, with their levels. */
std::vector<std::string> rowLines(const CTraceCapture& capture)
{
    std::vector<std::string> lines;
    for (const CCapturedLine& line : capture.Lines())
        if (line.m_Function.ends_with("DatabaseObjectProperties") || line.m_Function.ends_with("ToDatabase"))
            lines.push_back(std::to_string(line.m_Level) + ' ' + line.m_SourceUnit + ' ' + line.m_Function +
                            ' ' + line.m_Text);
    return lines;
}

/** The rows that Initialize leaves in the database. */
class InitializeRows : public CRowFixture
{
protected:
    /** The first adapter gets number 1, whatever numbers earlier tests of this process gave. */
    InitializeRows() { PI::restoreAdapterNumbers(m_File.File().parent_path() / "missing"); }

    std::uint32_t Run()
    {
        testing::internal::CaptureStdout();
        const std::uint32_t result = m_Plugin.Initialize(m_AdapterIDs);
        testing::internal::GetCapturedStdout();
        return result;
    }

    /** As in another start of the program. */
    static std::uint32_t RunAgain()
    {
        CPluginUnderTest plugin;
        std::vector<PI::CAdapterID> adapterIDs;
        testing::internal::CaptureStdout();
        const std::uint32_t result = plugin.Initialize(adapterIDs);
        testing::internal::GetCapturedStdout();
        return result;
    }

    void AddDrives(std::uint32_t count)
    {
        for (std::uint32_t number = 0; number < count; ++number)
            m_Drives.Add(CFakeDrive(number));
    }

    std::uint64_t Waited() const
    {
        const auto sleeps = m_Clock.Sleeps();
        return std::accumulate(sleeps.begin(), sleeps.end(), std::uint64_t{0});
    }

    CVirtualClock m_Clock;
    CFakeDrives m_Drives;
    std::vector<PI::CAdapterID> m_AdapterIDs;
};

/** Records each statement and the object that had its text. Passes it on. */
class CTextCounter : public DatabaseWrapper::DatabaseDAO
{
public:
    explicit CTextCounter(std::shared_ptr<DatabaseWrapper::DatabaseDAO> database)
        : m_Database(std::move(database))
    {}

    std::vector<std::string> query(const std::string& sql) override
    {
        if (sql.starts_with("INSERT INTO PD"))
            m_Texts.emplace(&sql, sql);
        return m_Database->query(sql);
    }

    /** How many objects had a text of their own. */
    std::size_t Objects() const
    {
        std::set<const std::string*> objects;
        for (const auto& [object, text] : m_Texts)
            objects.insert(object);
        return objects.size();
    }

    std::size_t Texts() const { return m_Texts.size(); }

private:
    std::shared_ptr<DatabaseWrapper::DatabaseDAO> m_Database;
    std::set<std::pair<const std::string*, std::string>> m_Texts;
};

class InitializeRowsOf : public InitializeRows, public testing::WithParamInterface<std::uint32_t>
{};

INSTANTIATE_TEST_SUITE_P(Controllers, InitializeRowsOf, testing::Values(1U, 3U, 8U, 64U));

} // namespace

TEST_P(InitializeRowsOf, OneForThePluginAndEachAdapterAndDriveHoweverOftenItRuns)
{
    AddDrives(GetParam());
    const std::string count = std::to_string(GetParam());
    ASSERT_EQ(Run(), 0U);
    EXPECT_THAT(Query(COUNTS), ElementsAre("1", count, count));
    const auto numbers = Query("SELECT AdapterNumber, SerialNumber FROM Adapter ORDER BY AdapterNumber");
    ASSERT_EQ(RunAgain(), 0U);
    EXPECT_THAT(Query(COUNTS), ElementsAre("1", count, count));
    EXPECT_EQ(Query("SELECT AdapterNumber, SerialNumber FROM Adapter ORDER BY AdapterNumber"), numbers);
    EXPECT_THAT(Query("PRAGMA integrity_check"), ElementsAre("ok"));
}

TEST_P(InitializeRowsOf, AreWrittenAsBySingleInserts)
{
    AddDrives(GetParam());
    const auto statements = CountStatements();
    std::vector<std::string> lines;
    {
        const CTraceCapture capture(~0U);
        ASSERT_EQ(Run(), 0U);
        lines = rowLines(capture);
    }
    const Values ofTheStart = statements->Statements();

    const auto singles = CountStatements();
    const CTraceCapture capture(~0U);
    (void)m_Plugin.InsertObjectToDatabase(m_Plugin.m_Plugin);
    for (const auto& adapter : m_Plugin.m_Adapters) {
        (void)m_Plugin.InsertObjectToDatabase(adapter);
        for (const auto& drive : m_Plugin.m_PhysicalDrives)
            (void)m_Plugin.InsertObjectToDatabase(drive);
    }
    EXPECT_EQ(ofTheStart, singles->Statements());
    EXPECT_EQ(lines, rowLines(capture));
    EXPECT_EQ(ofTheStart.size(), 2 * (1 + GetParam() + GetParam() * GetParam()));
}

TEST_P(InitializeRowsOf, AreFilledOnceForEachDrive)
{
    AddDrives(GetParam());
    const auto counter = std::make_shared<CTextCounter>(m_Plugin.m_Database->m_Access);
    m_Plugin.m_Database->m_Access = counter;
    ASSERT_EQ(Run(), 0U);
    EXPECT_EQ(counter->Objects(), GetParam());
    EXPECT_EQ(counter->Texts(), GetParam());
}

TEST_F(InitializeRows, EachAdapterIsFollowedByEveryDrive)
{
    AddDrives(2);
    const auto statements = CountStatements();
    const CTraceCapture capture(128);
    ASSERT_EQ(Run(), 0U);
    EXPECT_EQ(statements->Count("INSERT INTO Plugin"), 1U);
    EXPECT_EQ(statements->Count("INSERT INTO Adapter"), 2U);
    EXPECT_EQ(statements->Count("INSERT INTO PD"), 4U);
    EXPECT_THAT(capture.Texts(),
                ElementsAre("Plugin NVMe inserted to db.", "Adapter () (1) inserted to db.",
                            "PD (Plain Drive) inserted to db.", "PD (Plain Drive) inserted to db.",
                            "Adapter () (2) inserted to db.", "PD (Plain Drive) inserted to db.",
                            "PD (Plain Drive) inserted to db."));
}

TEST_F(InitializeRows, AFailedStartStoresNothing)
{
    ASSERT_EQ(Run(), PI::ERR_NO_SUPPORTED_HARDWARE);
    EXPECT_THAT(Query(COUNTS), ElementsAre("0", "0", "0"));
}

TEST_F(InitializeRows, HostileTextsOfADriveAreStoredLikeAnyOther)
{
    AddDrives(1);
    CFakeDrive& drive = m_Drives.Add(CFakeDrive(1));
    drive.Vendor(0x8086).Serial("x');DROP TABLE PD;--").Model("INTEL ';--\"").Firmware("'1.0'");
    drive.Tag("'tag'")
        .MarketingLog("it's '); DROP TABLE Adapter; --")
        .TemperatureLog(0, 0)
        .LegacyLog(100, 100);
    ASSERT_EQ(Run(), 0U);
    EXPECT_THAT(Query(COUNTS), ElementsAre("1", "2", "2"));
    EXPECT_THAT(Query("SELECT SerialNumber, Model, Firmware FROM Adapter WHERE SerialNumber = "
                      "'x'');DROP TABLE PD;--'"),
                ElementsAre("x');DROP TABLE PD;--", "';--\"", "'1.0'"));
    EXPECT_THAT(Query("SELECT SerialNumber, Model, Name FROM PD WHERE DriveKey = 'x'');DROP TABLE PD;--'"),
                ElementsAre("x');DROP TABLE PD;--", "';--\"", m_Plugin.m_PhysicalDrives[1].m_ProductName));
    EXPECT_THAT(m_Plugin.m_PhysicalDrives[1].m_ProductName,
                testing::HasSubstr("it's '); DROP TABLE Adapter"));
}

TEST_F(InitializeRows, OddSerialNumbersHaveRowsToo)
{
    std::uint32_t number = 0;
    for (const char* serial : {"NULL", "", "TWIN", "TWIN"})
        m_Drives.Add(CFakeDrive(number++)).Serial(serial);
    for (int run = 0; run < 2; ++run) {
        ASSERT_EQ(run == 0 ? Run() : RunAgain(), 0U);
        EXPECT_THAT(Query("SELECT SerialNumber FROM Adapter ORDER BY AdapterNumber"),
                    ElementsAre("NULL", "", "TWIN", "TWIN"));
        EXPECT_THAT(Query("SELECT DriveKey FROM PD ORDER BY DriveKey"), ElementsAre("", "NULL", "TWIN"));
    }
}

TEST_F(InitializeRows, ALockedDatabaseCostsAQuarterOfASecondAndNoAdapter)
{
    AddDrives(64);
    Query("SELECT 1");
    const CDatabaseFile::CLock lock(m_File);
    const auto statements = CountStatements();
    const CTraceCapture capture(128);
    EXPECT_EQ(Run(), 0U);
    EXPECT_THAT(m_AdapterIDs, SizeIs(64));
    EXPECT_THAT(m_Plugin.m_Adapters, SizeIs(64));
    EXPECT_THAT(m_Plugin.m_PhysicalDrives, SizeIs(64));
    EXPECT_LE(Waited(), 250U);
    EXPECT_THAT(capture.Texts(), SizeIs(1 + 64 + 64 * 64));
    EXPECT_THAT(capture.Texts(), Each(testing::HasSubstr("database is locked")));
    EXPECT_GE(statements->Statements().size(), 1U + 64 + 64 * 64);
}

TEST_F(InitializeRows, AFileThatIsNoDatabaseCostsNoAdapter)
{
    AddDrives(2);
    m_File.Write(std::string(4096, 'x'));
    const CTraceCapture capture(256);
    EXPECT_EQ(Run(), 0U);
    EXPECT_THAT(m_Plugin.m_Adapters, SizeIs(2));
    const std::string reason = "(Storage query exception thrown! Cannot read ID from database! (database '" +
                               m_File.File().string() + "': file is not a database))";
    ASSERT_THAT(capture.Texts(), SizeIs(7));
    EXPECT_EQ(capture.Texts()[0], "Exception thrown during inserting NVMe plugin object to db. " + reason);
    EXPECT_EQ(capture.Texts()[1],
              "Storage query exception thrown during inserting Adapter () (1) to db. " + reason);
    EXPECT_EQ(capture.Texts()[2],
              "Storage query exception thrown during inserting PD (Plain Drive) to db. " + reason);
}

TEST_F(InitializeRows, ADriveThatTookAnothersPlaceHasItsRows)
{
    AddDrives(2);
    ASSERT_EQ(Run(), 0U);
    m_Drives.At(0).Serial("SWAPPED");
    ASSERT_EQ(RunAgain(), 0U);
    EXPECT_THAT(Query("SELECT SerialNumber FROM Adapter ORDER BY AdapterNumber"),
                ElementsAre("SWAPPED", "SN1"));
    EXPECT_THAT(Query("SELECT DriveKey FROM PD ORDER BY DriveKey"), ElementsAre("SN1", "SWAPPED"));
}
