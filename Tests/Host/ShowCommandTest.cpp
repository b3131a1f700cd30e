#include "Cli/ShowCommand.h"

#include "Core/Failure.h"
#include "Core/ObjectStore.h"
#include "Host/Catalogue.h"
#include "Host/Objects.h"

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
    EXPECT_EQ(namedProperty(m_Both, "30059").Id(), PI::PROP_CAPACITY);
    EXPECT_EQ(namedProperty(m_Both, "CAPACITY").Id(), PI::PROP_CAPACITY);
    EXPECT_EQ(&namedProperty(m_Both, "location"), Host::findProperty(m_Objects.m_Adapter, PI::PROP_LOCATION));
}

TEST_F(ShowCommandTest, PrefersAPropertyThatHasAValue)
{
    EXPECT_EQ(&namedProperty(m_Both, "30007"), Host::findProperty(m_Objects.m_Drive, PI::PROP_NAME));
    const std::vector<const PI::CObject*> adapter = {&m_Objects.m_Adapter};
    EXPECT_EQ(&namedProperty(adapter, "30007"), Host::findProperty(m_Objects.m_Adapter, PI::PROP_NAME));
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

TEST_F(ShowCommandTest, ShowsHeadingsAndProperties)
{
    EXPECT_THAT(Host::Cli::showText(m_Both, {}),
                AllOf(HasSubstr("Adapter INTEL MODEL-OF-THE-ADAPTER  0x0000000000000010\n"),
                      HasSubstr("Physical drive Product  0x0000000000000011\n"), HasSubstr("  Capacity ")));
}

} // namespace
