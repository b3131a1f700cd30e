#include "Facts/PropertySetting.h"

#include "Base/Failure.h"
#include "Host/Built.h"
#include "Host/Objects.h"
#include "Plugins/HostSetup.h"
#include "Support/TemporaryFolder.h"

#include <PI/ErrorCode.h>

namespace {

using Host::ExitCode;
using testing::AllOf;
using testing::HasSubstr;

/** Sets properties of the real plug-in. */
class PropertySettingTest : public testing::Test
{
protected:
    const PI::CProperty& property(std::size_t object, std::uint32_t id) const
    {
        return *Host::findProperty(m_Objects.at(object), id);
    }

    PI::CProperty set(std::size_t object, std::uint32_t id, std::string_view value)
    {
        return Host::Cli::setProperty(m_Plugin, m_Objects.at(object), property(object, id), value,
                                      m_Folder.Path() / "Ostrel.ini");
    }

    Host::Failure failureOf(std::size_t object, std::uint32_t id, std::string_view value)
    {
        try {
            set(object, id, value);
        } catch (const Host::Failure& failure) {
            return failure;
        }
        return {ExitCode::Done, "nothing failed"};
    }

    std::vector<PI::CObject> topology()
    {
        m_Plugin.initialize();
        return m_Plugin.topology();
    }

    TestSupport::CTemporaryFolder m_Folder;
    TestSupport::CTemporaryFolder m_FleetFolder;
    Host::HostSetup m_Setup{{HostTest::Built::SHARE, m_Folder.Path()},
                            {},
                            m_FleetFolder.Write("fleet.json", R"({"controllers": [{"identify": {"vendorId": 1,
                                "model": "M", "serial": "S"}, "health": {"temperature": 30}}]})"),
                            [](const std::string&) { ADD_FAILURE(); }};
    Host::PluginLibrary m_Plugin{HostTest::Built::PLUGIN};
    const std::vector<PI::CObject> m_Objects = topology();
};

TEST_F(PropertySettingTest, SetsThePollIntervalAndKeepsItInTheSettings)
{
    m_Folder.Write("Ostrel.ini", "; ours\nOther=1\nPollInterval=5\n");
    const PI::CProperty after = set(0, PI::PROP_POLL_INTERVAL, "60");
    EXPECT_EQ(std::get<PI::CBoundedValue>(after.GetValue()), (PI::CBoundedValue{60, 2, 255, 1}));
    EXPECT_EQ(m_Folder.Read("Ostrel.ini"), "; ours\nOther=1\nPollInterval=60\n");
    EXPECT_EQ(Host::Cli::setText(after, "60"), "Poll interval is now 60 s.\n");
}

TEST_F(PropertySettingTest, SaysWhenAValueWasLimited)
{
    for (const auto& [asked, got] :
         {std::pair("1", "2"), {"300", "255"}, {"-5", "2"}, {"99999999999", "255"}, {"-99999999999", "2"}}) {
        const PI::CProperty after = set(0, PI::PROP_POLL_INTERVAL, asked);
        EXPECT_EQ(Host::Cli::setText(after, asked), "Poll interval is now " + std::string(got) + " s, for " +
                                                        asked + " is beyond its limits, 2 and 255.\n");
        EXPECT_EQ(m_Folder.Read("Ostrel.ini"), "PollInterval=" + std::string(got) + "\n");
    }
}

TEST_F(PropertySettingTest, WhatIsNoNumberIsWrongUsage)
{
    for (const char* value : {"", "x", "60s", "6.5", " 60", "99999999999x"}) {
        const Host::Failure failure = failureOf(0, PI::PROP_POLL_INTERVAL, value);
        EXPECT_EQ(failure.exitCode(), ExitCode::WrongUsage) << value;
        EXPECT_THAT(failure.what(),
                    HasSubstr("is no value for Poll interval, which takes a number from 2 to 255"));
    }
    EXPECT_EQ(m_Folder.Read("Ostrel.ini"), "");
}

TEST_F(PropertySettingTest, NoOtherPropertyCanBeSet)
{
    const std::uint32_t own[] = {PI::PROP_NAME, PI::PROP_VERSION};
    for (const std::uint32_t id : own)
        EXPECT_EQ(failureOf(0, id, "7").exitCode(), ExitCode::RequestFailed);
    for (std::size_t object = 1; object < m_Objects.size(); ++object)
        for (const PI::CProperty& each : m_Objects[object].m_Properties) {
            const Host::Failure failure = failureOf(object, each.Id(), "7");
            EXPECT_EQ(failure.exitCode(), ExitCode::RequestFailed);
            EXPECT_EQ(failure.result()->m_Request, 7);
            EXPECT_EQ(failure.result()->m_Code, PI::ERR_PROPERTY_NOT_SETTABLE);
            EXPECT_THAT(failure.what(), HasSubstr("Property " + std::to_string(each.Id()) + ", "));
        }
    EXPECT_THAT(failureOf(0, PI::PROP_NAME, "x").what(),
                AllOf(HasSubstr("Property 30007, Name, cannot be set. The plug-in "),
                      HasSubstr(" refused request 7 (SetProperty) with 20004 ERR_PROPERTY_NOT_SETTABLE.")));
}

TEST_F(PropertySettingTest, SaysWhenTheSettingsCannotBeWritten)
{
    std::filesystem::create_directories(m_Folder.Path() / "Ostrel.ini" / "full");
    const Host::Failure failure = failureOf(0, PI::PROP_POLL_INTERVAL, "60");
    EXPECT_EQ(failure.exitCode(), ExitCode::RequestFailed);
    EXPECT_THAT(failure.what(), HasSubstr(" refused request 7 (SetProperty) with 20000 ERR_GENERAL_FAILURE"));
    EXPECT_THAT(failure.what(), HasSubstr("cannot be set. " + (m_Folder.Path() / "Ostrel.ini").string() +
                                          " cannot be written: it is no file. The plug-in "));
}

TEST_F(PropertySettingTest, SaysWhenTheSettingsAreTornOrTheirFolderIsMissing)
{
    m_Folder.Write("Ostrel.ini", std::string("PollInterval=45\n\0", 17));
    EXPECT_THAT(failureOf(0, PI::PROP_POLL_INTERVAL, "60").what(), HasSubstr("it contains zero bytes"));
    std::filesystem::remove_all(m_Folder.Path());
    // The system's text for the error is between the two.
    const std::string said = failureOf(0, PI::PROP_POLL_INTERVAL, "60").what();
    EXPECT_THAT(said, HasSubstr(" cannot be written: " + m_Folder.Path().string() + ": "));
    EXPECT_THAT(said, HasSubstr(". The plug-in "));
}

TEST_F(PropertySettingTest, SaysNothingOfTheSettingsWhenThePropertyIsTheReason)
{
    std::filesystem::create_directories(m_Folder.Path() / "Ostrel.ini" / "full");
    EXPECT_THAT(failureOf(0, PI::PROP_NAME, "x").what(), Not(HasSubstr("cannot be written")));
}

} // namespace
