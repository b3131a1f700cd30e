#include "Support/RowFixture.h"

#include <stdexcept>

using namespace NAMESPACE_Ostrel;
using namespace TestSupport;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string UNIT = "Ostrel/Src/OstrelPlugin";

class PluginRow : public CRowFixture
{
protected:
    static CNVMePlugin Record(std::uint64_t id)
    {
        CNVMePlugin plugin;
        plugin.m_ID = id;
        return plugin;
    }
};

/** With every mask that shows the database's lines, and with no other. */
class PluginRowTrace : public PluginRow, public testing::WithParamInterface<std::uint32_t>
{};

INSTANTIATE_TEST_SUITE_P(Masks, PluginRowTrace, testing::Values(128U, 256U, 0x80000000U));

} // namespace

TEST_F(PluginRow, SaysWhatThePluginIs)
{
    ASSERT_EQ(m_Plugin.InsertObjectToDatabase(Record(0x0139'0000'0000'0007)), 0U);
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
        m_Plugin.InsertObjectToDatabase(Record(1));
        EXPECT_THAT(Query("SELECT PollInterval FROM Plugin"), ElementsAre(stored));
        EXPECT_EQ(m_Plugin.m_PollInterval, interval);
    }
}

TEST_F(PluginRow, UpdateRewritesTheRowInItsPlace)
{
    m_Plugin.InsertObjectToDatabase(Record(1));
    Query("UPDATE Plugin SET ID = 7");
    m_Plugin.m_PollInterval = 300;
    EXPECT_EQ(m_Plugin.UpdateObjectInDatabase(Record(2)), 0U);
    EXPECT_THAT(Query("SELECT ID, ObjectID, PollInterval FROM Plugin"), ElementsAre("7", "2", "255"));
}

TEST_F(PluginRow, DeleteRemovesTheRowAlone)
{
    m_Plugin.InsertObjectToDatabase(Record(1));
    Query("INSERT INTO Plugin (Name) VALUES('Other-Plugin')");
    EXPECT_EQ(m_Plugin.DeleteObjectFromDatabase(Record(1)), 0U);
    EXPECT_THAT(Query("SELECT Name FROM Plugin"), ElementsAre("Other-Plugin"));
}

TEST_F(PluginRow, GoesByItsName)
{
    const auto statements = CountStatements();
    m_Plugin.UpdateObjectInDatabase(Record(1));
    m_Plugin.DeleteObjectFromDatabase(Record(1));
    EXPECT_THAT(statements->Statements(),
                ElementsAre("SELECT * FROM Plugin Plugin  WHERE Name = 'NVMe-Plugin'",
                            "DELETE FROM Plugin  WHERE Name = 'NVMe-Plugin'"));
}

TEST_F(PluginRow, WithoutTheDatabasesLevelsNothingIsTraced)
{
    const CTraceCapture capture(127);
    EXPECT_EQ(m_Plugin.InsertObjectToDatabase(Record(1)), 0U);
    BreakDatabase("broken");
    EXPECT_EQ(m_Plugin.InsertObjectToDatabase(Record(1)), 20000U);
    EXPECT_EQ(m_Plugin.UpdateObjectInDatabase(Record(1)), 20000U);
    EXPECT_EQ(m_Plugin.DeleteObjectFromDatabase(Record(1)), 20000U);
    EXPECT_THAT(capture.Lines(), IsEmpty());
}

TEST_F(PluginRow, OtherExceptionsPass)
{
    Throw(std::runtime_error("of another kind"));
    EXPECT_THROW(m_Plugin.InsertObjectToDatabase(Record(1)), std::runtime_error);
    EXPECT_THROW(m_Plugin.UpdateObjectInDatabase(Record(1)), std::runtime_error);
    EXPECT_THROW(m_Plugin.DeleteObjectFromDatabase(Record(1)), std::runtime_error);
}

TEST_P(PluginRowTrace, Insert)
{
    const CTraceCapture capture(GetParam());
    EXPECT_EQ(m_Plugin.InsertObjectToDatabase(Record(1)), 0U);
    EXPECT_THAT(databaseTexts(capture, UNIT, "InsertObjectToDatabase"),
                ElementsAre("Plugin NVMe inserted to db."));
}

TEST_P(PluginRowTrace, FailedInsert)
{
    BreakDatabase("broken");
    const CTraceCapture capture(GetParam());
    EXPECT_EQ(m_Plugin.InsertObjectToDatabase(Record(1)), 20000U);
    EXPECT_THAT(databaseTexts(capture, UNIT, "InsertObjectToDatabase"),
                ElementsAre("Exception thrown during inserting NVMe plugin object to db. "
                            "(Storage query exception thrown! Cannot read ID from database! (broken))"));
}

TEST_P(PluginRowTrace, Update)
{
    m_Plugin.InsertObjectToDatabase(Record(1));
    const CTraceCapture capture(GetParam());
    EXPECT_EQ(m_Plugin.UpdateObjectInDatabase(Record(1)), 0U);
    EXPECT_THAT(databaseTexts(capture, UNIT, "UpdateObjectInDatabase"),
                ElementsAre("Plugin NVMe updated in db."));
}

TEST_P(PluginRowTrace, UpdateWithoutARow)
{
    const CTraceCapture capture(GetParam());
    EXPECT_EQ(m_Plugin.UpdateObjectInDatabase(Record(1)), 0U);
    EXPECT_THAT(capture.Lines(), IsEmpty());
    EXPECT_THAT(Query("SELECT COUNT(*) FROM Plugin"), ElementsAre("0"));
}

TEST_P(PluginRowTrace, FailedUpdate)
{
    BreakDatabase("broken");
    const CTraceCapture capture(GetParam());
    EXPECT_EQ(m_Plugin.UpdateObjectInDatabase(Record(1)), 20000U);
    EXPECT_THAT(databaseTexts(capture, UNIT, "UpdateObjectInDatabase"),
                ElementsAre("Exception thrown during updating NVMe plugin object entry in db. "
                            "(Storage query exception thrown! (broken))"));
}

TEST_P(PluginRowTrace, Delete)
{
    const CTraceCapture capture(GetParam());
    EXPECT_EQ(m_Plugin.DeleteObjectFromDatabase(Record(1)), 0U);
    EXPECT_THAT(databaseTexts(capture, UNIT, "DeleteObjectFromDatabase"),
                ElementsAre("Plugin NVMe removed from db."));
}

TEST_P(PluginRowTrace, FailedDelete)
{
    BreakDatabase("broken");
    const CTraceCapture capture(GetParam());
    EXPECT_EQ(m_Plugin.DeleteObjectFromDatabase(Record(1)), 20000U);
    EXPECT_THAT(databaseTexts(capture, UNIT, "DeleteObjectFromDatabase"),
                ElementsAre("Exception thrown during removing NVMe plugin object from db. "
                            "(Storage query exception thrown! (broken))"));
}
