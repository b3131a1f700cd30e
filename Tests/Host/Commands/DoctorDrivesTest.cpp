#include "Base/Platform.h"
#include "Drives/DeviceAccess.h"
#include "Host/Catalogue.h"
#include "Host/Checks.h"
#include "Host/Objects.h"
#include "Support/FakeDrives.h"
#include "Support/TemporaryFolder.h"

#include <PI/ErrorCode.h>
#include <TLXX/NvmeQuery.h>

namespace {

using namespace Host::Cli;
using namespace TestSupport::SystemStatus;
using Host::ExitCode;
using HostTest::finding;
using HostTest::stateOf;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;

TEST(CheckAccess, IsContentWhenNothingRefuses)
{
    Host::checkAccess({}, [](const std::string&) { ADD_FAILURE(); });
    Host::checkAccess({stateOf(0), stateOf(1)}, [](const std::string&) { ADD_FAILURE(); });
}

TEST(CheckAccess, EndsWhenEveryDriveRefuses)
{
    std::vector<TLXX::CControllerState> states = {stateOf(0), stateOf(1)};
    states[0].m_AccessStatus = NO_PERMISSION;
    states[1].m_AccessStatus = NO_PERMISSION;
    // This controller is not shown in any case, so permission to open it would not help.
    states.push_back(stateOf(2));
    states.back().m_DeviceName.clear();
    try {
        Host::checkAccess(states, [](const std::string&) { ADD_FAILURE(); });
        ADD_FAILURE();
    } catch (const Host::Failure& failure) {
        EXPECT_EQ(failure.exitCode(), ExitCode::NoPermission);
        EXPECT_THAT(failure.what(), AllOf(HasSubstr("/dev/nvme0, /dev/nvme1"),
                                          HasSubstr(std::string(Host::Platform::permissionRemedy()))));
    }
}

TEST(CheckAccess, WarnsWhenSomeRefuse)
{
    std::vector<TLXX::CControllerState> states = {stateOf(0), stateOf(1)};
    states[1].m_AccessStatus = NO_PERMISSION;
    std::vector<std::string> warnings;
    Host::checkAccess(states, [&](const std::string& warning) { warnings.push_back(warning); });
    EXPECT_THAT(warnings, ElementsAre(AllOf(HasSubstr("/dev/nvme1"), Not(HasSubstr("/dev/nvme0")))));
}

TEST(CheckAccess, LeavesOtherTroubleToTheRequests)
{
    std::vector<TLXX::CControllerState> states = {stateOf(0)};
    states[0].m_AccessStatus = NO_SUCH_FILE;
    Host::checkAccess(states, [](const std::string&) { ADD_FAILURE(); });
}

TEST(CheckControllers, NamesEachReasonWhyOneIsNotShown)
{
    std::vector<TLXX::CControllerState> states = {stateOf(0), stateOf(1), stateOf(2), stateOf(3), stateOf(4)};
    states[1].m_DeviceName.clear();
    states[1].m_State = "connecting";
    states[2].m_DeviceName.clear();
    states[2].m_Transport = "tcp";
    states[3].m_AccessStatus = NO_PERMISSION;
    states[4].m_AccessStatus = NO_SUCH_FILE;
    const std::vector<Check> checks = checkControllers(states);
    EXPECT_THAT(checks,
                ElementsAre(finding(Finding::Ok, "/dev/nvme0n1 at 0000:10:1f.1, driver nvme, live"),
                            finding(Finding::Note, "provides no disk at 0000:20:1f.1: it has no namespace"),
                            finding(Finding::Note, "attached by tcp"),
                            finding(Finding::Problem, "no permission to open /dev/nvme3"),
                            finding(Finding::Problem, "/dev/nvme4 cannot be opened: there is no such")));
    EXPECT_THAT(checks[1].m_Message, HasSubstr("state: connecting"));
    EXPECT_EQ(exitCodeOf(checks), ExitCode::NoPermission);
}

TEST(CheckControllers, TellsOfNamespacesThatAreNotShown)
{
    TLXX::CControllerState one = stateOf(0);
    one.m_Namespaces = 1;
    TLXX::CControllerState three = stateOf(1);
    three.m_Namespaces = 3;
    EXPECT_THAT(checkControllers({one, three}),
                ElementsAre(finding(Finding::Ok, "/dev/nvme0n1"), finding(Finding::Ok, "/dev/nvme1n1"),
                            finding(Finding::Note, "has 3 namespaces; only the first one is shown, "
                                                   "/dev/nvme1n1")));
}

TEST(CheckControllers, HavingNoneOrNoDiskIsAProblem)
{
    TLXX::CControllerState state = stateOf(0);
    state.m_DeviceName.clear();
    const auto reason = [](const std::string& part) {
        return ElementsAre(
            AllOf(finding(Finding::Problem, part), Field(&Check::m_ExitCode, ExitCode::NoHardware)));
    };
    EXPECT_THAT(checkAnyDisk({}, false, nullptr), reason("the system knows no NVMe controller"));
    EXPECT_THAT(checkAnyDisk({}, true, nullptr), reason("uses none of the controllers"));
    EXPECT_THAT(checkAnyDisk({state}, true, nullptr), reason("none of them provides a disk"));
    EXPECT_TRUE(checkAnyDisk({stateOf(0), state}, true, nullptr).empty());

    const TestSupport::CTemporaryFolder folder;
    const Host::SimulatedFleet fleet(folder.Write("empty.json", R"({"controllers": []})"), nullptr);
    const std::vector<Check> empty = checkAnyDisk({}, false, &fleet);
    EXPECT_THAT(empty, reason("empty.json contains no controller"));
    EXPECT_THAT(empty[0].m_Remedy, HasSubstr("DemoFleet.json"));
}

/** Drives from "/dev/nvme0n1" upwards. */
struct FakesOf
{
    explicit FakesOf(std::uint32_t count)
    {
        for (std::uint32_t i = 0; i < count; ++i)
            m_Fakes.Add(TestSupport::CFakeDrive(i));
    }

    static std::string path(int number) { return stateOf(number).m_DeviceName; }

    static void identify(int number)
    {
        TLXX::NVME_IDENTIFY_CONTROLLER block{};
        (void)TLXX::NVMeStorageQueryPropertyIdentifyController(path(number), block);
    }

    static void readNamespace(int number)
    {
        TLXX::NVME_IDENTIFY_NAMESPACE block{};
        (void)TLXX::NVMeStorageQueryPropertyIdentifyNamespace(path(number), block);
    }

    static void readHealth(int number)
    {
        TLXX::NVME_SMART_HEALTH_INFORMATION_LOG block{};
        (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(path(number), block);
    }

    TestSupport::CFakeDrives m_Fakes;
};

class CheckInventoryTest : public testing::Test
{
protected:
    static std::vector<Check> check(const std::vector<TLXX::CControllerState>& states,
                                    const std::vector<HostTest::DriveObjects>& drives)
    {
        return checkInventory(Host::ObjectStore(HostTest::topologyOf(drives), states));
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
    const FakesOf drives(2);
    drives.identify(0);
    HostTest::DriveObjects shifted(16, "B", "/dev/nvme1n1");
    EXPECT_THAT(check({stateOf(0), stateOf(1)}, {shifted}),
                ElementsAre(finding(Finding::Note, "is left out on purpose"),
                            AllOf(finding(Finding::Note, "is at 0000:20:1f.1, but is shown at PCI:Bus=16&"),
                                  finding(Finding::Note, "earlier disk was left out")),
                            finding(Finding::Note, "have other numbers")));
}

TEST_F(CheckInventoryTest, TellsOfADiskShownInAnotherSegment)
{
    TLXX::CControllerState state = stateOf(0);
    state.m_Location->m_Segment = 1;
    EXPECT_THAT(check({state}, {m_First}),
                ElementsAre(AllOf(finding(Finding::Note, "is at 0001:10:1f.1, but is shown at PCI:Bus=16&"),
                                  Not(finding(Finding::Note, "left out")))));
}

TEST_F(CheckInventoryTest, TellsWhyADiskIsMissingByWhatItAnswered)
{
    FakesOf drives(2);
    drives.m_Fakes.At(0).m_ControllerStatuses = {5};
    drives.identify(0);
    drives.identify(1);
    // The status of other queries does not tell what the drive is.
    drives.readHealth(0);
    drives.m_Fakes.At(1).m_HealthStatuses = {5};
    drives.readHealth(1);
    const std::vector<Check> checks = check({stateOf(0), stateOf(1), stateOf(9)}, {});
    EXPECT_THAT(checks,
                ElementsAre(finding(Finding::Problem, "does not identify itself: " + TLXX::statusText(5)),
                            finding(Finding::Note, "is left out on purpose"),
                            finding(Finding::Note, "came or went during the inventory"),
                            finding(Finding::Note, "have other numbers")));
}

TEST_F(CheckInventoryTest, DoesNotMissADiskThatRefusesThisUser)
{
    TLXX::CControllerState refused = stateOf(1);
    refused.m_AccessStatus = NO_PERMISSION;
    EXPECT_TRUE(check({stateOf(0), refused}, {m_First}).empty());
}

TEST_F(CheckInventoryTest, TellsWhatADriveLeftUnanswered)
{
    FakesOf drives(1);
    for (const std::uint32_t id :
         {PI::PROP_DRIVE_TEMPERATURE, PI::PROP_DATA_READ, PI::PROP_DATA_WRITTEN, PI::PROP_POWER_ON_HOURS})
        m_First.remove(id);
    drives.m_Fakes.At(0).m_HealthStatuses = {5};
    drives.readHealth(0);
    // A vendor log that a drive lacks is no problem, and must not be mistaken for its health log.
    TLXX::VendorLogPage page{};
    EXPECT_NE(TLXX::NVMeStorageQueryPropertyGetVendorSpecificLogPage("/dev/nvme0n1", 0xC5, page), 0U);
    EXPECT_THAT(check({stateOf(0)}, {m_First}),
                ElementsAre(finding(Finding::Problem,
                                    "health log was not read (" + TLXX::statusText(5) + "); health")));
    drives.readHealth(0);
    EXPECT_THAT(check({stateOf(0)}, {m_First}),
                ElementsAre(finding(Finding::Problem, "health log was never filled")));
}

TEST_F(CheckInventoryTest, ALogWithoutATemperatureIsNoLogThatWasNotRead)
{
    m_First.remove(PI::PROP_DRIVE_TEMPERATURE);
    EXPECT_THAT(check({stateOf(0)}, {m_First}),
                ElementsAre(finding(Finding::Note, "its health log contains no temperature")));
}

TEST_F(CheckInventoryTest, SaysNothingOfDrivesThatAreNotTheSystems)
{
    HostTest::DriveObjects strange(32, "", "");
    for (const std::uint32_t id : {PI::PROP_DRIVE_TEMPERATURE, PI::PROP_DATA_READ, PI::PROP_DATA_WRITTEN,
                                   PI::PROP_POWER_ON_HOURS, PI::PROP_BLOCK_SIZE})
        strange.remove(id);
    EXPECT_TRUE(check({stateOf(0)}, {m_First, strange}).empty());
}

TEST_F(CheckInventoryTest, NamesDrivesThatShareALocationOrASerialNumber)
{
    TLXX::CControllerState second = stateOf(1);
    second.m_Location = TLXX::CPciLocation{0x10000, 16, 0x1f, 1};
    HostTest::DriveObjects same(16, "B", "/dev/nvme1n1");
    const std::vector<Check> checks = check({stateOf(0), second}, {m_First, same});
    EXPECT_THAT(checks,
                ElementsAre(AllOf(finding(Finding::Note, "is at 10000:10:1f.1, but is shown at PCI:Bus=16&"),
                                  finding(Finding::Note, "locations do not contain the PCI segment")),
                            finding(Finding::Note, "share the location PCI:Bus=16&Device=0&Function=0")));
    EXPECT_EQ(checks[1].m_Subject, "nvme0n1, nvme1n1");

    const HostTest::DriveObjects twin(32, "A", "/dev/nvme1n1");
    const std::vector<Check> twins = check({stateOf(0), stateOf(1)}, {m_First, twin});
    EXPECT_THAT(twins, ElementsAre(finding(Finding::Note, "share the serial number A")));
    EXPECT_EQ(twins[0].m_Subject, "nvme0n1, nvme1n1");
}

TEST_F(CheckInventoryTest, TellsOfNamespacesWithoutCapacity)
{
    FakesOf drives(1);
    const auto with = [&](std::uint64_t capacity, std::uint64_t blockSize) {
        HostTest::DriveObjects objects = m_First;
        objects.remove(PI::PROP_CAPACITY);
        objects.remove(PI::PROP_BLOCK_SIZE);
        objects.m_Drive.m_Properties.push_back(HostTest::property(PI::PROP_CAPACITY, PI::UNIT_MIB, capacity));
        objects.m_Drive.m_Properties.push_back(
            HostTest::property(PI::PROP_BLOCK_SIZE, PI::UNIT_BYTES, blockSize));
        return check({stateOf(0)}, {objects});
    };
    EXPECT_THAT(with(0, 512), ElementsAre(finding(Finding::Note, "contains no blocks")));
    drives.readNamespace(0);
    EXPECT_THAT(with(0, 0), ElementsAre(finding(Finding::Problem, "block format is unset or out of range")));
    drives.m_Fakes.At(0).m_NamespaceStatuses = {5};
    drives.readNamespace(0);
    drives.readHealth(0);
    EXPECT_THAT(with(0, 0), ElementsAre(finding(Finding::Problem,
                                                "namespace was not read (" + TLXX::statusText(5) + ")")));
}

TEST_F(CheckInventoryTest, TellsOfStrangeTexts)
{
    EXPECT_THAT(check({stateOf(0)}, {HostTest::DriveObjects(16, "A?B", "/dev/nvme0n1")}),
                ElementsAre(finding(Finding::Note, "cannot be printed")));
    EXPECT_THAT(check({stateOf(0)}, {HostTest::DriveObjects(16, "", "/dev/nvme0n1")}),
                ElementsAre(finding(Finding::Note, "no serial number")));
}

TEST(CheckRefusal, NamesTheDrivesOnWhichThePluginMayHaveFailed)
{
    FakesOf drives(5);
    drives.m_Fakes.At(0).Vendor(0x8086).Model("INTEL");
    drives.m_Fakes.At(1).Vendor(0x144D).Model("SAMSUNG");
    drives.m_Fakes.At(2).Vendor(0x8086).Model("INTEL X");
    drives.m_Fakes.At(3).Model("INTEL");
    drives.m_Fakes.At(4).m_ControllerStatuses = {5};
    std::vector<TLXX::CControllerState> states;
    for (int i = 0; i < 5; ++i)
        states.push_back(stateOf(i));
    states.push_back(stateOf(0));
    states.back().m_AccessStatus = NO_PERMISSION;
    const std::vector<Check> checks = checkRefusal(states, {4, PI::ERR_GENERAL_FAILURE});
    EXPECT_THAT(checks, ElementsAre(finding(Finding::Problem, "model is \"INTEL\", only the maker's name"),
                                    finding(Finding::Problem, "model is \"SAMSUNG\""),
                                    finding(Finding::Problem, "does not identify itself")));
    EXPECT_EQ(checks[0].m_Subject, "nvme0");
}

TEST(CheckRefusal, SaysOfEachDiskWhyNoneIsSupported)
{
    FakesOf drives(2);
    drives.m_Fakes.At(1).m_ControllerStatuses = {5};
    drives.identify(0);
    drives.identify(1);
    EXPECT_THAT(checkRefusal({stateOf(0), stateOf(1)}, {1, PI::ERR_NO_SUPPORTED_HARDWARE}),
                ElementsAre(finding(Finding::Note, "is left out on purpose"),
                            finding(Finding::Problem, "does not identify itself")));
}

} // namespace
