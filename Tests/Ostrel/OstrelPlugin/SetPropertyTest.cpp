#include "Support/PluginUnderTest.h"
#include "Support/TemporaryFolder.h"

#include <PI/ConfigFile.h>
#include <PI/ErrorCode.h>
#include <TLX/WaitResult.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>

namespace {

using TLX::Threading::WaitResult::Taken;
using TLX::Threading::WaitResult::TimedOut;

/** Sets the poll interval of a plug-in whose settings file is the test's own. */
class SetPluginProperty : public testing::Test
{
protected:
    SetPluginProperty()
    {
        PI::CConfigFile::SetFolder(m_Folder.Path().string());
        EXPECT_EQ(m_Api.m_PrivateEvent.Init(false, false), Taken);
    }

    std::uint32_t Set(std::int32_t value, std::int32_t minimum = 2, std::int32_t maximum = 255)
    {
        PI::CProperty property(PI::PROP_POLL_INTERVAL, true);
        property.SetValue(value, minimum, maximum, 1);
        return m_Api.SetPluginProperty(m_Api.m_Plugin, property);
    }

    std::string File() const
    {
        std::ifstream file(m_Folder.Path() / "Ostrel.ini", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    TestSupport::CTemporaryFolder m_Folder;
    TestSupport::CPluginUnderTest m_Api;
};

} // namespace

TEST_F(SetPluginProperty, StoresWritesCountsAndWakesTheWorker)
{
    EXPECT_EQ(Set(60), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Api.m_PollInterval, 60U);
    EXPECT_EQ(File(), "PollInterval=60\n");
    EXPECT_EQ(m_Api.m_Plugin.m_UpdateCount, 1U);
    EXPECT_EQ(m_Api.m_PrivateEvent.Wait(0), Taken);

    EXPECT_EQ(TestSupport::CPluginUnderTest().m_PollInterval, 60U) << "the next object loads it";
}

TEST_F(SetPluginProperty, ClampsToTheBoundsThatThePropertyCarries)
{
    EXPECT_EQ(Set(1), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Api.m_PollInterval, 2U);
    EXPECT_EQ(File(), "PollInterval=2\n");
    EXPECT_EQ(Set(-7), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Api.m_PollInterval, 2U);
    EXPECT_EQ(Set(300), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Api.m_PollInterval, 255U);
    EXPECT_EQ(File(), "PollInterval=255\n");
    EXPECT_EQ(Set(300, 2, 400), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Api.m_PollInterval, 300U);
    EXPECT_EQ(Set(7, 50, 40), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Api.m_PollInterval, 40U);
    EXPECT_EQ(Set(std::numeric_limits<std::int32_t>::min()), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Api.m_PollInterval, 2U);
}

TEST_F(SetPluginProperty, LeavesTheRestOfTheFileAlone)
{
    m_Folder.Write("Ostrel.ini", "; mine\nOther=1\nPollInterval=45\n");
    EXPECT_EQ(Set(46), PI::ERR_SUCCESS);
    EXPECT_EQ(File(), "; mine\nOther=1\nPollInterval=46\n");
}

TEST_F(SetPluginProperty, RefusesEveryOtherProperty)
{
    for (const std::uint32_t id : std::initializer_list<std::uint32_t>{
             PI::PROP_NAME, PI::PROP_VERSION, PI::PROP_VENDOR, PI::PROP_LOCATION, PI::ALL_PROPERTIES, 0}) {
        PI::CProperty property(id, true);
        property.SetValue(60, 2, 255, 1);
        EXPECT_EQ(m_Api.SetPluginProperty(m_Api.m_Plugin, property), PI::ERR_PROPERTY_NOT_SETTABLE);
    }
    EXPECT_EQ(m_Api.m_PollInterval, 30U);
    EXPECT_EQ(m_Api.m_Plugin.m_UpdateCount, 0U);
    EXPECT_FALSE(std::filesystem::exists(m_Folder.Path() / "Ostrel.ini"));
    EXPECT_EQ(m_Api.m_PrivateEvent.Wait(0), TimedOut);
}

TEST_F(SetPluginProperty, AValueThatIsNoBoundedNumberIsAGeneralFailure)
{
    PI::CProperty property(PI::PROP_POLL_INTERVAL, true);
    property.SetValue("60");
    EXPECT_EQ(m_Api.SetPluginProperty(m_Api.m_Plugin, property), PI::ERR_GENERAL_FAILURE);
    EXPECT_EQ(m_Api.m_PollInterval, 30U);
    EXPECT_EQ(m_Api.m_Plugin.m_UpdateCount, 0U);
    EXPECT_EQ(m_Api.m_PrivateEvent.Wait(0), TimedOut);
}

TEST_F(SetPluginProperty, AFileThatCannotBeWrittenIsTheResultButTheIntervalHolds)
{
    std::filesystem::create_directory(m_Folder.Path() / "Ostrel.ini");
    EXPECT_EQ(Set(60), PI::ERR_GENERAL_FAILURE);
    EXPECT_EQ(m_Api.m_PollInterval, 60U);
    EXPECT_EQ(m_Api.m_Plugin.m_UpdateCount, 1U);
    EXPECT_EQ(m_Api.m_PrivateEvent.Wait(0), Taken);
}
