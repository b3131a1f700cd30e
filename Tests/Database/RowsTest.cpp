#include "DatabaseFixture.h"

using namespace TestSupport;
using DatabaseORM::compoundCondition_t;
using DatabaseORM::condition_t;
using DatabaseORM::insert;
using DatabaseORM::remove;
using DatabaseORM::select;
using DatabaseORM::update;
using RaidDataModels::Adapter;
using RaidDataModels::PD;
using RaidDataModels::Plugin;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/** The statement builder on real tables, with plain and with qualified column names. */
class Rows : public DatabaseFixture, public testing::WithParamInterface<bool>
{
protected:
    Rows() { m_Storage->m_Qualify = GetParam(); }

    static compoundCondition_t<Adapter> AdapterKey(std::int32_t number)
    {
        return {{&Adapter::m_AdapterNumber, number}, {&Adapter::m_HostName, "localhost"}};
    }

    static compoundCondition_t<PD> DriveKey(const std::string& serial)
    {
        return {{&PD::m_HostName, "localhost"}, {&PD::m_DriveKey, DatabaseORM::escapeQuotes(serial)}};
    }

    Values Drives() { return Query("SELECT DriveKey FROM PD ORDER BY DriveKey"); }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Qualify, Rows, testing::Bool());

TEST_P(Rows, PluginComesBackAsItWasStored)
{
    Plugin plugin;
    plugin.m_ObjectID = 0x0139'0000'0000'0001;
    plugin.m_Name = "NVMe-Plugin";
    plugin.m_PollInterval = 30;
    plugin.m_SettableProperties =
        R"({"settableProperties":[{"name":"pollinterval","formatStr":"<int32>[2..255, 1]"}]})";
    plugin.m_Identity = "Plugin:ID=313";
    plugin.m_Vendor = "Ostrel";
    plugin.m_Version = "7.16.3";
    EXPECT_EQ(insert(*m_Storage, plugin), 1);

    const auto rows = select(*m_Storage, condition_t(&Plugin::m_Name, "NVMe-Plugin"));
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].m_ID, 1);
    EXPECT_EQ(rows[0].m_Description, "");
    EXPECT_EQ(rows[0].m_ObjectID, plugin.m_ObjectID);
    EXPECT_EQ(rows[0].m_Name, plugin.m_Name);
    EXPECT_EQ(rows[0].m_PollInterval, 30);
    EXPECT_EQ(rows[0].m_SettableProperties, plugin.m_SettableProperties);
    EXPECT_EQ(rows[0].m_Reserved1, 0);
    EXPECT_EQ(rows[0].m_Identity, "Plugin:ID=313");
    EXPECT_EQ(rows[0].m_Vendor, "Ostrel");
    EXPECT_EQ(rows[0].m_Version, "7.16.3");
}

TEST_P(Rows, RepeatedInsertsReplace)
{
    Plugin plugin;
    plugin.m_Name = "NVMe-Plugin";
    for (int round = 0; round < 3; ++round) {
        insert(*m_Storage, plugin);
        insert(*m_Storage, makeAdapter(1, "S1"));
        insert(*m_Storage, makeAdapter(2, "S2"));
        insert(*m_Storage, makeDrive("S1"));
        insert(*m_Storage, makeDrive("S2"));
    }
    EXPECT_THAT(Query("SELECT COUNT(*) FROM Plugin; SELECT COUNT(*) FROM Adapter"), ElementsAre("1", "2"));
    EXPECT_THAT(Drives(), ElementsAre("S1", "S2"));
}

TEST_P(Rows, InsertReturnsTheRowsIdentifier)
{
    EXPECT_EQ(insert(*m_Storage, makeDrive("S1")), 1);
    EXPECT_EQ(insert(*m_Storage, makeDrive("S2")), 2);
    Query("UPDATE PD SET ID = 7 WHERE DriveKey = 'S2'");
    EXPECT_EQ(insert(*m_Storage, makeDrive("S3")), 8);
    EXPECT_EQ(insert(*m_Storage, makeDrive("S1")), 9);
    EXPECT_THAT(Query("SELECT ID FROM PD WHERE DriveKey = 'S1'"), ElementsAre("9"));
    EXPECT_EQ(DatabaseORM::max(*m_Storage, &PD::m_ID), 9U);
}

TEST_P(Rows, UpdateRewritesTheFoundRow)
{
    insert(*m_Storage, makeAdapter(1, "S1"));
    insert(*m_Storage, makeAdapter(2, "S2"));
    const auto found = select(*m_Storage, AdapterKey(2));
    ASSERT_EQ(found.size(), 1U);
    Adapter changed = makeAdapter(2, "S2");
    changed.m_ID = found[0].m_ID;
    changed.m_Name = "renamed";
    changed.m_WarningFlags = 5;
    update(*m_Storage, changed);

    const auto rows = select(*m_Storage, AdapterKey(2));
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].m_ID, found[0].m_ID);
    EXPECT_EQ(rows[0].m_Name, "renamed");
    EXPECT_EQ(rows[0].m_WarningFlags, 5);
    EXPECT_EQ(select(*m_Storage, AdapterKey(1)).at(0).m_Name, "");
}

TEST_P(Rows, NullMarkersComeBack)
{
    Adapter adapter = makeAdapter(1, "S1");
    adapter.m_Segment = DatabaseORM::NULL_INTEGER;
    adapter.m_Firmware = "NULL";
    insert(*m_Storage, adapter);
    EXPECT_THAT(Query("SELECT Segment IS NULL, Firmware IS NULL, Driverversion IS NULL FROM Adapter"),
                ElementsAre("1", "1", "0"));
    const auto rows = select(*m_Storage, AdapterKey(1));
    EXPECT_EQ(rows.at(0).m_Segment, DatabaseORM::NULL_INTEGER);
    EXPECT_EQ(rows.at(0).m_Firmware, "NULL");
}

TEST_P(Rows, KeysOfAnyTextAreStoredFoundReplacedAndRemoved)
{
    for (const std::string serial :
         {"x');DROP TABLE PD;--", "NULL", "", " ", "it's", "''", "\"", "%_\\", "12", "Größe"}) {
        insert(*m_Storage, makeAdapter(1, serial));
        insert(*m_Storage, makeDrive(serial));
        insert(*m_Storage, makeDrive(serial));
        ASSERT_EQ(select(*m_Storage, DriveKey(serial)).size(), 1U) << serial;
        EXPECT_EQ(select(*m_Storage, DriveKey(serial))[0].m_DriveKey, serial);
        EXPECT_EQ(select(*m_Storage, AdapterKey(1)).at(0).m_SerialNumber, serial);
        remove(*m_Storage, AdapterKey(1));
        EXPECT_THAT(Drives(), IsEmpty()) << serial;
    }
}

TEST_P(Rows, AnAdapterNumberWithoutValueIsFoundAndReplacedToo)
{
    insert(*m_Storage, makeAdapter(DatabaseORM::NULL_INTEGER, "S1"));
    insert(*m_Storage, makeAdapter(DatabaseORM::NULL_INTEGER, "S2"));
    const auto rows = select(*m_Storage, AdapterKey(DatabaseORM::NULL_INTEGER));
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].m_SerialNumber, "S2");
}

TEST_P(Rows, RemovingAnAdapterRemovesItsDrive)
{
    insert(*m_Storage, makeAdapter(1, "S1"));
    insert(*m_Storage, makeAdapter(2, "S2"));
    insert(*m_Storage, makeDrive("S1"));
    insert(*m_Storage, makeDrive("S2"));
    remove(*m_Storage, AdapterKey(1));
    EXPECT_THAT(Drives(), ElementsAre("S2"));
}

TEST_P(Rows, ADriveSharedByTwoAdaptersStaysUntilBothAreGone)
{
    insert(*m_Storage, makeAdapter(1, "S1"));
    insert(*m_Storage, makeAdapter(2, "S1"));
    insert(*m_Storage, makeDrive("S1"));
    insert(*m_Storage, makeDrive("S1"));
    remove(*m_Storage, AdapterKey(1));
    EXPECT_THAT(Drives(), ElementsAre("S1"));
    remove(*m_Storage, AdapterKey(2));
    EXPECT_THAT(Drives(), IsEmpty());
}

TEST_P(Rows, ASwapInOneSlotLeavesTheNewDrive)
{
    insert(*m_Storage, makeAdapter(1, "OLD"));
    insert(*m_Storage, makeDrive("OLD"));
    insert(*m_Storage, makeAdapter(1, "NEW"));
    insert(*m_Storage, makeDrive("NEW"));
    EXPECT_THAT(Query("SELECT SerialNumber FROM Adapter"), ElementsAre("NEW"));
    EXPECT_THAT(Drives(), ElementsAre("NEW"));
}

TEST_P(Rows, ADriveOfAnotherHostStays)
{
    insert(*m_Storage, makeAdapter(1, "S1"));
    PD foreign = makeDrive("S1");
    foreign.m_HostName = "elsewhere";
    insert(*m_Storage, foreign);
    remove(*m_Storage, AdapterKey(1));
    EXPECT_THAT(Drives(), ElementsAre("S1"));
}

TEST_P(Rows, OutliveTheConnection)
{
    insert(*m_Storage, makeAdapter(1, "S1"));
    Reopen();
    EXPECT_EQ(select(*m_Storage, AdapterKey(1)).size(), 1U);
}

TEST_P(Rows, AnUpdateThatChangesNothingWritesNothing)
{
    Plugin plugin;
    plugin.m_Name = "NVMe-Plugin";
    plugin.m_PollInterval = 30;
    plugin.m_ID = insert(*m_Storage, plugin);
    Adapter adapter = makeAdapter(1, "S1");
    adapter.m_ID = insert(*m_Storage, adapter);
    const std::filesystem::path log = File().string() + "-wal";
    const auto written = std::filesystem::file_size(log);
    const auto updateBoth = [&] {
        update(*m_Storage, plugin);
        update(*m_Storage, adapter);
    };

    updateBoth();
    EXPECT_EQ(std::filesystem::file_size(log), written);

    plugin.m_PollInterval = 31;
    adapter.m_Segment = 2;
    updateBoth();
    EXPECT_GT(std::filesystem::file_size(log), written);
    EXPECT_THAT(Query("SELECT PollInterval FROM Plugin; SELECT Segment FROM Adapter"),
                ElementsAre("31", "2"));
}
