#include "Database/DatabaseFixture.h"

#include <Database/Maintenance.h>

using namespace TestSupport;

namespace {

class FileName : public DatabaseFixture
{};

} // namespace

TEST_F(FileName, HasNoOtherMeaning)
{
    const std::filesystem::path former = std::filesystem::current_path();
    std::filesystem::current_path(Folder());
    for (const char* name : {":memory:", "file:other?mode=memory"}) {
        setDatabaseFile(name);
        getDatabasePointer()->m_Access->query("SELECT 1");
        EXPECT_TRUE(std::filesystem::exists(Folder() / name)) << name;
        EXPECT_EQ(inspectDatabase(name), EDatabaseTables::Present) << "beside who has it open";
        setDatabaseFile({});
        EXPECT_EQ(inspectDatabase(name), EDatabaseTables::Present) << name;
    }
    std::filesystem::current_path(former);
}
