#include "Host/Checks.h"
#include "Support/TemporaryFolder.h"

#include <Database/Database.h>
#include <Database/Maintenance.h>
#include <DatabaseORM/DatabaseException.h>

#include <filesystem>
#include <stdexcept>

#include <unistd.h>

namespace {

using namespace Host::Cli;
using Host::ExitCode;
using HostTest::finding;
using std::filesystem::perms;
using testing::AllOf;
using testing::Field;

/** Makes root, who may open every file, an ordinary user for its lifetime. */
class OrdinaryUser
{
public:
    OrdinaryUser() { become(m_Former == 0 ? 65534 : m_Former); }
    ~OrdinaryUser() { (void)seteuid(m_Former); }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    static void become(uid_t user)
    {
        if (seteuid(user) != 0)
            throw std::runtime_error("cannot become an ordinary user");
    }

    const uid_t m_Former = geteuid();
};

class RowsOfAnOrdinaryUser : public testing::Test
{
protected:
    RowsOfAnOrdinaryUser()
    {
        std::filesystem::create_directory(m_Data);
        mode(m_Folder.Path(), 0755);
    }
    ~RowsOfAnOrdinaryUser() override { mode(m_Data, 0755); }

    static void mode(const std::filesystem::path& path, int mode)
    {
        std::filesystem::permissions(path, static_cast<perms>(mode));
    }

    static Check check(const std::filesystem::path& file)
    {
        const OrdinaryUser user;
        return checkKeptRows(file);
    }

    static auto refusal(const std::string& part)
    {
        return AllOf(finding(Finding::Problem, part), Field(&Check::m_ExitCode, ExitCode::NoPermission));
    }

    TestSupport::CTemporaryFolder m_Folder;
    const std::filesystem::path m_Data = m_Folder.Path() / "data";
};

TEST_F(RowsOfAnOrdinaryUser, CannotBeMadeWhereThatUserMayNotWrite)
{
    mode(m_Data, 0777);
    for (const char* name : {"Ostrel.db", "a/b/Ostrel.db"})
        EXPECT_THAT(check(m_Data / name), finding(Finding::Ok, "Ostrel.db yet"));
    mode(m_Data, 0555);
    for (const char* name : {"Ostrel.db", "a/b/Ostrel.db"})
        EXPECT_THAT(check(m_Data / name),
                    refusal("it cannot be created: " + m_Data.string() + ": Permission denied"));
}

TEST_F(RowsOfAnOrdinaryUser, CannotBeReadWithoutPermission)
{
    const std::filesystem::path file = m_Folder.Write("data/Ostrel.db", "");
    mode(file, 0);
    EXPECT_THAT(check(file), refusal("Ostrel.db: Permission denied"));
    mode(m_Data, 0);
    EXPECT_THAT(check(file), refusal("Ostrel.db: Permission denied"));
}

TEST_F(RowsOfAnOrdinaryUser, CannotBeWrittenWithoutPermission)
{
    const std::filesystem::path file = m_Folder.Write("data/Ostrel.db", "");
    mode(file, 0444);
    EXPECT_THAT(check(file), refusal("Ostrel.db: Permission denied, so no rows can be kept"));
    mode(file, 0666);
    EXPECT_THAT(check(file), finding(Finding::Ok, "is empty"));
}

TEST_F(RowsOfAnOrdinaryUser, ThatAreKeptMustBeWritable)
{
    mode(m_Data, 0777);
    const std::filesystem::path file = m_Data / "Ostrel.db";
    setDatabaseFile(file);
    checkDatabase();
    setDatabaseFile({});
    mode(file, 0444);
    {
        const OrdinaryUser user;
        setDatabaseFile(file);
        try {
            checkDatabase();
            ADD_FAILURE() << "a file that cannot be written passes";
        } catch (const DBEXCEPTION::DatabaseException& exception) {
            EXPECT_THAT(exception.what(), testing::HasSubstr("readonly"));
        }
    }
    setDatabaseFile({});
}

TEST(PlaceOfRows, ALinkToNothingIsNoMissingFile)
{
    const TestSupport::CTemporaryFolder folder;
    const std::filesystem::path link = folder.Path() / "Ostrel.db";
    std::filesystem::create_symlink(folder.Path() / "nothing", link);
    EXPECT_THAT(checkKeptRows(link),
                finding(Finding::Note, link.string() + " is a link to a file that does not exist"));
}

TEST(PlaceOfRows, ALinkToNothingIsInTheWayOfAFolder)
{
    const TestSupport::CTemporaryFolder folder;
    const std::filesystem::path link = folder.Path() / "link";
    std::filesystem::create_symlink(folder.Path() / "nothing", link);
    EXPECT_THAT(checkKeptRows(link / "Ostrel.db"),
                finding(Finding::Problem, "it cannot be created: " + link.string() + ": No such file"));
}

} // namespace
