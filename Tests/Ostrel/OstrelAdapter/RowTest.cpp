#include "Support/RowFixture.h"

#include <PI/StateCode.h>

using namespace NAMESPACE_Ostrel;
using namespace TestSupport;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string UNIT = "Ostrel/Src/OstrelAdapter";
const std::string ALL =
    "SELECT HostName, AdapterNumber, Present, Segment, WarningFlags, ReserveSpace, "
    "WarningThreshold, Vendor, Name, HealthStatus, DriverVersion, Firmware, SerialNumber, "
    "PciBus, PciDevice, PciFunction, Model, Location, ModelFamily, StatusReasons, "
    "MediaErrors FROM Adapter";

CNVMeAdapter makeAdapter(std::int32_t number)
{
    CNVMeAdapter adapter;
    adapter.m_GlobalAdapterNumber = number;
    adapter.m_SerialNumber = "SN" + std::to_string(number);
    adapter.m_Name = "Name" + std::to_string(number);
    return adapter;
}

CNVMeAdapter fullAdapter()
{
    CNVMeAdapter adapter = makeAdapter(7);
    adapter.m_Vendor = "INTEL";
    adapter.m_Model = "INTEL SSDPED1K375GA";
    adapter.m_Location = "PCI:Bus=2&Device=3&Function=4";
    adapter.m_DriverVersion = "6.1.0";
    adapter.m_FirmwareRevision = "E2010600";
    adapter.m_Segment = 1;
    adapter.m_Bus = 2;
    adapter.m_Device = 3;
    adapter.m_Function = 4;
    adapter.m_WarningFlags = 0x205;
    adapter.m_UnsafeShutdowns = 18'446'744'073'709'551'615ULL;
    adapter.m_HealthStatus = PI::HEALTH_DEGRADED;
    adapter.m_HealthReasons = {PI::REASON_TEMPERATURE, PI::REASON_SPARE_LOW, 99999};
    adapter.m_ReserveSpace = 99;
    adapter.m_WarningThreshold = 12;
    return adapter;
}

class AdapterRow : public CRowFixture
{
protected:
    /** The row of `adapter` as another program reads it. */
    Values Stored(const CNVMeAdapter& adapter)
    {
        EXPECT_EQ(m_Plugin.InsertObjectToDatabase(adapter), 0U);
        return Query(ALL + " WHERE AdapterNumber = " + std::to_string(adapter.m_GlobalAdapterNumber));
    }

    RaidDataModels::Adapter Filled(const CNVMeAdapter& adapter)
    {
        RaidDataModels::Adapter row;
        EXPECT_EQ(m_Plugin.SetDatabaseObjectProperties(row, adapter), 0U);
        return row;
    }
};

// They run in turn, so the row is there when it is updated or deleted.
const std::vector<CRowStatement> STATEMENTS = {
    {"InsertObjectToDatabase",
     [](CPluginUnderTest& plugin) { return plugin.InsertObjectToDatabase(makeAdapter(7)); },
     "Adapter (Name7) (7) inserted to db.",
     "Storage query exception thrown during inserting Adapter (Name7) (7) to db. "
     "(Storage query exception thrown! Cannot read ID from database! (broken))"},
    {"UpdateObjectInDatabase",
     [](CPluginUnderTest& plugin) { return plugin.UpdateObjectInDatabase(makeAdapter(7)); },
     "Adapter (Name7) (7) updated in db.",
     "Storage query exception thrown during updating Adapter (Name7) (7) in db. "
     "(Storage query exception thrown! (broken))"},
    {"DeleteObjectFromDatabase",
     [](CPluginUnderTest& plugin) { return plugin.DeleteObjectFromDatabase(makeAdapter(7)); },
     "Adapter (Name7) (7) removed from db.",
     "Storage query exception thrown during removing Adapter (Name7) (7) from db. "
     "(Storage query exception thrown! (broken))"},
};

} // namespace

TEST_F(AdapterRow, EveryPropertyReachesItsColumn)
{
    EXPECT_THAT(Stored(fullAdapter()),
                ElementsAre("localhost", "7", "1", "1", "517", "99", "12", "INTEL", "Name7", "Degraded",
                            "6.1.0", "E2010600", "SN7", "2", "3", "4", "SSDPED1K375GA",
                            "PCI:Bus=2&Device=3&Function=4", "Known",
                            R"(["Too \"hot\", isn't it","Spare\\low","99999"])", "18446744073709551615"));
}

TEST_F(AdapterRow, OtherPropertiesAreSkipped)
{
    const CNVMeAdapter adapter = fullAdapter();
    CNVMeAdapter other = adapter;
    other.m_ID = 99;
    other.m_DeviceIndex = 9;
    other.m_Driver = "other";
    other.m_VendorTag = "other";
    other.m_DeviceName = "other";
    other.m_Temperature = 80;
    other.m_DataUnitsRead = 1;
    other.m_DataUnitsWritten = 1;
    other.m_PowerOnHours = 1;
    other.m_LifetimeRating = 2;
    other.m_SpareState = PI::SPARE_EXHAUSTED;
    other.m_SpareStatus = PI::WEAR_CRITICAL;
    other.m_EndOfLifeDate = "2030-01-01";
    EXPECT_EQ(Stored(other), Stored(adapter));
}

TEST_F(AdapterRow, DefaultsOfAFreshRecord)
{
    EXPECT_THAT(Stored(CNVMeAdapter()),
                ElementsAre("localhost", "0", "1", "0", "0", "100", "10", "", "", "It's 'healthy'", "", "",
                            "", "0", "0", "0", "", "", "Other", "[]", "0"));
}

TEST_F(AdapterRow, AnUnknownHealthIsWrittenAsHealthy)
{
    CNVMeAdapter adapter = makeAdapter(1);
    adapter.m_HealthStatus = PI::HEALTH_CRITICAL;
    EXPECT_EQ(Filled(adapter).m_HealthStatus, "Critical");
    adapter.m_HealthStatus = PI::HEALTH_DEGRADED;
    EXPECT_EQ(Filled(adapter).m_HealthStatus, "Degraded");
    for (const std::uint32_t status :
         std::initializer_list<std::uint32_t>{PI::HEALTH_HEALTHY, PI::DRIVE_OPERATIONAL, 0}) {
        adapter.m_HealthStatus = status;
        EXPECT_EQ(Filled(adapter).m_HealthStatus, "It''s ''healthy''") << status;
    }
}

TEST_F(AdapterRow, TheMakerIsCutBeforeQuotesAreDoubled)
{
    CNVMeAdapter adapter = makeAdapter(1);
    adapter.m_Model = "INTEL'X'";
    EXPECT_EQ(Filled(adapter).m_Model, "X''");
    adapter.m_Vendor = "KIOXIA";
    adapter.m_Model = "SAMSUNG";
    EXPECT_EQ(Filled(adapter).m_Model, "");
}

TEST_F(AdapterRow, AFilledRowStartsAfresh)
{
    RaidDataModels::Adapter row;
    row.m_ID = 5;
    row.m_Name = "former";
    m_Plugin.SetDatabaseObjectProperties(row, CNVMeAdapter());
    EXPECT_EQ(row.m_ID, 0);
    EXPECT_EQ(row.m_Name, "");
}

TEST_F(AdapterRow, ForeignTextsAreStoredAsTheyAre)
{
    const std::string hostile = "x');DROP TABLE Adapter;--";
    CNVMeAdapter adapter = makeAdapter(1);
    adapter.m_SerialNumber = adapter.m_Model = adapter.m_Name = adapter.m_FirmwareRevision =
        adapter.m_Vendor = adapter.m_DriverVersion = adapter.m_Location = hostile;
    ASSERT_EQ(m_Plugin.InsertObjectToDatabase(adapter), 0U);
    EXPECT_THAT(Query("SELECT SerialNumber, Model, Name, Firmware, Vendor, DriverVersion, Location "
                      "FROM Adapter"),
                testing::AllOf(testing::SizeIs(7), testing::Each(hostile)));
    adapter.m_FirmwareRevision = "''";
    ASSERT_EQ(m_Plugin.UpdateObjectInDatabase(adapter), 0U);
    EXPECT_THAT(Query("SELECT Firmware FROM Adapter"), ElementsAre("''"));
    ASSERT_EQ(m_Plugin.DeleteObjectFromDatabase(adapter), 0U);
    EXPECT_THAT(Query("SELECT COUNT(*) FROM Adapter"), ElementsAre("0"));
}

TEST_F(AdapterRow, UpdateRewritesTheRowOfTheNumberAlone)
{
    m_Plugin.InsertObjectToDatabase(makeAdapter(1));
    m_Plugin.InsertObjectToDatabase(makeAdapter(2));
    CNVMeAdapter changed = makeAdapter(2);
    changed.m_Name = "renamed";
    EXPECT_EQ(m_Plugin.UpdateObjectInDatabase(changed), 0U);
    EXPECT_THAT(Query("SELECT ID, Name FROM Adapter ORDER BY ID"), ElementsAre("1", "Name1", "2", "renamed"));
}

TEST_F(AdapterRow, DeleteRemovesTheRowOfTheNumberAlone)
{
    m_Plugin.InsertObjectToDatabase(makeAdapter(1));
    m_Plugin.InsertObjectToDatabase(makeAdapter(2));
    EXPECT_EQ(m_Plugin.DeleteObjectFromDatabase(makeAdapter(1)), 0U);
    EXPECT_THAT(Query("SELECT Name FROM Adapter"), ElementsAre("Name2"));
}

TEST_F(AdapterRow, AnotherHostsRowIsLeftAlone)
{
    m_Plugin.InsertObjectToDatabase(makeAdapter(1));
    Query("UPDATE Adapter SET HostName = 'elsewhere'");
    EXPECT_EQ(m_Plugin.UpdateObjectInDatabase(makeAdapter(1)), 0U);
    EXPECT_EQ(m_Plugin.DeleteObjectFromDatabase(makeAdapter(1)), 0U);
    m_Plugin.InsertObjectToDatabase(makeAdapter(1));
    EXPECT_THAT(Query("SELECT HostName FROM Adapter ORDER BY ID"), ElementsAre("elsewhere", "localhost"));
}

TEST_F(AdapterRow, ConditionsNameTheIntegerKeyFirst)
{
    const auto statements = CountStatements();
    m_Plugin.UpdateObjectInDatabase(makeAdapter(3));
    m_Plugin.DeleteObjectFromDatabase(makeAdapter(3));
    EXPECT_THAT(
        statements->Statements(),
        ElementsAre(
            "SELECT * FROM Adapter Adapter  WHERE ( AdapterNumber = '3') AND ( HostName = 'localhost') ",
            "DELETE FROM Adapter  WHERE ( AdapterNumber = '3') AND ( HostName = 'localhost') "));
}

TEST_F(AdapterRow, FillingIsTracedWithTheNumber)
{
    const CTraceCapture capture(2);
    m_Plugin.InsertObjectToDatabase(makeAdapter(-3));
    const std::string function = "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::SetDatabaseObjectProperties";
    EXPECT_THAT(
        capture.Lines(),
        ElementsAre(CCapturedLine{2, UNIT, function, "ENTER SetDatabaseObjectProperties (Adapter) (-3)"},
                    CCapturedLine{2, UNIT, function, "LEAVE SetDatabaseObjectProperties (Adapter) -> 0"}));
}

TEST_F(AdapterRow, StatementsAreTraced)
{
    ExpectLines(UNIT, STATEMENTS);
}

TEST_F(AdapterRow, FailedStatementsAreTraced)
{
    ExpectLinesOfFailures(UNIT, STATEMENTS);
}

TEST_F(AdapterRow, AnUpdateWithoutARowIsNotTraced)
{
    const CTraceCapture capture(~2U);
    EXPECT_EQ(m_Plugin.UpdateObjectInDatabase(makeAdapter(7)), 0U);
    EXPECT_THAT(capture.Lines(), IsEmpty());
    EXPECT_THAT(Query("SELECT COUNT(*) FROM Adapter"), ElementsAre("0"));
}

TEST_F(AdapterRow, WithoutTheDatabasesLevelsNothingIsTraced)
{
    ExpectNoLines(127 & ~2U, STATEMENTS);
}

TEST_F(AdapterRow, OtherExceptionsPass)
{
    ExpectOtherExceptionsPass(STATEMENTS);
}
