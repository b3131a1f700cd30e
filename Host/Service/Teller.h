#pragma once

#include "Base/Moment.h"
#include "Base/Warn.h"
#include "Facts/Snapshot.h"
#include "Journal/Journal.h"
#include "Journal/Store.h"
#include "Service/Board.h"

#include <filesystem>
#include <mutex>
#include <optional>

namespace Host::Service {

/**
 * Tells the journal that the service started and ended, and what each snapshot has changed. While the journal
 * cannot be written, the news wait here; while it cannot even be opened, nothing is compared. Safe from any
 * thread.
 */
class Teller
{
public:
    /** `board` must live as long as this object. The start of the service is now. */
    Teller(std::filesystem::path journal, Board& board, Warn warn);

    /** Tells that the service has started. Not earlier than it is sure to run. */
    void tellStart();

    /** Tells what has changed up to `snapshot`, which was made at `moment`. */
    void tell(const Cli::Snapshot& snapshot, const Moment& moment);

    /** Tells that the service ends, unless a thread is telling something. After that nothing more is told. */
    void tellEnd();

private:
    bool open();
    void add(Journal::Outcome outcome);
    void write();
    void showFailure(const std::string& failure);

    const std::filesystem::path m_File;
    Board& m_Board;
    const Warn m_Warn;
    const Moment m_Started;
    std::mutex m_Lock;
    std::optional<Journal::Store> m_Journal; ///< none: it could not be opened yet
    Journal::Outcome m_Unwritten; ///< the state of the last look, and the entries that are not kept yet
    bool m_Over = false;
};

} // namespace Host::Service
