#include "OstrelPhysicalDrive/Row.h"

#include "Support/RowFixture.h"

#include <PI/ErrorCode.h>
#include <PI/StateCode.h>

using namespace NAMESPACE_Ostrel;
using namespace TestSupport;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string UNIT = "Ostrel/Src/OstrelPhysicalDrive";
const std::string ALL = "SELECT HostName, DriveKey, Vendor, Name, Status, SerialNumber, DriveType, Capacity, "
                        "UsableCapacity, Model, Temperature, Channel, DriveNumber, Location FROM PD";

CNVMePhysicalDrive makeDrive(const std::string& serial)
{
    CNVMePhysicalDrive drive;
    drive.m_SerialNumber = serial;
    drive.m_ProductName = "Name of " + serial;
    return drive;
}

CNVMePhysicalDrive fullDrive()
{
    CNVMePhysicalDrive drive = makeDrive("SN7");
    drive.m_Vendor = "SAMSUNG";
    drive.m_Model = "SAMSUNG MZQL2960HCJR";
    drive.m_Location = "PCI:Bus=2&Device=3&Function=4&ID=0";
    drive.m_Status = PI::DRIVE_WARNING;
    drive.m_CapacityMiB = 8'796'093'022'207ULL;
    drive.m_UsableCapacityMiB = 915'715;
    drive.m_Temperature = 31.5F;
    return drive;
}

class DriveRow : public CRowFixture
{
protected:
    RaidDataModels::PD Filled(const CNVMePhysicalDrive& drive)
    {
        RaidDataModels::PD row;
        EXPECT_EQ(m_Plugin.SetDatabaseObjectProperties(row, drive), 0U);
        return row;
    }
};

// They run in turn, so the row is there when it is updated or deleted.
const std::vector<CRowStatement> STATEMENTS = {
    {"InsertObjectToDatabase",
     [](CPluginUnderTest& plugin) { return plugin.InsertObjectToDatabase(makeDrive("S1")); },
     "PD (Name of S1) inserted to db.",
     "Storage query exception thrown during inserting PD (Name of S1) to db. "
     "(Storage query exception thrown! Cannot read ID from database! (broken))"},
    {"UpdateObjectInDatabase",
     [](CPluginUnderTest& plugin) { return plugin.UpdateObjectInDatabase(makeDrive("S1")); },
     "PD (Name of S1) updated in db.",
     "Storage query exception thrown during updating PD (Name of S1) in db. "
     "(Storage query exception thrown! (broken))"},
};

/** A drive with a malicious serial number. */
class DriveRowOf : public DriveRow, public testing::WithParamInterface<std::string>
{};

INSTANTIATE_TEST_SUITE_P(Serials, DriveRowOf,
                         testing::Values("x');DROP TABLE PD;--", "NULL", "", " ", "'", "''", "\"", "\\",
                                         "%s%d", "NULL ", "null", "1e3", "AAAAAAAAAAAAAAAAAAA'"));

} // namespace

TEST_F(DriveRow, EveryPropertyReachesItsColumn)
{
    ASSERT_EQ(m_Plugin.InsertObjectToDatabase(fullDrive()), 0U);
    EXPECT_THAT(Query(ALL), ElementsAre("localhost", "SN7", "SAMSUNG", "Name of SN7", "Warned", "SN7", "SSD",
                                        "8796093022207", "915715", "MZQL2960HCJR", "31.5", "0", "0",
                                        "PCI:Bus=2&Device=3&Function=4&ID=0"));
}

TEST_F(DriveRow, OtherPropertiesAreSkipped)
{
    CNVMePhysicalDrive other = fullDrive();
    other.m_ID = 99;
    other.m_DeviceIndex = 9;
    other.m_DeviceName = "other";
    other.m_BlockSize = 4096;
    other.m_ReservedMiB = 5;
    other.m_ReservedPercent = 6;
    m_Plugin.InsertObjectToDatabase(fullDrive());
    const Values former = Query(ALL);
    m_Plugin.InsertObjectToDatabase(other);
    EXPECT_EQ(Query(ALL), former);
}

TEST_F(DriveRow, DefaultsOfAFreshRecord)
{
    ASSERT_EQ(m_Plugin.InsertObjectToDatabase(CNVMePhysicalDrive()), 0U);
    EXPECT_THAT(Query(ALL), ElementsAre("localhost", "", "", "", "Online", "", "SSD", "0", "0", "", "NULL",
                                        "0", "0", ""));
    EXPECT_THAT(Query("SELECT Temperature IS NULL FROM PD"), ElementsAre("1"));
}

TEST_F(DriveRow, TemperatureIsWrittenInFewDigits)
{
    CNVMePhysicalDrive drive;
    for (const auto& [temperature, text] : std::vector<std::pair<float, std::string>>{
             {25.0F, "25"}, {0.0F, "0"}, {-1.5F, "-1.5"}, {36.85F, "36.85"}, {-1.0F, "NULL"}}) {
        drive.m_Temperature = temperature;
        EXPECT_EQ(Filled(drive).m_Temperature, text);
    }
}

TEST_F(DriveRow, AnyStatusGoesByItsText)
{
    CNVMePhysicalDrive drive;
    for (const auto& [status, text] :
         std::vector<std::pair<std::uint32_t, std::string>>{{PI::DRIVE_OPERATIONAL, "Online"},
                                                            {PI::DRIVE_WARNING, "Warned"},
                                                            {PI::HEALTH_CRITICAL, "Critical"},
                                                            {PI::HEALTH_HEALTHY, "It''s ''healthy''"},
                                                            {7, "7"}}) {
        drive.m_Status = status;
        EXPECT_EQ(Filled(drive).m_Status, text);
    }
}

TEST_F(DriveRow, TheMakerIsCutWhoeverTheMakerIs)
{
    CNVMePhysicalDrive drive;
    drive.m_Vendor = "KIOXIA";
    drive.m_Model = "MICRON_7450_O'K";
    EXPECT_EQ(Filled(drive).m_Model, "O''K");
}

TEST_F(DriveRow, AFilledRowStartsAfresh)
{
    RaidDataModels::PD row;
    row.m_ID = 5;
    row.m_Location = "former";
    m_Plugin.SetDatabaseObjectProperties(row, CNVMePhysicalDrive());
    EXPECT_EQ(row.m_ID, 0);
    EXPECT_EQ(row.m_Location, "");
}

TEST_P(DriveRowOf, IsStoredFoundReplacedAndRewritten)
{
    CNVMePhysicalDrive drive = makeDrive(GetParam());
    m_Plugin.InsertObjectToDatabase(makeDrive("another"));
    for (int round = 0; round < 2; ++round)
        ASSERT_EQ(m_Plugin.InsertObjectToDatabase(drive), 0U);
    drive.m_Model = drive.m_ProductName = drive.m_Vendor = drive.m_Location = "O'Neill's);--";
    ASSERT_EQ(m_Plugin.UpdateObjectInDatabase(drive), 0U);
    const std::string quoted = DatabaseORM::escapeQuotes(GetParam());
    EXPECT_THAT(Query("SELECT DriveKey, IFNULL(SerialNumber, 'NULL'), Model, Name, Vendor, Location FROM PD "
                      "WHERE DriveKey = '" +
                      quoted + "'"),
                ElementsAre(GetParam(), GetParam(), "O'Neill's);--", "O'Neill's);--", "O'Neill's);--",
                            "O'Neill's);--"));
    EXPECT_THAT(Query("SELECT COUNT(*) FROM PD; SELECT Name FROM PD WHERE DriveKey = 'another'"),
                ElementsAre("2", "Name of another"));
}

TEST_P(DriveRowOf, IsRemovedWithItsAdapter)
{
    CNVMeAdapter adapter;
    adapter.m_GlobalAdapterNumber = 1;
    adapter.m_SerialNumber = GetParam();
    m_Plugin.InsertObjectToDatabase(adapter);
    m_Plugin.InsertObjectToDatabase(makeDrive(GetParam()));
    m_Plugin.InsertObjectToDatabase(makeDrive("another"));
    ASSERT_EQ(m_Plugin.DeleteObjectFromDatabase(adapter), 0U);
    EXPECT_THAT(Query("SELECT DriveKey FROM PD"), ElementsAre("another"));
}

TEST_F(DriveRow, ASwapInOneSlotLeavesTheNewDrive)
{
    CNVMeAdapter slot;
    slot.m_GlobalAdapterNumber = 1;
    for (const char* serial : {"OLD'", "NEW'"}) {
        slot.m_SerialNumber = serial;
        m_Plugin.InsertObjectToDatabase(slot);
        m_Plugin.InsertObjectToDatabase(makeDrive(serial));
    }
    EXPECT_THAT(Query("SELECT SerialNumber FROM Adapter; SELECT DriveKey FROM PD"),
                ElementsAre("NEW'", "NEW'"));
}

TEST_F(DriveRow, ConditionsNameTheHostFirst)
{
    const auto statements = CountStatements();
    m_Plugin.UpdateObjectInDatabase(makeDrive("S'1"));
    EXPECT_THAT(
        statements->Statements(),
        ElementsAre("SELECT * FROM PD PD  WHERE ( HostName = 'localhost') AND ( DriveKey = 'S''1') "));
}

TEST_F(DriveRow, FillingIsTraced)
{
    const CTraceCapture capture(2);
    m_Plugin.InsertObjectToDatabase(makeDrive("S1"));
    EXPECT_THAT(
        capture.Lines(),
        ElementsAre(CCapturedLine{2, UNIT, "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::SetDatabaseObjectProperties",
                                  "ENTER SetDatabaseObjectProperties (PhysicalDisk)"}));
}

TEST_F(DriveRow, StatementsAreTraced)
{
    ExpectLines(UNIT, STATEMENTS);
}

TEST_F(DriveRow, FailedStatementsAreTraced)
{
    ExpectLinesOfFailures(UNIT, STATEMENTS);
}

TEST_F(DriveRow, AnUpdateWithoutARowIsNotTraced)
{
    const CTraceCapture capture(~2U);
    EXPECT_EQ(m_Plugin.UpdateObjectInDatabase(makeDrive("S1")), 0U);
    EXPECT_THAT(capture.Lines(), IsEmpty());
    EXPECT_THAT(Query("SELECT COUNT(*) FROM PD"), ElementsAre("0"));
}

TEST_F(DriveRow, WithoutTheDatabasesLevelsNothingIsTraced)
{
    ExpectNoLines(127 & ~2U, STATEMENTS);
}

TEST_F(DriveRow, OtherExceptionsPass)
{
    ExpectOtherExceptionsPass(STATEMENTS);
}

TEST_F(DriveRow, AnInsertMayRunAgainAndAgain)
{
    const CNVMePhysicalDrive drive = fullDrive();
    const CDriveRowInsert insert(drive);
    const auto statements = CountStatements();
    const CTraceCapture capture(~0U);
    for (int run = 0; run < 3; ++run)
        EXPECT_EQ(insert.Run(*m_Plugin.m_Database), 0U);
    const std::string filled = "ENTER SetDatabaseObjectProperties (PhysicalDisk)";
    const std::string done = "PD (Name of SN7) inserted to db.";
    EXPECT_THAT(capture.Texts(), ElementsAre(filled, done, filled, done, filled, done));
    EXPECT_EQ(statements->Count("SELECT MAX(ID) FROM PD"), 3U);
    EXPECT_EQ(statements->Count("INSERT INTO PD"), 3U);
    EXPECT_THAT(Query("SELECT ID, DriveKey FROM PD"), ElementsAre("3", "SN7"));
}

TEST_F(DriveRow, AnInsertThatFailedMayRunAgain)
{
    const CNVMePhysicalDrive drive = fullDrive();
    const CDriveRowInsert insert(drive);
    const auto healthy = m_Plugin.m_Database->m_Access;
    std::vector<std::shared_ptr<const DatabaseORM::tableBase_t>> tables;
    tables.swap(m_Plugin.m_Database->m_Tables);
    EXPECT_EQ(insert.Run(*m_Plugin.m_Database), PI::ERR_GENERAL_FAILURE) << "no table, so nothing to fill";
    tables.swap(m_Plugin.m_Database->m_Tables);
    BreakDatabase("broken");
    EXPECT_EQ(insert.Run(*m_Plugin.m_Database), PI::ERR_GENERAL_FAILURE);
    EXPECT_THAT(Query("SELECT COUNT(*) FROM PD"), ElementsAre("0"));
    m_Plugin.m_Database->m_Access = healthy;
    EXPECT_EQ(insert.Run(*m_Plugin.m_Database), 0U);
    EXPECT_THAT(Query("SELECT DriveKey FROM PD"), ElementsAre("SN7"));
}
