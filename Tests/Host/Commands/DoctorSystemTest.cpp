#include "Base/Platform.h"
#include "Host/Checks.h"
#include "Host/Objects.h"

namespace {

using namespace Host::Cli;
using namespace TestSupport::SystemStatus;
using Host::ExitCode;
using HostTest::finding;
using HostTest::stateOf;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(CheckSystem, HasALineForSystemDriverAndPermissions)
{
    EXPECT_THAT(checkSystem({"Linux 6.1", true}, true, {stateOf(0), stateOf(1)}),
                ElementsAre(finding(Finding::Ok, "Linux 6.1"), finding(Finding::Ok, "nvme"),
                            finding(Finding::Ok, "may open every drive, 2 in all")));
    EXPECT_THAT(checkSystem({"Linux 6.1", true}, true, {}),
                ElementsAre(finding(Finding::Ok, "Linux 6.1"),
                            finding(Finding::Ok, std::string(Host::Platform::driverName()))));
}

TEST(CheckAnnouncements, IsANoteWhenOnlyPollingFindsDrives)
{
    EXPECT_THAT(checkAnnouncements(true), finding(Finding::Ok, "tells at once"));
    const Check silent = checkAnnouncements(false);
    EXPECT_THAT(silent, finding(Finding::Note, "does not tell this program"));
    EXPECT_THAT(silent.m_Message, HasSubstr("at its next poll"));
    EXPECT_EQ(exitCodeOf({silent}), ExitCode::Done);
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
    // But there is still no drive to show.
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
    // The driver of a working controller is loaded, wherever it comes from.
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

} // namespace
