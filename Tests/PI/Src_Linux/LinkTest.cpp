#include "Support/TemporaryFolder.h"

#include <PI/AdapterID.h>
#include <PI/AdapterNumbers.h>
#include <PI/ConfigFile.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include <unistd.h>

namespace {

using testing::HasSubstr;

/** A folder in which another user has replaced the files by links. */
class Link : public testing::Test
{
protected:
    Link()
    {
        if (geteuid() != 0)
            return;
        m_Folder.Write("victim", VICTIM);
        for (const char* name : {"Test.ini", "Numbers.txt"}) {
            std::filesystem::create_symlink("victim", m_Folder.Path() / name);
            EXPECT_EQ(lchown((m_Folder.Path() / name).c_str(), SOMEBODY, static_cast<gid_t>(-1)), 0);
        }
        PI::CConfigFile::SetFolder(m_Folder.Path().native());
        m_Config.SetFileName("Test.ini");
    }
    ~Link() override { PI::restoreAdapterNumbers(m_Folder.Path() / "missing"); }

    void SetUp() override
    {
        if (geteuid() != 0)
            GTEST_SKIP() << "only the superuser can give a link to somebody else";
    }

    static constexpr uid_t SOMEBODY = 4242;
    static constexpr const char* VICTIM = "Key=precious\n";
    TestSupport::CTemporaryFolder m_Folder;
    const std::filesystem::path m_Numbers = m_Folder.Path() / "Numbers.txt";
    PI::CConfigFile m_Config;
};

} // namespace

TEST_F(Link, OfSomebodyElsesHidesSettings)
{
    std::string value = "former";
    EXPECT_NE(m_Config.ReadKeyValue("Key", value, -1, -1), 0U);
    EXPECT_EQ(value, "former");
}

TEST_F(Link, OfSomebodyElsesTakesNoSettings)
{
    EXPECT_NE(m_Config.WriteKeyValue("Key", "overwritten", -1, -1), 0U);
    EXPECT_EQ(m_Folder.Read("victim"), VICTIM);
    // Also when the link leads to nothing.
    std::filesystem::remove(m_Folder.Path() / "victim");
    EXPECT_NE(m_Config.WriteKeyValue("Key", "made", -1, -1), 0U);
    EXPECT_FALSE(std::filesystem::exists(m_Folder.Path() / "victim"));
}

TEST_F(Link, OfSomebodyElsesHidesAdapterNumbers)
{
    m_Folder.Write("victim", "9 0 1 0 0 localhost\n");
    try {
        PI::restoreAdapterNumbers(m_Numbers);
        ADD_FAILURE();
    } catch (const std::runtime_error& wrong) {
        EXPECT_THAT(wrong.what(), HasSubstr("Numbers.txt is a link that belongs to another user"));
    }
}

TEST_F(Link, OfSomebodyElsesTakesNoAdapterNumbers)
{
    PI::restoreAdapterNumbers(m_Folder.Path() / "missing");
    EXPECT_THROW(PI::storeAdapterNumbers(m_Numbers), std::runtime_error);
    EXPECT_EQ(m_Folder.Read("victim"), VICTIM);
}

TEST_F(Link, OfTheSuperuserIsFollowed)
{
    for (const char* name : {"Test.ini", "Numbers.txt"})
        ASSERT_EQ(lchown((m_Folder.Path() / name).c_str(), 0, static_cast<gid_t>(-1)), 0);
    EXPECT_EQ(m_Config.WriteKeyValue("Key", "written", -1, -1), 0U);
    EXPECT_EQ(m_Folder.Read("victim"), "Key=written\n");
    m_Folder.Write("victim", "9 0 1 0 0 localhost\nx\n");
    EXPECT_NE(PI::restoreAdapterNumbers(m_Numbers), std::nullopt);
    EXPECT_EQ(m_Folder.Read("victim.damaged"), "9 0 1 0 0 localhost\nx\n");
    PI::storeAdapterNumbers(m_Numbers);
    EXPECT_THAT(m_Folder.Read("victim"), HasSubstr("host.\n9 0 1 0 0 localhost\n"));
    EXPECT_TRUE(std::filesystem::is_symlink(m_Numbers));
}
