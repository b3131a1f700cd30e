#pragma once

#include "Support/FakeDrives.h"
#include "Support/PluginUnderTest.h"
#include "Support/TemporaryFolder.h"
#include "Support/TraceCapture.h"
#include "Support/VirtualClock.h"

#include <PI/ConfigFile.h>
#include <PI/ErrorCode.h>
#include <TLX/WaitResult.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace TestSupport {

/** An initialised event that stays set. */
class CGate : public TLX::Threading::CEvent
{
public:
    CGate() { EXPECT_EQ(Init(false, true), TLX::Threading::WaitResult::Taken); }

    void Pass() { EXPECT_EQ(Wait(), TLX::Threading::WaitResult::Taken); }
};

/** A plug-in over scripted drives. Its worker runs on a clock that the test moves. */
class CWorkerFixture : public testing::Test
{
protected:
    static constexpr std::uint64_t FIRST_WAIT = 100;
    static constexpr std::uint64_t INTERVAL = 30'000;

    CWorkerFixture()
    {
        PI::CConfigFile::SetFolder(m_Folder.Path().string());
        m_Api.m_HostContext = reinterpret_cast<std::uintptr_t>(this);
        m_Api.m_HostCallback = [](std::uintptr_t context, IPLUGINAPI* plugin) {
            auto& self = *reinterpret_cast<CWorkerFixture*>(context);
            EXPECT_EQ(plugin, &self.m_Api);
            ++self.m_Calls;
            if (self.m_OnCall)
                self.m_OnCall();
        };
    }

    ~CWorkerFixture() override
    {
        if (m_Api.m_WorkerThread)
            Stop();
    }

    /** Sends requests 1 and 2 with the adapter numbers 1, 2, ... Returns when the worker waits. */
    void Start()
    {
        Initialize();
        StartWorker();
        EXPECT_EQ(m_Clock.AwaitWait(++m_Waits), FIRST_WAIT);
    }

    void Initialize()
    {
        PI::CRequestData data = std::vector<PI::CAdapterID>();
        testing::internal::CaptureStdout();
        const std::uint32_t result = m_Api.Request(PI::REQUEST_INITIALIZE, 0, data);
        testing::internal::GetCapturedStdout();
        ASSERT_EQ(result, PI::ERR_SUCCESS);
        m_Identities = std::get<std::vector<PI::CAdapterID>>(data);
        std::uint32_t number = 0;
        for (PI::CAdapterID& identity : m_Identities)
            identity.m_AdapterNumber = ++number;
    }

    std::uint32_t StartWorker()
    {
        PI::CRequestData data = m_Identities;
        return m_Api.Request(PI::REQUEST_SET_ADAPTER_IDS, 0, data);
    }

    /** Sends request 3. Its first pause lasts until the worker has ended. */
    void Stop()
    {
        m_Clock.OnSleep(
            [this] { EXPECT_EQ(m_Api.m_WorkerThread->Wait(), TLX::Threading::WaitResult::Taken); });
        PI::CRequestData nothing;
        EXPECT_EQ(m_Api.Request(PI::REQUEST_DEINITIALIZE, 0, nothing), PI::ERR_SUCCESS);
    }

    /** Waits until the worker waits again. Returns how long that wait will take. */
    std::uint64_t AwaitWorker() { return m_Clock.AwaitWait(++m_Waits); }

    /** Forces a scan and waits for its end. */
    void Force()
    {
        m_Api.m_ForceWorker.Set();
        EXPECT_EQ(AwaitWorker(), m_Api.m_PollInterval * std::uint64_t{1000});
    }

    /** Runs the first timed scan. After it the names of the adapters no longer change. */
    void Settle()
    {
        m_Clock.Advance(FIRST_WAIT);
        EXPECT_EQ(AwaitWorker(), INTERVAL);
        m_Calls = 0;
    }

    /** Operation 50002: returns the identifiers of the pending events, in order. */
    std::vector<std::uint32_t> CollectEvents()
    {
        PI::COperation operation(
            PI::COperationTemplate{PI::OPERATION_GET_EVENTS, 6, 1, 1, 1, false, 0, 1, 1});
        PI::CRequestData data = operation;
        EXPECT_EQ(m_Api.Request(PI::REQUEST_EXECUTE_OPERATION, m_Api.m_Plugin.m_ID, data), PI::ERR_SUCCESS);
        std::vector<std::uint32_t> ids;
        for (const PI::CEvent& event : std::get<PI::COperation>(data).Events())
            ids.push_back(event.m_Id);
        return ids;
    }

    /** Holds the worker at its next query of the first drive's health log. */
    void HoldWorkerInAQuery(CGate& reached, CGate& go)
    {
        m_Drives.OnQuery([&](const std::string& query) {
            if (query == "health /dev/nvme0n1") {
                reached.Set();
                go.Pass();
            }
        });
        m_Api.m_ForceWorker.Set();
        reached.Pass();
    }

    /** Sets what each query does from now on; replaces the former action. */
    void CountEnumerations()
    {
        m_Drives.OnQuery([this](const std::string& query) {
            if (query == "enumerate")
                ++m_Enumerations;
        });
    }

    CTemporaryFolder m_Folder;
    CVirtualClock m_Clock;
    CFakeDrives m_Drives;
    std::atomic<int> m_Enumerations = 0;
    std::atomic<int> m_Calls = 0;   ///< how often the worker called the host
    std::function<void()> m_OnCall; ///< set before the worker starts
    std::vector<PI::CAdapterID> m_Identities;
    std::size_t m_Waits = 0; ///< the worker's waits that the test has seen
    CPluginUnderTest m_Api;
};

/** The lines of the worker and of its update, as "level text". */
inline std::vector<std::string> workersLines(const CTraceCapture& capture)
{
    static const std::vector<std::string> functions = {"NAMESPACE_Ostrel::IPLUGINAPI_IMPL::Worker",
                                                       "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::UpdateSystem"};
    std::vector<std::string> lines;
    for (const CCapturedLine& line : capture.Lines()) {
        if (std::find(functions.begin(), functions.end(), line.m_Function) != functions.end())
            lines.push_back(std::to_string(line.m_Level) + ' ' + line.m_Text);
    }
    return lines;
}

} // namespace TestSupport
