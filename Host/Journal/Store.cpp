#include "Journal/Store.h"

#include "Base/Text.h"
#include "Journal/Schema.h"
#include "Journal/StateText.h"

#include <exception>
#include <stdexcept>
#include <system_error>

namespace Host::Journal {
namespace {

using Sqlite::Error;
using Sqlite::Trouble;

// The parts of a state in the table. Their numbers must not change.
constexpr std::uint64_t LOOK = 0;
constexpr std::uint64_t DRIVE = 1;
constexpr std::uint64_t GONE = 2;

constexpr char INSERT_ENTRY[] =
    "INSERT INTO Entry VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
constexpr char PUT_STATE[] = "INSERT OR REPLACE INTO State VALUES (?, ?, ?)";
constexpr char DROP_STATE[] = "DELETE FROM State WHERE Part = ? AND Place = ?";

/** Throws when a page of the file contradicts another one. */
void check(Sqlite::Connection& connection)
{
    Sqlite::Statement check = connection.prepare("PRAGMA quick_check(1)");
    if (!check.step() || check.text(0) != "ok")
        throw Error(Trouble::Damaged, "its pages contradict each other");
}

void insert(Sqlite::Statement& statement, std::uint64_t number, const Entry& entry)
{
    const Cli::DriveIdentity& drive = entry.m_Drive;
    statement
        .bind(number, kindName(entry.m_Kind), phaseName(entry.m_Phase),
              static_cast<std::uint64_t>(entry.m_Severity),
              entry.m_Event ? std::optional<std::uint64_t>(*entry.m_Event) : std::nullopt, entry.m_Key,
              drive.m_Name, drive.m_Device, drive.m_Vendor, drive.m_Model, drive.m_Serial, drive.m_Location,
              drive.m_PciAddress, static_cast<std::uint64_t>(drive.m_Place), entry.m_Text, entry.m_Begin,
              entry.m_End)
        .run();
}

std::filesystem::path freeName(const std::filesystem::path& file)
{
    std::filesystem::path name = std::filesystem::path(file) += ".damaged";
    for (unsigned number = 2; std::filesystem::exists(name); ++number)
        name = std::filesystem::path(file) += ".damaged" + std::to_string(number);
    return name;
}

} // namespace

std::filesystem::path serviceFile(const std::filesystem::path& folder)
{
    return folder / "Service.db";
}

Store::Store(std::filesystem::path file, Warn warn) : m_File(std::move(file)), m_Warn(std::move(warn))
{
    try {
        open();
    } catch (const Error& error) {
        throw failureOf(m_File, "opened", error);
    }
    m_State = stateOf(m_Rows);
    m_RowsAreOfState = true;
}

void Store::commit(const Outcome& outcome)
{
    Rows rows = rowsOf(outcome.m_State);
    try {
        if (m_Connection && m_Connection->hasMoved()) {
            m_Connection.reset();
            m_Warn("The journal " + printable(m_File.string()) + " was moved or deleted. A new one begins.");
        }
        if (!m_Connection)
            open();
        write(outcome.m_Entries, rows);
    } catch (const Error& error) {
        if (error.trouble() == Trouble::Damaged)
            m_Connection.reset();
        throw failureOf(m_File, "written", error);
    }
    m_Rows = std::move(rows);
    m_State = outcome.m_State;
    m_RowsAreOfState = true;
    m_LastNumber += outcome.m_Entries.size();
    for (const Entry& entry : outcome.m_Entries)
        ++m_Counts[std::string(kindName(entry.m_Kind))];
}

void Store::open()
{
    try {
        load();
    } catch (const Error& error) {
        if (error.trouble() != Trouble::Damaged)
            throw;
        setAside(error.what());
        load();
    }
}

void Store::load()
{
    Sqlite::Connection connection = Sqlite::Connection::toWrite(m_File);
    if (hasTables(connection))
        refuseForeign(connection, m_File);
    check(connection);
    connection.run("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL");
    migrate(connection);

    Rows rows;
    Sqlite::Statement state = connection.prepare("SELECT Part, Place, Text FROM State");
    while (state.step())
        rows[{state.number(0), state.number(1)}] = state.text(2);
    (void)stateOf(rows);
    std::map<std::string, std::uint64_t> counts;
    Sqlite::Statement kinds = connection.prepare("SELECT Kind, COUNT(*) FROM Entry GROUP BY Kind");
    while (kinds.step())
        counts[kinds.text(0)] = kinds.number(1);
    Sqlite::Statement journal = connection.prepare("SELECT Identity FROM Journal");
    m_Identity = journal.step() ? journal.text(0) : std::string();
    m_LastNumber = connection.number("SELECT MAX(Number) FROM Entry");
    m_Counts = std::move(counts);
    m_Rows = std::move(rows);
    m_RowsAreOfState = false;
    m_Connection.emplace(std::move(connection));
}

void Store::setAside(const std::string& reason) const
{
    try {
        const std::filesystem::path name = freeName(m_File);
        // SQLite drops a log whose file is missing, so the file must go first.
        std::filesystem::rename(m_File, name);
        std::error_code missing;
        std::filesystem::rename(std::filesystem::path(m_File) += "-wal",
                                std::filesystem::path(name) += "-wal", missing);
        m_Warn("The journal " + printable(m_File.string()) + " is damaged: " + reason + ". It is kept as " +
               printable(name.string()) + ", and a new one begins.");
    } catch (const std::filesystem::filesystem_error& error) {
        throw Error(Trouble::Other,
                    "it is damaged (" + reason + ") and cannot be renamed: " + error.code().message());
    }
}

void Store::write(const std::vector<Entry>& entries, const Rows& rows)
{
    Sqlite::Transaction transaction(*m_Connection);
    std::uint64_t number = m_LastNumber;
    for (const Entry& each : entries)
        insert(m_Connection->kept(INSERT_ENTRY), ++number, each);
    for (const auto& [place, text] : rows)
        if (const auto kept = m_Rows.find(place); kept == m_Rows.end() || kept->second != text)
            m_Connection->kept(PUT_STATE).bind(place.first, place.second, text).run();
    for (const auto& [place, text] : m_Rows)
        if (!rows.contains(place))
            m_Connection->kept(DROP_STATE).bind(place.first, place.second).run();
    transaction.commit();
}

std::string Store::textOfDrive(const State& state, std::size_t place) const
{
    const DriveState& drive = state.m_Drives[place];
    const std::uint64_t look = state.m_Time.value_or(0);
    const bool isKept = m_RowsAreOfState && place < m_State.m_Drives.size() &&
                        haveSameText(drive, look, m_State.m_Drives[place], m_State.m_Time.value_or(0));
    return isKept ? m_Rows.at({DRIVE, place}) : driveText(drive, look);
}

Store::Rows Store::rowsOf(const State& state) const
{
    Rows rows;
    rows[{LOOK, 0}] = lookText(state);
    for (std::size_t i = 0; i < state.m_Drives.size(); ++i)
        rows[{DRIVE, i}] = textOfDrive(state, i);
    for (std::size_t i = 0; i < state.m_Gone.size(); ++i)
        rows[{GONE, i}] = goneText(state.m_Gone[i]);
    return rows;
}

State Store::stateOf(const Rows& rows)
{
    State state;
    try {
        for (const auto& [place, text] : rows)
            if (place.first == LOOK)
                state = parseLook(text);
            else if (place == std::pair(DRIVE, std::uint64_t{state.m_Drives.size()}))
                state.m_Drives.push_back(parseDrive(text, state.m_Time.value_or(0)));
            else if (place.first == DRIVE)
                throw std::runtime_error("a drive is missing");
            else
                state.m_Gone.push_back(parseGone(text));
    } catch (const std::exception& error) {
        throw Error(Trouble::Damaged, std::string("its state is not legible (") + error.what() + ")");
    }
    return state;
}

} // namespace Host::Journal
