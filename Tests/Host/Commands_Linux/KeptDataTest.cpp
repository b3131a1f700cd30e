#include "Host/Commands_Linux/RunProgram.h"
#include "Support/TemporaryFolder.h"

#include <Database/Database.h>

#include <nlohmann/json.hpp>

namespace {

using HostTest::ProgramResult;
using HostTest::runProgram;
using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/** The files that the program leaves in a data folder. */
class KeptData : public testing::Test
{
protected:
    ~KeptData() override { setDatabaseFile({}); }

    /** A fleet of controllers with these buses and serial numbers. */
    std::string Fleet(const std::vector<std::pair<int, std::string>>& drives) const
    {
        json fleet = {{"controllers", json::array()}};
        for (const auto& [bus, serial] : drives) {
            char location[32];
            (void)std::snprintf(location, sizeof location, "0000:%02x:00.0", bus);
            fleet["controllers"].push_back(
                {{"location", location},
                 {"identify", {{"vendorId", 1}, {"model", "M"}, {"serial", serial}}},
                 {"namespace", {{"blocks", 2048}}},
                 {"health", {{"temperature", 20}}}});
        }
        return m_Fleets.Write("fleet.json", fleet.dump());
    }

    ProgramResult Run(const std::string& command, const std::string& fleet) const
    {
        return runProgram({"--simulate", fleet, "--data", m_Folder.Path() / "data", command});
    }

    std::filesystem::path File() const { return m_Folder.Path() / "data" / "Ostrel.db"; }

    std::vector<std::string> Query(const std::string& sql) const
    {
        setDatabaseFile(File());
        const auto values = getDatabasePointer()->m_Access->query(sql);
        setDatabaseFile({});
        return values;
    }

    TestSupport::CTemporaryFolder m_Folder;
    TestSupport::CTemporaryFolder m_Fleets;
};

TEST_F(KeptData, HoldsARowForEachObjectHoweverOftenItRuns)
{
    const std::string fleet = Fleet({{1, "S1"}, {2, "x');DROP TABLE PD;--"}});
    for (int run = 0; run < 2; ++run) {
        const ProgramResult result = Run("list", fleet);
        ASSERT_EQ(result.m_ExitCode, 0) << result.m_Errors;
        EXPECT_THAT(result.m_Errors, Not(HasSubstr("ostrel: ")));
        EXPECT_THAT(
            Query("SELECT AdapterNumber, SerialNumber FROM Adapter ORDER BY AdapterNumber; "
                  "SELECT DriveKey FROM PD ORDER BY DriveKey; SELECT COUNT(*) FROM Plugin; "
                  "PRAGMA integrity_check"),
            ElementsAre("1", "S1", "2", "x');DROP TABLE PD;--", "S1", "x');DROP TABLE PD;--", "1", "ok"));
    }
}

TEST_F(KeptData, NumbersStayWithTheirLocationsAndGoneObjectsGo)
{
    ASSERT_EQ(Run("list", Fleet({{7, "S7"}, {8, "S8"}, {9, "S9"}})).m_ExitCode, 0);
    ASSERT_EQ(Run("topology", Fleet({{5, "S5"}, {9, "S9"}, {8, "NEW"}})).m_ExitCode, 0);
    EXPECT_THAT(Query("SELECT AdapterNumber, SerialNumber FROM Adapter ORDER BY AdapterNumber; "
                      "SELECT DriveKey FROM PD ORDER BY DriveKey"),
                ElementsAre("2", "NEW", "3", "S9", "4", "S5", "NEW", "S5", "S9"));
    ASSERT_EQ(Run("list", Fleet({{7, "S7"}})).m_ExitCode, 0);
    EXPECT_THAT(Query("SELECT AdapterNumber, SerialNumber FROM Adapter; SELECT DriveKey FROM PD"),
                ElementsAre("1", "S7", "S7"));
}

TEST_F(KeptData, WatchDropsTheRowsOfWhatIsGoneAtItsStart)
{
    ASSERT_EQ(Run("list", Fleet({{7, "S7"}, {8, "S8"}})).m_ExitCode, 0);
    // It suffers from something, which nobody reads. So watch ends before it collects anything.
    const std::string fleet = m_Fleets.Write("sick.json", R"({"controllers": [{
        "location": "0000:07:00.0", "identify": {"vendorId": 1, "model": "M", "serial": "S7"},
        "namespace": {"blocks": 2048}, "health": {"temperature": 20, "criticalWarning": 8}}]})");
    const ProgramResult watch =
        HostTest::runUnread({"watch", "--simulate", fleet, "--data", m_Folder.Path() / "data"});
    EXPECT_EQ(watch.m_ExitCode, 0) << watch.m_Errors;
    EXPECT_THAT(Query("SELECT SerialNumber FROM Adapter; SELECT DriveKey FROM PD"), ElementsAre("S7", "S7"));
}

TEST_F(KeptData, ADatabaseThatCannotBeUsedCostsAWarningAlone)
{
    std::filesystem::create_directories(File());
    const ProgramResult result = Run("list", Fleet({{1, "S1"}}));
    EXPECT_EQ(result.m_ExitCode, 0);
    EXPECT_THAT(result.m_Output, HasSubstr("S1"));
    EXPECT_THAT(result.m_Errors,
                AllOf(HasSubstr("ostrel: The rows of the drives may not have been kept: "),
                      HasSubstr(File().string()), HasSubstr("unable to open database file")));
}

TEST_F(KeptData, DoctorNamesADatabaseThatCannotBeUsed)
{
    const std::string fleet = Fleet({{1, "S1"}});
    const ProgramResult sound = Run("doctor", fleet);
    EXPECT_THAT(sound.m_Output, HasSubstr("OK       database: " + File().string() + "\n"));
    std::filesystem::remove(File());
    std::filesystem::create_directories(File());
    const ProgramResult broken = Run("doctor", fleet);
    EXPECT_EQ(broken.m_ExitCode, 1);
    EXPECT_THAT(broken.m_Output, AllOf(HasSubstr("PROBLEM  database: database '" + File().string() +
                                                 "': unable to open database file (it is a folder) -> "),
                                       HasSubstr("OK       inventory: 1 adapter, 3 objects")));
}

TEST_F(KeptData, AFolderThatCannotBeMadeIsRefused)
{
    const std::string file = m_Folder.Write("data", "");
    const ProgramResult result = Run("list", Fleet({{1, "S1"}}));
    EXPECT_EQ(result.m_ExitCode, 2);
    EXPECT_THAT(result.m_Errors, HasSubstr("The data folder " + file + " cannot be used: "));
}

} // namespace
