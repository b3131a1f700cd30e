#include "Plugins/DataFolder.h"

#include "Base/Failure.h"
#include "Host/Objects.h"
#include "Support/TemporaryFolder.h"
#include "Support/VirtualClock.h"

#include <Database/Database.h>
#include <DatabaseORM/Models.h>
#include <DatabaseORM/StatementBuilder.h>
#include <PI/AdapterNumbers.h>

#include <fstream>
#include <optional>

namespace {

using HostTest::DriveObjects;
using HostTest::topologyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DataFolder : public testing::Test
{
protected:
    ~DataFolder() override { setDatabaseFile({}); }

    void Open(const std::filesystem::path& folder)
    {
        m_Claim.emplace(folder, 0U);
        Host::keepRows(folder);
        Host::restoreNumbers(folder, [this](const std::string& text) { m_Warnings.push_back(text); });
    }

    void Keep(const std::filesystem::path& folder, const std::vector<PI::CObject>& objects)
    {
        Host::keepInventory(folder, Host::ObjectStore(objects),
                            [this](const std::string& text) { m_Warnings.push_back(text); });
    }

    static std::vector<std::string> Query(const std::string& sql)
    {
        return getDatabasePointer()->m_Access->query(sql);
    }

    static void Insert(std::int32_t number, const std::string& serial)
    {
        RaidDataModels::Adapter adapter;
        adapter.m_HostName = RaidDataModels::LOCAL_HOST;
        adapter.m_AdapterNumber = number;
        adapter.m_SerialNumber = serial;
        RaidDataModels::PD drive;
        drive.m_HostName = RaidDataModels::LOCAL_HOST;
        drive.m_DriveKey = serial;
        DatabaseORM::insert(*getDatabasePointer(), adapter);
        DatabaseORM::insert(*getDatabasePointer(), drive);
    }

    static DriveObjects Objects(std::uint64_t id, std::uint64_t number, const std::string& serial)
    {
        DriveObjects objects(id, serial, "/dev/nvme0n1");
        objects.remove(PI::PROP_ADAPTER_NUMBER);
        objects.m_Adapter.m_Properties.push_back(
            HostTest::property(PI::PROP_ADAPTER_NUMBER, PI::UNIT_NONE, number));
        return objects;
    }

    TestSupport::CTemporaryFolder m_Folder;
    std::optional<Host::DataFolderClaim> m_Claim;
    std::vector<std::string> m_Warnings;
};

TEST_F(DataFolder, IsMadeWithThoseAboveIt)
{
    const std::filesystem::path folder = m_Folder.Path() / "some" / "folder";
    Open(folder);
    Insert(1, "S1");
    EXPECT_TRUE(std::filesystem::exists(Host::databaseFile(folder)));
    EXPECT_THAT(m_Warnings, IsEmpty());
}

TEST_F(DataFolder, ThatCannotBeMadeIsWrongUsage)
{
    const std::filesystem::path file = m_Folder.Write("file", "");
    for (const std::filesystem::path& folder :
         {file, file / "below", std::filesystem::path(), m_Folder.Path() / std::string(300, 'x')}) {
        try {
            Open(folder);
            ADD_FAILURE() << folder;
        } catch (const Host::Failure& failure) {
            EXPECT_EQ(failure.exitCode(), Host::ExitCode::WrongUsage);
            EXPECT_THAT(failure.what(),
                        HasSubstr("The data folder " + folder.string() + " cannot be used: "));
        }
    }
}

TEST_F(DataFolder, IsKeptByOneAtATime)
{
    TestSupport::CVirtualClock clock;
    m_Claim.emplace(m_Folder.Path(), 0U);
    EXPECT_TRUE(m_Claim->granted());
    {
        const std::uint64_t start = clock.Monotonic();
        const Host::DataFolderClaim second(m_Folder.Path(), 3000);
        EXPECT_FALSE(second.granted());
        EXPECT_GE(clock.Monotonic() - start, 3000U);
        EXPECT_THAT(second.refusal(),
                    testing::AllOf(testing::StartsWith("Another ostrel, process "),
                                   testing::EndsWith(", keeps its data in " + m_Folder.Path().string())));
    }
    m_Claim.reset();
    EXPECT_TRUE(Host::DataFolderClaim(m_Folder.Path(), 0).granted());
}

TEST_F(DataFolder, IsKeptByOneAtATimeWhoeverMayWriteToTheLock)
{
    using std::filesystem::perms;
    m_Claim.emplace(m_Folder.Path(), 0U);
    const std::filesystem::path lock = m_Folder.Path() / "Ostrel.lock";
    std::filesystem::permissions(lock, perms::owner_read | perms::group_read | perms::others_read);
    EXPECT_FALSE(Host::DataFolderClaim(m_Folder.Path(), 0).granted());
    m_Claim.reset();
    EXPECT_TRUE(Host::DataFolderClaim(m_Folder.Path(), 0).granted());
    std::filesystem::permissions(lock, perms::owner_read | perms::owner_write);
}

TEST_F(DataFolder, IsWaitedForWhileAnotherOneKeepsIt)
{
    TestSupport::CVirtualClock clock;
    m_Claim.emplace(m_Folder.Path(), 0U);
    clock.OnSleep([this] { m_Claim.reset(); });
    EXPECT_TRUE(Host::DataFolderClaim(m_Folder.Path(), 3000).granted());
}

TEST_F(DataFolder, IsNobodysWhereItTakesNoLock)
{
    const std::filesystem::path lock = m_Folder.Path() / "Ostrel.lock";
    std::filesystem::create_directory(lock);
    const Host::DataFolderClaim claim(m_Folder.Path(), 0);
    EXPECT_FALSE(claim.granted());
    EXPECT_THAT(claim.refusal(),
                testing::StartsWith("The lock file " + lock.string() + " cannot be opened: "));
    EXPECT_THAT(claim.failure().what(), testing::EndsWith("name another folder with --data."));
}

TEST_F(DataFolder, ForgesNoLineOfARefusal)
{
    try {
        Open(m_Folder.Write("file", "") / "a\nostrel: all is well");
        ADD_FAILURE();
    } catch (const Host::Failure& failure) {
        EXPECT_THAT(failure.what(),
                    testing::AllOf(HasSubstr("a?ostrel: all is well"), testing::Not(HasSubstr("\n"))));
    }
}

TEST_F(DataFolder, WarnsOfNumbersThatMakeNoSenseAndSetsThemAside)
{
    m_Folder.Write("AdapterNumbers.txt", "7 0 9 0 0 localhost\nnonsense\n");
    Open(m_Folder.Path());
    EXPECT_THAT(m_Warnings, ElementsAre(testing::AllOf(HasSubstr("may get new numbers"), HasSubstr("line 2"),
                                                       HasSubstr("AdapterNumbers.txt.damaged"))));
    Keep(m_Folder.Path(), topologyOf({}));
    EXPECT_THAT(m_Folder.Read("AdapterNumbers.txt"), testing::EndsWith("host.\n7 0 9 0 0 localhost\n"));
    EXPECT_THAT(m_Folder.Read("AdapterNumbers.txt.damaged"), HasSubstr("nonsense"));
}

TEST_F(DataFolder, WarnsOfNumbersThatCannotBeReadAndLeavesThem)
{
    std::filesystem::create_directory(m_Folder.Path() / "AdapterNumbers.txt");
    Open(m_Folder.Path());
    EXPECT_THAT(m_Warnings, ElementsAre(testing::AllOf(
                                HasSubstr("AdapterNumbers.txt is no regular file"),
                                HasSubstr("different numbers in this run, and those are not kept"))));
    std::filesystem::remove(m_Folder.Path() / "AdapterNumbers.txt");
    Keep(m_Folder.Path(), topologyOf({}));
    EXPECT_FALSE(std::filesystem::exists(m_Folder.Path() / "AdapterNumbers.txt"));
    PI::restoreAdapterNumbers(m_Folder.Path() / "missing");
}

TEST_F(DataFolder, LosesTheRowsOfWhatIsGone)
{
    Open(m_Folder.Path());
    Insert(1, "GONE");
    Insert(2, "STAYS");
    Insert(3, "GONE TOO");
    Keep(m_Folder.Path(), topologyOf({Objects(10, 2, "STAYS")}));
    EXPECT_THAT(Query("SELECT SerialNumber FROM Adapter; SELECT DriveKey FROM PD"),
                ElementsAre("STAYS", "STAYS"));
    EXPECT_TRUE(std::filesystem::exists(m_Folder.Path() / "AdapterNumbers.txt"));
    EXPECT_THAT(m_Warnings, IsEmpty());
}

TEST_F(DataFolder, WarnsWhenNothingCanBeKept)
{
    Open(m_Folder.Path());
    // Not every system deletes a file that another process has open.
    m_Claim.reset();
    std::filesystem::remove_all(m_Folder.Path());
    Keep(m_Folder.Path(), topologyOf({Objects(10, 2, "S")}));
    EXPECT_THAT(m_Warnings, ElementsAre(HasSubstr("unable to open database file"),
                                        HasSubstr("AdapterNumbers.txt cannot be written")));
}

} // namespace
