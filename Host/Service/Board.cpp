#include "Service/Board.h"

#include "Base/Platform.h"
#include "Base/Time.h"
#include "Drives/DriveRounds.h"

#include <TLX/Clock.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace Host::Service {

Board::Board(std::filesystem::path journal, bool simulated)
    : m_Journal(std::make_unique<Journal::Reader>(std::move(journal))),
      m_Snapshot(std::make_shared<Cli::Snapshot>(ObjectStore({}), 0, TLX::Misc::now()))
{
    if (m_Wished.Init(false, false) != TLX::Threading::WaitResult::Taken)
        throw std::runtime_error("The system has no event left for the service.");
    m_Figures.m_Started = TLX::Misc::now();
    m_Figures.m_Simulated = simulated;
}

std::shared_ptr<const Cli::Snapshot> Board::snapshot() const
{
    const std::scoped_lock guard(m_Lock);
    return m_Snapshot;
}

Cli::ServiceFigures Board::figures() const
{
    const Platform::ProcessFigures process = Platform::processFigures();
    const std::scoped_lock guard(m_Lock);
    Cli::ServiceFigures figures = presentFigures();
    if (m_Durations)
        figures.m_Requests = m_Durations();
    figures.m_ProcessorSeconds = process.m_ProcessorSeconds;
    figures.m_ResidentBytes = process.m_ResidentBytes;
    figures.m_OpenDescriptors = process.m_OpenDescriptors;
    return figures;
}

Cli::ServiceFigures Board::counted() const
{
    const std::scoped_lock guard(m_Lock);
    return presentFigures();
}

/** Called with m_Lock held. */
Cli::ServiceFigures Board::presentFigures() const
{
    constexpr std::uint64_t missedRounds = 3;
    constexpr std::uint64_t longestRound = 2 * ROUND_DEADLINE;
    Cli::ServiceFigures figures = m_Figures;
    const std::uint64_t patience = missedRounds * figures.m_PollInterval + longestRound;
    if (figures.m_Trouble.empty() && figures.m_PollInterval > 0 &&
        TLX::Misc::monotonic() - m_Shown > patience)
        figures.m_Trouble = "no round of the drives has ended for more than " +
                            std::to_string(patience / MILLISECONDS_A_SECOND) + " seconds";
    return figures;
}

std::vector<Journal::NumberedEntry> Board::journal(std::uint64_t after, std::size_t limit) const
{
    return m_Journal->read(after, limit);
}

void Board::set(const std::string& object, const std::string& property, const std::string& value,
                Web::WhenSet done)
{
    {
        const std::scoped_lock guard(m_Lock);
        m_Wishes.push_back({object, property, value, std::move(done)});
    }
    m_Wished.Set();
}

void Board::show(std::shared_ptr<const Cli::Snapshot> snapshot)
{
    // The former snapshot is released without the lock, because that may take time.
    const std::scoped_lock guard(m_Lock);
    m_Snapshot.swap(snapshot);
    m_Shown = TLX::Misc::monotonic();
}

void Board::count(const std::function<void(Cli::ServiceFigures&)>& change)
{
    const std::scoped_lock guard(m_Lock);
    change(m_Figures);
}

void Board::timeRequests(std::function<Cli::Histogram()> durations)
{
    const std::scoped_lock guard(m_Lock);
    m_Durations = std::move(durations);
}

std::deque<Wish> Board::takeWishes()
{
    const std::scoped_lock guard(m_Lock);
    return std::exchange(m_Wishes, {});
}

void Board::refuseWishes(const Failure& reason)
{
    for (const Wish& wish : takeWishes())
        wish.m_Done(nullptr, std::make_exception_ptr(reason));
}

} // namespace Host::Service
