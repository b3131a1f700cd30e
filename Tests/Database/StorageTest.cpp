#include "Base/Platform.h"
#include "DatabaseFixture.h"

#include <DatabaseORM/Keywords.h>

using namespace TestSupport;
using DatabaseORM::condition_t;
using RaidDataModels::PD;
using testing::HasSubstr;

namespace {

class Storage : public DatabaseFixture
{};

class StorageAcrossModules : public Storage
{
protected:
    template<typename Function>
    Function* Foreign(const char* name) const
    {
        return reinterpret_cast<Function*>(m_Module.symbol(name));
    }

    Host::Platform::DynamicLibrary m_Module{OSTREL_FOREIGN_MODULE};
};

} // namespace

TEST_F(Storage, IsSharedUntilAnotherFileIsSet)
{
    EXPECT_EQ(getDatabasePointer(), m_Storage);
    const auto former = m_Storage;
    Reopen();
    EXPECT_NE(getDatabasePointer(), former);
    EXPECT_EQ(getDatabasePointer(), m_Storage);
}

TEST_F(Storage, TouchesNoFileBeforeTheFirstQuery)
{
    EXPECT_FALSE(std::filesystem::exists(File()));
    Query("SELECT 1");
    EXPECT_TRUE(std::filesystem::exists(File()));
}

TEST_F(Storage, WithoutFileLivesInMemory)
{
    setDatabaseFile({});
    const auto first = getDatabasePointer();
    EXPECT_EQ(DatabaseORM::insert(*first, makeDrive("S1")), 1);
    EXPECT_EQ(DatabaseORM::select(*first, condition_t(&PD::m_DriveKey, "S1")).size(), 1U);
    setDatabaseFile({});
    EXPECT_EQ(DatabaseORM::select(*getDatabasePointer(), condition_t(&PD::m_DriveKey, "S1")).size(), 0U);
}

TEST_F(Storage, TakesAnyFileNameForAName)
{
    const std::filesystem::path former = std::filesystem::current_path();
    std::filesystem::current_path(Folder());
    for (const char* name : {"Größe 'x'.db", "βάση 日本語.db", "%41&x=1#y.db"}) {
        setDatabaseFile(name);
        getDatabasePointer()->m_Access->query("SELECT 1");
        EXPECT_TRUE(std::filesystem::exists(Folder() / name)) << name;
    }
    std::filesystem::current_path(former);
}

TEST_F(Storage, KnowsTheThreeModels)
{
    EXPECT_EQ(DatabaseORM::tableName<RaidDataModels::Plugin>(*m_Storage), "Plugin");
    EXPECT_EQ(DatabaseORM::tableName<RaidDataModels::Adapter>(*m_Storage), "Adapter");
    EXPECT_EQ(DatabaseORM::tableName<PD>(*m_Storage), "PD");
    EXPECT_EQ(m_Storage->m_FieldMaps.size(), 3U);
    EXPECT_EQ(m_Storage->m_Tables.size(), 3U);
}

TEST_F(Storage, MapsMatchTheColumnsOfTheFile)
{
    for (std::size_t index = 0; index < m_Storage->m_Tables.size(); ++index) {
        const DatabaseORM::tableBase_t& table = *m_Storage->m_Tables[index];
        Values names;
        for (const DatabaseORM::column_t& column : table.Columns())
            names.push_back(column.m_Name);
        EXPECT_EQ(Query("SELECT name FROM pragma_table_info('" + table.Name() + "')"), names);
        EXPECT_EQ(m_Storage->m_FieldMaps[index]->Columns(), names.size());
        EXPECT_EQ(m_Storage->m_FieldMaps[index]->Name(), table.Name());
        EXPECT_EQ(names.front(), "ID");
        EXPECT_EQ(table.Columns().back().m_Type, "TEXT");
        EXPECT_TRUE(table.HasGeneratedKey());
        EXPECT_FALSE(table.UsesForeignKeys());
    }
}

TEST_F(StorageAcrossModules, ServesABuilderInAnotherModule)
{
    using StoreAndFind = void(const DatabaseORM::storage_t&, const std::string&, std::string&);
    auto* const storeAndFind = Foreign<StoreAndFind>("storeAndFind");
    ASSERT_NE(storeAndFind, nullptr);
    const std::string key = "x');DROP TABLE PD;--";
    std::string found;
    storeAndFind(*m_Storage, key, found);
    EXPECT_EQ(found, key);
}

TEST_F(StorageAcrossModules, ThrowsWhatAnotherModuleCatches)
{
    using FailAndCatch = void(const DatabaseORM::storage_t&, std::string&);
    auto* const failAndCatch = Foreign<FailAndCatch>("failAndCatch");
    ASSERT_NE(failAndCatch, nullptr);
    std::string message;
    failAndCatch(*m_Storage, message);
    EXPECT_THAT(message, HasSubstr("syntax error"));
}
