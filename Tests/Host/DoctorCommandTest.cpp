#include "Cli/DoctorCommand.h"

#include "Core/DeviceAccess.h"
#include "Core/Platform.h"
#include "Host/Catalogue.h"
#include "Host/Objects.h"
#include "Support/FakeDrives.h"
#include "Support/SystemStatus.h"
#include "Support/TemporaryFolder.h"

#include <Database/Database.h>
#include <TLXX/NvmeQuery.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>

namespace {

using namespace Host::Cli;
using namespace TestSupport::SystemStatus;
using Host::ExitCode;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
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
    states[0].m_AccessStatus = NO_PERMISSION;
    states[1].m_AccessStatus = NO_PERMISSION;
    // Not to be shown anyway, so that it may be opened helps nobody.
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
                            finding(Finding::Note, "yields no disk at 0000:20:1f.1: it has no namespace"),
                            finding(Finding::Note, "attached by tcp"),
                            finding(Finding::Problem, "no permission to open /dev/nvme3"),
                            finding(Finding::Problem, "/dev/nvme4 cannot be opened: there is no such")));
    EXPECT_THAT(checks[1].m_Message, HasSubstr("state: connecting"));
    EXPECT_EQ(exitCodeOf(checks), ExitCode::NoPermission);
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
    EXPECT_THAT(checkAnyDisk({}, true, nullptr), reason("none that the NVMe driver serves"));
    EXPECT_THAT(checkAnyDisk({state}, true, nullptr), reason("none of them yields a disk"));
    EXPECT_TRUE(checkAnyDisk({stateOf(0), state}, true, nullptr).empty());

    const TestSupport::CTemporaryFolder folder;
    const Host::SimulatedFleet fleet(folder.Write("empty.json", R"({"controllers": []})"), nullptr);
    const std::vector<Check> empty = checkAnyDisk({}, false, &fleet);
    EXPECT_THAT(empty, reason("empty.json holds no controller"));
    EXPECT_THAT(empty[0].m_Remedy, HasSubstr("DemoFleet.json"));
}

/** Drives "/dev/nvme0n1" and up. */
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
    const FakesOf drives(2);
    drives.identify(0);
    HostTest::DriveObjects shifted(16, "B", "/dev/nvme1n1");
    EXPECT_THAT(check({stateOf(0), stateOf(1)}, {shifted}),
                ElementsAre(finding(Finding::Note, "is left out on purpose"),
                            finding(Finding::Note, "sits at 0000:20:1f.1, but is shown at PCI:Bus=16&"),
                            finding(Finding::Note, "shift the numbers")));
}

TEST_F(CheckInventoryTest, TellsWhyADiskIsMissingByWhatItAnswered)
{
    FakesOf drives(2);
    drives.m_Fakes.At(0).m_ControllerStatuses = {5};
    drives.identify(0);
    drives.identify(1);
    // What other queries ended with says nothing of what the drive is.
    drives.readHealth(0);
    drives.m_Fakes.At(1).m_HealthStatuses = {5};
    drives.readHealth(1);
    const std::vector<Check> checks = check({stateOf(0), stateOf(1), stateOf(9)}, {});
    EXPECT_THAT(checks,
                ElementsAre(finding(Finding::Problem, "does not say what it is: " + TLXX::statusText(5)),
                            finding(Finding::Note, "is left out on purpose"),
                            finding(Finding::Note, "came or went while the inventory was taken"),
                            finding(Finding::Note, "shift the numbers")));
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
    m_First.remove(PI::PROP_DRIVE_TEMPERATURE);
    drives.m_Fakes.At(0).m_HealthStatuses = {5};
    drives.readHealth(0);
    // A vendor log that a drive does not know is no trouble, and must not be taken for its health log.
    TLXX::VendorLogPage page{};
    EXPECT_NE(TLXX::NVMeStorageQueryPropertyGetVendorSpecificLogPage("/dev/nvme0n1", 0xC5, page), 0U);
    EXPECT_THAT(check({stateOf(0)}, {m_First}),
                ElementsAre(finding(Finding::Problem,
                                    "health log was not read (" + TLXX::statusText(5) + "); health")));
    drives.readHealth(0);
    EXPECT_THAT(check({stateOf(0)}, {m_First}),
                ElementsAre(finding(Finding::Problem, "health log was never filled")));
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
    EXPECT_THAT(with(0, 512), ElementsAre(finding(Finding::Note, "holds no blocks")));
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
    const std::vector<Check> checks = checkRefusal(states, {4, 20000});
    EXPECT_THAT(checks, ElementsAre(finding(Finding::Problem, "model is \"INTEL\", the maker's name alone"),
                                    finding(Finding::Problem, "model is \"SAMSUNG\""),
                                    finding(Finding::Problem, "does not say what it is")));
    EXPECT_EQ(checks[0].m_Subject, "nvme0");
}

TEST(CheckRefusal, SaysOfEachDiskWhyNoneIsSupported)
{
    FakesOf drives(2);
    drives.m_Fakes.At(1).m_ControllerStatuses = {5};
    drives.identify(0);
    drives.identify(1);
    EXPECT_THAT(checkRefusal({stateOf(0), stateOf(1)}, {1, 20001}),
                ElementsAre(finding(Finding::Note, "is left out on purpose"),
                            finding(Finding::Problem, "does not say what it is")));
}

TEST(CheckSettings, TellsOfAFileThatIsIgnored)
{
    const TestSupport::CTemporaryFolder folder;
    EXPECT_THAT(checkSettings(folder.Path()), finding(Finding::Ok, "Ostrel.ini, so the usual values hold"));
    folder.Write("Ostrel.ini", "PollInterval=45\n");
    EXPECT_THAT(checkSettings(folder.Path()), finding(Finding::Ok, "Ostrel.ini"));
    folder.Write("Ostrel.ini", std::string("PollInterval=45\n\0", 17));
    const Check torn = checkSettings(folder.Path());
    EXPECT_THAT(torn, finding(Finding::Problem, "holds zero bytes"));
    EXPECT_THAT(torn.m_Remedy, HasSubstr("Write it again"));
    std::filesystem::remove(folder.Path() / "Ostrel.ini");
    std::filesystem::create_directory(folder.Path() / "Ostrel.ini");
    const Check unreadable = checkSettings(folder.Path());
    EXPECT_THAT(unreadable, finding(Finding::Problem, "cannot be read"));
    EXPECT_THAT(unreadable.m_Remedy, HasSubstr("may read"));
}

TEST(CheckSettings, TellsOfAnIntervalThatIsNotTakenAsItStands)
{
    const TestSupport::CTemporaryFolder folder;
    for (const char* good : {"2", "30", "255"}) {
        folder.Write("Ostrel.ini", std::string("PollInterval=") + good + "\r\n");
        EXPECT_THAT(checkSettings(folder.Path()), finding(Finding::Ok, "Ostrel.ini")) << good;
    }
    for (const char* bad : {"", "abc", "30 s", "-5", "1.5"}) {
        folder.Write("Ostrel.ini", std::string("PollInterval=") + bad + "\n");
        const Check check = checkSettings(folder.Path());
        EXPECT_THAT(check, finding(Finding::Problem, "PollInterval is \"" + std::string(bad) + "\"")) << bad;
        EXPECT_THAT(check.m_Remedy, HasSubstr("from 2 to 255"));
    }
    for (const char* far : {"0", "1", "256", "4294967296"}) {
        folder.Write("Ostrel.ini", std::string("PollInterval=") + far + "\n");
        EXPECT_THAT(checkSettings(folder.Path()), finding(Finding::Problem, "nearest possible value")) << far;
    }
    folder.Write("Ostrel.ini", "PolInterval=45\n");
    EXPECT_THAT(checkSettings(folder.Path()), finding(Finding::Note, "no line \"PollInterval=...\""));
}

class CheckKeptRows : public testing::Test
{
protected:
    ~CheckKeptRows() override { setDatabaseFile({}); }

    std::filesystem::path file() const { return m_Folder.Path() / "a#b%41" / "Ostrel.db"; }

    void make(const std::string& sql) const
    {
        std::filesystem::create_directories(file().parent_path());
        setDatabaseFile(file());
        (void)getDatabasePointer()->m_Access->query(sql);
        setDatabaseFile({});
    }

    /** Names, sizes and times. */
    std::vector<std::string> folder() const
    {
        std::vector<std::string> entries;
        for (const auto& entry : std::filesystem::directory_iterator(file().parent_path()))
            entries.push_back(entry.path().filename().string() + " " + std::to_string(entry.file_size()) +
                              " " + std::to_string(entry.last_write_time().time_since_epoch().count()));
        std::sort(entries.begin(), entries.end());
        return entries;
    }

    TestSupport::CTemporaryFolder m_Folder;
};

TEST_F(CheckKeptRows, SaysWhenThereAreNoneYet)
{
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Ok, "Ostrel.db yet"));
    EXPECT_TRUE(std::filesystem::is_empty(m_Folder.Path()));
}

TEST_F(CheckKeptRows, LooksAndLeavesNothingBehind)
{
    make("SELECT 1");
    const std::vector<std::string> before = folder();
    EXPECT_THAT(before, testing::SizeIs(1));
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Ok, file().string() + ", which this run leaves"));
    EXPECT_EQ(folder(), before);
}

TEST_F(CheckKeptRows, ReadsBesideWhoeverWrites)
{
    std::filesystem::create_directories(file().parent_path());
    setDatabaseFile(file());
    const auto database = getDatabasePointer();
    (void)database->m_Access->query("BEGIN IMMEDIATE; CREATE TABLE Other (ID INTEGER)");
    // What is not yet in the file itself counts: the tables are only in what stands beside it.
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Ok, "which this run leaves"));
    (void)database->m_Access->query("COMMIT; DROP TABLE Plugin");
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Problem, "there is no table Plugin"));
}

TEST_F(CheckKeptRows, KnowsTablesOfAnotherReleaseAndEmptyFiles)
{
    make("PRAGMA user_version = 4711");
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Note, "tables of another release"));
    std::ofstream(file(), std::ios::trunc).close();
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Ok, "is empty"));
}

TEST_F(CheckKeptRows, NamesWhatIsWrongWithTheFile)
{
    make("SELECT 1");
    std::ofstream(file(), std::ios::trunc) << std::string(4096, 'x');
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Problem, "file is not a database"));
    std::filesystem::remove(file());
    std::filesystem::create_directory(file());
    const Check check = checkKeptRows(file());
    EXPECT_THAT(check, finding(Finding::Problem, "Ostrel.db is no file"));
    EXPECT_EQ(check.m_ExitCode, ExitCode::RequestFailed);
}

TEST_F(CheckKeptRows, FindsDamage)
{
    // A page that no table or index has any more.
    make("CREATE TABLE Other (Text TEXT UNIQUE); PRAGMA writable_schema = ON; "
         "UPDATE sqlite_master SET sql = 'CREATE TABLE Other (Text TEXT)' WHERE name = 'Other'; "
         "DELETE FROM sqlite_master WHERE tbl_name = 'Other' AND type = 'index'");
    EXPECT_THAT(checkKeptRows(file()), finding(Finding::Problem, "Ostrel.db': damaged: "));
}

TEST(CheckSystem, HasALineForSystemDriverAndPermissions)
{
    EXPECT_THAT(checkSystem({"Linux 6.1", true}, true, {stateOf(0), stateOf(1)}),
                ElementsAre(finding(Finding::Ok, "Linux 6.1"), finding(Finding::Ok, "nvme"),
                            finding(Finding::Ok, "may open every drive, 2 in all")));
    EXPECT_THAT(checkSystem({"Linux 6.1", true}, true, {}),
                ElementsAre(finding(Finding::Ok, "Linux 6.1"),
                            finding(Finding::Ok, std::string(Host::Platform::driverName()))));
}

TEST(CheckUnserved, NamesThePlaceAndTheDriver)
{
    EXPECT_TRUE(checkUnserved({}).empty());
    const std::vector<Check> checks = checkUnserved({{"0000:03:00.0", ""}, {"0000:05:00.0", "vendor"}});
    EXPECT_THAT(checks, ElementsAre(finding(Finding::Problem, "it has no driver"),
                                    finding(Finding::Problem, "it has the driver vendor")));
    EXPECT_EQ(checks[0].m_Subject, "0000:03:00.0");
    EXPECT_EQ(exitCodeOf(checks), ExitCode::NoHardware);
}

TEST(CheckUnserved, IsNoProblemWhenTheDriveWasGivenAway)
{
    const char* const driver = Host::Platform::isPassThrough("pcip") ? "pcip" : "vfio-pci";
    const std::vector<Check> checks = checkUnserved({{"0000:05:00.0", driver}});
    EXPECT_THAT(checks, ElementsAre(finding(Finding::Note, std::string("it has the driver ") + driver)));
    EXPECT_THAT(checks[0].m_Message, HasSubstr(std::string(Host::Platform::passThroughRemedy())));
    EXPECT_EQ(exitCodeOf(checks), ExitCode::Done);
    // But what there is to see remains nothing.
    EXPECT_EQ(exitCodeOf(checkAnyDisk({}, true, nullptr)), ExitCode::NoHardware);
}

TEST(CheckSystem, TellsWhatIsMissing)
{
    const std::vector<Check> checks = checkSystem({"Linux 3.2", false}, false, {});
    ASSERT_GE(checks.size(), 2U);
    EXPECT_THAT(checks[0], finding(Finding::Problem, "Linux 3.2 lacks"));
    EXPECT_EQ(checks[0].m_Remedy, Host::Platform::systemRemedy());
    EXPECT_THAT(checks[1], finding(Finding::Problem, "is not loaded"));
    EXPECT_EQ(checks[1].m_Remedy, Host::Platform::driverRemedy());
    // A driver that serves a controller is there, wherever it comes from.
    EXPECT_THAT(checkSystem({"Linux 6.1", true}, false, {stateOf(0)})[1], finding(Finding::Ok, "nvme"));
}

TEST(CheckSystem, LeavesRefusalsToTheLinesOfTheDrives)
{
    TLXX::CControllerState refused = stateOf(1);
    refused.m_AccessStatus = NO_PERMISSION;
    for (const Check& check : checkSystem({"Linux 6.1", true}, true, {stateOf(0), refused}))
        EXPECT_NE(check.m_Subject, "permissions");
}

TEST(CheckVersions, ComparesThePluginsReleaseWithTheProgramsOwn)
{
    std::vector<PI::CObject> objects = HostTest::topologyOf({});
    EXPECT_TRUE(checkVersions(Host::ObjectStore(objects)).empty());
    objects.front().m_Properties.push_back(HostTest::property(PI::PROP_VERSION, 1, "7.16.3"));
    EXPECT_THAT(checkVersions(Host::ObjectStore(objects)),
                ElementsAre(finding(Finding::Ok, "NVMe-Plugin 7.16.3, the same as this program")));
    objects.front().m_Properties.back().SetValue("7.16.2");
    EXPECT_THAT(checkVersions(Host::ObjectStore(objects)),
                ElementsAre(finding(Finding::Note, "NVMe-Plugin 7.16.2, but this program is 7.16.3")));
}

TEST(DoctorText, HasALineForEachCheck)
{
    const std::vector<Check> checks = {ok("a", "fine"), note("b", "hm\n"),
                                       problem(ExitCode::NoHardware, "c", "bad", "Do it.")};
    EXPECT_EQ(doctorText(checks, {}), "OK       a: fine\nNOTE     b: hm?\nPROBLEM  c: bad -> Do it.\n");
    EXPECT_THAT(doctorText(checks, {20, false}), EndsWith("\nPROBLEM  c: bad ->\n         Do it.\n"));
    EXPECT_EQ(doctorJson(checks), nlohmann::ordered_json::parse(R"({"checks": [
        {"subject": "a", "result": "ok", "message": "fine"},
        {"subject": "b", "result": "note", "message": "hm\n"},
        {"subject": "c", "result": "problem", "message": "bad", "remedy": "Do it."}]})"));
    EXPECT_EQ(exitCodeOf(checks), ExitCode::NoHardware);
    EXPECT_EQ(exitCodeOf({ok("a", "fine"), note("b", "hm")}), ExitCode::Done);
}

} // namespace
