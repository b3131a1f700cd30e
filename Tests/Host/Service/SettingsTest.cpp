#include "Service/Settings.h"

#include "Base/Failure.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

using namespace Host::Service;
using testing::ElementsAre;
using testing::HasSubstr;

std::string complaintOf(std::string_view text)
{
    try {
        (void)parseSettings(text, "serve.ini");
    } catch (const Host::Failure& failure) {
        EXPECT_EQ(failure.exitCode(), Host::ExitCode::WrongUsage);
        return failure.what();
    }
    return {};
}

TEST(SettingsTest, AreTheDefaultsWithoutLines)
{
    EXPECT_EQ(parseSettings("", "serve.ini"), Settings());
    EXPECT_EQ(parseSettings("# listen = 1\n ; x\n\n  \r\n", "serve.ini"), Settings());
}

TEST(SettingsTest, AreReadFromEachLine)
{
    const std::string socket = std::filesystem::absolute("x.sock").string();
    const std::string token = std::filesystem::absolute("token").string();
    const Settings settings = parseSettings("listen=[::1]:80\r\n"
                                            "  socket = " +
                                                socket +
                                                "  \n"
                                                "host-names = One.example, two\n"
                                                "token-file = " +
                                                token,
                                            "serve.ini");
    EXPECT_EQ(settings.m_Listen, (Endpoint{"::1", 80}));
    EXPECT_EQ(settings.m_Socket, socket);
    EXPECT_THAT(settings.m_HostNames, ElementsAre("one.example", "two"));
    EXPECT_EQ(settings.m_TokenFile, token);
}

TEST(SettingsTest, NameEveryWrongLineOfTheFile)
{
    EXPECT_EQ(complaintOf("\nlisen = 127.0.0.1:1\nlisten\nlisten = here\nsocket = x\n"),
              "serve.ini, line 2: There is no setting \"lisen\". Did you mean \"listen\"?\n"
              "serve.ini, line 3: \"listen\" is not of the form \"key = value\".\n"
              "serve.ini, line 4: \"here\" is no value of \"listen\", which takes ADDRESS:PORT.\n"
              "serve.ini, line 5: \"x\" is no value of \"socket\", which takes an absolute path.");
    EXPECT_EQ(complaintOf("listen = 127.0.0.1:1\nlisten = 127.0.0.1:1\n"),
              "serve.ini, line 2: \"listen\" is already set in line 1.");
    EXPECT_THAT(complaintOf("host-names = a,,b"), HasSubstr("line 1: \"a,,b\" is no value"));
    EXPECT_THAT(complaintOf("host-names = a/b"), HasSubstr("line 1"));
    EXPECT_THAT(complaintOf("token-file ="), HasSubstr("line 1: \"\" is no value"));
}

TEST(SettingsTest, TakeEndpointsOfBothKinds)
{
    EXPECT_EQ(parseEndpoint("127.0.0.1:0"), (Endpoint{"127.0.0.1", 0}));
    EXPECT_EQ(parseEndpoint("[fe80::1]:65535"), (Endpoint{"fe80::1", 65535}));
    for (const char* wrong : {"", "127.0.0.1", ":80", "127.0.0.1:", "127.0.0.1:65536", "::1:80", "[]:80",
                              "localhost:80", "127.0.0.1:-1"})
        EXPECT_FALSE(parseEndpoint(wrong)) << wrong;
}

TEST(SettingsTest, NeedARestartForTheSocketsOnly)
{
    Settings after;
    after.m_TokenFile = "/etc/token";
    after.m_HostNames = {"a"};
    EXPECT_TRUE(needRestart({}, after).empty());
    after.m_Listen.m_Port = 1;
    after.m_Socket = "/run/x.sock";
    EXPECT_THAT(needRestart({}, after), ElementsAre("listen", "socket"));
}

TEST(SettingsTest, HaveADefaultAndASentenceForEachKey)
{
    for (const SettingRow& row : settingRows()) {
        EXPECT_FALSE(row.m_Default.empty()) << row.m_Key;
        EXPECT_TRUE(row.m_Description.ends_with('.')) << row.m_Key;
    }
}

TEST(SettingsTest, ReadTheTokenInTheFirstLine)
{
    const TestSupport::CTemporaryFolder folder;
    EXPECT_EQ(readToken(folder.Write("token", " secret \r\nmore\n")), "secret");
    EXPECT_THROW((void)readToken(folder.Write("token", "\nsecret\n")), Host::Failure);
    EXPECT_THROW((void)readToken(folder.Path() / "none"), Host::Failure);
    EXPECT_THROW((void)readSettings(folder.Path() / "none"), Host::Failure);
    EXPECT_EQ(readSettings(folder.Write("ini", "listen=1.2.3.4:5")).m_Listen, (Endpoint{"1.2.3.4", 5}));
}

} // namespace
