/**
 * What the statement builder's inserts cost beside plain prepared statements that insert the same rows: those
 * of a start with so many controllers, where each adapter is followed by every drive. The last column is the
 * ratio.
 */
#include <Database/Database.h>
#include <DatabaseORM/Models.h>
#include <DatabaseORM/StatementBuilder.h>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <stdlib.h>

namespace {

using RaidDataModels::Adapter;
using RaidDataModels::PD;

/** A fresh database on disk. */
class CDatabaseFile
{
public:
    CDatabaseFile()
    {
        std::string folder = (std::filesystem::temp_directory_path() / "OstrelBenchmarkXXXXXX").string();
        if (mkdtemp(folder.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        m_Folder = folder;
        setDatabaseFile(File());
        m_Storage = getDatabasePointer();
        m_Storage->m_Access->query("SELECT 1");
    }

    ~CDatabaseFile()
    {
        m_Storage.reset();
        setDatabaseFile({});
        std::filesystem::remove_all(m_Folder);
    }

    CDatabaseFile(const CDatabaseFile&) = delete;
    CDatabaseFile& operator=(const CDatabaseFile&) = delete;

    std::filesystem::path File() const { return m_Folder / "Ostrel.db"; }
    const DatabaseORM::storage_t& Storage() const { return *m_Storage; }

private:
    std::filesystem::path m_Folder;
    std::shared_ptr<DatabaseORM::storage_t> m_Storage;
};

std::vector<Adapter> makeAdapters(int count)
{
    std::vector<Adapter> adapters;
    for (int number = 1; number <= count; ++number) {
        Adapter& adapter = adapters.emplace_back();
        adapter.m_HostName = "localhost";
        adapter.m_AdapterNumber = number;
        adapter.m_SerialNumber = "SERIAL" + std::to_string(number);
        adapter.m_Name = "NVMe Intel PCI Adapter (" + adapter.m_SerialNumber + ")";
        adapter.m_Model = "SSDPF2KX038TZ";
        adapter.m_Location = "PCI:Bus=" + std::to_string(number) + "&Device=0&Function=0";
        adapter.m_StatusReasons = "[]";
    }
    return adapters;
}

std::vector<PD> makeDrives(int count)
{
    std::vector<PD> drives;
    for (int number = 1; number <= count; ++number) {
        PD& drive = drives.emplace_back();
        drive.m_HostName = "localhost";
        drive.m_DriveKey = "SERIAL" + std::to_string(number);
        drive.m_SerialNumber = drive.m_DriveKey;
        drive.m_Name = "Intel SSDPF2KX038TZ";
        drive.m_Capacity = "3662830";
        drive.m_UsableCapacity = "3662830";
        drive.m_Temperature = "NULL";
        drive.m_Location = "PCI:Bus=" + std::to_string(number) + "&Device=0&Function=0&ID=0";
    }
    return drives;
}

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

template<class Work>
double secondsOf(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double builderSeconds(const std::vector<Adapter>& adapters, const std::vector<PD>& drives)
{
    const CDatabaseFile database;
    return secondsOf([&] {
        for (const Adapter& adapter : adapters) {
            DatabaseORM::insert(database.Storage(), adapter);
            for (const PD& drive : drives)
                DatabaseORM::insert(database.Storage(), drive);
        }
    });
}

double plainSeconds(const std::vector<Adapter>& adapters, const std::vector<PD>& drives)
{
    const CDatabaseFile database;
    sqlite3* connection = nullptr;
    if (sqlite3_open(database.File().string().c_str(), &connection) != SQLITE_OK)
        throw std::runtime_error("the database does not open");
    sqlite3_exec(connection, "PRAGMA synchronous = NORMAL; PRAGMA recursive_triggers = ON", nullptr, nullptr,
                 nullptr);
    const double seconds = secondsOf([&] {
        CPlainInsert<Adapter> plainAdapter(connection, database.Storage());
        CPlainInsert<PD> plainDrive(connection, database.Storage());
        for (const Adapter& adapter : adapters) {
            plainAdapter.Run(adapter);
            for (const PD& drive : drives)
                plainDrive.Run(drive);
        }
    });
    sqlite3_close(connection);
    return seconds;
}

void insertsOfAStart(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    const std::vector<Adapter> adapters = makeAdapters(count);
    const std::vector<PD> drives = makeDrives(count);
    double builder = 0;
    double plain = 0;
    for (auto _ : state) {
        const double seconds = builderSeconds(adapters, drives);
        state.SetIterationTime(seconds);
        builder += seconds;
        plain += plainSeconds(adapters, drives);
    }
    const double rows = static_cast<double>(count) * (count + 1);
    state.counters["rows"] = rows;
    state.counters["us/row"] = builder / static_cast<double>(state.iterations()) / rows * 1e6;
    state.counters["ratio"] = builder / plain;
}

void registerBenchmark(int count, int iterations)
{
    benchmark::RegisterBenchmark("insertsOfAStart", insertsOfAStart)
        ->Arg(count)
        ->Iterations(iterations)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char** argv)
{
    // The files that each iteration makes cost far more than what is measured: so their number is fixed.
    registerBenchmark(1, 50);
    registerBenchmark(8, 20);
    registerBenchmark(64, 3);
    registerBenchmark(256, 1);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
