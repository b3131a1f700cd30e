#include "Commands/ShowCommand.h"

#include "Base/Failure.h"
#include "Facts/PropertySetting.h"
#include "Host/Catalogue.h"
#include "Host/Objects.h"
#include "Plugins/ObjectStore.h"
#include "Support/FakeDrives.h"

#include <PI/CaptionId.h>
#include <TLXX/NvmeQuery.h>

#include <regex>

namespace {

using Host::Cli::namedProperty;
using testing::AllOf;
using testing::HasSubstr;

class ShowCommandTest : public testing::Test
{
protected:
    ShowCommandTest()
    {
        for (PI::CProperty& one : m_Objects.m_Drive.m_Properties)
            if (one.Id() == PI::PROP_CAPACITY)
                one.SetNlsID(PI::DRIVE_CAPTION_CAPACITY);
    }

    HostTest::DriveObjects m_Objects{16, "S", "/dev/nvme0n1"};
    std::vector<const PI::CObject*> m_Both{&m_Objects.m_Adapter, &m_Objects.m_Drive};

private:
    HostTest::Catalogue m_Catalogue;
};

TEST_F(ShowCommandTest, FindsAPropertyByNumberOrCaptionOnEitherObject)
{
    EXPECT_EQ(namedProperty(m_Both, "30059").m_Property.Id(), PI::PROP_CAPACITY);
    EXPECT_EQ(namedProperty(m_Both, "CAPACITY").m_Property.Id(), PI::PROP_CAPACITY);
    EXPECT_EQ(&namedProperty(m_Both, "location").m_Property,
              Host::findProperty(m_Objects.m_Adapter, PI::PROP_LOCATION));
}

TEST_F(ShowCommandTest, PassesOverBlanksInCaptions)
{
    PI::CProperty interval = HostTest::property(PI::PROP_POLL_INTERVAL, PI::UNIT_SECONDS, 30, 2, 255, 1);
    interval.SetNlsID(PI::PLUGIN_CAPTION_POLL_INTERVAL);
    m_Objects.m_Drive.m_Properties.push_back(interval);
    for (const char* name : {"pollinterval", "Poll interval", "POLL INTERVAL ", "30005"}) {
        const Host::Cli::NamedProperty found = namedProperty(m_Both, name);
        EXPECT_EQ(found.m_Property.Id(), PI::PROP_POLL_INTERVAL) << name;
        EXPECT_EQ(&found.m_Object, &m_Objects.m_Drive);
    }
}

TEST_F(ShowCommandTest, PrefersAPropertyThatHasAValue)
{
    EXPECT_EQ(&namedProperty(m_Both, "30007").m_Property,
              Host::findProperty(m_Objects.m_Drive, PI::PROP_NAME));
    const std::vector<const PI::CObject*> adapter = {&m_Objects.m_Adapter};
    EXPECT_EQ(&namedProperty(adapter, "30007").m_Property,
              Host::findProperty(m_Objects.m_Adapter, PI::PROP_NAME));
}

TEST_F(ShowCommandTest, TellsWhatTheDriveAndTheSystemTellBelowThePluginsRows)
{
    TestSupport::CFakeDrives drives;
    TestSupport::CFakeDrive& asked = drives.Add(TestSupport::CFakeDrive(0));
    asked.m_Health.PowerCycles = {17, 0};
    asked.m_Health.PercentageUsed = 3;
    asked.m_Health.ControllerBusyTime = {5, 0};
    asked.m_Controller.WCTEMP = 343;
    asked.m_Controller.TNVMCAP = {3ULL << 40U, 0};
    asked.m_Controller.UNVMCAP = {512, 0};
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
    (void)TLXX::NVMeStorageQueryPropertyIdentifyController("/dev/nvme0n1", controller);
    (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo("/dev/nvme0n1", log);
    TLXX::CControllerState state;
    state.m_DeviceName = "/dev/nvme0n1";
    state.m_State = "live";
    state.m_Link.m_Speed = 8.0F;
    const Host::ObjectStore store(HostTest::topologyOf({m_Objects}), {state});
    const std::string text = std::regex_replace(
        Host::Cli::showText(store, {&store.objects()[1]}, Host::Cli::Screen()), std::regex(" {2,}"), "  ");
    EXPECT_THAT(text, HasSubstr("\n  From the drive's own log\n"
                                "  Life used, by the drive's own count  3%\n"
                                "  Power cycles  17\n"));
    EXPECT_THAT(text, HasSubstr("  Controller busy time  5 min\n"));
    EXPECT_THAT(text, HasSubstr("  Warning temperature  70 °C\n"));
    EXPECT_THAT(text, HasSubstr("  Total capacity  3.00 TiB\n"));
    EXPECT_THAT(text, HasSubstr("  Unallocated capacity  512 bytes\n"));
    EXPECT_THAT(text, testing::Not(HasSubstr("Critical temperature  ")));
    EXPECT_THAT(text, HasSubstr("\n\n  From the system\n  Controller state  live\n"));
    EXPECT_THAT(text, HasSubstr("  PCIe link speed  8 GT/s\n"));
}

TEST_F(ShowCommandTest, TellsNothingOfADriveThatWasNeverRead)
{
    const TestSupport::CFakeDrives none;
    const Host::ObjectStore store(HostTest::topologyOf({m_Objects}));
    EXPECT_THAT(Host::Cli::showText(store, {&store.objects()[1], &store.objects()[2]}, Host::Cli::Screen()),
                testing::Not(testing::AnyOf(HasSubstr("own log"), HasSubstr("From the system"))));
}

TEST_F(ShowCommandTest, AnUnknownPropertyGetsAListOfWhatThereIs)
{
    for (const char* name : {"colour", "", "3005"}) {
        try {
            namedProperty(m_Both, name);
            ADD_FAILURE() << name;
        } catch (const Host::Failure& failure) {
            EXPECT_EQ(failure.exitCode(), Host::ExitCode::WrongUsage);
            EXPECT_THAT(failure.what(),
                        AllOf(HasSubstr("There is no property \"" + std::string(name) + "\""),
                              HasSubstr("\n  30059  Capacity"), HasSubstr("\n  30137  Location")));
        }
    }
}

TEST_F(ShowCommandTest, SuggestsAPropertyWithANearName)
{
    try {
        namedProperty(m_Both, "capcity");
        ADD_FAILURE();
    } catch (const Host::Failure& failure) {
        EXPECT_THAT(failure.what(), HasSubstr("\"capcity\" here. Did you mean \"Capacity\"? These exist:\n"));
    }
}

TEST_F(ShowCommandTest, ShowsHeadingsAndProperties)
{
    EXPECT_THAT(Host::Cli::showText(Host::ObjectStore(HostTest::topologyOf({m_Objects})), m_Both, {}),
                AllOf(HasSubstr("Adapter INTEL MODEL-OF-THE-ADAPTER  0x0000000000000010\n"),
                      HasSubstr("\n\nPhysical drive Product  0x0000000000000011\n"),
                      HasSubstr("  Capacity ")));
}

TEST_F(ShowCommandTest, SaysWhatIsWrongAndWhatToDo)
{
    EXPECT_THAT(
        Host::Cli::showText(Host::ObjectStore(HostTest::topologyOf({m_Objects})), m_Both, {}),
        HasSubstr("\n\n  Property 30165: Available spare below its threshold\n"
                  "    The blocks that the drive keeps to replace worn ones are nearly used up. When none "
                  "is left, it stops taking data. Back up what is on the drive now, and replace it.\n"
                  "  Property 30165: Media is read-only\n"));
}

TEST_F(ShowCommandTest, FoldsItsSentencesOnATerminalAlone)
{
    EXPECT_THAT(Host::Cli::showText(Host::ObjectStore(HostTest::topologyOf({m_Objects})), m_Both,
                                    Host::Cli::Screen{40, false}),
                HasSubstr("\n    The blocks that the drive keeps to\n    replace worn ones are nearly used\n"
                          "    up. When none is left, it stops\n"));
}

TEST_F(ShowCommandTest, SaysWhereTheEndOfLifeComesFrom)
{
    m_Objects.m_Adapter.m_Properties.push_back(
        HostTest::property(PI::PROP_END_OF_LIFE_DATE, 1, "2099-01-01"));
    TestSupport::CFakeDrives drives;
    drives.Add(TestSupport::CFakeDrive(0)).m_Health.Counter128 = {11, 0};
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
    (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo("/dev/nvme0n1", log);
    EXPECT_THAT(
        Host::Cli::showText(Host::ObjectStore(HostTest::topologyOf({m_Objects})), m_Both, {}),
        HasSubstr(
            "  Estimated end of life: 2099-01-01\n    Computed from 11 h of operation, 0 bytes written"));
}

} // namespace
