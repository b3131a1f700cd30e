#include "WorkerFixture.h"

#include <PI/EventCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <map>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using TestSupport::CFakeDrive;

constexpr int HOST_THREADS = 8;
#if defined(__SANITIZE_THREAD__)
constexpr int ROUNDS = 1000; // half a minute of work for one processor
#else
constexpr int ROUNDS = 60;
#endif
constexpr int FEWEST_REQUESTS = 10;        ///< for each thread
constexpr std::uint32_t STABLE_DRIVES = 4; ///< never unplugged, so that every list has something in it
constexpr std::uint32_t SLOTS = 12;

/**
 * The key of an event: its time, its meaning, and the drive's slot. The time stands still within a round and
 * moves between rounds, and no slot changes twice in a round. So no two events have the same key.
 */
using EventKey = std::tuple<std::uint64_t, std::uint32_t, std::uint32_t>;

/** An adapter is named after its number, which is its slot plus one, or after its serial number. */
std::uint32_t slotNamed(const std::string& adapter)
{
    const std::string distinction = adapter.substr(adapter.rfind('(') + 1);
    if (distinction.starts_with("SN"))
        return static_cast<std::uint32_t>(std::stoul(distinction.substr(2)));
    return static_cast<std::uint32_t>(std::stoul(distinction)) - 1;
}

/**
 * Eight host threads send requests 2 and 4 to 10 at random. Meanwhile the worker runs one cycle after another
 * over a fleet that changes at random. The fleet's own record says which events must come.
 */
class WorkerStress : public TestSupport::CWorkerFixture
{
protected:
    WorkerStress()
    {
        for (std::uint32_t number = 0; number < STABLE_DRIVES; ++number)
            m_Drives.Add(CFakeDrive(number));
        m_Drives.OnQuery([this](const std::string& query) {
            if (query == "enumerate")
                m_Enumerated.Set();
        });
        EXPECT_EQ(m_Enumerated.Init(false, false), TLX::Threading::WaitResult::Taken);
    }

    /** Changes some drives and lets one whole cycle pass. */
    void Round()
    {
        m_Clock.Advance(1);
        std::set<std::uint32_t> touched;
        for (int change = 0; change < 3; ++change) {
            const auto slot = std::uniform_int_distribution<std::uint32_t>(0, SLOTS - 1)(m_Random);
            if (!touched.insert(slot).second)
                continue;
            if (slot < STABLE_DRIVES)
                ToggleWarning(slot);
            else
                Plug(slot);
        }
        m_Api.m_ForceWorker.Set();
        EXPECT_EQ(m_Enumerated.Wait(), TLX::Threading::WaitResult::Taken);
        // The worker took the lock before it enumerated and keeps it until its cycle ends.
        const TLX::Threading::CScopedGuard cycleIsOver(m_Api.m_DataLock);
    }

    void ToggleWarning(std::uint32_t slot)
    {
        const bool raised = m_Raised.erase(slot) == 0 && m_Raised.insert(slot).second;
        m_Drives.Change(slot, [raised](CFakeDrive& drive) { drive.Warning(raised ? 0x04 : 0); });
        Expect(raised ? PI::EVENT_RELIABILITY_DEGRADED : PI::EVENT_WARNINGS_CLEARED, slot);
    }

    /** Inserts a drive, each time a new one, or removes it. */
    void Plug(std::uint32_t slot)
    {
        const auto plugged = m_Plugged.find(slot);
        if (plugged == m_Plugged.end()) {
            m_Plugged.insert(slot);
            m_Drives.Add(
                CFakeDrive(slot).Serial("SN" + std::to_string(slot) + "-" + std::to_string(++m_Made)));
            Expect(PI::EVENT_ADAPTER_ADDED, slot);
        } else {
            m_Drives.Remove("/dev/nvme" + std::to_string(slot) + "n1");
            Expect(PI::EVENT_ADAPTER_REMOVED, slot);
            m_Plugged.erase(plugged);
        }
    }

    void Expect(std::uint32_t id, std::uint32_t slot) { m_Expected.emplace_back(m_Clock.Now(), id, slot); }

    /** Tells the host the numbers of the empty slots, so that every adapter has a name from the beginning. */
    void NumberTheEmptySlots()
    {
        for (std::uint32_t slot = STABLE_DRIVES; slot < SLOTS; ++slot) {
            const TLXX::CPciLocation location = *CFakeDrive(slot).m_Location;
            PI::CAdapterID& identity = m_Identities.emplace_back();
            identity.m_Segment = static_cast<std::uint32_t>(location.m_Segment);
            identity.m_Bus = static_cast<std::uint32_t>(location.m_Bus);
            identity.m_Device = static_cast<std::uint32_t>(location.m_Device);
            identity.m_Function = static_cast<std::uint32_t>(location.m_Function);
            identity.m_AdapterNumber = slot + 1;
        }
    }

    /** The body of one host thread. */
    void SendRequests(unsigned seed)
    {
        std::minstd_rand random(seed);
        std::vector<PI::CObject> objects = Topology();
        for (int request = 0; request < FEWEST_REQUESTS || !m_RoundsAreOver; ++request) {
            const PI::CObject& object = objects[random() % objects.size()];
            switch (random() % 8) {
            case 0:
                objects = Topology();
                break;
            case 1:
                CheckProperties(object);
                break;
            case 2:
                CheckProperty(object);
                break;
            case 3:
                SetInterval(object, static_cast<std::int32_t>(random() % 300));
                break;
            case 4:
                CheckOperations(object);
                break;
            case 5: {
                PI::CRequestData data = PI::COperation();
                KnownOrGone(m_Api.Request(PI::REQUEST_CHECK_OPERATION, object.m_ID, data));
                break;
            }
            case 6:
                Collect();
                break;
            default:
                EXPECT_EQ(StartWorker(), PI::ERR_SUCCESS);
            }
        }
    }

    /** Request 4. The answer must be consistent: every object has its parent, which lists it as its child. */
    std::vector<PI::CObject> Topology()
    {
        PI::CRequestData data = std::vector<PI::CObject>();
        EXPECT_EQ(m_Api.Request(PI::REQUEST_GET_TOPOLOGY, 0, data), PI::ERR_SUCCESS);
        std::vector<PI::CObject> objects = std::get<std::vector<PI::CObject>>(std::move(data));
        std::map<std::uint64_t, const PI::CObject*> byId;
        for (const PI::CObject& object : objects)
            EXPECT_TRUE(byId.emplace(object.m_ID, &object).second) << "twice the same object";
        std::size_t children = 0;
        for (const PI::CObject& object : objects) {
            children += object.m_Children.size();
            if (object.m_Type == PI::TYPE_PLUGIN)
                continue;
            EXPECT_EQ(object.m_Parents.size(), 1U);
            const auto parent = byId.find(object.m_Parents.at(0));
            if (parent == byId.end())
                ADD_FAILURE() << "an object without its parent";
            else
                EXPECT_THAT(parent->second->m_Children, testing::Contains(object.m_ID));
            CheckOwner(object.m_ID, object.m_Properties);
        }
        EXPECT_EQ(children, objects.size() - 1);
        return objects;
    }

    /** An identifier is never given to another object, so an object's identifying properties never change. */
    void CheckOwner(std::uint64_t id, const std::vector<PI::CProperty>& properties)
    {
        const auto serial = std::find_if(properties.begin(), properties.end(), [](const auto& property) {
            return property.Id() == PI::PROP_SERIAL_NUMBER;
        });
        ASSERT_NE(serial, properties.end());
        const auto text = std::get<std::string>(serial->GetValue());
        const std::scoped_lock guard(m_Lock);
        EXPECT_EQ(m_Serials.try_emplace(id, text).first->second, text);
    }

    void CheckProperties(const PI::CObject& object)
    {
        PI::CRequestData data = std::vector<PI::CProperty>();
        if (!KnownOrGone(m_Api.Request(PI::REQUEST_GET_PROPERTIES, object.m_ID, data)))
            EXPECT_TRUE(std::get<std::vector<PI::CProperty>>(data).empty());
        else if (object.m_Type != PI::TYPE_PLUGIN)
            CheckOwner(object.m_ID, std::get<std::vector<PI::CProperty>>(data));
    }

    void CheckProperty(const PI::CObject& object)
    {
        if (object.m_Type == PI::TYPE_PLUGIN)
            return;
        PI::CRequestData data = PI::CProperty(PI::PROP_SERIAL_NUMBER, false);
        if (KnownOrGone(m_Api.Request(PI::REQUEST_GET_PROPERTY, object.m_ID, data)))
            CheckOwner(object.m_ID, {std::get<PI::CProperty>(data)});
    }

    void CheckOperations(const PI::CObject& object)
    {
        PI::CRequestData data = std::vector<PI::COperation>();
        KnownOrGone(m_Api.Request(PI::REQUEST_GET_OPERATIONS, object.m_ID, data));
        EXPECT_EQ(std::get<std::vector<PI::COperation>>(data).size(),
                  object.m_Type == PI::TYPE_PLUGIN ? 1U : 0U);
    }

    void SetInterval(const PI::CObject& object, std::int32_t seconds)
    {
        PI::CProperty property(PI::PROP_POLL_INTERVAL, true);
        // Longer than the test, so that cycles come on demand only.
        property.SetValue(seconds, 100, 255, 1);
        PI::CRequestData data = property;
        const std::uint32_t result = m_Api.Request(PI::REQUEST_SET_PROPERTY, object.m_ID, data);
        if (object.m_Type == PI::TYPE_PLUGIN)
            EXPECT_EQ(result, PI::ERR_SUCCESS);
        else
            EXPECT_TRUE(result == PI::ERR_PROPERTY_NOT_SETTABLE || result == PI::ERR_OBJECT_NOT_FOUND);
    }

    void Collect()
    {
        PI::CRequestData data =
            PI::COperation(PI::COperationTemplate{PI::OPERATION_GET_EVENTS, 6, 1, 1, 1, false, 0, 1, 1});
        EXPECT_EQ(m_Api.Request(PI::REQUEST_EXECUTE_OPERATION, m_PluginId, data), PI::ERR_SUCCESS);
        const std::scoped_lock guard(m_Lock);
        for (const PI::CEvent& event : std::get<PI::COperation>(data).Events())
            m_Collected.emplace_back(event.m_Time, event.m_Id, slotNamed(event.SourceText()));
    }

    /** The object may be gone when its properties are requested. */
    static bool KnownOrGone(std::uint32_t result)
    {
        EXPECT_TRUE(result == PI::ERR_SUCCESS || result == PI::ERR_OBJECT_NOT_FOUND) << result;
        return result == PI::ERR_SUCCESS;
    }

    std::uint64_t m_PluginId = 0;
    TLX::Threading::CEvent m_Enumerated;

    // The fleet; used only by the test's own thread.
    std::minstd_rand m_Random{20260101};
    std::set<std::uint32_t> m_Raised;
    std::set<std::uint32_t> m_Plugged;
    int m_Made = 0;
    std::vector<EventKey> m_Expected;

    std::atomic<bool> m_RoundsAreOver = false;

    // The observations of the host threads.
    std::mutex m_Lock;
    std::vector<EventKey> m_Collected;
    std::map<std::uint64_t, std::string> m_Serials;
};

} // namespace

TEST_F(WorkerStress, EveryEventIsCollectedOnceAndEveryAnswerHoldsTogether)
{
    Initialize();
    NumberTheEmptySlots();
    m_PluginId = m_Api.m_Plugin.m_ID;
    EXPECT_TRUE(m_Enumerated.Wait(0) == TLX::Threading::WaitResult::Taken);
    ASSERT_EQ(StartWorker(), PI::ERR_SUCCESS);
    EXPECT_EQ(AwaitWorker(), FIRST_WAIT);
    m_Api.m_PollInterval = 255;
    Round();

    std::vector<std::thread> hosts;
    for (unsigned seed = 1; seed <= HOST_THREADS; ++seed)
        hosts.emplace_back([this, seed] { SendRequests(seed); });
    for (int round = 0; round < ROUNDS; ++round)
        Round();
    m_RoundsAreOver = true;
    for (std::thread& host : hosts)
        host.join();
    Collect();

    std::sort(m_Expected.begin(), m_Expected.end());
    std::sort(m_Collected.begin(), m_Collected.end());
    EXPECT_EQ(m_Collected, m_Expected);
    EXPECT_GT(m_Expected.size(), std::size_t{ROUNDS});
    EXPECT_GT(m_Serials.size(), 2 * STABLE_DRIVES);
    Stop();
}
