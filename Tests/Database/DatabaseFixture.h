#pragma once

#include "Support/DatabaseError.h"
#include "Support/TemporaryFolder.h"

#include <Database/Database.h>
#include <DatabaseORM/Models.h>
#include <DatabaseORM/StatementBuilder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace TestSupport {

using Values = std::vector<std::string>;

/** A folder that lives as long as the test, with a file in it as the process's database. */
class DatabaseFixture : public testing::Test
{
protected:
    DatabaseFixture();
    ~DatabaseFixture() override;

    /** Closes the file and opens it again at the next query, as another start of the program would. */
    void Reopen();

    Values Query(const std::string& sql) { return m_Storage->m_Access->query(sql); }

    const std::filesystem::path& Folder() const { return m_Folder.Path(); }
    std::filesystem::path File() const { return Folder() / "Ostrel.db"; }

    CTemporaryFolder m_Folder;
    std::shared_ptr<DatabaseORM::storage_t> m_Storage;
};

/** Rows as the plug-in fills them, on this host. `serial` distinguishes them. */
RaidDataModels::Adapter makeAdapter(std::int32_t number, const std::string& serial);
RaidDataModels::PD makeDrive(const std::string& serial);

} // namespace TestSupport
