#pragma once

#include "RecordingDatabase.h"
#include "Support/DatabaseError.h"

#include <DatabaseORM/Storage.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace TestSupport {

/** A row with members of all four kinds. */
struct Sample
{
    std::int32_t m_ID = 0;
    std::int32_t m_Count = 0;
    std::int64_t m_Size = 0;
    double m_Ratio = 0;
    std::string m_Name;
    std::string m_Unbound;
};

/** What the storage knows of `Sample`'s table. A test may change it. */
struct SampleTable
{
    bool m_GeneratedKey = true;
    bool m_ForeignKeys = false;
    std::string m_NameColumn = "Name";
};

/** A storage with a field map and a table of `Sample` on a recording database. */
class StatementFixture : public testing::Test
{
protected:
    StatementFixture() { m_Storage.m_Access = m_Database; }

    /** ID, Count, Size, Ratio, Name. */
    void AddSample(const SampleTable& description = {})
    {
        auto map = std::make_shared<RaidDataModels::dbModelFieldsMap<Sample>>("SampleAlias");
        map->Bind(&Sample::m_ID, "ID");
        map->Bind(&Sample::m_Count, "Count");
        map->Bind(&Sample::m_Size, "Size");
        map->Bind(&Sample::m_Ratio, "Ratio");
        map->Bind(&Sample::m_Name, description.m_NameColumn);
        m_Storage.m_FieldMaps.push_back(map);
        AddTable(description.m_GeneratedKey, description.m_ForeignKeys);
    }

    /** Name, Count, Size: the 64-bit integer is last. */
    void AddSampleWithBigIntegerLast(bool generatedKey = true)
    {
        auto map = std::make_shared<RaidDataModels::dbModelFieldsMap<Sample>>("SampleAlias");
        map->Bind(&Sample::m_Name, "Name");
        map->Bind(&Sample::m_Count, "Count");
        map->Bind(&Sample::m_Size, "Size");
        m_Storage.m_FieldMaps.push_back(map);
        AddTable(generatedKey, false);
    }

    void AddTable(bool generatedKey, bool foreignKeys)
    {
        std::vector<DatabaseORM::column_t> columns = {{"Key", "INTEGER", {}, generatedKey},
                                                      {"Other", "TEXT", {}, false}};
        m_Storage.m_Tables.push_back(
            std::make_shared<DatabaseORM::table_t<Sample>>("SampleTable", std::move(columns), foreignKeys));
    }

    const std::vector<std::string>& Statements() const { return m_Database->Statements(); }

    std::shared_ptr<CRecordingDatabase> m_Database = std::make_shared<CRecordingDatabase>();
    DatabaseORM::storage_t m_Storage;
    Sample m_Sample{
        .m_ID = 5, .m_Count = -3, .m_Size = 9'000'000'000, .m_Ratio = 1.5, .m_Name = "disk", .m_Unbound = ""};
};

} // namespace TestSupport
