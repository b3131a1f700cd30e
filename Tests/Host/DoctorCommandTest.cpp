#include "Cli/DoctorCommand.h"

#include "Core/DeviceAccess.h"
#include "Host/Catalogue.h"
#include "Host/Objects.h"

#include <nlohmann/json.hpp>

#include <cerrno>

namespace {

using namespace Host::Cli;
using Host::ExitCode;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;

TLXX::CControllerState stateOf(int number)
{
    TLXX::CControllerState state;
    state.m_Name = "nvme" + std::to_string(number);
    state.m_DeviceName = "/dev/" + state.m_Name + "n1";
    state.m_Driver = "nvme";
    state.m_Transport = "pcie";
    state.m_State = "live";
    state.m_Location = TLXX::CPciLocation{0, 16 * (number + 1), 0x1F, 1};
    state.m_AccessPath = "/dev/" + state.m_Name;
    return state;
}

auto finding(Finding kind, const std::string& part)
{
    return AllOf(Field(&Check::m_Finding, kind), Field(&Check::m_Message, HasSubstr(part)));
}

TEST(CheckAccess, IsContentWhenNothingRefuses)
{
    Host::checkAccess({}, [](const std::string&) { ADD_FAILURE(); });
    Host::checkAccess({stateOf(0), stateOf(1)}, [](const std::string&) { ADD_FAILURE(); });
}

TEST(CheckAccess, EndsWhenEveryDriveRefuses)
{
    std::vector<TLXX::CControllerState> states = {stateOf(0), stateOf(1)};
    states[0].m_AccessStatus = EACCES;
    states[1].m_AccessStatus = EPERM;
    // Not to be shown anyway, so that it may be opened helps nobody.
    states.push_back(stateOf(2));
    states.back().m_DeviceName.clear();
    try {
        Host::checkAccess(states, [](const std::string&) { ADD_FAILURE(); });
        ADD_FAILURE();
    } catch (const Host::Failure& failure) {
        EXPECT_EQ(failure.exitCode(), ExitCode::NoPermission);
        EXPECT_THAT(failure.what(), AllOf(HasSubstr("/dev/nvme0, /dev/nvme1"), HasSubstr("root")));
    }
}

TEST(CheckAccess, WarnsWhenSomeRefuse)
{
    std::vector<TLXX::CControllerState> states = {stateOf(0), stateOf(1)};
    states[1].m_AccessStatus = EACCES;
    std::vector<std::string> warnings;
    Host::checkAccess(states, [&](const std::string& warning) { warnings.push_back(warning); });
    EXPECT_THAT(warnings, ElementsAre(AllOf(HasSubstr("/dev/nvme1"), Not(HasSubstr("/dev/nvme0")))));
}

TEST(CheckAccess, LeavesOtherTroubleToTheRequests)
{
    std::vector<TLXX::CControllerState> states = {stateOf(0)};
    states[0].m_AccessStatus = ENOENT;
    Host::checkAccess(states, [](const std::string&) { ADD_FAILURE(); });
}

TEST(CheckControllers, NamesEachReasonWhyOneIsNotShown)
{
    std::vector<TLXX::CControllerState> states = {stateOf(0), stateOf(1), stateOf(2), stateOf(3), stateOf(4)};
    states[1].m_DeviceName.clear();
    states[1].m_State = "connecting";
    states[2].m_DeviceName.clear();
    states[2].m_Transport = "tcp";
    states[3].m_AccessStatus = EACCES;
    states[4].m_AccessStatus = ENOENT;
    const std::vector<Check> checks = checkControllers(states);
    EXPECT_THAT(checks,
                ElementsAre(finding(Finding::Ok, "/dev/nvme0n1 at 0000:10:1f.1, driver nvme, live"),
                            finding(Finding::Note, "yields no disk at 0000:20:1f.1: it has no namespace"),
                            finding(Finding::Note, "attached by tcp"),
                            finding(Finding::Problem, "no permission to open /dev/nvme3"),
                            finding(Finding::Problem, "/dev/nvme4 cannot be opened: there is no such")));
    EXPECT_THAT(checks[1].m_Message, HasSubstr("state: connecting"));
    EXPECT_EQ(exitCodeOf(checks), ExitCode::NoPermission);
}

TEST(CheckControllers, HavingNoneOrNoDiskIsAProblem)
{
    EXPECT_EQ(exitCodeOf(checkControllers({})), ExitCode::NoHardware);
    TLXX::CControllerState state = stateOf(0);
    state.m_DeviceName.clear();
    EXPECT_EQ(exitCodeOf(checkControllers({state})), ExitCode::NoHardware);
    EXPECT_EQ(exitCodeOf(checkControllers({stateOf(0), state})), ExitCode::Done);
}

class CheckInventoryTest : public testing::Test
{
protected:
    static std::vector<Check> check(const std::vector<TLXX::CControllerState>& states,
                                    const std::vector<HostTest::DriveObjects>& drives)
    {
        return checkInventory(states, Host::ObjectStore(HostTest::topologyOf(drives)));
    }

    HostTest::DriveObjects m_First{16, "A", "/dev/nvme0n1"};
    HostTest::DriveObjects m_Second{32, "B", "/dev/nvme1n1"};

private:
    HostTest::Catalogue m_Catalogue;
};

TEST_F(CheckInventoryTest, HasNothingToSayWhenAllIsThere)
{
    EXPECT_TRUE(check({stateOf(0), stateOf(1)}, {m_First, m_Second}).empty());
}

TEST_F(CheckInventoryTest, TellsOfADroppedDiskAndTheNumbersBehindIt)
{
    HostTest::DriveObjects shifted(16, "B", "/dev/nvme1n1");
    EXPECT_THAT(check({stateOf(0), stateOf(1)}, {shifted}),
                ElementsAre(finding(Finding::Note, "is left out on purpose"),
                            finding(Finding::Note, "sits at 0000:20:1f.1, but is shown at PCI:Bus=16&"),
                            finding(Finding::Note, "shift the numbers")));
}

TEST_F(CheckInventoryTest, DoesNotMissADiskThatRefusesThisUser)
{
    TLXX::CControllerState refused = stateOf(1);
    refused.m_AccessStatus = EACCES;
    EXPECT_TRUE(check({stateOf(0), refused}, {m_First}).empty());
}

TEST_F(CheckInventoryTest, TellsWhatADriveLeftUnanswered)
{
    m_First.remove(PI::PROP_DRIVE_TEMPERATURE);
    EXPECT_THAT(check({stateOf(0)}, {m_First}),
                ElementsAre(finding(Finding::Problem, "health log was not read")));
}

TEST_F(CheckInventoryTest, TellsOfNamespacesWithoutCapacity)
{
    const auto with = [&](std::uint64_t capacity, std::uint64_t blockSize) {
        HostTest::DriveObjects objects = m_First;
        objects.remove(PI::PROP_CAPACITY);
        objects.remove(PI::PROP_BLOCK_SIZE);
        objects.m_Drive.m_Properties.push_back(HostTest::property(PI::PROP_CAPACITY, PI::UNIT_MIB, capacity));
        objects.m_Drive.m_Properties.push_back(
            HostTest::property(PI::PROP_BLOCK_SIZE, PI::UNIT_BYTES, blockSize));
        return check({stateOf(0)}, {objects});
    };
    EXPECT_THAT(with(0, 512), ElementsAre(finding(Finding::Note, "holds no blocks")));
    EXPECT_THAT(with(0, 0), ElementsAre(finding(Finding::Problem, "block format is unset or out of range")));
}

TEST_F(CheckInventoryTest, TellsOfStrangeTexts)
{
    EXPECT_THAT(check({stateOf(0)}, {HostTest::DriveObjects(16, "A?B", "/dev/nvme0n1")}),
                ElementsAre(finding(Finding::Note, "cannot be printed")));
    EXPECT_THAT(check({stateOf(0)}, {HostTest::DriveObjects(16, "", "/dev/nvme0n1")}),
                ElementsAre(finding(Finding::Note, "no serial number")));
}

TEST(DoctorText, HasALineForEachCheck)
{
    const std::vector<Check> checks = {ok("a", "fine"), note("b", "hm\n"),
                                       problem(ExitCode::NoHardware, "c", "bad", "Do it.")};
    EXPECT_EQ(doctorText(checks, {}), "OK       a: fine\nNOTE     b: hm?\nPROBLEM  c: bad -> Do it.\n");
    EXPECT_EQ(doctorJson(checks), nlohmann::ordered_json::parse(R"({"checks": [
        {"subject": "a", "result": "ok", "message": "fine"},
        {"subject": "b", "result": "note", "message": "hm\n"},
        {"subject": "c", "result": "problem", "message": "bad", "remedy": "Do it."}]})"));
    EXPECT_EQ(exitCodeOf(checks), ExitCode::NoHardware);
    EXPECT_EQ(exitCodeOf({ok("a", "fine"), note("b", "hm")}), ExitCode::Done);
}

} // namespace
