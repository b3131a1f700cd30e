#pragma once

#include "Base/Moment.h"
#include "Plugins/Watched.h"
#include "Service/Board.h"
#include "Service/Teller.h"

#include <TLX/Event.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace Host::Service {

/** What a watcher needs. Everything must live as long as the watcher. */
struct WatcherParts
{
    WatchPlan m_Plan;
    Board& m_Board;
    Teller& m_Teller;
    std::function<void()> m_OnNews; ///< called after a new snapshot or a new entry; must not wait
};

/**
 * Watches the drives and shows on the board what it sees. All requests to plug-ins are sent by the thread
 * that calls `run`.
 */
class Watcher
{
public:
    /** Throws `std::runtime_error` when the system gives no event. */
    explicit Watcher(WatcherParts parts);

    /**
     * Watches until `end` is called. Nothing that a drive or a plug-in does ends it earlier. A machine
     * without drives is watched, too.
     */
    void run();

    /** Makes `run` return, unless a plug-in does not answer. Safe from any thread. */
    void end();

private:
    std::unique_ptr<Watched> awaitDrives();
    std::unique_ptr<Watched> begin();
    void watch(Watched& watched);
    void stop(Watched& watched);
    void look(Watched& watched);
    void lookWithoutDrives();
    void publish(const std::shared_ptr<const Cli::Snapshot>& snapshot, const Moment& moment,
                 const DriveRound& round);
    void fulfilWishes(Watched& watched);
    void noteTrouble(const std::string& trouble);
    std::uint64_t pause() const;

    WatcherParts m_Parts;
    TLX::Threading::CEvent m_Ended;
    std::string m_Trouble;
    std::uint64_t m_TimedRound = 0; ///< the last round whose duration was counted
};

} // namespace Host::Service
