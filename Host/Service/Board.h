#pragma once

#include "Base/Failure.h"
#include "Facts/ServiceFigures.h"
#include "Facts/Snapshot.h"
#include "Journal/Reader.h"
#include "Web/ServiceView.h"

#include <TLX/Event.h>

#include <deque>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Host::Service {

/** Somebody wants a property of the plug-in to be set. */
struct Wish
{
    std::string m_Object;
    std::string m_Property;
    std::string m_Value;
    Web::WhenSet m_Done;
};

/**
 * What the service knows, between the thread that finds it out and the threads that show it. No function
 * waits for a drive, a plug-in or the disk, but for `journal`. Safe from any thread.
 */
class Board : public Web::IServiceView
{
public:
    /** `journal` is the file of the service's journal. Throws `std::runtime_error`. */
    Board(std::filesystem::path journal, bool simulated);

    std::shared_ptr<const Cli::Snapshot> snapshot() const override;
    Cli::ServiceFigures figures() const override;
    std::vector<Journal::NumberedEntry> journal(std::uint64_t after, std::size_t limit) const override;
    void set(const std::string& object, const std::string& property, const std::string& value,
             Web::WhenSet done) override;

    /** Lets go of the journal's file until it is read again. */
    void closeJournal() { m_Journal->close(); }

    /** Shows this from now on. */
    void show(std::shared_ptr<const Cli::Snapshot> snapshot);

    /**
     * The figures that were counted, and trouble when no round has ended for a long time. Those of the
     * process and of requests, which cost more, are left out.
     */
    Cli::ServiceFigures counted() const;

    /** Changes figures. `change` must not wait. */
    void count(const std::function<void(Cli::ServiceFigures&)>& change);

    /** From now on `figures` has the durations that this function returns. Empty: none. */
    void timeRequests(std::function<Cli::Histogram()> durations);

    /** An auto-reset event that is signalled after each new wish. */
    TLX::Threading::CEvent& wished() { return m_Wished; }

    /** The wishes since the last call, in order. */
    std::deque<Wish> takeWishes();

    /** Tells everybody whose wish was not taken why it is not fulfilled. */
    void refuseWishes(const Failure& reason);

private:
    Cli::ServiceFigures presentFigures() const;

    const std::unique_ptr<Journal::Reader> m_Journal;
    TLX::Threading::CEvent m_Wished;
    mutable std::mutex m_Lock;
    std::shared_ptr<const Cli::Snapshot> m_Snapshot;
    std::uint64_t m_Shown = 0; ///< when, in milliseconds of `TLX::Misc::monotonic`
    Cli::ServiceFigures m_Figures;
    std::function<Cli::Histogram()> m_Durations;
    std::deque<Wish> m_Wishes;
};

} // namespace Host::Service
