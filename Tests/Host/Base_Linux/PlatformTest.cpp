#include "Base/Platform.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

#include <pwd.h>
#include <unistd.h>

namespace {

using Host::Platform::defaultDataFolder;

/** An ordinary user, whose variables the test sets. */
class DefaultDataFolder : public testing::Test
{
protected:
    DefaultDataFolder()
    {
        constexpr uid_t nobody = 65534;
        if (m_Former == 0 && seteuid(nobody) != 0)
            ADD_FAILURE();
        for (const char* name : {"HOME", "XDG_STATE_HOME"})
            (void)unsetenv(name);
    }
    ~DefaultDataFolder() override
    {
        (void)!seteuid(m_Former);
        if (m_Home)
            (void)setenv("HOME", m_Home->c_str(), 1);
    }

    const uid_t m_Former = geteuid();
    const std::optional<std::string> m_Home =
        std::getenv("HOME") != nullptr ? std::optional<std::string>(std::getenv("HOME")) : std::nullopt;
};

TEST_F(DefaultDataFolder, IsBelowTheFolderOfTheUser)
{
    (void)setenv("HOME", "/home/somebody", 1);
    EXPECT_EQ(defaultDataFolder(), "/home/somebody/.local/state/ostrel");
    (void)setenv("XDG_STATE_HOME", "/state", 1);
    EXPECT_EQ(defaultDataFolder(), "/state/ostrel");
    (void)setenv("XDG_STATE_HOME", "relative", 1);
    EXPECT_EQ(defaultDataFolder(), "/home/somebody/.local/state/ostrel");
    (void)unsetenv("XDG_STATE_HOME");
}

TEST_F(DefaultDataFolder, WithoutAVariableIsWhereTheSystemKnowsTheUser)
{
    const passwd* const user = getpwuid(geteuid());
    ASSERT_NE(user, nullptr);
    const std::filesystem::path expected = std::filesystem::path(user->pw_dir) / ".local/state/ostrel";
    EXPECT_EQ(defaultDataFolder(), expected);
    (void)setenv("HOME", "", 1);
    EXPECT_EQ(defaultDataFolder(), expected);
}

} // namespace
