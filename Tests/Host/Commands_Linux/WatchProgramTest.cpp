#include "Host/Built.h"
#include "Host/Commands_Linux/RunProgram.h"
#include "Host/Commands_Linux/SimulatedProgram.h"
#include "Support/TemporaryFolder.h"

#include <Database/Database.h>
#include <PI/ErrorCode.h>
#include <PI/EventCode.h>

#include <nlohmann/json.hpp>

#include <filesystem>

namespace {

using HostTest::ProgramResult;
using HostTest::RunningProgram;
using HostTest::runProgram;
using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

struct SimulatedDrive
{
    int m_Bus;
    std::string m_Serial;
    int m_Warning = 0;
};

/** `ostrel watch` with an interval of two seconds, with a fleet that the test changes. */
class WatchProgram : public testing::Test
{
protected:
    WatchProgram() { m_Data.Write("Ostrel.ini", "PollInterval=2\n"); }
    ~WatchProgram() override { setDatabaseFile({}); }

    /** Replaces the fleet file as a whole. */
    void fleet(const std::vector<SimulatedDrive>& drives) const
    {
        json fleet = {{"controllers", json::array()}};
        for (const SimulatedDrive& drive : drives)
            fleet["controllers"].push_back(
                {{"location", "0000:0" + std::to_string(drive.m_Bus) + ":00.0"},
                 {"identify", {{"vendorId", 0x8086}, {"model", "INTEL MODEL"}, {"serial", drive.m_Serial}}},
                 {"namespace", {{"blocks", 2048}}},
                 {"health", {{"temperature", 20}, {"criticalWarning", drive.m_Warning}}}});
        std::filesystem::rename(m_Fleet.Write("next", fleet.dump()), m_Fleet.Path() / "fleet.json");
    }

    std::vector<std::string> arguments(std::vector<std::string> words = {}) const
    {
        // The trace has the plug-in's line which says that a scan is done.
        words.insert(words.begin(), {"watch", "--data", m_Data.Path(), "--simulate",
                                     m_Fleet.Path() / "fleet.json", "--trace", "1"});
        return words;
    }

    static void awaitInventory(RunningProgram& program) { program.awaitMessage("adapter count is"); }

    static json nextEvent(RunningProgram& program) { return json::parse(program.awaitResult("\n")); }

    std::vector<std::string> query(const std::string& sql) const
    {
        setDatabaseFile(m_Data.Path() / "Ostrel.db");
        return getDatabasePointer()->m_Access->query(sql);
    }

    TestSupport::CTemporaryFolder m_Data;
    TestSupport::CTemporaryFolder m_Fleet;
};

TEST_F(WatchProgram, PrintsEachEventOnceAndKeepsTheRows)
{
    fleet({{1, "A"}, {2, "B"}});
    RunningProgram program(arguments({"--json"}));
    awaitInventory(program);
    fleet({{1, "A", 0x14}, {3, "C"}});

    // Pending events come with the newest first.
    const json removed = nextEvent(program);
    EXPECT_EQ(removed["id"], PI::EVENT_ADAPTER_REMOVED);
    EXPECT_EQ(removed["severity"], 3);
    EXPECT_EQ(removed["source"], "0x0000000000004a3a");
    EXPECT_EQ(removed["placeholder2"], " ");
    EXPECT_EQ(removed["drive"]["serial"], "B");
    EXPECT_EQ(removed["drive"]["device"], "/dev/nvme1n1");
    EXPECT_EQ(removed["simulated"], true);
    EXPECT_THAT(removed["time"].get<std::string>(), AllOf(StartsWith("20"), EndsWith("Z")));
    const json added = nextEvent(program);
    EXPECT_EQ(added["id"], PI::EVENT_ADAPTER_ADDED);
    EXPECT_EQ(added["severity"], 2);
    EXPECT_EQ(added["sourceName"], "");
    EXPECT_EQ(added["text"], "INTEL MODEL (C) was added.");
    EXPECT_EQ(added["drive"]["pciAddress"], "0000:03:00.0");
    for (const std::uint32_t id : {PI::EVENT_RELIABILITY_DEGRADED, PI::EVENT_MEMORY_BACKUP_FAILED}) {
        const json warning = nextEvent(program);
        EXPECT_EQ(warning["id"], id);
        EXPECT_EQ(warning["drive"]["serial"], "A");
    }

    program.send(SIGTERM);
    const ProgramResult end = program.finish();
    EXPECT_EQ(end.m_ExitCode, 0) << end.m_Errors;
    EXPECT_THAT(end.m_Output, IsEmpty());
    EXPECT_THAT(query("SELECT AdapterNumber, SerialNumber, Name FROM Adapter ORDER BY AdapterNumber; "
                      "SELECT DriveKey FROM PD ORDER BY DriveKey; PRAGMA integrity_check"),
                ElementsAre("1", "A", testing::_, "3", "C", testing::_, "A", "C", "ok"));
    EXPECT_THAT(m_Data.Read("AdapterNumbers.txt"), HasSubstr("3 0 3 0 0 localhost\n"));
}

TEST_F(WatchProgram, TellsAnEditOfTheFleetLongBeforeTheNextPoll)
{
    m_Data.Write("Ostrel.ini", "PollInterval=255\n");
    fleet({{1, "A"}});
    RunningProgram program(arguments({"--json"}));
    awaitInventory(program);
    // The scan at the start may find the first one.
    fleet({{1, "A"}, {2, "B"}});
    EXPECT_EQ(nextEvent(program)["drive"]["serial"], "B");
    fleet({{1, "A"}, {2, "B"}, {3, "C"}});
    EXPECT_EQ(nextEvent(program)["drive"]["serial"], "C");
}

TEST_F(WatchProgram, SendsTheRequestsOfAHostInOrder)
{
    fleet({{1, "A"}});
    RunningProgram program(arguments({"--trace", "2"}));
    program.awaitMessage("LEAVE Initialize() -> 0");
    program.awaitMessage("LEAVE SetAdapterIDs");
    program.awaitMessage("LEAVE UpdateSystem");
    program.send(SIGINT);
    program.awaitMessage("ENTER DeInitialize");
    program.awaitMessage("LEAVE DeInitialize");
    // The events of the last poll are collected after it.
    program.awaitMessage("LEAVE GetEvents() -> 0");
    const ProgramResult end = program.finish();
    EXPECT_EQ(end.m_ExitCode, 0);
    EXPECT_THAT(end.m_Output, IsEmpty());
}

TEST_F(WatchProgram, EndsByItself)
{
    fleet({{1, "A"}});
    const ProgramResult result = runProgram(arguments({"--for", "1"}));
    EXPECT_EQ(result.m_ExitCode, 0) << result.m_Errors;
    EXPECT_THAT(result.m_Output, IsEmpty());
}

TEST_F(WatchProgram, StopsThePluginWhenNobodyReadsItsEvents)
{
    fleet({{1, "A"}});
    RunningProgram program(arguments({"--json", "--trace", "2"}));
    awaitInventory(program);
    program.closeResults();
    fleet({{1, "A", 0x04}});
    program.awaitMessage("LEAVE DeInitialize");
    const ProgramResult end = program.finish();
    EXPECT_EQ(end.m_ExitCode, 0);
    EXPECT_THAT(end.m_Errors, Not(HasSubstr("ostrel: ")));
}

TEST_F(WatchProgram, ReportsMissingHardwareInOneLine)
{
    fleet({});
    const ProgramResult result = runProgram(arguments({"--json", "--for", "0"}));
    EXPECT_EQ(result.m_ExitCode, 3) << "nobody waits longer than --for says";
    EXPECT_THAT(result.m_Errors, HasSubstr("Waiting for the first drive."));
    EXPECT_EQ(std::count(result.m_Output.begin(), result.m_Output.end(), '\n'), 1);
    EXPECT_EQ(json::parse(result.m_Output)["error"]["code"], PI::ERR_NO_SUPPORTED_HARDWARE);
}

TEST_F(WatchProgram, APipeGetsEventsAlone)
{
    fleet({{1, "A"}});
    RunningProgram program(arguments());
    awaitInventory(program);
    fleet({{1, "A", 0x01}});
    EXPECT_THAT(program.awaitResult("\n"),
                testing::ContainsRegex(
                    "^20[0-9-]+ [0-9:]+  Error        NVMe Intel PCI Adapter \\([1A]\\): the available "
                    "spare is below its threshold. \\(nvme0n1, MODEL\\)\n$"));
    program.send(SIGHUP);
    const ProgramResult end = program.finish();
    EXPECT_EQ(end.m_ExitCode, 0);
    EXPECT_THAT(end.m_Output, IsEmpty());
}

TEST_F(WatchProgram, ATerminalHasAStatusLineBelowTheEvents)
{
    fleet({{1, "A"}});
    RunningProgram program(arguments(), 60);
    EXPECT_THAT(program.awaitResult("1 drive, next poll at "), StartsWith("\033[K"));
    awaitInventory(program);
    fleet({{1, "A", 0x04}, {2, "B"}});
    // Each event replaces the status line, and the status line follows below.
    program.awaitResult("\033[K20");
    EXPECT_THAT(program.awaitResult("\n"), HasSubstr(" was added. (nvme1n1)"));
    program.awaitResult("\033[33mWarning\033[0m");
    program.awaitResult("2 drives, 1 unhealthy, next poll at ");
    program.send(SIGTERM);
    const ProgramResult end = program.finish();
    EXPECT_EQ(end.m_ExitCode, 0);
    EXPECT_THAT(end.m_Output, EndsWith("\033[K")) << "the line is gone";
}

TEST_F(WatchProgram, AWarningTakesTheStatusLinesPlace)
{
    fleet({{1, "A"}});
    RunningProgram program(arguments(), 60, {{"TERM", "xterm"}}, true);
    program.awaitResult("Simulated: 1 drive, next poll at ");
    m_Fleet.Write("fleet.json", "torn");
    EXPECT_THAT(program.awaitResult("ostrel: The fleet file "), HasSubstr(std::string(41, ' ') + "ostrel: "));
    // Polls go on, and the status line stays.
    program.awaitResult("Simulated: 1 drive, next poll at ");
    program.send(SIGTERM);
    EXPECT_EQ(program.finish().m_ExitCode, 0);
}

TEST_F(WatchProgram, ATerminalWithoutEscapesHasNoStatusLine)
{
    fleet({{1, "A"}});
    RunningProgram program(arguments(), 60, {{"TERM", "dumb"}});
    awaitInventory(program);
    fleet({{1, "A", 0x04}});
    EXPECT_THAT(program.awaitResult("\n"), AllOf(StartsWith("20"), Not(HasSubstr("\033"))));
    program.send(SIGTERM);
    EXPECT_THAT(program.finish().m_Output, IsEmpty());
}

TEST_F(WatchProgram, WaitsForTheFirstDrive)
{
    fleet({});
    RunningProgram program(arguments({"--json"}));
    program.awaitMessage("Waiting for the first drive.");
    fleet({{1, "A"}});
    program.awaitMessage("adapter count is 1");
    fleet({{1, "A", 0x04}});
    EXPECT_EQ(nextEvent(program)["id"], PI::EVENT_RELIABILITY_DEGRADED);
    program.send(SIGTERM);
    EXPECT_EQ(program.finish().m_ExitCode, 0);
}

TEST_F(WatchProgram, ASignalEndsTheWaitForTheFirstDriveWell)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        fleet({});
        RunningProgram program(arguments({"--json"}));
        program.awaitMessage("Waiting for the first drive.");
        program.send(signal);
        const ProgramResult end = program.finish();
        EXPECT_EQ(end.m_ExitCode, 0) << end.m_Errors;
        EXPECT_THAT(end.m_Output, IsEmpty());
    }
}

TEST_F(WatchProgram, ADriveThatHangsHidesNoOtherAndDelaysNoEnd)
{
    fleet({{1, "A"}, {2, "B"}});
    RunningProgram program(arguments({"--json"}));
    awaitInventory(program);
    const auto drive = [](const std::string& serial, const std::string& more) {
        return R"({"identify": {"vendorId": 1, "model": "M", "serial": ")" + serial +
               R"("}, "namespace": {"blocks": 2048}, )" + more + "}";
    };
    m_Fleet.Write("next", R"({"controllers": [)" +
                              drive("A", R"("hangs": true, "health": {"temperature": 20})") + ", " +
                              drive("B", R"("health": {"temperature": 20, "criticalWarning": 4})") + "]}");
    std::filesystem::rename(m_Fleet.Path() / "next", m_Fleet.Path() / "fleet.json");
    json told = nextEvent(program);
    while (told["id"] != PI::EVENT_RELIABILITY_DEGRADED)
        told = nextEvent(program);
    EXPECT_EQ(told["drive"]["serial"], "B");
    program.send(SIGTERM);
    const ProgramResult end = program.finish();
    EXPECT_EQ(end.m_ExitCode, 0) << end.m_Errors;
    EXPECT_THAT(end.m_Output, Not(HasSubstr("11094"))) << "a silent drive is not gone";
}

TEST_F(WatchProgram, ASecondSignalEndsAtOnce)
{
    RunningProgram program(
        {"watch", "--data", m_Data.Path(), "--plugin", HostTest::Built::SLOW_PLUGIN, "--trace", "1"});
    program.awaitMessage("watching");
    program.send(SIGTERM);
    program.awaitMessage("ending");
    program.send(SIGTERM);
    EXPECT_EQ(program.finish().m_ExitCode, -1);
}

TEST_F(WatchProgram, ASignalEndsAStartThatTakesItsTime)
{
    RunningProgram program({"watch", "--data", m_Data.Path(), "--plugin",
                            HostTest::Built::SLOW_TO_START_PLUGIN, "--trace", "1"});
    program.awaitMessage("starting");
    program.send(SIGTERM);
    EXPECT_EQ(program.finish().m_ExitCode, -1);
}

TEST_F(WatchProgram, IsRefusedALockThatCannotBeOpened)
{
    fleet({{1, "A"}});
    const std::filesystem::path lock = m_Data.Path() / "Ostrel.lock";
    const TestSupport::CTemporaryFolder other;
    for (const bool isLink : {false, true}) {
        std::filesystem::remove(lock);
        if (isLink)
            std::filesystem::create_symlink(other.Path() / "elsewhere", lock);
        else
            std::filesystem::create_directory(lock);
        const ProgramResult result = runProgram(arguments({"--for", "0"}));
        EXPECT_EQ(result.m_ExitCode, 1);
        EXPECT_THAT(result.m_Errors,
                    HasSubstr("ostrel: The lock file " + lock.string() + " cannot be used: "));
    }
    EXPECT_TRUE(std::filesystem::is_empty(other.Path()));
    const ProgramResult list =
        runProgram({"list", "--data", m_Data.Path(), "--simulate", m_Fleet.Path() / "fleet.json"});
    EXPECT_EQ(list.m_ExitCode, 0);
    EXPECT_THAT(list.m_Errors, HasSubstr(". This run does not change that data.\n"));
    EXPECT_FALSE(std::filesystem::exists(m_Data.Path() / "Ostrel.db"));
}

TEST_F(WatchProgram, KeepsTheDataFolderToItselfWhenItsLockFileIsDeleted)
{
    fleet({{1, "A"}});
    RunningProgram program(arguments({"--json"}));
    awaitInventory(program);
    std::filesystem::remove(m_Data.Path() / "Ostrel.lock");
    const ProgramResult second = runProgram(arguments({"--for", "0"}));
    EXPECT_EQ(second.m_ExitCode, 1);
    EXPECT_THAT(second.m_Errors, HasSubstr("ostrel: Another ostrel keeps its data in "));
    program.send(SIGTERM);
    EXPECT_EQ(program.finish().m_ExitCode, 0);
    EXPECT_EQ(runProgram(arguments({"--for", "0"})).m_ExitCode, 0);
}

TEST_F(WatchProgram, SetLeavesARunningWatchAlone)
{
    fleet({{1, "A"}, {2, "B"}});
    RunningProgram program(arguments({"--json"}));
    awaitInventory(program);
    const std::vector<std::string> before = query("SELECT ID FROM Plugin; SELECT ID FROM Adapter");
    const ProgramResult set = runProgram({"set", "plugin", "pollinterval", "60", "--data", m_Data.Path(),
                                          "--simulate", m_Fleet.Path() / "fleet.json", "--json"});
    EXPECT_EQ(set.m_ExitCode, 0) << set.m_Errors;
    EXPECT_EQ(json::parse(set.m_Output)["property"]["value"], 60);
    EXPECT_EQ(m_Data.Read("Ostrel.ini"), "PollInterval=60\n");
    EXPECT_EQ(query("SELECT ID FROM Plugin; SELECT ID FROM Adapter"), before);
    fleet({{1, "A"}});
    EXPECT_EQ(nextEvent(program)["id"], PI::EVENT_ADAPTER_REMOVED);
    program.send(SIGTERM);
    EXPECT_EQ(program.finish().m_ExitCode, 0);
    EXPECT_THAT(query("SELECT SerialNumber FROM Adapter; SELECT DriveKey FROM PD; PRAGMA integrity_check"),
                ElementsAre("A", "A", "ok"));
}

TEST_F(WatchProgram, SetStartsNoWorkerAndKeepsNoRows)
{
    fleet({{1, "A"}});
    const ProgramResult set = runProgram({"set", "plugin", "pollinterval", "60", "--data", m_Data.Path(),
                                          "--simulate", m_Fleet.Path() / "fleet.json", "--trace", "313=2"});
    EXPECT_EQ(set.m_ExitCode, 0) << set.m_Errors;
    std::vector<std::string> requests;
    for (const std::string& line : HostTest::linesOf(set.m_Errors))
        for (const char* request : {"ENTER Initialize()", "ENTER SetAdapterIDs", "ENTER GetTopology",
                                    "ENTER Worker()", "ENTER DeInitialize"})
            if (line.find(request) != std::string::npos)
                requests.emplace_back(request);
    EXPECT_THAT(requests, ElementsAre("ENTER Initialize()", "ENTER GetTopology", "ENTER DeInitialize"))
        << set.m_Errors;
    EXPECT_EQ(m_Data.Read("Ostrel.ini"), "PollInterval=60\n");
    EXPECT_FALSE(std::filesystem::exists(m_Data.Path() / "Ostrel.db"));
}

TEST_F(WatchProgram, KeepsTheDataFolderToItself)
{
    fleet({{1, "A"}, {2, "B"}});
    RunningProgram program(arguments({"--json"}));
    awaitInventory(program);
    const std::vector<std::string> before = query("SELECT ID FROM Plugin; SELECT ID FROM Adapter");

    const TestSupport::CTemporaryFolder other;
    const std::string others = other.Write("fleet.json", R"({"controllers": [{"location": "0000:09:00.0",
        "identify": {"vendorId": 1, "model": "M", "serial": "C"}, "health": {"temperature": 20}}]})");
    const ProgramResult list = runProgram({"list", "--data", m_Data.Path(), "--simulate", others});
    EXPECT_EQ(list.m_ExitCode, 0);
    EXPECT_THAT(list.m_Output, HasSubstr(" C "));
    EXPECT_THAT(list.m_Errors,
                testing::ContainsRegex("ostrel: Another ostrel, process [0-9]+, keeps its data in "
                                       ".*\\. This run does not change that data\\.\n"));
    const ProgramResult doctor = runProgram({"doctor", "--data", m_Data.Path(), "--simulate", others});
    EXPECT_THAT(doctor.m_Output, HasSubstr("Ostrel.db; this run does not change it\n"));
    EXPECT_EQ(query("SELECT ID FROM Plugin; SELECT ID FROM Adapter"), before);

    const ProgramResult second = runProgram(arguments({"--for", "0"}));
    EXPECT_EQ(second.m_ExitCode, 1);
    EXPECT_THAT(second.m_Errors, HasSubstr(". End it, or name another folder with --data.\n"));
    program.send(SIGKILL);
    (void)program.finish();
    EXPECT_EQ(runProgram(arguments({"--for", "0"})).m_ExitCode, 0);
}

TEST_F(WatchProgram, DropsTheRowsOfDrivesThatWent)
{
    fleet({{1, "A"}, {2, "B"}});
    RunningProgram program(arguments({"--json"}));
    awaitInventory(program);
    // A drive whose adapter lost its row keeps its own row, because the trigger cannot find it.
    query("DELETE FROM Adapter WHERE SerialNumber = 'B';"
          "INSERT INTO PD (HostName, DriveKey) VALUES ('localhost', 'B'), ('localhost', 'GHOST')");
    fleet({{1, "A"}});
    nextEvent(program);
    EXPECT_THAT(query("SELECT SerialNumber FROM Adapter; SELECT DriveKey FROM PD"), ElementsAre("A", "A"));
    program.send(SIGTERM);
    program.finish();
}

TEST_F(WatchProgram, LeavesNoGhostsOfDrivesThatDifferInSegmentAlone)
{
    const auto drives = [this](const std::vector<std::pair<std::string, std::string>>& places) {
        json fleet = {{"controllers", json::array()}};
        for (const auto& [segment, serial] : places)
            fleet["controllers"].push_back(
                {{"location", segment + ":01:00.0"},
                 {"identify", {{"vendorId", 1}, {"model", "M"}, {"serial", serial}}},
                 {"namespace", {{"blocks", 2048}}},
                 {"health", {{"temperature", 20}}}});
        std::filesystem::rename(m_Fleet.Write("next", fleet.dump()), m_Fleet.Path() / "fleet.json");
    };
    drives({{"0000", "A"}, {"0001", "B"}, {"0002", "C"}});
    RunningProgram program(arguments({"--json"}));
    awaitInventory(program);
    drives({{"0000", "A"}, {"0002", "D"}});
    nextEvent(program);
    EXPECT_THAT(query("SELECT DriveKey FROM PD WHERE DriveKey NOT IN ('A', 'D')"), IsEmpty());
    program.send(SIGTERM);
    program.finish();
}

TEST_F(WatchProgram, TellsOnceThatRowsAreNotKept)
{
    fleet({{1, "A"}});
    RunningProgram program(arguments());
    awaitInventory(program);
    // This change has no event.
    query(
        "CREATE TRIGGER Refuse BEFORE UPDATE ON Plugin BEGIN SELECT RAISE(ABORT, 'refused by a test'); END");
    program.awaitMessage("The rows of the drives may not have been kept: ");
    program.awaitMessage("refused by a test");
    fleet({{1, "A"}, {2, "B"}});
    program.awaitResult("\n");
    program.send(SIGTERM);
    const ProgramResult result = program.finish();
    const std::string::size_type first = result.m_Errors.find("refused by a test");
    EXPECT_EQ(result.m_Errors.find("refused by a test", first + 1), std::string::npos) << result.m_Errors;
}

} // namespace
