#include "Plugins/HostSetup.h"

#include "Support/TemporaryFolder.h"

#include <Database/Database.h>
#include <DatabaseORM/DatabaseException.h>

#include <gtest/gtest.h>

namespace {

/** What plug-ins that are loaded after the setup find. */
class HostSetupTest : public testing::Test
{
protected:
    /** SQLite refuses it. A storage that keeps nothing does not read it. */
    static void RunNoStatement() { (void)getDatabasePointer()->m_Access->query("no statement at all"); }

    Host::HostFolders Folders(bool keepsRows) const { return {m_Folder.Path(), Data(), keepsRows, 0}; }
    std::filesystem::path Data() const { return m_Folder.Path() / "data"; }

    static void Ignore(const std::string& /*message*/) {}

    TestSupport::CTemporaryFolder m_Folder;
};

} // namespace

TEST_F(HostSetupTest, WithoutADataFolderNothingKeepsRows)
{
    {
        const Host::HostSetup setup(Folders(false), {}, std::nullopt, Ignore);
        EXPECT_NO_THROW(RunNoStatement());
    }
    EXPECT_FALSE(std::filesystem::exists(Data()));
    EXPECT_THROW(RunNoStatement(), DBEXCEPTION::DatabaseException) << "the setting ends with the setup";
}

TEST_F(HostSetupTest, WithADataFolderADatabaseInItKeepsRows)
{
    const Host::HostSetup setup(Folders(true), {}, std::nullopt, Ignore);
    EXPECT_THROW(RunNoStatement(), DBEXCEPTION::DatabaseException);
    EXPECT_TRUE(std::filesystem::exists(Data() / "Ostrel.db"));
}

TEST_F(HostSetupTest, NothingKeepsRowsWhereAnotherProcessDoes)
{
    const Host::DataFolderClaim other(Data(), 0);
    ASSERT_TRUE(other.granted());
    const Host::HostSetup setup(Folders(true), {}, std::nullopt, Ignore);
    EXPECT_FALSE(setup.claim()->granted());
    EXPECT_NO_THROW(RunNoStatement());
}
