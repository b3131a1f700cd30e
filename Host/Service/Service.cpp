#include "Service/Service.h"

#include "Base/Failure.h"
#include "Base/Text.h"
#include "Facts/DriveCheck.h"
#include "Facts/ServiceVerdict.h"
#include "Journal/Store.h"
#include "Web/Sockets.h"

#include <TLX/Clock.h>
#include <TLX/WaitInterval.h>
#include <TLX/WaitResult.h>
#include <TLX/Waiter.h>

#include <limits>
#include <stdexcept>
#include <utility>

namespace Host::Service {
namespace {

/** How long the plug-ins may take to end, in milliseconds. */
constexpr std::uint32_t PATIENCE_AT_END = 1500;

Web::ServerSettings serverSettings(const Endpoint& listen, const std::filesystem::path& socket,
                                   Web::AccessSettings access)
{
    Web::ServerSettings settings;
    settings.m_Address = listen.m_Address;
    settings.m_Port = listen.m_Port;
    settings.m_HandedOver = Web::Sockets::handedOver();
    if (settings.m_HandedOver.empty())
        settings.m_LocalSocket = socket;
    settings.m_Access = std::move(access);
    return settings;
}

} // namespace

Service::Service(ServicePlan plan, Platform::ServiceManager& manager)
    : m_Plan(std::move(plan)),
      m_Manager(manager),
      m_Settings(readSettings()),
      m_Board(Journal::serviceFile(m_Plan.m_Watch.m_Data), m_Plan.m_Simulated),
      m_Teller(Journal::serviceFile(m_Plan.m_Watch.m_Data), m_Board, m_Plan.m_Watch.m_Warn),
      m_Watcher({m_Plan.m_Watch, m_Board, m_Teller, [this] { onNews(); }}),
      m_Server(serverSettings(m_Plan.m_Listen.value_or(m_Settings.m_Listen), localSocket(), access()),
               Web::routes(m_Board, m_Plan.m_ShowText))
{
    if (m_Ended.Init(false, true) != TLX::Threading::WaitResult::Taken)
        throw std::runtime_error("The system has no event left for the service.");
    m_Board.timeRequests([this] { return m_Server.durations(); });
}

Service::~Service()
{
    m_Server.stop();
    m_Watcher.end();
    if (m_Thread)
        (void)m_Thread->Wait();
    m_Board.refuseWishes(Failure(ExitCode::RequestFailed, "The service is ending."));
    m_Board.timeRequests({});
    // The journal's log goes into its file when its last connection is one that may write.
    m_Board.closeJournal();
}

void Service::watch()
{
    try {
        m_Watcher.run();
    } catch (...) {
        m_Failure = std::current_exception();
    }
    m_Ended.Set();
}

void Service::run(Platform::TerminationRequest& termination)
{
    constexpr std::uint32_t asked = 1;
    constexpr std::uint32_t reloads = 2;
    constexpr std::uint32_t ended = 3;
    TLX::Threading::CWaiter waiter{&termination.asked(), &termination.reload(), &m_Ended};
    m_Teller.tellStart();
    // Not earlier, because from here on a request to end is seen.
    m_Plan.m_Announce("Listening on " + m_Server.url());
    m_Thread.emplace([this] { watch(); });
    m_Manager.ready();
    // Twice as often as the manager wants it, so that a late one does not end the service.
    const std::optional<std::uint64_t> period = m_Manager.lifeSignPeriod();
    for (;;) {
        // The other thread sends it, so both must live. A plug-in that does not answer is no reason to
        // restart.
        if (period)
            m_Server.post([this] { m_Manager.alive(); });
        const std::uint32_t fired =
            period ? waiter.Wait(TLX::Threading::CWaitInterval(*period / 2)) : waiter.Wait();
        if (fired == asked)
            return end();
        if (fired == reloads)
            reload();
        else if (fired == ended && m_Failure)
            std::rethrow_exception(m_Failure);
        else if (fired == TLX::Threading::WaitResult::TimedOut)
            tellStatus(m_Board.counted()); // The watching thread cannot tell that it is stuck.
        else
            throw std::runtime_error("The service does not watch the drives any more.");
    }
}

void Service::end()
{
    m_Manager.stopping();
    m_Watcher.end();
    m_Server.stop();
    const bool ended = m_Ended.Wait(PATIENCE_AT_END) == TLX::Threading::WaitResult::Taken;
    m_Teller.tellEnd();
    if (ended)
        return;
    m_Plan.m_Watch.m_Warn("A plug-in did not end in time, so the program ends without it.");
    m_Plan.m_GiveUp();
}

void Service::onNews()
{
    const Cli::ServiceFigures figures = m_Board.counted();
    // Streams have nothing but the journal.
    if (figures.m_LastEntry != std::exchange(m_LastEntry, figures.m_LastEntry))
        m_Server.wake();
    tellStatus(figures);
}

void Service::tellStatus(const Cli::ServiceFigures& figures)
{
    const std::scoped_lock guard(m_StatusLock);
    const std::shared_ptr<const Cli::Snapshot> snapshot = m_Board.snapshot();
    std::string status =
        Cli::judgeService(Cli::checkDrives(*snapshot, TLX::Misc::now()), *snapshot, figures).m_Reason;
    if (status != m_Status)
        m_Manager.status(status);
    m_Status = std::move(status);
}

void Service::reload()
{
    m_Manager.reloading();
    try {
        const Settings former = std::exchange(m_Settings, readSettings());
        try {
            m_Server.change(access());
        } catch (const Failure&) {
            m_Settings = former;
            throw;
        }
        for (const std::string_view key : needRestart(former, m_Settings))
            m_Plan.m_Watch.m_Warn("The new value of \"" + std::string(key) +
                                  "\" has an effect after the next start.");
        m_Plan.m_Announce("The settings were read again.");
    } catch (const Failure& failure) {
        m_Plan.m_Watch.m_Warn(std::string(failure.what()) + " The service keeps its former settings.");
    }
    m_Manager.ready();
}

Settings Service::readSettings() const
{
    std::error_code error;
    const bool isMissing = !std::filesystem::exists(m_Plan.m_SettingsFile, error) && !error;
    return isMissing && m_Plan.m_MayBeMissing ? Settings()
                                              : Host::Service::readSettings(m_Plan.m_SettingsFile);
}

Web::AccessSettings Service::access() const
{
    return {m_Settings.m_TokenFile.empty() ? std::string() : readToken(m_Settings.m_TokenFile),
            m_Settings.m_HostNames};
}

std::filesystem::path Service::localSocket() const
{
    return m_Settings.m_Socket.value_or(usualSocket(m_Plan.m_Watch.m_Data));
}

} // namespace Host::Service
