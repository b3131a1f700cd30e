#include "Drives/SimulatedFleet.h"

#include "Base/Failure.h"
#include "Support/TemporaryFolder.h"

#include <chrono>
#include <future>

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr char ONE[] = R"({"controllers": [{"identify": {"vendorId": 1, "model": "M", "serial": "A"}}]})";
constexpr char TWO[] = R"({"controllers": [
    {"identify": {"vendorId": 1, "model": "M", "serial": "A"}},
    {"identify": {"vendorId": 1, "model": "M", "serial": "B"}, "location": "0000:05:00.0"}]})";

constexpr char HANGS[] = R"("hangs": true)";

/** A fleet of one drive, and how it answers. */
std::string oneDrive(const std::string& serial, const std::string& firmware, const std::string& manner)
{
    return R"({"controllers": [{"identify": {"vendorId": 1, "model": "M", "serial": ")" + serial +
           R"(", "firmware": ")" + firmware + R"("}, )" + manner + "}]}";
}

/** The firmware that the first drive tells, or the status. */
std::string answerOf(Host::SimulatedFleet& fleet)
{
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    const std::uint32_t status = fleet.IdentifyController("/dev/nvme0n1", controller);
    return status == 0 ? controller.sFirmwareRevision() : "status " + std::to_string(status);
}

/** The same on a thread of its own. */
std::future<std::string> startCommand(Host::SimulatedFleet& fleet)
{
    return std::async(std::launch::async, [&fleet] { return answerOf(fleet); });
}

class SimulatedFleetTest : public testing::Test
{
protected:
    Host::SimulatedFleet fleetOf(const std::string& text)
    {
        return {m_Folder.Write("fleet.json", text),
                [this](const std::string& warning) { m_Warnings.push_back(warning); }};
    }

    static std::vector<std::string> devices(Host::SimulatedFleet& fleet)
    {
        std::vector<std::string> names;
        for (const TLXX::CDeviceEntry& entry : fleet.Enumerate({}))
            names.push_back(entry.m_DeviceName);
        return names;
    }

    std::string refusalOf(const std::filesystem::path& file)
    {
        try {
            Host::SimulatedFleet fleet(file, [](const std::string&) {});
        } catch (const Host::Failure& failure) {
            EXPECT_EQ(failure.exitCode(), Host::ExitCode::WrongUsage);
            return failure.what();
        }
        return "accepted";
    }

    TestSupport::CTemporaryFolder m_Folder;
    std::vector<std::string> m_Warnings;
};

TEST_F(SimulatedFleetTest, SaysOfItsControllersWhatASystemKnows)
{
    Host::SimulatedFleet fleet = fleetOf(TWO);
    const auto states = fleet.ControllerStates();
    ASSERT_EQ(states.size(), 2U);
    EXPECT_EQ(states[0].m_SerialNumber, "A");
    EXPECT_EQ(states[0].m_Model, "M");
    EXPECT_EQ(states[0].m_Transport, "");
    EXPECT_EQ(states[1].m_SerialNumber, "B");
    EXPECT_EQ(states[1].m_DeviceName, devices(fleet)[1]);
    EXPECT_EQ(states[1].m_Location, (TLXX::CPciLocation{0, 5, 0, 0}));
    EXPECT_EQ(states[1].m_Transport, "pcie");
}

TEST_F(SimulatedFleetTest, ADiagnosisLeavesTheDisksOfTheLastEnumeration)
{
    Host::SimulatedFleet fleet = fleetOf(ONE);
    ASSERT_EQ(devices(fleet).size(), 1U);
    m_Folder.Write("fleet.json", TWO);
    EXPECT_EQ(fleet.ControllerStates().size(), 1U);
    EXPECT_EQ(devices(fleet).size(), 2U);
    EXPECT_EQ(fleet.ControllerStates().size(), 2U);
}

TEST_F(SimulatedFleetTest, AFileThatCannotBeReadIsAnErrorAtStart)
{
    EXPECT_THAT(refusalOf(m_Folder.Path() / "none.json"),
                AllOf(HasSubstr("none.json"), HasSubstr("cannot be read")));
    EXPECT_THAT(refusalOf(m_Folder.Path()), HasSubstr("is no regular file"));
}

TEST_F(SimulatedFleetTest, AWrongFileIsAnErrorAtStartThatNamesFilePlaceAndRemedy)
{
    EXPECT_THAT(
        refusalOf(m_Folder.Write("bad.json", R"({"controllers": [{"health": {"temperature": 999}}]})")),
        AllOf(HasSubstr("bad.json"), HasSubstr("/controllers/0/health/temperature"),
              HasSubstr("DemoFleet.json")));
    EXPECT_THAT(refusalOf(m_Folder.Write("torn.json", R"({"controllers": [{"health")")),
                AllOf(HasSubstr("torn.json"), HasSubstr("line 1"), HasSubstr("Correct the file")));
    EXPECT_THAT(refusalOf(m_Folder.Write("huge.json", R"({"controllers": 1e999})")),
                AllOf(HasSubstr("huge.json"), HasSubstr("1e999"), HasSubstr("Correct the file")));
}

TEST_F(SimulatedFleetTest, TheNameOfAFileForgesNoLineOfItsMessages)
{
    EXPECT_THAT(refusalOf(m_Folder.Path() / "a\nostrel: all is well"),
                AllOf(HasSubstr("a?ostrel: all is well"), Not(HasSubstr("\n"))));
}

TEST_F(SimulatedFleetTest, DrivesComeAndGoWithTheFile)
{
    Host::SimulatedFleet fleet = fleetOf(ONE);
    EXPECT_THAT(devices(fleet), ElementsAre("/dev/nvme0n1"));
    m_Folder.Write("fleet.json", TWO);
    EXPECT_THAT(devices(fleet), ElementsAre("/dev/nvme0n1", "/dev/nvme1n1"));
    m_Folder.Write("fleet.json", R"({"controllers": []})");
    EXPECT_THAT(devices(fleet), IsEmpty());
    EXPECT_THAT(m_Warnings, IsEmpty());
}

TEST_F(SimulatedFleetTest, AWrongFileKeepsTheLastStateAndWarnsOnceAChange)
{
    Host::SimulatedFleet fleet = fleetOf(TWO);
    m_Folder.Write("fleet.json", R"({"controllers": [)");
    EXPECT_EQ(devices(fleet).size(), 2U);
    EXPECT_EQ(devices(fleet).size(), 2U);
    ASSERT_EQ(m_Warnings.size(), 1U);
    EXPECT_THAT(m_Warnings[0],
                AllOf(HasSubstr("fleet.json"), HasSubstr("stays as it was"), HasSubstr("line 1")));

    m_Folder.Write("fleet.json", R"({"controllers": [5]})");
    EXPECT_EQ(devices(fleet).size(), 2U);
    EXPECT_EQ(m_Warnings.size(), 2U);

    m_Folder.Write("fleet.json", R"({"controllers": [{"identify": {"vendorId": 1e999}}]})");
    EXPECT_EQ(devices(fleet).size(), 2U);
    ASSERT_EQ(m_Warnings.size(), 3U);
    EXPECT_THAT(m_Warnings[2], AllOf(HasSubstr("stays as it was"), HasSubstr("1e999")));

    std::filesystem::remove(m_Folder.Path() / "fleet.json");
    EXPECT_EQ(devices(fleet).size(), 2U);
    EXPECT_EQ(devices(fleet).size(), 2U);
    ASSERT_EQ(m_Warnings.size(), 4U);
    EXPECT_THAT(m_Warnings[3], HasSubstr("can no longer be read"));

    m_Folder.Write("fleet.json", ONE);
    EXPECT_EQ(devices(fleet).size(), 1U);
    EXPECT_EQ(m_Warnings.size(), 4U);
}

TEST_F(SimulatedFleetTest, AnswersEachDiskWithItsBlocks)
{
    Host::SimulatedFleet fleet = fleetOf(TWO);
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    ASSERT_EQ(fleet.IdentifyController("/dev/nvme1n1", controller), 0U);
    EXPECT_EQ(controller.sSerialNumber(), "B");
    EXPECT_EQ(fleet.Location(1), std::nullopt);
    EXPECT_EQ(fleet.Location(2), (TLXX::CPciLocation{0, 5, 0, 0}));
    EXPECT_EQ(fleet.Location(0), std::nullopt);
    EXPECT_EQ(fleet.Location(3), std::nullopt);
}

TEST_F(SimulatedFleetTest, AnUnknownDiskOrAMissingBlockFailsAndLeavesTheCallersBlock)
{
    Host::SimulatedFleet fleet = fleetOf(R"({"controllers": [{}]})");
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    controller.VID = 7;
    TLXX::NVME_IDENTIFY_NAMESPACE name_space{};
    name_space.NSZE = 7;
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
    log.Warning = 7;
    TLXX::VendorLogPage page{7};
    for (const char* path : {"/dev/nvme0n1", "/dev/nvme9n1"}) {
        EXPECT_NE(fleet.IdentifyController(path, controller), 0U);
        EXPECT_NE(fleet.IdentifyNamespace(path, name_space), 0U);
        EXPECT_NE(fleet.SmartHealthLog(path, log), 0U);
        EXPECT_NE(fleet.VendorLogPage(path, 0xC5, page), 0U);
    }
    EXPECT_EQ(controller.VID, 7);
    EXPECT_EQ(name_space.NSZE, 7U);
    EXPECT_EQ(log.Warning, 7);
    EXPECT_EQ(page[0], 7);
}

TEST_F(SimulatedFleetTest, RefusesTheCommandsThatFailWithAStatusOfTheDrive)
{
    constexpr const char* names[] = {"identifyController", "identifyNamespace", "healthLog", "vendorLog"};
    for (std::size_t failing = 0; failing < std::size(names); ++failing) {
        Host::SimulatedFleet fleet = fleetOf(R"({"controllers": [{
            "identify": {"vendorId": 1, "model": "M", "serial": "A"}, "namespace": {"blocks": 1},
            "health": {"temperature": 30}, "vendorLogs": {"0xC5": {"temperature": 80}}, "fails": [")" +
                                             std::string(names[failing]) + R"("]}]})");
        const std::string path = "/dev/nvme0n1";
        TLXX::NVME_IDENTIFY_CONTROLLER controller{};
        TLXX::NVME_IDENTIFY_NAMESPACE name_space{};
        TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
        TLXX::VendorLogPage page{};
        const std::uint32_t statuses[] = {
            fleet.IdentifyController(path, controller), fleet.IdentifyNamespace(path, name_space),
            fleet.SmartHealthLog(path, log), fleet.VendorLogPage(path, 0xC5, page)};
        for (std::size_t each = 0; each < std::size(statuses); ++each)
            EXPECT_EQ(TLXX::statusText(statuses[each]), TLXX::statusText(each == failing ? 0x10006 : 0))
                << names[failing] << each;
        EXPECT_EQ(controller.VID, failing == 0 ? 0 : 1);
        EXPECT_EQ(name_space.NSZE, failing == 1 ? 0U : 1U);
        EXPECT_EQ(log.CompositeTemperature(), failing == 2 ? 0 : 303);
        EXPECT_EQ(page[0], failing == 3 ? 0 : 80);
    }
}

TEST_F(SimulatedFleetTest, TakesItsTimeForEachCommand)
{
    using Clock = std::chrono::steady_clock;
    Host::SimulatedFleet fleet = fleetOf(oneDrive("A", "F1", R"("delayMilliseconds": 30)"));
    const Clock::time_point begin = Clock::now();
    EXPECT_EQ(answerOf(fleet), "F1");
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(30));
}

TEST_F(SimulatedFleetTest, ADriveThatHangsAnswersAfterTheEditAndDelaysNobodyElse)
{
    Host::SimulatedFleet fleet = fleetOf(oneDrive("A", "F1", HANGS));
    std::future<std::string> command = startCommand(fleet);
    EXPECT_EQ(command.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    EXPECT_THAT(devices(fleet), ElementsAre("/dev/nvme0n1"));
    EXPECT_EQ(fleet.ModuleVersion("nvme"), "");
    // Nobody enumerates: the command itself notices the edit.
    m_Folder.Write("fleet.json", oneDrive("A", "F2", R"("hangs": false)"));
    EXPECT_EQ(command.get(), "F2");
}

TEST_F(SimulatedFleetTest, ACommandThatHangsFailsWhenItsDriveIsRemovedOrExchanged)
{
    for (const std::string& next : {std::string(R"({"controllers": []})"), oneDrive("B", "F2", HANGS),
                                    oneDrive("B", "F2", R"("hangs": false)")}) {
        Host::SimulatedFleet fleet = fleetOf(oneDrive("A", "F1", HANGS));
        std::future<std::string> command = startCommand(fleet);
        EXPECT_EQ(command.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
        m_Folder.Write("fleet.json", next);
        EXPECT_EQ(command.get(), "status 2") << next;
    }
}

TEST_F(SimulatedFleetTest, ACommandThatHangsLeavesAWrongEditToTheNextEnumeration)
{
    Host::SimulatedFleet fleet = fleetOf(oneDrive("A", "F1", HANGS));
    std::future<std::string> command = startCommand(fleet);
    m_Folder.Write("fleet.json", "{");
    EXPECT_EQ(command.wait_for(std::chrono::milliseconds(400)), std::future_status::timeout);
    EXPECT_THAT(m_Warnings, IsEmpty());
    EXPECT_THAT(devices(fleet), ElementsAre("/dev/nvme0n1"));
    EXPECT_EQ(m_Warnings.size(), 1U);
    m_Folder.Write("fleet.json", oneDrive("A", "F2", R"("hangs": false)"));
    EXPECT_EQ(command.get(), "F2");
}

TEST_F(SimulatedFleetTest, TellsDrivesApartByNameAndSerialNumber)
{
    Host::SimulatedFleet fleet = fleetOf(TWO);
    const std::string first = fleet.Instance("/dev/nvme0n1");
    const std::string second = fleet.Instance("/dev/nvme1n1");
    EXPECT_NE(first, second);
    EXPECT_EQ(fleet.Instance("/dev/nvme9n1"), "/dev/nvme9n1");

    // Another firmware makes no other drive; neither does a drive that no longer says who it is.
    m_Folder.Write("fleet.json", oneDrive("A", "F2", R"("hangs": false)"));
    devices(fleet);
    EXPECT_EQ(fleet.Instance("/dev/nvme0n1"), first);
    m_Folder.Write("fleet.json", R"({"controllers": [{}]})");
    devices(fleet);
    EXPECT_EQ(fleet.Instance("/dev/nvme0n1"), first);

    m_Folder.Write("fleet.json", oneDrive("B", "F1", R"("hangs": false)"));
    devices(fleet);
    EXPECT_NE(fleet.Instance("/dev/nvme0n1"), first);
    EXPECT_NE(fleet.Instance("/dev/nvme0n1"), second);
}

TEST_F(SimulatedFleetTest, TellsTheVersionOfItsDrivers)
{
    Host::SimulatedFleet fleet =
        fleetOf(R"({"controllers": [{"driver": "a", "driverVersion": "1"}, {"driver": "b"}]})");
    EXPECT_EQ(fleet.ModuleVersion("a"), "1");
    EXPECT_EQ(fleet.ModuleVersion("b"), "");
    EXPECT_EQ(fleet.ModuleVersion("c"), "");
}

} // namespace
