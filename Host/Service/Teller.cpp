#include "Service/Teller.h"

#include "Base/Failure.h"
#include "Facts/Observation.h"
#include "Journal/ServiceLife.h"

#include <iterator>
#include <string>
#include <utility>

namespace Host::Service {
namespace {

/**
 * With that many entries unwritten, nothing more is compared until they are. What has changed then is told
 * later in one step.
 */
constexpr std::size_t MOST_UNWRITTEN = 10'000;

} // namespace

Teller::Teller(std::filesystem::path journal, Board& board, Warn warn)
    : m_File(std::move(journal)), m_Board(board), m_Warn(std::move(warn)), m_Started(presentMoment())
{}

void Teller::tellStart()
{
    const std::scoped_lock guard(m_Lock);
    if (open())
        write();
}

void Teller::tell(const Cli::Snapshot& snapshot, const Moment& moment)
{
    const std::scoped_lock guard(m_Lock);
    if (m_Over || !open())
        return;
    if (m_Unwritten.m_Entries.size() < MOST_UNWRITTEN)
        add(Journal::advance(m_Unwritten.m_State, Cli::observe(snapshot, moment)));
    write();
}

void Teller::tellEnd()
{
    const std::unique_lock guard(m_Lock, std::try_to_lock);
    if (!guard.owns_lock() || m_Over || !open())
        return;
    add(Journal::serviceEnded(m_Unwritten.m_State, presentMoment()));
    write();
    m_Over = true;
}

bool Teller::open()
{
    if (m_Journal)
        return true;
    try {
        m_Journal.emplace(m_File, m_Warn);
    } catch (const Failure& failure) {
        showFailure(failure.what());
        return false;
    }
    add(Journal::serviceStarted(m_Journal->state(), m_Started));
    return true;
}

void Teller::add(Journal::Outcome outcome)
{
    std::move(outcome.m_Entries.begin(), outcome.m_Entries.end(), std::back_inserter(m_Unwritten.m_Entries));
    m_Unwritten.m_State = std::move(outcome.m_State);
}

void Teller::write()
{
    try {
        m_Journal->commit(m_Unwritten);
        m_Unwritten.m_Entries.clear();
        showFailure({});
    } catch (const Failure& failure) {
        showFailure(failure.what());
    }
}

void Teller::showFailure(const std::string& failure)
{
    if (!failure.empty())
        m_Warn(failure);
    m_Board.count([&](Cli::ServiceFigures& figures) {
        figures.m_JournalFailure = failure;
        if (m_Journal && figures.m_LastEntry != m_Journal->lastNumber()) {
            figures.m_LastEntry = m_Journal->lastNumber();
            figures.m_Entries = m_Journal->counts();
        }
    });
}

} // namespace Host::Service
