#include "Support/RowFixture.h"

using namespace NAMESPACE_Ostrel;
using namespace TestSupport;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string UNIT = "Ostrel/Src/OstrelPlugin";

CNVMePlugin makePlugin(std::uint64_t id)
{
    CNVMePlugin plugin;
    plugin.m_ID = id;
    return plugin;
}

class PluginRow : public CRowFixture
{};

// They run in turn, so the row is there when it is updated or deleted.
const std::vector<CRowStatement> STATEMENTS = {
    {"InsertObjectToDatabase",
     [](CPluginUnderTest& plugin) { return plugin.InsertObjectToDatabase(makePlugin(1)); },
     "Plugin NVMe inserted to db.",
     "Exception thrown during inserting NVMe plugin object to db. "
     "(Storage query exception thrown! Cannot read ID from database! (broken))"},
    {"UpdateObjectInDatabase",
     [](CPluginUnderTest& plugin) { return plugin.UpdateObjectInDatabase(makePlugin(1)); },
     "Plugin NVMe updated in db.",
     "Exception thrown during updating NVMe plugin object entry in db. "
     "(Storage query exception thrown! (broken))"},
    {"DeleteObjectFromDatabase",
     [](CPluginUnderTest& plugin) { return plugin.DeleteObjectFromDatabase(makePlugin(1)); },
     "Plugin NVMe removed from db.",
     "Exception thrown during removing NVMe plugin object from db. "
     "(Storage query exception thrown! (broken))"},
};

} // namespace

TEST_F(PluginRow, SaysWhatThePluginIs)
{
    ASSERT_EQ(m_Plugin.InsertObjectToDatabase(makePlugin(0x0139'0000'0000'0007)), 0U);
    EXPECT_THAT(
        Query("SELECT Description, ObjectID, Name, PollInterval, SettableProperties, Reserved1, "
              "Reserved2, Identity, Vendor, Version FROM Plugin"),
        ElementsAre("", std::to_string(0x0139'0000'0000'0007), "NVMe-Plugin", "30",
                    R"({"settableProperties":[{"name":"pollinterval","formatStr":"<int32>[2..255, 1]"}]})",
                    "0", "0", "Plugin:ID=313", "Ostrel", "7.16.3"));
    EXPECT_THAT(Query("SELECT LENGTH(SettableProperties) FROM Plugin"), ElementsAre("81"));
}

TEST_F(PluginRow, ClampsThePollInterval)
{
    for (const auto& [interval, stored] : std::vector<std::pair<std::uint32_t, std::string>>{
             {0, "2"}, {1, "2"}, {2, "2"}, {45, "45"}, {255, "255"}, {300, "255"}, {0xFFFFFFFF, "255"}}) {
        m_Plugin.m_PollInterval = interval;
        m_Plugin.InsertObjectToDatabase(makePlugin(1));
        EXPECT_THAT(Query("SELECT PollInterval FROM Plugin"), ElementsAre(stored));
        EXPECT_EQ(m_Plugin.m_PollInterval, interval);
    }
}

TEST_F(PluginRow, UpdateRewritesTheRowInItsPlace)
{
    m_Plugin.InsertObjectToDatabase(makePlugin(1));
    Query("UPDATE Plugin SET ID = 7");
    m_Plugin.m_PollInterval = 300;
    EXPECT_EQ(m_Plugin.UpdateObjectInDatabase(makePlugin(2)), 0U);
    EXPECT_THAT(Query("SELECT ID, ObjectID, PollInterval FROM Plugin"), ElementsAre("7", "2", "255"));
}

TEST_F(PluginRow, DeleteRemovesTheRowAlone)
{
    m_Plugin.InsertObjectToDatabase(makePlugin(1));
    Query("INSERT INTO Plugin (Name) VALUES('Other-Plugin')");
    EXPECT_EQ(m_Plugin.DeleteObjectFromDatabase(makePlugin(1)), 0U);
    EXPECT_THAT(Query("SELECT Name FROM Plugin"), ElementsAre("Other-Plugin"));
}

TEST_F(PluginRow, GoesByItsName)
{
    const auto statements = CountStatements();
    m_Plugin.UpdateObjectInDatabase(makePlugin(1));
    m_Plugin.DeleteObjectFromDatabase(makePlugin(1));
    EXPECT_THAT(statements->Statements(),
                ElementsAre("SELECT * FROM Plugin Plugin  WHERE Name = 'NVMe-Plugin'",
                            "DELETE FROM Plugin  WHERE Name = 'NVMe-Plugin'"));
}

TEST_F(PluginRow, StatementsAreTraced)
{
    ExpectLines(UNIT, STATEMENTS);
}

TEST_F(PluginRow, FailedStatementsAreTraced)
{
    ExpectLinesOfFailures(UNIT, STATEMENTS);
}

TEST_F(PluginRow, AnUpdateWithoutARowIsNotTraced)
{
    const CTraceCapture capture(~2U);
    EXPECT_EQ(m_Plugin.UpdateObjectInDatabase(makePlugin(1)), 0U);
    EXPECT_THAT(capture.Lines(), IsEmpty());
    EXPECT_THAT(Query("SELECT COUNT(*) FROM Plugin"), ElementsAre("0"));
}

TEST_F(PluginRow, WithoutTheDatabasesLevelsNothingIsTraced)
{
    ExpectNoLines(127, STATEMENTS);
}

TEST_F(PluginRow, OtherExceptionsPass)
{
    ExpectOtherExceptionsPass(STATEMENTS);
}
