#include "Host/Commands_Linux/SimulatedProgram.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>

namespace {

using HostTest::ProgramResult;
using HostTest::RunningProgram;
using HostTest::runProgram;
using HostTest::simulated;
using nlohmann::json;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

/** Fleets with a drive that answers, and one that does not. */
class SilentDrivesTest : public testing::Test
{
protected:
    static json drive(const std::string& serial, int bus, const json& manner = json::object())
    {
        json result = {
            {"location", "0000:0" + std::to_string(bus) + ":00.0"},
            {"identify",
             {{"vendorId", 0x8086}, {"model", "INTEL MODEL"}, {"serial", serial}, {"firmware", "1"}}},
            {"namespace", {{"blocks", 204800}}},
            {"health", {{"temperature", 20}}}};
        result.update(manner);
        return result;
    }

    /** Replaces the fleet file as a whole. */
    std::string fleet(const std::vector<json>& drives) const
    {
        const json fleet = {{"controllers", drives}};
        std::filesystem::rename(m_Folder.Write("next", fleet.dump()), m_Folder.Path() / "fleet.json");
        return m_Folder.Path() / "fleet.json";
    }

    const json m_Hangs = {{"hangs", true}};
    const json m_Fails = {{"fails", {"identifyController"}}};
    TestSupport::CTemporaryFolder m_Folder;
};

TEST_F(SilentDrivesTest, AreRowsOfListByTheNamesThatTheSystemHas)
{
    const std::string file = fleet({drive("S1", 1), drive("S2", 2, m_Hangs)});
    const ProgramResult text = runProgram(simulated({"list"}, file));
    EXPECT_EQ(text.m_ExitCode, 0) << text.m_Errors;
    EXPECT_THAT(text.m_Output,
                AllOf(HasSubstr(" S1 "), HasSubstr("Healthy\n"),
                      HasSubstr("nvme1n1  -       INTEL MODEL  S2"), HasSubstr("  does not answer\n")));
    const json drives = json::parse(runProgram(simulated({"list", "--json"}, file)).m_Output)["drives"];
    ASSERT_EQ(drives.size(), 2U);
    EXPECT_EQ(drives[0]["answering"], true);
    EXPECT_FALSE(drives[0].contains("lastAnswer"));
    EXPECT_EQ(drives[1]["answering"], false);
    EXPECT_EQ(drives[1]["serial"], "S2");
    EXPECT_EQ(drives[1]["firmware"], "1");
    EXPECT_EQ(drives[1]["pciAddress"], "0000:02:00.0");
    EXPECT_FALSE(drives[1].contains("health") || drives[1].contains("adapterId"));
}

TEST_F(SilentDrivesTest, AreShownEvenIfNoDriveAnswers)
{
    const std::string file = fleet({drive("S2", 2, m_Fails)});
    const ProgramResult list = runProgram(simulated({"list"}, file));
    EXPECT_EQ(list.m_ExitCode, 0) << list.m_Errors;
    EXPECT_THAT(list.m_Output, HasSubstr("  does not answer\n"));
    EXPECT_EQ(runProgram(simulated({"doctor"}, file)).m_ExitCode, 1);
    EXPECT_EQ(runProgram(simulated({"check"}, file)).m_ExitCode, 2);
}

TEST_F(SilentDrivesTest, AreMarkedByTopologyShowAndDoctor)
{
    const std::string file = fleet({drive("S1", 1), drive("S2", 2, m_Fails)});
    const std::string status = "does not answer: the drive answered with status";
    EXPECT_THAT(runProgram(simulated({"topology"}, file)).m_Output,
                HasSubstr("\nINTEL MODEL (S2)\n  nvme1n1 " + status));
    const json topology = json::parse(runProgram(simulated({"topology", "--json"}, file)).m_Output);
    EXPECT_EQ(topology["objects"][1]["answering"], true);
    EXPECT_EQ(topology["unheardDrives"].size(), 1U);
    EXPECT_EQ(topology["unheardDrives"][0]["serial"], "S2");
    const ProgramResult show = runProgram(simulated({"show", "S2"}, file));
    EXPECT_EQ(show.m_ExitCode, 1);
    EXPECT_THAT(show.m_Errors, HasSubstr("nvme1n1 " + status));
    EXPECT_EQ(runProgram(simulated({"show", "S1"}, file)).m_ExitCode, 0);
    const ProgramResult doctor = runProgram(simulated({"doctor"}, file));
    EXPECT_EQ(doctor.m_ExitCode, 1);
    EXPECT_THAT(doctor.m_Output, AllOf(HasSubstr("PROBLEM  nvme1n1: " + status), HasSubstr("system's log")));
}

TEST_F(SilentDrivesTest, AreCriticalForCheckBecauseItAsksTwice)
{
    const std::string file = fleet({drive("S1", 1), drive("S2", 2, m_Fails)});
    const ProgramResult all = runProgram(simulated({"check"}, file));
    EXPECT_EQ(all.m_ExitCode, 2) << all.m_Output;
    EXPECT_THAT(all.m_Output, AllOf(HasSubstr("nvme1n1 (S2): does not answer: "), HasSubstr("1 of 2 drives"),
                                    HasSubstr("'S1_temperature'"), Not(HasSubstr("'S2_"))));
    EXPECT_EQ(runProgram(simulated({"check", "S1"}, file)).m_ExitCode, 0);
    for (const char* name : {"S2", "nvme1n1", "nvme1", "0000:02:00.0"})
        EXPECT_EQ(runProgram(simulated({"check", name}, file)).m_ExitCode, 2) << name;
}

TEST_F(SilentDrivesTest, AreToldByWatchWhenTheyFallSilentAndWhenTheyAnswerAgain)
{
    for (const json& manner : {m_Fails, m_Hangs}) {
        const std::string file = fleet({drive("S1", 1), drive("S2", 2)});
        RunningProgram watch(simulated({"watch", "--json"}, file));
        const auto next = [&] { return json::parse(watch.awaitResult("\n")); };
        // What the drives suffer from already is told at the start, so a sound fleet is silent; a warning
        // that comes shows that the program watches.
        json warned = drive("S1", 1);
        warned["health"]["criticalWarning"] = 4;
        fleet({warned, drive("S2", 2)});
        EXPECT_EQ(next()["drive"]["serial"], "S1");

        fleet({warned, drive("S2", 2, manner)});
        const json silent = next();
        EXPECT_EQ(silent["kind"], "does-not-answer");
        EXPECT_EQ(silent["phase"], "began");
        EXPECT_EQ(silent["drive"]["serial"], "S2");
        EXPECT_THAT(silent["text"].get<std::string>(), HasSubstr("does not answer"));

        // The others are still read, and nothing is said of the silent one meanwhile.
        fleet({drive("S1", 1), drive("S2", 2, manner)});
        EXPECT_EQ(next()["drive"]["serial"], "S1");

        fleet({drive("S1", 1), drive("S2", 2)});
        const json again = next();
        EXPECT_EQ(again["kind"], "does-not-answer");
        EXPECT_EQ(again["phase"], "ended");
        watch.send(SIGTERM);
        EXPECT_EQ(watch.finish().m_ExitCode, 0);
    }
}

} // namespace
