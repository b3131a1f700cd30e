#include "Documents/Json.h"
#include "Drives/ParallelDrives.h"
#include "Host/Built.h"
#include "Plugins/AdapterIdentities.h"
#include "Plugins/ObjectStore.h"
#include "Plugins/PluginLibrary.h"
#include "Support/FakeDrives.h"
#include "Support/VirtualClock.h"

#include <TLX/Clock.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstring>
#include <deque>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using TestSupport::CFakeDrive;

/** Asks at once, without threads, so that only the rounds differ from a plug-in that asks itself. */
class DirectSource : public TLXX::IDriveSource
{
public:
    explicit DirectSource(std::shared_ptr<TLXX::IDeviceBackend> drives) : m_Drives(std::move(drives)) {}

    void Submit(const TLXX::CDriveAddress& drive, const std::vector<TLXX::CDriveCommand>& commands) override
    {
        for (const TLXX::CDriveCommand& command : commands)
            m_Answers.push_back(answer(drive, command));
    }
    std::optional<TLXX::CDriveAnswer> Wait(std::uint64_t /*until*/) override
    {
        if (m_Answers.empty())
            return std::nullopt;
        std::optional<TLXX::CDriveAnswer> first = std::move(m_Answers.front());
        m_Answers.pop_front();
        return first;
    }
    void Wake() override {}

private:
    template<typename Block>
    static void put(TLXX::CDriveAnswer& answer, const Block& block)
    {
        answer.m_Block.resize(sizeof block);
        std::memcpy(answer.m_Block.data(), &block, sizeof block);
    }

    TLXX::CDriveAnswer answer(const TLXX::CDriveAddress& drive, const TLXX::CDriveCommand& command)
    {
        TLXX::CDriveAnswer answer{drive, command, 0, {}};
        TLXX::NVME_IDENTIFY_CONTROLLER controller{};
        TLXX::NVME_IDENTIFY_NAMESPACE nameSpace{};
        TLXX::NVME_SMART_HEALTH_INFORMATION_LOG health{};
        TLXX::VendorLogPage page{};
        switch (command.m_Query) {
        case TLXX::EQuery::IdentifyController:
            answer.m_Status = m_Drives->IdentifyController(drive.m_Path, controller);
            put(answer, controller);
            break;
        case TLXX::EQuery::IdentifyNamespace:
            answer.m_Status = m_Drives->IdentifyNamespace(drive.m_Path, nameSpace);
            put(answer, nameSpace);
            break;
        case TLXX::EQuery::SmartHealthLog:
            answer.m_Status = m_Drives->SmartHealthLog(drive.m_Path, health);
            put(answer, health);
            break;
        case TLXX::EQuery::VendorLog:
            answer.m_Status = m_Drives->VendorLogPage(drive.m_Path, command.m_LogIdentifier, page);
            put(answer, page);
            break;
        }
        return answer;
    }

    const std::shared_ptr<TLXX::IDeviceBackend> m_Drives;
    std::deque<TLXX::CDriveAnswer> m_Answers;
};

/** A fleet that changes at random, the same for the same seed. */
class RandomFleet
{
public:
    explicit RandomFleet(unsigned seed) : m_Random(seed)
    {
        for (unsigned count = 1 + number(6); count != 0; --count)
            add();
    }

    void change()
    {
        for (unsigned count = number(4); count != 0; --count) {
            const unsigned dice = number(6);
            if (dice == 0 || m_Names.empty())
                add();
            else if (dice == 1)
                remove(number(m_Names.size()));
            else
                m_Drives.Change(number(m_Names.size()), [&](CFakeDrive& drive) { change(drive, dice); });
        }
    }

private:
    unsigned number(std::size_t below) { return static_cast<unsigned>(m_Random() % below); }
    std::uint8_t byte() { return static_cast<std::uint8_t>(number(256)); }

    void add()
    {
        CFakeDrive drive(m_Next++);
        if (number(2) == 0) {
            drive.Vendor(0x8086).Model(number(8) == 0 ? "INTEL SSDPF21Q4" : "INTEL SSDPE2KX");
            if (number(3) != 0)
                drive.TemperatureLog(byte(), 20).LegacyLog(byte(), 100).MarketingLog("Fast Series");
        } else if (number(2) == 0) {
            drive.Vendor(0x1344).Model("MICRON_7300");
        }
        m_Names.push_back(drive.m_DeviceName);
        m_Drives.Add(drive);
    }

    void remove(unsigned index)
    {
        m_Drives.Remove(m_Names[index]);
        m_Names.erase(m_Names.begin() + index);
    }

    void change(CFakeDrive& drive, unsigned dice)
    {
        switch (dice) {
        case 2:
            drive.Warning(number(2) == 0 ? 0 : byte());
            break;
        case 3:
            drive.Kelvin(static_cast<std::uint16_t>(280 + number(80)));
            break;
        case 4:
            drive.m_Namespace.NSZE = 1024U * (1 + number(9)) * 2048;
            break;
        default:
            if (!drive.m_VendorLogs.empty())
                drive.TemperatureLog(byte(), 20).LegacyLog(byte(), static_cast<std::uint8_t>(number(101)));
        }
    }

    std::mt19937 m_Random;
    TestSupport::CFakeDrives m_Drives;
    std::vector<std::string> m_Names;
    unsigned m_Next = 1;
};

const std::filesystem::path TASKS = "/proc/self/task";

std::ptrdiff_t threads()
{
    return std::distance(std::filesystem::directory_iterator(TASKS), {});
}

/** The threads that there are without a worker. A sanitizer starts one of its own beside the first thread. */
std::ptrdiff_t idleThreads()
{
    pid_t first = 0;
    std::thread([&first] { first = ::gettid(); }).join();
    while (std::filesystem::exists(TASKS / std::to_string(first)))
        std::this_thread::yield();
    return threads();
}

std::string textOf(const PI::CEvent& event)
{
    return std::to_string(event.m_Id) + ' ' + std::to_string(event.m_Severity) + ' ' +
           std::to_string(event.m_Source) + ' ' + std::to_string(event.m_Time) + ' ' + event.SourceText() +
           '|' + event.PlaceHolder1() + '|' + event.PlaceHolder2();
}

/** Everything that the plug-in shows of a changing fleet and tells about it. */
class Life
{
public:
    Life(unsigned seed, bool parallel) : m_Fleet(seed), m_Machine(TLXX::deviceBackend())
    {
        if (parallel)
            TLXX::setDeviceBackend(
                std::make_shared<Host::ParallelDrives>(m_Machine, std::make_unique<DirectSource>(m_Machine)));
        // Request 3 sleeps until the worker has ended.
        m_Clock.OnSleep([this] {
            while (threads() > m_Threads)
                std::this_thread::yield();
        });
    }
    ~Life() { TLXX::setDeviceBackend(m_Machine); }
    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;

    std::vector<std::string> live(int cycles)
    {
        Host::PluginLibrary plugin(HostTest::Built::PLUGIN);
        std::vector<PI::CAdapterID> places = plugin.initialize();
        note(plugin);
        Host::AdapterIdentities identities;
        plugin.setAdapterIds(identities.assign(places));
        std::size_t waits = 0;
        std::uint64_t wait = m_Clock.AwaitWait(++waits);
        for (int cycle = 0; cycle < cycles; ++cycle) {
            m_Fleet.change();
            m_Clock.Advance(wait);
            wait = m_Clock.AwaitWait(++waits);
            const std::uint64_t own = note(plugin);
            for (const PI::CEvent& event : plugin.collectEvents(own))
                m_Lines.push_back(textOf(event));
        }
        EXPECT_EQ(plugin.deInitialize(), Host::Ending::ByItself);
        return m_Lines;
    }

private:
    /** Returns the identifier of the plug-in's own object. */
    std::uint64_t note(Host::PluginLibrary& plugin)
    {
        const Host::ObjectStore store(plugin.topology());
        std::uint64_t own = 0;
        for (const PI::CObject& object : store.objects()) {
            if (object.m_Type == PI::TYPE_PLUGIN)
                own = object.m_ID;
            m_Lines.push_back(Host::Cli::objectJson(store, object).dump());
        }
        return own;
    }

    TestSupport::CVirtualClock m_Clock;
    const std::ptrdiff_t m_Threads = idleThreads();
    RandomFleet m_Fleet;
    const std::shared_ptr<TLXX::IDeviceBackend> m_Machine;
    std::vector<std::string> m_Lines;
};

class ParallelPluginTest : public testing::TestWithParam<unsigned>
{};

TEST_P(ParallelPluginTest, ShowsAndTellsTheSameWhenEveryDriveAnswers)
{
    constexpr int cycles = 25;
    // The first life also gives the places their numbers, which the others find.
    (void)Life(GetParam(), false).live(cycles);
    const std::vector<std::string> alone = Life(GetParam(), false).live(cycles);
    const std::vector<std::string> parallel = Life(GetParam(), true).live(cycles);
    EXPECT_GT(alone.size(), 75U);
    EXPECT_EQ(alone, parallel);
}

INSTANTIATE_TEST_SUITE_P(Fleets, ParallelPluginTest, testing::Range(1U, 16U));

} // namespace
