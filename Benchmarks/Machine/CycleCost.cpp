/**
 * The cost of a worker's cycle in which nothing changed, on a machine whose clock advances one nanosecond for
 * each instruction. Runs the plug-in on this machine's drives as a host does and forces cycles. Writes the
 * instructions that the worker's thread executed in each cycle, and then those of the steps of one cycle.
 */
#include "Support/PluginUnderTest.h"

#include <Database/Database.h>
#include <PI/AdapterID.h>
#include <PI/ConfigFile.h>
#include <PI/LifeTimeData.h>
#include <TLXX/Diagnosis.h>
#include <TLXX/NvmeQuery.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include <pthread.h>
#include <time.h>

namespace {

constexpr int ROUNDS = 6;

using TestSupport::CPluginUnderTest;

std::int64_t nanoseconds(clockid_t clock)
{
    timespec time{};
    if (clock_gettime(clock, &time) != 0)
        throw std::runtime_error("the clock of a thread cannot be read");
    return time.tv_sec * std::int64_t{1'000'000'000} + time.tv_nsec;
}

/** The data of the host's callback: it reads the worker's clock and notes that something has changed. */
struct CNews
{
    std::atomic<clockid_t> m_WorkerClock = 0;
    std::atomic<int> m_Calls = 0;
};

void onNews(std::uintptr_t context, IPLUGINAPI* /*plugin*/)
{
    auto* const news = reinterpret_cast<CNews*>(context);
    clockid_t clock = 0;
    pthread_getcpuclockid(pthread_self(), &clock);
    news->m_WorkerClock = clock;
    ++news->m_Calls;
}

std::uint64_t cyclesOf(CPluginUnderTest& plugin)
{
    const TLX::Threading::CScopedGuard guard(plugin.m_DataLock);
    return plugin.m_Plugin.m_UpdateCount;
}

void awaitCycle(CPluginUnderTest& plugin, std::uint64_t former)
{
    while (cyclesOf(plugin) == former)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    // Then the worker has released its locks and waits again.
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

void forceCycle(CPluginUnderTest& plugin)
{
    const std::uint64_t former = cyclesOf(plugin);
    plugin.m_ForceWorker.Set();
    awaitCycle(plugin, former);
}

void start(CPluginUnderTest& plugin, CNews& news)
{
    std::vector<PI::CAdapterID> identities;
    if (plugin.Initialize(identities) != 0)
        throw std::runtime_error("the plug-in does not start");
    std::uint32_t number = 0;
    for (PI::CAdapterID& identity : identities)
        identity.m_AdapterNumber = ++number;
    plugin.m_HostContext = reinterpret_cast<std::uintptr_t>(&news);
    plugin.m_HostCallback = onNews;
    const std::uint64_t former = cyclesOf(plugin);
    plugin.SetAdapterIDs(identities);
    // The first cycle gives the adapters their names; the next one finds no change.
    awaitCycle(plugin, former);
    forceCycle(plugin);
    if (news.m_WorkerClock == 0)
        throw std::runtime_error("the worker did not call");
}

void writeCycles(CPluginUnderTest& plugin, CNews& news, std::ostream& cycles)
{
    const int calls = news.m_Calls;
    for (int round = 0; round < ROUNDS; ++round) {
        const std::int64_t before = nanoseconds(news.m_WorkerClock);
        forceCycle(plugin);
        cycles << nanoseconds(news.m_WorkerClock) - before << '\n';
    }
    if (news.m_Calls != calls)
        throw std::runtime_error("something changed in a cycle that was measured");
}

template<typename Step>
void writeStep(std::ostream& steps, const char* name, Step step)
{
    const std::int64_t before = nanoseconds(CLOCK_THREAD_CPUTIME_ID);
    step();
    steps << name << ' ' << nanoseconds(CLOCK_THREAD_CPUTIME_ID) - before << '\n';
}

void writeSteps(CPluginUnderTest& plugin, std::ostream& steps)
{
    const TLX::Threading::CScopedGuard guard(plugin.m_DataLock);
    std::vector<NAMESPACE_Ostrel::CNVMeAdapter> adapters;
    std::vector<NAMESPACE_Ostrel::CNVMePhysicalDrive> drives;
    writeStep(steps, "enumeration", [&] { plugin.m_NVMeDevices.scan(); });
    writeStep(steps, "queries", [&] {
        for (NAMESPACE_Ostrel::NVMeDevice& device : plugin.m_NVMeDevices) {
            const TLXX::CQuerySession session(device.deviceName);
            device.queryIdentifyController();
            device.queryIdentifyNamespace();
            device.querySmartHealthLog();
        }
    });
    writeStep(steps, "scan", [&] { plugin.ScanSystem(adapters, drives, false); });
    writeStep(steps, "comparison", [&] { (void)plugin.Compare(adapters, drives); });
    writeStep(steps, "update", [&] { plugin.UpdateSystem(adapters, drives); });
    writeStep(steps, "database", [&] { plugin.UpdateObjectInDatabase(plugin.m_Plugin); });
    // This one is no step of a cycle. The service takes it in every round.
    writeStep(steps, "controllers", [] { (void)TLXX::controllerStates(); });
}

void run(const std::filesystem::path& share, const std::filesystem::path& data, const char* cycles,
         const char* steps)
{
    PI::SetLifeTimeFolder(share);
    PI::CConfigFile::SetFolder(data.native());
    setDatabaseFile(data / "Ostrel.db");
    CPluginUnderTest plugin;
    CNews news;
    plugin.m_PollInterval = 255;
    start(plugin, news);
    std::ofstream cycleFile(cycles);
    writeCycles(plugin, news, cycleFile);
    std::ofstream stepFile(steps);
    writeSteps(plugin, stepFile);
    plugin.DeInitialize();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 5) {
        (void)std::fprintf(stderr, "usage: CycleCost SHARE-FOLDER DATA-FOLDER CYCLES-FILE STEPS-FILE\n");
        return 2;
    }
    try {
        run(argv[1], argv[2], argv[3], argv[4]);
    } catch (const std::exception& error) {
        (void)std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
