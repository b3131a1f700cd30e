/**
 * The cost of a start with simulated controllers, where each adapter's row is followed by every drive's.
 * Beside it is the cost of plain prepared statements that insert the same rows into such a database. The last
 * column is the ratio.
 */
#include "Results.h"
#include "Support/FakeDrives.h"
#include "Support/PluginUnderTest.h"
#include "Support/TemporaryFolder.h"

#include <Database/Database.h>
#include <DatabaseORM/Models.h>
#include <DatabaseORM/StatementBuilder.h>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Benchmarks::secondsOf;
using RaidDataModels::Adapter;
using RaidDataModels::PD;
using RaidDataModels::Plugin;

/** A fresh database on disk, which the next plug-in uses. */
class CDatabaseFile
{
public:
    CDatabaseFile()
    {
        setDatabaseFile(File());
        m_Storage = getDatabasePointer();
        m_Storage->m_Access->query("SELECT 1");
    }

    ~CDatabaseFile()
    {
        m_Storage.reset();
        setDatabaseFile({});
    }

    CDatabaseFile(const CDatabaseFile&) = delete;
    CDatabaseFile& operator=(const CDatabaseFile&) = delete;

    std::filesystem::path File() const { return m_Folder.Path() / "Ostrel.db"; }
    const DatabaseORM::storage_t& Storage() const { return *m_Storage; }

private:
    TestSupport::CTemporaryFolder m_Folder;
    std::shared_ptr<DatabaseORM::storage_t> m_Storage;
};

/** The number of rows after a start. */
struct CRows
{
    std::vector<Plugin> m_Plugins;
    std::vector<Adapter> m_Adapters;
    std::vector<PD> m_Drives;
};

/** Inserts a model's rows with one statement, prepared once. */
template<class Model>
class CPlainInsert
{
public:
    CPlainInsert(sqlite3* connection, const DatabaseORM::storage_t& storage)
        : m_Map(*DatabaseORM::findMetadata<Model>(storage, DatabaseORM::NO_MODEL).m_Map)
    {
        std::string places;
        for (std::size_t column = 0; column < m_Map.Columns(); ++column)
            places += column == 0 ? "?" : ", ?";
        const std::string text =
            "INSERT INTO " + DatabaseORM::tableName<Model>(storage) + " VALUES(" + places + ")";
        if (sqlite3_prepare_v2(connection, text.c_str(), -1, &m_Statement, nullptr) != SQLITE_OK)
            throw std::runtime_error(sqlite3_errmsg(connection));
    }

    ~CPlainInsert() { sqlite3_finalize(m_Statement); }
    CPlainInsert(const CPlainInsert&) = delete;
    CPlainInsert& operator=(const CPlainInsert&) = delete;

    void Run(const Model& model)
    {
        m_Map.ForEach([&](const auto& field) {
            if (field.m_Position > 0)
                Bind(static_cast<int>(field.m_Position) + 1, model.*field.m_Member);
        });
        if (sqlite3_step(m_Statement) != SQLITE_DONE)
            throw std::runtime_error("a plain insert failed");
        sqlite3_reset(m_Statement);
    }

private:
    void Bind(int place, std::int64_t value) { sqlite3_bind_int64(m_Statement, place, value); }
    void Bind(int place, double value) { sqlite3_bind_double(m_Statement, place, value); }
    void Bind(int place, std::int32_t value) { sqlite3_bind_int(m_Statement, place, value); }
    void Bind(int place, const std::string& value)
    {
        if (value == DatabaseORM::NULL_TEXT)
            sqlite3_bind_null(m_Statement, place);
        else
            sqlite3_bind_text(m_Statement, place, value.c_str(), static_cast<int>(value.size()),
                              SQLITE_STATIC);
    }

    const RaidDataModels::dbModelFieldsMap<Model>& m_Map;
    sqlite3_stmt* m_Statement = nullptr;
};

double startSeconds(CRows& rows)
{
    const CDatabaseFile database;
    TestSupport::CPluginUnderTest plugin;
    std::vector<PI::CAdapterID> adapterIDs;
    const double seconds = secondsOf([&] {
        if (plugin.Initialize(adapterIDs) != 0)
            throw std::runtime_error("the plug-in does not start");
    });
    const auto onThisHost = [](auto member) {
        return DatabaseORM::condition_t(member, RaidDataModels::LOCAL_HOST);
    };
    rows.m_Plugins =
        DatabaseORM::select(database.Storage(), DatabaseORM::condition_t(&Plugin::m_Name, "NVMe-Plugin"));
    rows.m_Adapters = DatabaseORM::select(database.Storage(), onThisHost(&Adapter::m_HostName));
    rows.m_Drives = DatabaseORM::select(database.Storage(), onThisHost(&PD::m_HostName));
    return seconds;
}

double plainSeconds(const CRows& rows)
{
    const CDatabaseFile database;
    sqlite3* connection = nullptr;
    if (sqlite3_open(database.File().string().c_str(), &connection) != SQLITE_OK)
        throw std::runtime_error("the database does not open");
    sqlite3_exec(connection, "PRAGMA synchronous = NORMAL; PRAGMA recursive_triggers = ON", nullptr, nullptr,
                 nullptr);
    const double seconds = secondsOf([&] {
        CPlainInsert<Plugin> plainPlugin(connection, database.Storage());
        CPlainInsert<Adapter> plainAdapter(connection, database.Storage());
        CPlainInsert<PD> plainDrive(connection, database.Storage());
        for (const Plugin& plugin : rows.m_Plugins)
            plainPlugin.Run(plugin);
        for (const Adapter& adapter : rows.m_Adapters) {
            plainAdapter.Run(adapter);
            for (const PD& drive : rows.m_Drives)
                plainDrive.Run(drive);
        }
    });
    sqlite3_close(connection);
    return seconds;
}

void start(benchmark::State& state)
{
    const auto count = static_cast<std::uint32_t>(state.range(0));
    TestSupport::CFakeDrives drives;
    for (std::uint32_t number = 0; number < count; ++number)
        drives.Add(TestSupport::CFakeDrive(number));
    double starts = 0;
    double plain = 0;
    for (auto _ : state) {
        CRows rows;
        const double seconds = startSeconds(rows);
        if (rows.m_Adapters.size() != count || rows.m_Drives.size() != count)
            throw std::runtime_error("the start left other rows than it should");
        state.SetIterationTime(seconds);
        starts += seconds;
        plain += plainSeconds(rows);
    }
    const double inserts = 1 + static_cast<double>(count) * (count + 1);
    state.counters["inserts"] = inserts;
    state.counters["us/insert"] = starts / static_cast<double>(state.iterations()) / inserts * 1e6;
    state.counters["ratio"] = starts / plain;
}

void registerBenchmark(int count, int iterations)
{
    benchmark::RegisterBenchmark("start", start)
        ->Arg(count)
        ->Iterations(iterations)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char** argv)
{
    // The number of iterations is fixed, because the files that each one makes cost far more than what is
    // measured.
    registerBenchmark(1, 50);
    registerBenchmark(8, 20);
    registerBenchmark(64, 3);
    registerBenchmark(256, 1);
    return Benchmarks::run(argc, argv);
}
