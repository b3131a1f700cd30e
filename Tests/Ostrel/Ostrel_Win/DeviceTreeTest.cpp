#include "NothrowBuffers.h"
#include "Ostrel/NVMeDevices.h"
#include "Support/SilentPipe.h"
#include "Support/TraceCapture.h"
#include "Support_Win/ScriptedDevices.h"

#include <TLX/Event.h>
#include <TLX/Thread.h>
#include <TLXX/ConfigManager.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <tuple>

#include <windows.h>
#include <cfgmgr32.h>

namespace NAMESPACE_Ostrel {

void PrintTo(const NVMeDevice& device, std::ostream* stream)
{
    *stream << device.deviceName << " (" << device.driver << ")";
}

} // namespace NAMESPACE_Ostrel

namespace {

using NAMESPACE_Ostrel::NVMeDevice;
using NAMESPACE_Ostrel::NVMeDevices;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::CCapturedLine;
using TestSupport::CScriptedDevices;
using TestSupport::CScriptedDisk;

using Names = std::vector<std::string>;

/** A device tree of the test in place of the system's. */
class DeviceTree : public testing::Test
{
public:
    ~DeviceTree() override { ExpectNothingOpen(); }

    void ExpectNothingOpen() const
    {
        EXPECT_EQ(m_Tree.OpenHandles(), 0U);
        EXPECT_EQ(m_Tree.OpenSets(), 0U);
        EXPECT_EQ(openBuffers(), 0U);
    }

    /** A disk with one interface, whose device has the number. */
    static CScriptedDisk Disk(std::uint32_t number)
    {
        CScriptedDisk disk;
        disk.m_Path = R"(\\?\scsi#disk&ven_nvme#)" + std::to_string(number);
        disk.m_Number = number;
        return disk;
    }

    Names Scan()
    {
        const bool found = m_Devices.scan();
        EXPECT_EQ(found, !m_Devices.empty());
        Names names;
        for (const NVMeDevice& device : m_Devices)
            names.push_back(device.deviceName);
        return names;
    }

protected:
    CScriptedDevices m_Tree;
    NVMeDevices m_Devices;
    static constexpr CScriptedDevices::Node ROOT = CScriptedDevices::ROOT;
};

TEST_F(DeviceTree, WithoutARootGivesNothing)
{
    m_Tree.m_HasRoot = false;
    EXPECT_FALSE(m_Devices.scan());
    EXPECT_THAT(m_Tree.m_Calls, ElementsAre("Locate"));
}

TEST_F(DeviceTree, WithoutAControllerGivesNothing)
{
    m_Tree.AddController(m_Tree.Add(ROOT), {Disk(0)}, "storahci");
    m_Tree.AddController(ROOT, {Disk(1)}, "");
    EXPECT_FALSE(m_Devices.scan());
    EXPECT_THAT(m_Devices, IsEmpty());
}

TEST_F(DeviceTree, MakesExactlyTheseCalls)
{
    m_Tree.AddController(ROOT, {Disk(7)});
    EXPECT_THAT(Scan(), ElementsAre(R"(\\.\PhysicalDrive7)"));
    EXPECT_THAT(m_Tree.m_Calls,
                ElementsAre("Locate", "Property 1 5 200", "Child 1", "Property 2 5 200",
                            // The disk below the controller.
                            "Child 2", "Property 3 5 200", "Instance 3 2048", "OpenSet 3", "Interface 0",
                            "DetailSize", "Allocate", "Detail", R"(Open \\?\scsi#disk&ven_nvme#7)",
                            "Control 2953344", "Close", "Interface 1", "CloseSet",
                            // Continues the walk.
                            "Child 2", "Property 3 5 200", "Child 3", "Sibling 3", "Parent 3", "Sibling 2",
                            "Parent 2", "Sibling 1", "Parent 1"));
}

TEST_F(DeviceTree, EndsTheThreadWhoseDiskDoesNotAnswer)
{
    m_Tree.AddController(ROOT, {Disk(7), Disk(8)});
    for (const std::string silent : {R"(Open \\?\scsi#disk&ven_nvme#7)", "Control 2953344"}) {
        SCOPED_TRACE(silent);
        const TestSupport::CSilentPipe pipe;
        TLX::Threading::CEvent reached;
        ASSERT_EQ(reached.Init(false, true), TLX::Threading::WaitResult::Taken);
        m_Tree.m_Before = [&](const std::string& call) {
            if (call != silent)
                return;
            reached.Set();
            EXPECT_FALSE(pipe.ReadByte());
        };
        TLX::Threading::CThread thread([this] { (void)m_Devices.scan(); });
        EXPECT_EQ(reached.Wait(), TLX::Threading::WaitResult::Taken);
        thread.Cancel();
        EXPECT_EQ(thread.Wait(), TLX::Threading::WaitResult::Taken);
        EXPECT_THAT(m_Devices, IsEmpty());
        EXPECT_EQ(m_Tree.m_Calls.back(), "CloseSet");
        ExpectNothingOpen();
    }
}

TEST_F(DeviceTree, VisitsParentsBeforeChildrenAndSiblingsInOrder)
{
    const auto first = m_Tree.Add(ROOT);
    m_Tree.AddController(m_Tree.Add(m_Tree.Add(first)), {Disk(3)});
    m_Tree.AddController(first, {Disk(1)});
    const auto outer = m_Tree.AddController(ROOT, {Disk(2)});
    m_Tree.AddController(outer, {Disk(5)});
    m_Tree.AddController(ROOT, {Disk(4)});
    EXPECT_THAT(Scan(), ElementsAre(R"(\\.\PhysicalDrive3)", R"(\\.\PhysicalDrive1)", R"(\\.\PhysicalDrive2)",
                                    R"(\\.\PhysicalDrive5)", R"(\\.\PhysicalDrive4)"));
}

TEST_F(DeviceTree, KeepsTheServiceAsTheSystemSpellsIt)
{
    m_Tree.AddController(ROOT, {Disk(0)}, "StorNVMe");
    m_Tree.AddController(ROOT, {Disk(1)}, "STORNVME");
    EXPECT_TRUE(m_Devices.scan());
    ASSERT_EQ(m_Devices.size(), 2U);
    EXPECT_EQ(m_Devices[0].driver, "StorNVMe");
    EXPECT_EQ(m_Devices[1].driver, "STORNVME");
}

TEST_F(DeviceTree, TakesNoLongerAndNoShorterServiceName)
{
    for (const char* service : {"stornvme2", "stornvm", "s", "xstornvme", "stornvmf"})
        m_Tree.AddController(ROOT, {Disk(0)}, service);
    m_Tree.SetText(m_Tree.AddController(ROOT, {Disk(0)}), CM_DRP_SERVICE, "");
    EXPECT_THAT(Scan(), IsEmpty());
}

TEST_F(DeviceTree, TakesNoServiceNameThatDoesNotFitTheBuffer)
{
    const auto controller = m_Tree.AddController(ROOT, {Disk(0)});
    m_Tree.SetProperty(controller, CM_DRP_SERVICE, std::vector<char>(200, 's'));
    EXPECT_THAT(Scan(), IsEmpty());
    m_Tree.SetProperty(controller, CM_DRP_SERVICE, std::vector<char>(201, 's'));
    EXPECT_THAT(Scan(), IsEmpty());
    // A name without its terminating zero ends where the system's bytes end.
    m_Tree.SetProperty(controller, CM_DRP_SERVICE, {'s', 't', 'o', 'r', 'n', 'v', 'm', 'e'});
    EXPECT_EQ(Scan().size(), 1U);
}

TEST_F(DeviceTree, LooksAtTheFirstChildOfAControllerAlone)
{
    const auto controller = m_Tree.Add(ROOT, "stornvme");
    m_Tree.SetDisks(m_Tree.Add(controller, "partmgr"), {Disk(1)});
    m_Tree.SetDisks(m_Tree.Add(controller, "disk"), {Disk(2)});
    EXPECT_THAT(Scan(), IsEmpty());
}

TEST_F(DeviceTree, PassesOverTheSecondDiskOfAController)
{
    const auto controller = m_Tree.AddController(ROOT, {Disk(1)});
    m_Tree.SetDisks(m_Tree.Add(controller, "disk"), {Disk(2)});
    EXPECT_THAT(Scan(), ElementsAre(R"(\\.\PhysicalDrive1)"));
}

TEST_F(DeviceTree, TakesADiskServiceInAnyCaseAndNoOther)
{
    for (const auto& [service, number] : {std::pair("DISK", 1U), {"Disk", 2U}, {"disks", 3U}, {"dis", 4U}})
        m_Tree.SetDisks(m_Tree.Add(m_Tree.Add(ROOT, "stornvme"), service), {Disk(number)});
    m_Tree.SetDisks(m_Tree.Add(m_Tree.Add(ROOT, "stornvme")), {Disk(5)});
    m_Tree.Add(ROOT, "stornvme");
    EXPECT_THAT(Scan(), ElementsAre(R"(\\.\PhysicalDrive1)", R"(\\.\PhysicalDrive2)"));
}

TEST_F(DeviceTree, GivesAnElementForEachInterfaceThatTellsItsNumber)
{
    std::vector<CScriptedDisk> disks;
    for (std::uint32_t number = 0; number < 8; ++number)
        disks.push_back(Disk(number));
    disks[1].m_ProbeError = ERROR_INVALID_HANDLE;
    disks[2].m_Detailed = false;
    disks[3].m_OpenError = ERROR_ACCESS_DENIED;
    disks[4].m_Number.reset();
    disks[5].m_DetailSize = 7;
    disks[6].m_ProbeError = ERROR_SUCCESS;
    m_Tree.AddController(ROOT, disks);
    EXPECT_THAT(Scan(), ElementsAre(R"(\\.\PhysicalDrive0)", R"(\\.\PhysicalDrive7)"));
}

TEST_F(DeviceTree, ReadsAPathThatFillsItsBufferToTheLastByte)
{
    CScriptedDisk disk = Disk(1);
    // There is no room for the end of the text.
    disk.m_DetailSize = static_cast<DWORD>(sizeof(DWORD) + disk.m_Path.size());
    m_Tree.AddController(ROOT, {disk});
    EXPECT_THAT(Scan(), ElementsAre(R"(\\.\PhysicalDrive1)"));
}

TEST_F(DeviceTree, NumbersAreDecimalAndAsLargeAsTheyGet)
{
    m_Tree.AddController(ROOT, {Disk(10)});
    m_Tree.AddController(ROOT, {Disk(2147483647)});
    EXPECT_THAT(Scan(), ElementsAre(R"(\\.\PhysicalDrive10)", R"(\\.\PhysicalDrive2147483647)"));
}

TEST_F(DeviceTree, TakesANumberWheneverTheSystemSaysThatItWasTold)
{
    CScriptedDisk partition = Disk(3), other = Disk(4), empty = Disk(5);
    partition.m_Partition = 2;
    other.m_Type = FILE_DEVICE_UNKNOWN;
    empty.m_NumberBytes = 0;
    m_Tree.AddController(ROOT, {partition, other, empty});
    EXPECT_THAT(Scan(),
                ElementsAre(R"(\\.\PhysicalDrive3)", R"(\\.\PhysicalDrive4)", R"(\\.\PhysicalDrive5)"));
}

TEST_F(DeviceTree, ThatLostADiskLeavesNothingOfAnEarlierScan)
{
    const auto controller = m_Tree.AddController(ROOT, {Disk(0)});
    m_Tree.AddController(ROOT, {Disk(1)});
    EXPECT_EQ(Scan().size(), 2U);
    m_Devices[1].identifyController.VID = 0x1234;
    m_Tree.Remove(controller);
    EXPECT_THAT(Scan(), ElementsAre(R"(\\.\PhysicalDrive1)"));
    EXPECT_EQ(m_Devices[0].identifyController.VID, 0U);
    m_Tree.m_HasRoot = false;
    EXPECT_THAT(Scan(), IsEmpty());
}

TEST_F(DeviceTree, OfTenThousandNodesIsWalkedWhole)
{
    constexpr std::uint32_t size = 10'000;
    // A deep branch, a wide one, and controllers at many places in both.
    CScriptedDevices::Node deep = ROOT;
    Names expected;
    for (std::uint32_t number = 0; number < size / 4; ++number) {
        deep = m_Tree.Add(deep);
        if (number % 250 == 0)
            m_Tree.SetText(deep, CM_DRP_SERVICE, "disk");
    }
    m_Tree.AddController(deep, {Disk(size)});
    expected.push_back(R"(\\.\PhysicalDrive)" + std::to_string(size));
    for (std::uint32_t number = 0; number < size / 4; ++number) {
        const auto node = m_Tree.Add(ROOT);
        if (number % 100 == 0) {
            m_Tree.AddController(node, {Disk(number)});
            expected.push_back(R"(\\.\PhysicalDrive)" + std::to_string(number));
        }
        m_Tree.Add(node);
        m_Tree.Add(node, "usbhub");
    }
    EXPECT_EQ(Scan(), expected);
}

TEST_F(DeviceTree, LeaksNothingWhicheverCallFails)
{
    m_Tree.AddController(ROOT, {Disk(0), Disk(1)});
    m_Tree.AddController(m_Tree.Add(ROOT), {Disk(2)});
    const Names whole = Scan();
    ASSERT_EQ(whole.size(), 3U);
    const long calls = m_Tree.m_CallCount;
    ASSERT_GT(calls, 40);
    for (long call = 0; call < calls; ++call) {
        m_Tree.m_CallCount = 0;
        m_Tree.m_FailAt = call;
        m_Tree.m_Calls.clear();
        const Names names = Scan();
        SCOPED_TRACE("call " + std::to_string(call) + ": " + m_Tree.m_Calls.back());
        EXPECT_LE(names.size(), whole.size());
        // The result has the order of the whole tree.
        auto expected = whole.begin();
        for (const std::string& name : names) {
            expected = std::find(expected, whole.end(), name);
            EXPECT_NE(expected, whole.end()) << name;
        }
        ExpectNothingOpen();
    }
    m_Tree.m_FailAt = -1;
    EXPECT_EQ(Scan(), whole);
}

TEST_F(DeviceTree, AFailureCostsTheInterfaceOrTheControllerAndNoOther)
{
    m_Tree.AddController(ROOT, {Disk(0), Disk(1)});
    m_Tree.AddController(ROOT, {Disk(2)});
    ASSERT_EQ(Scan().size(), 3U);
    const Names all = {R"(\\.\PhysicalDrive0)", R"(\\.\PhysicalDrive1)", R"(\\.\PhysicalDrive2)"};
    const Names withoutFirst(all.begin() + 1, all.end());
    const Names withoutController(all.begin() + 2, all.end());
    const std::vector<std::tuple<std::string, Names>> expectations = {
        {"Instance 3 2048", withoutController},
        {"OpenSet 3", withoutController},
        {"DetailSize", withoutFirst},
        {"Allocate", withoutFirst},
        {"Detail", withoutFirst},
        {R"(Open \\?\scsi#disk&ven_nvme#0)", withoutFirst},
        {"Control 2953344", withoutFirst},
    };
    const Names calls = m_Tree.m_Calls;
    for (const auto& [failing, expected] : expectations) {
        long number = 0;
        for (const std::string& call : calls) {
            if (call == failing)
                break;
            // Releases are not counted.
            if (call != "Close" && call != "CloseSet")
                ++number;
        }
        m_Tree.m_CallCount = 0;
        m_Tree.m_FailAt = number;
        EXPECT_EQ(Scan(), expected) << failing;
    }
}

TEST_F(DeviceTree, TracesTheScanAndEachDisk)
{
    m_Tree.AddController(ROOT, {Disk(2)}, "StorNVMe");
    const TestSupport::CTraceCapture capture(2 | 16);
    Scan();
    const std::string scan = "NAMESPACE_Ostrel::NVMeDevices::scan";
    EXPECT_THAT(
        capture.Lines(),
        ElementsAre(
            CCapturedLine{2, "Ostrel/Src/Ostrel", scan, "ENTER NVMeDevices::scan()"},
            CCapturedLine{16, "Ostrel/Src/Ostrel", "NAMESPACE_Ostrel::NVMeDevices::addDetected",
                          R"(Detected NVMe device. deviceName: \\.\PhysicalDrive2, driver: StorNVMe)"},
            CCapturedLine{2, "Ostrel/Src/Ostrel", scan, "LEAVE NVMeDevices::scan() -> ret 1"}));
}

TEST_F(DeviceTree, LocationsAreCountedInTheOrderOfTheDisks)
{
    const auto dropped = m_Tree.AddController(ROOT, {});
    const auto first = m_Tree.AddController(ROOT, {Disk(5), Disk(6)});
    const auto second = m_Tree.AddController(ROOT, {Disk(1)});
    std::uint32_t bus = 1;
    for (const auto node : {dropped, first, second}) {
        m_Tree.SetNumber(node, CM_DRP_BUSNUMBER, bus++);
        m_Tree.SetNumber(node, CM_DRP_ADDRESS, 0);
    }
    ASSERT_EQ(Scan().size(), 3U);
    // The toolkit asks the system directly and gets the same tree.
    m_Tree.Attach(L"TLXX.dll");
    const std::vector<std::int32_t> buses = {2, 2, 3};
    for (std::uint32_t number = 1; number <= 3; ++number) {
        std::int32_t segment = -1, found = -1, device = -1, function = -1;
        EXPECT_TRUE(TLXX::CConfigManager::GetLocation({}, number, segment, found, device, function));
        EXPECT_EQ(found, buses[number - 1]);
    }
    std::int32_t segment = -1, found = -1, device = -1, function = -1;
    EXPECT_FALSE(TLXX::CConfigManager::GetLocation({}, 0, segment, found, device, function));
    EXPECT_FALSE(TLXX::CConfigManager::GetLocation({}, 4, segment, found, device, function));
    EXPECT_EQ(found, -1);
}

} // namespace
