#include "NvmeStatus.h"

#include <TLX/Clock.h>
#include <TLX/Event.h>
#include <TLX/Thread.h>
#include <TLX/WaitInterval.h>
#include <TLX/Waiter.h>
#include <TLXX/ThreadedSource.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <deque>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <type_traits>
#include <utility>

namespace TLXX {
namespace {

/** How long drives may wait for a thread before there are twice as many threads, in milliseconds. */
constexpr std::uint64_t PATIENCE = 5;

/** Calls `query` with a block. Returns its status; `bytes` has the block if that is 0. */
template<typename Block, typename Query>
std::uint32_t fetch(std::vector<std::uint8_t>& bytes, Query query)
{
    static_assert(std::is_trivially_copyable_v<Block>);
    Block block{};
    const std::uint32_t status = query(block);
    if (status == STATUS_SUCCESS) {
        bytes.resize(sizeof block);
        std::memcpy(bytes.data(), &block, sizeof block);
    }
    return status;
}

std::uint32_t ask(IDeviceBackend& backend, const std::string& path, const CDriveCommand& command,
                  std::vector<std::uint8_t>& bytes)
{
    switch (command.m_Query) {
    case EQuery::IdentifyController:
        return fetch<NVME_IDENTIFY_CONTROLLER>(
            bytes, [&](auto& block) { return backend.IdentifyController(path, block); });
    case EQuery::IdentifyNamespace:
        return fetch<NVME_IDENTIFY_NAMESPACE>(
            bytes, [&](auto& block) { return backend.IdentifyNamespace(path, block); });
    case EQuery::SmartHealthLog:
        return fetch<NVME_SMART_HEALTH_INFORMATION_LOG>(
            bytes, [&](auto& block) { return backend.SmartHealthLog(path, block); });
    case EQuery::VendorLog:
        break;
    }
    return fetch<VendorLogPage>(
        bytes, [&](auto& block) { return backend.VendorLogPage(path, command.m_LogIdentifier, block); });
}

CDriveAnswer answerOf(IDeviceBackend& backend, const CDriveAddress& drive, const CDriveCommand& command)
{
    CDriveAnswer answer{drive, command, STATUS_SUCCESS, {}};
    try {
        answer.m_Status = ask(backend, drive.m_Path, command, answer.m_Block);
        // Asked after the answer, because only then it is known which drive was opened.
        if (answer.m_Status == STATUS_SUCCESS && backend.Instance(drive.m_Path) != drive.m_Instance) {
            answer.m_Status = STATUS_NO_DEVICE;
            answer.m_Block.clear();
        }
    } catch (const std::exception&) {
        answer.m_Status = STATUS_NO_RESOURCES;
        answer.m_Block.clear();
    }
    return answer;
}

} // namespace

/** Shared by the threads and the source. The last user destroys it; a thread that never returns keeps it. */
struct CThreadedSource::Shared
{
    struct CJob
    {
        CDriveAddress m_Drive;
        std::vector<CDriveCommand> m_Commands;
    };

    explicit Shared(std::shared_ptr<IDeviceBackend> backend) : m_Backend(std::move(backend)) {}

    /** The body of a thread. */
    void Work()
    {
        while (const std::optional<CJob> job = NextJob()) {
            const CQuerySession session(job->m_Drive.m_Path);
            for (const CDriveCommand& command : job->m_Commands)
                if (!m_Abandoned)
                    Deliver(answerOf(*m_Backend, job->m_Drive, command));
        }
    }

    /** None ends the thread. */
    std::optional<CJob> NextJob()
    {
        const std::scoped_lock guard(m_Lock);
        if (m_Jobs.empty()) {
            --m_Threads;
            return std::nullopt;
        }
        std::optional<CJob> job = std::move(m_Jobs.front());
        m_Jobs.pop_front();
        return job;
    }

    void Deliver(CDriveAnswer answer)
    {
        {
            const std::scoped_lock guard(m_Lock);
            m_Answers.push_back(std::move(answer));
        }
        m_News.Set();
    }

    /** Called with the lock held. Answers all that no thread will ever ask. */
    void Refuse()
    {
        for (const CJob& job : std::exchange(m_Jobs, {}))
            for (const CDriveCommand& command : job.m_Commands)
                m_Answers.push_back({job.m_Drive, command, STATUS_NO_RESOURCES, {}});
        m_News.Set();
    }

    const std::shared_ptr<IDeviceBackend> m_Backend;
    std::atomic<bool> m_Abandoned = false; ///< the source is gone
    TLX::Threading::CEvent m_News;         ///< an answer has come, or somebody has called `Wake`
    std::mutex m_Lock;
    // Guarded by m_Lock.
    std::deque<CJob> m_Jobs; ///< drives that no thread asks yet
    std::deque<CDriveAnswer> m_Answers;
    std::size_t m_Threads = 0; ///< those that have not ended
    bool m_Woken = false;
};

CThreadedSource::CThreadedSource(std::shared_ptr<IDeviceBackend> backend)
    : m_Shared(std::make_shared<Shared>(std::move(backend)))
{
    if (m_Shared->m_News.Init(false, false) != TLX::Threading::WaitResult::Taken)
        throw std::runtime_error("no event for the answers of drives");
}

CThreadedSource::~CThreadedSource()
{
    m_Shared->m_Abandoned = true;
    const std::scoped_lock guard(m_Shared->m_Lock);
    m_Shared->m_Jobs.clear();
}

void CThreadedSource::Submit(const CDriveAddress& drive, const std::vector<CDriveCommand>& commands)
{
    const std::scoped_lock guard(m_Shared->m_Lock);
    m_Shared->m_Jobs.push_back({drive, commands});
    if (m_Shared->m_Threads == 0)
        StartThreads(1);
}

std::optional<CDriveAnswer> CThreadedSource::Wait(std::uint64_t until)
{
    for (;;) {
        const std::uint64_t now = TLX::Misc::monotonic();
        std::uint64_t end = until;
        {
            const std::scoped_lock guard(m_Shared->m_Lock);
            if (!m_Shared->m_Answers.empty()) {
                std::optional<CDriveAnswer> answer = std::move(m_Shared->m_Answers.front());
                m_Shared->m_Answers.pop_front();
                return answer;
            }
            if (now >= until || std::exchange(m_Shared->m_Woken, false))
                return std::nullopt;
            if (!m_Shared->m_Jobs.empty() && now >= m_LastStart + PATIENCE)
                StartThreads(std::min(m_Shared->m_Threads, m_Shared->m_Jobs.size()));
            if (!m_Shared->m_Jobs.empty())
                end = std::min(until, m_LastStart + PATIENCE);
        }
        (void)TLX::Threading::CWaiter{&m_Shared->m_News}.Wait(TLX::Threading::CWaitInterval(end - now));
    }
}

void CThreadedSource::Wake()
{
    {
        const std::scoped_lock guard(m_Shared->m_Lock);
        m_Shared->m_Woken = true;
    }
    m_Shared->m_News.Set();
}

void CThreadedSource::StartThreads(std::size_t count)
{
    m_LastStart = TLX::Misc::monotonic();
    try {
        for (; count != 0; --count) {
            const TLX::Threading::CThread thread([shared = m_Shared] { shared->Work(); });
            ++m_Shared->m_Threads;
        }
    } catch (const std::exception&) {
        // Those that run ask the other drives, too, unless there are none.
        if (m_Shared->m_Threads == 0)
            m_Shared->Refuse();
    }
}

} // namespace TLXX
