#pragma once

#include "Base/Sqlite.h"
#include "Base/Warn.h"
#include "Journal/Journal.h"
#include "Journal/State.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Host::Journal {

/** The service's file in its data folder. */
std::filesystem::path serviceFile(const std::filesystem::path& folder);

/**
 * The service's journal in a file: its entries, and the state from which the next look goes on. Both are
 * always of the same look, also after the process or the machine stopped at any moment. One process at a time
 * may keep it, and one thread at a time may use it.
 */
class Store
{
public:
    /**
     * Opens the file or creates it. A damaged file is renamed, `warn` is told, and a new journal begins.
     * Throws `Failure` when the file cannot be used now, or when a newer release wrote it. Nothing is changed
     * then.
     */
    Store(std::filesystem::path file, Warn warn);

    /** From which the next look goes on. */
    const State& state() const { return m_State; }

    /**
     * Keeps the entries of a look and its state. Throws `Failure` when it cannot. Then none of it is kept and
     * `state()` is as before, so the next look finds the same news again. A file that turned out to be
     * damaged, or that is not there any more, is replaced by a new one at the next call.
     */
    void commit(const Outcome& outcome);

    /** The number of the last entry; 0: there is none. */
    std::uint64_t lastNumber() const { return m_LastNumber; }

    /** How many entries the journal has, by the word of their kind. */
    const std::map<std::string, std::uint64_t>& counts() const { return m_Counts; }

    /** Tells this journal from every other one, also from its successor after it was damaged. */
    const std::string& identity() const { return m_Identity; }

private:
    /** The rows of the state, by part and place. Only those that changed are written. */
    using Rows = std::map<std::pair<std::uint64_t, std::uint64_t>, std::string>;

    void open();
    void load();
    void setAside(const std::string& reason) const;
    void write(const std::vector<Entry>& entries, const Rows& rows);
    Rows rowsOf(const State& state) const;
    std::string textOfDrive(const State& state, std::size_t place) const;
    static State stateOf(const Rows& rows);

    const std::filesystem::path m_File;
    const Warn m_Warn;
    std::optional<Sqlite::Connection> m_Connection; ///< none after the file turned out not to be usable
    State m_State;
    Rows m_Rows;                   ///< those that the file has
    bool m_RowsAreOfState = false; ///< whether they are also those of `m_State`
    std::uint64_t m_LastNumber = 0;
    std::map<std::string, std::uint64_t> m_Counts;
    std::string m_Identity;
};

} // namespace Host::Journal
