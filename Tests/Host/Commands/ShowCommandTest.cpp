#include "Commands/ShowCommand.h"

#include "Base/Failure.h"
#include "Host/Catalogue.h"
#include "Host/Objects.h"
#include "Plugins/ObjectStore.h"

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
                one.SetNlsID(23304);
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
    interval.SetNlsID(23335);
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
        EXPECT_THAT(failure.what(),
                    HasSubstr("\"capcity\" here. Did you mean \"Capacity\"? These are there:\n"));
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
                  "    The blocks that the drive keeps to replace worn ones are nearly used up. When they "
                  "are gone it stops taking data. Back up what is on the drive now, and replace it.\n"
                  "  Property 30165: Media is read-only\n"));
}

TEST_F(ShowCommandTest, FoldsItsSentencesOnATerminalAlone)
{
    EXPECT_THAT(Host::Cli::showText(Host::ObjectStore(HostTest::topologyOf({m_Objects})), m_Both,
                                    Host::Cli::Screen{40, false}),
                HasSubstr("\n    The blocks that the drive keeps to\n    replace worn ones are nearly used\n"
                          "    up. When they are gone it stops\n"));
}

TEST_F(ShowCommandTest, SaysWhereTheEndOfLifeComesFrom)
{
    m_Objects.m_Adapter.m_Properties.push_back(
        HostTest::property(PI::PROP_END_OF_LIFE_DATE, 1, "2099-01-01"));
    EXPECT_THAT(
        Host::Cli::showText(Host::ObjectStore(HostTest::topologyOf({m_Objects})), m_Both, {}),
        HasSubstr(
            "  Estimated end of life: 2099-01-01\n    Computed from 11 h of operation, 2.5 GiB written"));
}

} // namespace
