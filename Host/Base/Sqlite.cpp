#include "Base/Sqlite.h"

#include <TLX/TrustedFile.h>

#include <sqlite3.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <new>
#include <system_error>

namespace Host::Sqlite {
namespace {

constexpr int PRIMARY_CODE = 0xFF;
constexpr int PATIENCE = 250; // milliseconds until a lock of another process counts as a failure

struct Reason
{
    int m_Code; ///< a primary code of SQLite
    Trouble m_Trouble;
    const char* m_Text; ///< null: SQLite's own
};

constexpr Reason REASONS[] = {
    {SQLITE_BUSY, Trouble::Locked, "another program has locked it"},
    {SQLITE_LOCKED, Trouble::Locked, "another program has locked it"},
    {SQLITE_PROTOCOL, Trouble::Locked, "another program has locked it"},
    {SQLITE_FULL, Trouble::Full, "the disk is full"},
    {SQLITE_CORRUPT, Trouble::Damaged, "it is damaged"},
    {SQLITE_NOTADB, Trouble::Damaged, "it is no database"},
    {SQLITE_READONLY, Trouble::Denied, "there is no permission to write to it"},
    {SQLITE_PERM, Trouble::Denied, "there is no permission to open it"},
    {SQLITE_AUTH, Trouble::Denied, "there is no permission to open it"},
};

/** The system's own words, when it has refused something. */
std::string systemReason(sqlite3* connection, int code)
{
    const bool hasNumber = code == SQLITE_IOERR || code == SQLITE_CANTOPEN;
    const int number = hasNumber ? sqlite3_system_errno(connection) : 0;
    return number != 0 ? std::system_category().message(number) : sqlite3_errmsg(connection);
}

bool isDenied(sqlite3* connection, int code)
{
    const std::error_code error(code == SQLITE_CANTOPEN ? sqlite3_system_errno(connection) : 0,
                                std::system_category());
    return error == std::errc::permission_denied || error == std::errc::operation_not_permitted;
}

[[noreturn]] void fail(sqlite3* connection)
{
    // SQLite returns no connection at all only when memory has run out.
    if (connection == nullptr)
        throw std::bad_alloc();
    const int extended = sqlite3_extended_errcode(connection);
    const int code = extended & PRIMARY_CODE;
    if (code == SQLITE_NOMEM)
        throw std::bad_alloc();
    // A page that the file's header promises is not there.
    if (extended == SQLITE_IOERR_SHORT_READ)
        throw Error(Trouble::Damaged, "it ends too early");
    const auto* const known = std::find_if(std::begin(REASONS), std::end(REASONS),
                                           [code](const Reason& reason) { return reason.m_Code == code; });
    if (known != std::end(REASONS))
        throw Error(known->m_Trouble, known->m_Text);
    throw Error(isDenied(connection, code) ? Trouble::Denied : Trouble::Other,
                systemReason(connection, code));
}

/** The path without links that `file` leads to, as SQLite must open it. */
std::filesystem::path targetOf(const std::filesystem::path& file)
{
    const auto target = TLX::Misc::trustedTarget(std::filesystem::absolute(file));
    if (!target)
        throw Error(Trouble::Denied, "it is a link that belongs to another user");
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::weakly_canonical(target->parent_path(), error);
    return error ? *target : folder / target->filename();
}

bool exists(const std::filesystem::path& file, const char* suffix)
{
    std::error_code error;
    return std::filesystem::exists(std::filesystem::path(file) += suffix, error);
}

std::string utf8(const std::filesystem::path& file)
{
    const std::u8string path = file.generic_u8string();
    return {path.begin(), path.end()};
}

/** The absolute path `file` as a URI, which lets SQLite take settings with it. */
std::string uriOf(const std::filesystem::path& file)
{
    constexpr std::string_view hexadecimal = "0123456789ABCDEF";
    const std::string path = utf8(file);
    // A path that begins with a drive letter needs a slash before the letter.
    std::string uri = path.starts_with('/') ? "file://" : "file:///";
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '%' || character == '?' || character == '#')
            (uri += '%') += {hexadecimal[byte >> 4U], hexadecimal[byte & 0xFU]};
        else
            uri += character;
    }
    return uri;
}

} // namespace

void Statement::Finalize::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

bool Statement::step()
{
    const int result = sqlite3_step(m_Statement.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        fail(sqlite3_db_handle(m_Statement.get()));
    return result == SQLITE_ROW;
}

void Statement::run()
{
    try {
        step();
    } catch (...) {
        reset();
        throw;
    }
    reset();
}

bool Statement::isNull(int column) const
{
    return sqlite3_column_type(m_Statement.get(), column) == SQLITE_NULL;
}

std::uint64_t Statement::number(int column) const
{
    return static_cast<std::uint64_t>(sqlite3_column_int64(m_Statement.get(), column));
}

std::string Statement::text(int column) const
{
    const void* const text = sqlite3_column_text(m_Statement.get(), column);
    if (text == nullptr)
        return {};
    return {static_cast<const char*>(text),
            static_cast<std::size_t>(sqlite3_column_bytes(m_Statement.get(), column))};
}

void Statement::reset()
{
    sqlite3_reset(m_Statement.get());
}

void Statement::put(int place, std::uint64_t number)
{
    check(sqlite3_bind_int64(m_Statement.get(), place, static_cast<std::int64_t>(number)));
}

void Statement::put(int place, std::string_view text)
{
    check(sqlite3_bind_text(m_Statement.get(), place, text.data(), static_cast<int>(text.size()),
                            SQLITE_TRANSIENT));
}

void Statement::put(int place, const std::optional<std::uint64_t>& number)
{
    if (number)
        put(place, *number);
    else
        check(sqlite3_bind_null(m_Statement.get(), place));
}

void Statement::check(int result) const
{
    if (result != SQLITE_OK)
        fail(sqlite3_db_handle(m_Statement.get()));
}

void Connection::Close::operator()(sqlite3* connection) const
{
    sqlite3_close_v2(connection);
}

Connection::Connection(const std::string& target, int flags, bool isFrozen) : m_IsFrozen(isFrozen)
{
    sqlite3* connection = nullptr;
    const int result = sqlite3_open_v2(target.c_str(), &connection,
                                       flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW, nullptr);
    m_Connection.reset(connection);
    if (result != SQLITE_OK)
        fail(connection);
    sqlite3_busy_timeout(connection, PATIENCE);
}

Connection Connection::toWrite(const std::filesystem::path& file)
{
    Connection connection(utf8(targetOf(file)), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, false);
    // SQLite falls back to reading when the system does not allow writing.
    if (sqlite3_db_readonly(connection.m_Connection.get(), "main") == 1)
        throw Error(Trouble::Denied, "there is no permission to write to it");
    return connection;
}

Connection Connection::toRead(const std::filesystem::path& file)
{
    // Without its log no process has the file open, and it may be opened as one that does not change. A usual
    // connection would make a log beside it, even for reading.
    const std::filesystem::path target = targetOf(file);
    const bool isFrozen = !exists(target, "-wal");
    return {uriOf(target) + (isFrozen ? "?immutable=1" : ""), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI,
            isFrozen};
}

void Connection::run(const char* sql)
{
    if (sqlite3_exec(m_Connection.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail(m_Connection.get());
}

Statement Connection::prepare(std::string_view sql)
{
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(m_Connection.get(), sql.data(), static_cast<int>(sql.size()), &statement,
                           nullptr) != SQLITE_OK)
        fail(m_Connection.get());
    return Statement(statement);
}

Statement& Connection::kept(std::string_view sql)
{
    auto found = m_Kept.find(sql);
    if (found == m_Kept.end())
        found = m_Kept.emplace(sql, prepare(sql)).first;
    return found->second;
}

std::uint64_t Connection::number(std::string_view sql)
{
    Statement statement = prepare(sql);
    return statement.step() ? statement.number(0) : 0;
}

bool Connection::hasMoved() const
{
    int moved = 0; // stays 0 when SQLite cannot tell
    sqlite3_file_control(m_Connection.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

bool Connection::isInTransaction() const
{
    return sqlite3_get_autocommit(m_Connection.get()) == 0;
}

Transaction::Transaction(Connection& connection) : m_Connection(connection)
{
    m_Connection.kept("BEGIN IMMEDIATE").run();
}

Transaction::~Transaction()
{
    if (m_Connection.isInTransaction())
        sqlite3_exec(m_Connection.m_Connection.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit()
{
    m_Connection.kept("COMMIT").run();
}

} // namespace Host::Sqlite
