#include "Host/Commands_Linux/RunProgram.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace {

using HostTest::ProgramResult;
using HostTest::RunningProgram;
using HostTest::runProgram;
using nlohmann::json;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

/** The lines of `ostrel watch` for changes without an event, in a fleet that the test edits. */
class WatchNewsTest : public testing::Test
{
protected:
    WatchNewsTest() { m_Data.Write("Ostrel.ini", "PollInterval=2\n"); }

    static json drive(const std::string& serial, int bus, int warnings = 0)
    {
        return {{"location", "0000:0" + std::to_string(bus) + ":00.0"},
                {"identify",
                 {{"vendorId", 0x8086}, {"model", "INTEL MODEL"}, {"serial", serial}, {"firmware", "1"}}},
                {"namespace", {{"blocks", 204800}, {"blockSize", 512}}},
                {"health", {{"temperature", 20}, {"criticalWarning", warnings}, {"mediaErrors", 0}}}};
    }

    /** Replaces the fleet file as a whole. */
    void fleet(const std::vector<json>& drives) const
    {
        const json fleet = {{"controllers", drives}};
        std::filesystem::rename(m_Fleet.Write("next", fleet.dump()), m_Fleet.Path() / "fleet.json");
    }

    std::vector<std::string> arguments(std::vector<std::string> words = {}) const
    {
        // A trace contains the plug-in's own line, which says that it has looked.
        words.insert(words.begin(), {"watch", "--data", m_Data.Path(), "--simulate",
                                     m_Fleet.Path() / "fleet.json", "--trace", "1"});
        return words;
    }

    /** The next line in short form: an event's number, or kind and phase, and the drive's serial number. */
    static std::string next(RunningProgram& program)
    {
        const json line = json::parse(program.awaitResult("\n"));
        const std::string what =
            line.contains("id") ? std::to_string(line["id"].get<int>())
                                : line["kind"].get<std::string>() + " " + line["phase"].get<std::string>();
        return what + " " + line["drive"]["serial"].get<std::string>();
    }

    static std::vector<std::string> next(RunningProgram& program, int lines)
    {
        std::vector<std::string> result;
        for (; lines > 0; --lines)
            result.push_back(next(program));
        return result;
    }

    static void end(RunningProgram& program)
    {
        program.send(SIGTERM);
        const ProgramResult result = program.finish();
        EXPECT_EQ(result.m_ExitCode, 0) << result.m_Errors;
        EXPECT_THAT(result.m_Output, IsEmpty()) << "nothing is told twice";
    }

    TestSupport::CTemporaryFolder m_Data;
    TestSupport::CTemporaryFolder m_Fleet;
};

TEST_F(WatchNewsTest, WhatDrivesSufferFromAtTheStartIsToldOnce)
{
    fleet({drive("SOUND", 1), drive("SICK", 2, 0x1F)});
    RunningProgram program(arguments({"--json"}));
    EXPECT_THAT(next(program, 5),
                UnorderedElementsAre("spare-low present SICK", "over-temperature present SICK",
                                     "reliability-degraded present SICK", "read-only present SICK",
                                     "memory-backup-failed present SICK"));
    program.awaitMessage("adapter count is");
    fleet({drive("SOUND", 1), drive("SICK", 2, 0)});
    EXPECT_EQ(next(program), "10980 SICK") << "the event says that all is over";
    end(program);
}

TEST_F(WatchNewsTest, ALineHasTheDrivesRealAddress)
{
    json far = drive("A", 1, 0x08);
    far["location"] = "10000:e1:00.0";
    fleet({far});
    const ProgramResult result = runProgram(arguments({"--json", "--for", "0"}));
    const json line = json::parse(result.m_Output);
    EXPECT_EQ(line["kind"], "read-only");
    EXPECT_EQ(line["drive"]["pciAddress"], "10000:e1:00.0");
    EXPECT_EQ(line["drive"]["locationIsReal"], false);
}

TEST_F(WatchNewsTest, TheLimitsThatADriveNamesCountWithoutAWarningOfIts)
{
    const auto heat = [this](int temperature) {
        json warm = drive("A", 1);
        warm["identify"]["warningTemperature"] = 70;
        warm["identify"]["criticalTemperature"] = 80;
        warm["health"]["temperature"] = temperature;
        fleet({warm});
    };
    heat(70);
    RunningProgram program(arguments({"--json"}));
    EXPECT_EQ(next(program), "over-temperature present A");
    program.awaitMessage("adapter count is");
    heat(80);
    EXPECT_EQ(next(program), "over-critical-temperature began A");
    heat(68);
    EXPECT_EQ(next(program), "over-critical-temperature ended A");
    heat(67);
    EXPECT_EQ(next(program), "over-temperature ended A");
    end(program);
}

TEST_F(WatchNewsTest, AnAllClearOfADriveThatIsStillTooHotIsNotTheLastWord)
{
    const auto drives = [this](int temperature, int warnings) {
        json warm = drive("A", 1, warnings);
        warm["identify"]["warningTemperature"] = 70;
        warm["health"]["temperature"] = temperature;
        fleet({warm});
    };
    drives(75, 2);
    RunningProgram program(arguments({"--json"}));
    EXPECT_EQ(next(program), "over-temperature present A");
    program.awaitMessage("adapter count is");
    drives(75, 0);
    EXPECT_EQ(next(program), "10980 A");
    EXPECT_EQ(next(program), "over-temperature remains A");
    drives(60, 0);
    EXPECT_EQ(next(program), "over-temperature ended A");
    end(program);
}

TEST_F(WatchNewsTest, MediaErrorsAreToldAtTheStart)
{
    json worn = drive("A", 1);
    worn["health"]["mediaErrors"] = 5;
    fleet({worn, drive("B", 2)});
    RunningProgram program(arguments({"--json"}));
    EXPECT_EQ(next(program), "media-errors-grew present A");
    program.awaitMessage("adapter count is");
    end(program);
}

TEST_F(WatchNewsTest, WearByTheDrivesOwnCountIsToldAtEachStep)
{
    const auto wear = [this](int percent) {
        json worn = drive("A", 1);
        worn["health"]["percentageUsed"] = percent;
        fleet({worn});
    };
    wear(85);
    RunningProgram program(arguments({"--json"}));
    EXPECT_EQ(next(program), "own-wear-grew present A");
    program.awaitMessage("adapter count is");
    wear(255);
    const json line = json::parse(program.awaitResult("\n"));
    EXPECT_EQ(line["severity"], 4);
    EXPECT_THAT(line["text"].get<std::string>(),
                EndsWith(": by its own count the drive has used 255 % of its life."));
    end(program);
}

TEST_F(WatchNewsTest, AMarginOfTheTemperatureIsToldAtTheStartAndThenByEvents)
{
    const auto heat = [this](int temperature) {
        json warm = drive("A", 1);
        warm["vendorLogs"]["0xC5"] = {{"temperature", temperature}, {"offset", 0}};
        fleet({warm});
    };
    heat(80);
    RunningProgram program(arguments({"--json"}));
    EXPECT_EQ(next(program), "temperature-margin present A");
    program.awaitMessage("adapter count is");
    heat(84);
    EXPECT_EQ(next(program), "10960 A");
    heat(78);
    EXPECT_EQ(next(program), "10967 A");
    heat(77);
    EXPECT_EQ(next(program), "10980 A");
    end(program);
}

TEST_F(WatchNewsTest, WhatNoEventTellsIsTold)
{
    fleet({drive("A", 1)});
    RunningProgram program(arguments({"--json"}));
    program.awaitMessage("adapter count is");
    fleet({drive("A", 1, 0x0A)});
    EXPECT_THAT(next(program, 2), UnorderedElementsAre("read-only began A", "over-temperature began A"));
    // One of the two changes below has an event.
    fleet({drive("A", 1, 0x0C)});
    EXPECT_THAT(next(program, 2), ElementsAre("11088 A", "over-temperature ended A"));
    fleet({drive("A", 1)});
    EXPECT_EQ(next(program), "10980 A");
    json changed = drive("A", 1);
    changed["health"]["mediaErrors"] = 3;
    changed["identify"]["firmware"] = "2";
    changed["namespace"]["blocks"] = 409600;
    fleet({changed});
    EXPECT_THAT(next(program, 3),
                UnorderedElementsAre("media-errors-grew change A", "firmware-changed change A",
                                     "capacity-changed change A"));
    changed["location"] = "0000:07:00.0";
    changed["namespace"]["blockSize"] = 4096;
    changed["namespace"]["blocks"] = 51200;
    fleet({changed});
    EXPECT_THAT(next(program, 2), ElementsAre("10985 A", "moved change A"));
    end(program);
}

TEST_F(WatchNewsTest, CountersTellWhatNobodySaw)
{
    const auto counted = [](int cycles, int shutdowns, int hours) {
        json each = drive("A", 1);
        each["health"]["powerCycles"] = cycles;
        each["health"]["unsafeShutdowns"] = shutdowns;
        each["health"]["powerOnHours"] = hours;
        return each;
    };
    fleet({counted(5, 0, 10), drive("B", 2)});
    RunningProgram program(arguments({"--json"}));
    program.awaitMessage("adapter count is");
    // The plug-in looks at the hours, so it announces the change.
    fleet({counted(6, 1, 11), drive("B", 2)});
    const json lost = json::parse(program.awaitResult("\n"));
    EXPECT_EQ(lost["kind"], "power-lost");
    EXPECT_EQ(lost["key"], "A");
    EXPECT_LT(lost["begin"], lost["time"]);
    fleet({drive("B", 2)});
    EXPECT_EQ(next(program), "11094 A");
    fleet({counted(9, 2, 500), drive("B", 2)});
    EXPECT_THAT(next(program, 2), ElementsAre("11093 A", "worked-elsewhere change A"));
    end(program);
}

TEST_F(WatchNewsTest, ASickNewcomerIsAddedByItsEventAndToldSick)
{
    fleet({drive("A", 1)});
    RunningProgram program(arguments({"--json"}));
    program.awaitMessage("adapter count is");
    fleet({drive("A", 1), drive("B", 2, 0x04)});
    EXPECT_THAT(next(program, 2), ElementsAre("11093 B", "reliability-degraded present B"));
    fleet({drive("A", 1)});
    EXPECT_EQ(next(program), "11094 B");
    end(program);
}

TEST_F(WatchNewsTest, ALineLooksLikeThatOfAnEvent)
{
    fleet({drive("A", 1, 0x08)});
    const ProgramResult result = runProgram(arguments({"--for", "0"}));
    EXPECT_THAT(
        result.m_Output,
        testing::ContainsRegex("^20[0-9-]+ [0-9:]+  Error        INTEL MODEL \\(A\\): the drive is read-only "
                               "and takes no data any more. \\(nvme0n1\\)\n$"));
}

TEST_F(WatchNewsTest, TheStatusLineCountsSickDrives)
{
    fleet({drive("A", 1, 0x08), drive("B", 2)});
    RunningProgram program(arguments(), 70);
    program.awaitResult("2 drives, 1 unhealthy, next poll at ");
    program.awaitMessage("adapter count is");
    fleet({drive("A", 1), drive("B", 2)});
    program.awaitResult("2 drives, next poll at ");
    program.send(SIGTERM);
    EXPECT_EQ(program.finish().m_ExitCode, 0);
}

TEST_F(WatchNewsTest, SharedSerialNumbersAreSaidAtTheStart)
{
    fleet({drive("A", 1), drive("B", 2), drive("A", 3)});
    const ProgramResult result = runProgram(arguments({"--for", "0"}));
    EXPECT_EQ(result.m_ExitCode, 0);
    EXPECT_THAT(result.m_Errors,
                HasSubstr("ostrel: The serial number A is that of several devices: nvme0n1, nvme2n1. "));
    EXPECT_THAT(result.m_Errors, Not(HasSubstr("serial number B")));
}

TEST_F(WatchNewsTest, OneOfTwoWithASerialNumberGoesNotUnseen)
{
    fleet({drive("A", 1), drive("A", 3)});
    RunningProgram program(arguments({"--json"}));
    program.awaitMessage("adapter count is");
    fleet({drive("A", 1)});
    const json line = json::parse(program.awaitResult("\n"));
    EXPECT_EQ(line["kind"], "drive-removed");
    EXPECT_EQ(line["drive"]["pciAddress"], "0000:03:00.0");
    end(program);
}

} // namespace
