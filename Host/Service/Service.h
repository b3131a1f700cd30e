#pragma once

#include "Base/Platform.h"
#include "Base/ServiceManager.h"
#include "Base/Warn.h"
#include "Plugins/Watched.h"
#include "Service/Board.h"
#include "Service/Settings.h"
#include "Service/Teller.h"
#include "Service/Watcher.h"
#include "Web/Routes.h"
#include "Web/Server.h"

#include <TLX/Event.h>
#include <TLX/Thread.h>

#include <exception>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

namespace Host::Service {

/** What the service works on. */
struct ServicePlan
{
    WatchPlan m_Watch; ///< its folder also has the journal
    bool m_Simulated = false;
    /** Need not exist if it `m_MayBeMissing`. */
    std::filesystem::path m_SettingsFile;
    bool m_MayBeMissing = true;
    std::optional<Endpoint> m_Listen; ///< in place of the one in the settings
    Web::ShowText m_ShowText;         ///< safe from any thread
    Warn m_Announce;                  ///< gets a line that is no warning; safe from any thread
    /** Ends the process at once. Called when a plug-in does not let the service end in time. */
    std::function<void()> m_GiveUp;
};

/**
 * Watches the drives of this machine, keeps the journal and answers requests. The thread that calls `run`
 * waits for signals, a second one sends every request to the plug-ins, and a third one answers over HTTP. So
 * neither a drive nor a plug-in delays an answer, a signal or a sign of life.
 */
class Service
{
public:
    /** Opens the journal and the sockets, and says where it listens. Throws `Failure`. */
    Service(ServicePlan plan, Platform::ServiceManager& manager);
    ~Service();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    /** Watches and answers until `termination` asks for the end. Throws when the service cannot go on. */
    void run(Platform::TerminationRequest& termination);

private:
    void watch();
    void onNews();
    void tellStatus(const Cli::ServiceFigures& figures);
    void reload();
    void end();
    Settings readSettings() const;
    Web::AccessSettings access() const;
    std::filesystem::path localSocket() const;

    const ServicePlan m_Plan;
    Platform::ServiceManager& m_Manager;
    Settings m_Settings;
    Board m_Board;
    Teller m_Teller;
    Watcher m_Watcher;
    Web::Server m_Server;
    std::mutex m_StatusLock;
    std::string m_Status;          ///< as the manager has it; guarded by m_StatusLock
    std::uint64_t m_LastEntry = 0; ///< of which the streams know; used by the watching thread
    std::exception_ptr m_Failure;  ///< why the watching thread ended; written before m_Ended is set
    TLX::Threading::CEvent m_Ended;
    std::optional<TLX::Threading::CThread> m_Thread;
};

} // namespace Host::Service
