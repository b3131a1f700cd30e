#include "Drives/ParallelDrives.h"
#include "Support/SilentBackend.h"
#include "Support/VirtualClock.h"

#include <TLX/Clock.h>
#include <TLXX/ThreadedSource.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <iostream>
#include <map>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <thread>

namespace {

using Host::ParallelDrives;

/** Drives that hesitate, hang, fail, come and go as the test says. Safe from any thread. */
class MoodyDrives : public TestSupport::CSilentBackend
{
public:
    enum class Mood : std::uint8_t
    {
        Ready,
        Hesitating,
        Failing,
        Hanging,
    };

    void set(const std::string& path, Mood mood)
    {
        const std::scoped_lock guard(m_Lock);
        m_Moods[path] = mood;
        m_Changed.notify_all();
    }
    void remove(const std::string& path)
    {
        const std::scoped_lock guard(m_Lock);
        m_Moods.erase(path);
        m_Changed.notify_all();
    }
    void makeReady(const std::set<std::string>& paths)
    {
        const std::scoped_lock guard(m_Lock);
        m_Moods.clear();
        for (const std::string& path : paths)
            m_Moods[path] = Mood::Ready;
        m_Changed.notify_all();
    }
    bool wasAskedTwiceAtOnce() const { return m_AskedTwice; }

    std::vector<TLXX::CDeviceEntry> Enumerate(const TLXX::DeviceWalk&) override
    {
        const std::scoped_lock guard(m_Lock);
        std::vector<TLXX::CDeviceEntry> entries;
        for (const auto& [path, mood] : m_Moods)
            entries.push_back({path, "nvme"});
        return entries;
    }
    std::uint32_t IdentifyController(const std::string& path,
                                     TLXX::NVME_IDENTIFY_CONTROLLER& controller) override
    {
        controller.VID = 1;
        return answer(path);
    }
    std::uint32_t IdentifyNamespace(const std::string& path, TLXX::NVME_IDENTIFY_NAMESPACE&) override
    {
        return answer(path);
    }
    std::uint32_t SmartHealthLog(const std::string& path, TLXX::NVME_SMART_HEALTH_INFORMATION_LOG&) override
    {
        return answer(path);
    }
    std::uint32_t VendorLogPage(const std::string& path, std::uint8_t, TLXX::VendorLogPage&) override
    {
        return answer(path);
    }

private:
    std::uint32_t answer(const std::string& path)
    {
        std::unique_lock guard(m_Lock);
        if (!m_Asked.insert(path).second)
            m_AskedTwice = true;
        if (moodOf(path) == Mood::Hesitating) {
            guard.unlock();
            std::this_thread::yield();
            guard.lock();
        }
        m_Changed.wait(guard, [&] { return moodOf(path) != Mood::Hanging; });
        m_Asked.erase(path);
        m_Changed.notify_all();
        return moodOf(path) == Mood::Failing ? 5 : 0;
    }

    Mood moodOf(const std::string& path) const
    {
        const auto found = m_Moods.find(path);
        return found == m_Moods.end() ? Mood::Failing : found->second;
    }

    std::mutex m_Lock;
    std::condition_variable m_Changed;
    std::map<std::string, Mood> m_Moods;
    std::set<std::string> m_Asked;
    std::atomic<bool> m_AskedTwice = false;
};

void queryAll(ParallelDrives& drives, const std::string& path)
{
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    EXPECT_EQ(drives.IdentifyController(path, controller), 0U) << path << " is enumerated, so it is known";
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG health{};
    (void)drives.SmartHealthLog(path, health);
    TLXX::VendorLogPage page{};
    (void)drives.VendorLogPage(path, 0xC5, page);
}

TEST(ParallelThreadsTest, WhateverDrivesDoEveryRoundEnds)
{
    constexpr int drives = 8;
    constexpr int rounds = 60;
    TestSupport::CVirtualClock clock;
    const auto machine = std::make_shared<MoodyDrives>();
    ParallelDrives parallel(machine, std::make_unique<TLXX::CThreadedSource>(machine));

    std::atomic<bool> over = false;
    // Deadlines pass in no time.
    std::thread time([&] {
        while (!over) {
            clock.Advance(10);
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
    });
    std::thread reader([&] {
        std::uint64_t last = 0;
        while (!over) {
            const Host::DriveRound round = parallel.lastRound();
            EXPECT_GE(round.m_Number, last);
            last = round.m_Number;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });

    std::mt19937 random(7);
    std::set<std::string> all;
    for (int i = 0; i < drives; ++i)
        all.insert("drive " + std::to_string(i));
    for (int round = 0; round < rounds; ++round) {
        for (const std::string& path : all) {
            const auto dice = random() % 12;
            if (dice < 4)
                machine->set(path, static_cast<MoodyDrives::Mood>(dice));
            else if (dice == 4)
                machine->remove(path);
        }
        for (const TLXX::CDeviceEntry& entry : parallel.Enumerate({}))
            queryAll(parallel, entry.m_DeviceName);
    }

    // Late answers come in their own time. After the last of them a round has all drives.
    machine->makeReady(all);
    const auto answering = [&] {
        const std::vector<Host::DriveAnswer> answers = parallel.lastRound().m_Answers;
        return std::count_if(answers.begin(), answers.end(),
                             [](const Host::DriveAnswer& answer) { return answer.m_Answering; });
    };
    do
        (void)parallel.Enumerate({});
    while (answering() != drives);
    over = true;
    time.join();
    reader.join();
    EXPECT_GT(parallel.lastRound().m_Number, std::uint64_t{rounds});
    EXPECT_FALSE(machine->wasAskedTwiceAtOnce());
}

/** Drives that take real time for each command. */
class SlowDrives : public TestSupport::CSilentBackend
{
public:
    static constexpr int COUNT = 64;
    static constexpr std::chrono::milliseconds DELAY{20};

    std::vector<TLXX::CDeviceEntry> Enumerate(const TLXX::DeviceWalk&) override
    {
        std::vector<TLXX::CDeviceEntry> entries;
        for (int i = 0; i < COUNT; ++i)
            entries.push_back({"drive " + std::to_string(i), "nvme"});
        return entries;
    }
    std::uint32_t IdentifyController(const std::string&, TLXX::NVME_IDENTIFY_CONTROLLER&) override
    {
        return answer();
    }
    std::uint32_t IdentifyNamespace(const std::string&, TLXX::NVME_IDENTIFY_NAMESPACE&) override
    {
        return answer();
    }
    std::uint32_t SmartHealthLog(const std::string&, TLXX::NVME_SMART_HEALTH_INFORMATION_LOG&) override
    {
        return answer();
    }

private:
    static std::uint32_t answer()
    {
        std::this_thread::sleep_for(DELAY);
        return 0;
    }
};

TEST(ParallelThreadsTest, ARoundOfSlowDrivesTakesATenthOfReadingThemOneAfterAnother)
{
    constexpr int commands = 3;
    const auto machine = std::make_shared<SlowDrives>();
    ParallelDrives parallel(machine, std::make_unique<TLXX::CThreadedSource>(machine));
    const std::uint64_t begin = TLX::Misc::monotonic();
    EXPECT_EQ(parallel.Enumerate({}).size(), 64U);
    const auto taken = static_cast<double>(TLX::Misc::monotonic() - begin);
    const auto alone = static_cast<double>(SlowDrives::COUNT * commands * SlowDrives::DELAY.count());
    std::cout << "64 drives of 20 ms a command: " << taken << " ms, " << taken / alone
              << " of one after another\n";
    // The aim is a tenth. A busy machine may take ten times as long.
    EXPECT_LE(taken, alone);
}

} // namespace
