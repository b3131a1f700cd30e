#include "Plugins/PluginSet.h"

#include "Base/Failure.h"
#include "Host/Built.h"
#include "Plugins/HostSetup.h"
#include "Support/TemporaryFolder.h"

namespace {

using Host::ExitCode;
using Host::Failure;
using Host::PluginSet;
using testing::AllOf;
using testing::HasSubstr;

constexpr char ONE_DRIVE[] =
    R"({"controllers": [{"identify": {"vendorId": 1, "model": "M", "serial": "S"}}]})";
constexpr char NO_DRIVE[] = R"({"controllers": []})";

class PluginSetTest : public testing::Test
{
protected:
    void simulate(const std::string& fleet)
    {
        m_Setup = std::make_unique<Host::HostSetup>(
            Host::HostFolders{HostTest::Built::SHARE, m_Folder.Path()}, Host::TraceOptions{},
            m_Folder.Write("fleet.json", fleet), [](const std::string&) { ADD_FAILURE(); });
    }

    ExitCode failureOf(PluginSet& plugins)
    {
        try {
            plugins.inventory();
            return ExitCode::Done;
        } catch (const Failure& failure) {
            m_Message = failure.what();
            return failure.exitCode();
        }
    }

    TestSupport::CTemporaryFolder m_Folder;
    std::unique_ptr<Host::HostSetup> m_Setup;
    std::string m_Message;
};

TEST_F(PluginSetTest, ShowsTheObjectsOfEachInTheOrderOfLoading)
{
    simulate(ONE_DRIVE);
    PluginSet plugins;
    EXPECT_TRUE(plugins.empty());
    EXPECT_EQ(plugins.load(HostTest::Built::PLUGIN).module(), 313U);
    EXPECT_EQ(plugins.load(HostTest::Built::SECOND_PLUGIN).module(), 4711U);
    const std::vector<PI::CObject> objects = plugins.inventory();
    ASSERT_EQ(objects.size(), 4U);
    EXPECT_EQ(objects[0].m_ID, 0x0139000000000000U);
    EXPECT_EQ(objects[3].m_ID, 0x1267000000000000U);
}

TEST_F(PluginSetTest, OneWithoutHardwareIsNoFailureBesideOneThatHasSome)
{
    simulate(NO_DRIVE);
    PluginSet plugins;
    plugins.load(HostTest::Built::PLUGIN);
    EXPECT_EQ(failureOf(plugins), ExitCode::NoHardware);
    plugins.load(HostTest::Built::SECOND_PLUGIN);
    EXPECT_EQ(plugins.inventory().size(), 1U);
}

TEST_F(PluginSetTest, AnyOtherRefusalIsAFailureOfTheOneThatRefused)
{
    simulate(ONE_DRIVE);
    PluginSet plugins;
    plugins.load(HostTest::Built::PLUGIN);
    plugins.load(HostTest::Built::REFUSING_PLUGIN);
    EXPECT_EQ(failureOf(plugins), ExitCode::RequestFailed);
    EXPECT_THAT(m_Message, AllOf(HasSubstr(HostTest::Built::REFUSING_PLUGIN), HasSubstr("GetTopology")));
}

TEST_F(PluginSetTest, RefusesASecondOneOfAModuleNumber)
{
    PluginSet plugins;
    plugins.load(HostTest::Built::SECOND_PLUGIN);
    try {
        plugins.load(HostTest::Built::SECOND_PLUGIN);
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.exitCode(), ExitCode::WrongUsage);
        EXPECT_THAT(failure.what(), HasSubstr("both have the module number 4711"));
    }
}

} // namespace
