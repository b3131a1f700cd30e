#include "Database/DatabaseFixture.h"

#include <TLX/Win/UniqueHandle.h>

#include <windows.h>

using namespace TestSupport;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/** Another program has the file open and does not share it. */
class Sharing : public DatabaseFixture
{
protected:
    TLX::Win::CFileHandle OpenForMyself(DWORD disposition) const
    {
        TLX::Win::CFileHandle file(CreateFileW(File().c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                               disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_TRUE(file.Valid());
        return file;
    }
};

} // namespace

TEST_F(Sharing, AFileThatIsNotSharedIsOpenedLater)
{
    DatabaseORM::insert(*m_Storage, makeDrive("S1"));
    Reopen();
    {
        const auto other = OpenForMyself(OPEN_EXISTING);
        EXPECT_THAT(databaseError([&] { DatabaseORM::insert(*m_Storage, makeDrive("S2")); }),
                    HasSubstr("unable to open database file"));
    }
    DatabaseORM::insert(*m_Storage, makeDrive("S3"));
    EXPECT_THAT(Query("SELECT DriveKey FROM PD ORDER BY DriveKey"), ElementsAre("S1", "S3"));
}

TEST_F(Sharing, ANewFileThatIsNotSharedIsMadeLater)
{
    {
        const auto other = OpenForMyself(CREATE_NEW);
        EXPECT_THAT(databaseError([&] { Query("SELECT 1"); }), HasSubstr("unable to open database file"));
    }
    EXPECT_THAT(Query("SELECT COUNT(*) FROM PD"), ElementsAre("0"));
}
