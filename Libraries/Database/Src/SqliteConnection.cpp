#include "SqliteConnection.h"

#include "FailureReason.h"
#include "PatientVfs.h"

#include <DatabaseORM/DatabaseException.h>
#include <TLX/TrustedFile.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <system_error>
#include <utility>
#include <variant>

namespace Database {

namespace {

/** Resets a statement on destruction. Until it is reset it may hold locks of the database. */
class CReset
{
public:
    explicit CReset(sqlite3_stmt* statement) : m_Statement(statement) {}
    ~CReset() { sqlite3_reset(m_Statement); }
    CReset(const CReset&) = delete;
    CReset& operator=(const CReset&) = delete;

private:
    sqlite3_stmt* m_Statement;
};

std::string utf8(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

std::string nameOf(const std::filesystem::path& file)
{
    return file.empty() ? "database in memory" : "database '" + utf8(file) + "'";
}

bool hasCompanion(const std::filesystem::path& file, const char* suffix)
{
    std::error_code error;
    return std::filesystem::exists(std::filesystem::path(file) += suffix, error);
}

/** The absolute path `file` as a URI, which lets SQLite take settings with it. */
std::string uriOf(const std::filesystem::path& file)
{
    constexpr char hexadecimal[] = "0123456789ABCDEF";
    const std::u8string path = file.generic_u8string();
    // A path that begins with a drive letter needs a slash before the letter.
    std::string uri = path.starts_with(u8'/') ? "file://" : "file:///";
    for (const char8_t byte : path) {
        if (byte == u8'%' || byte == u8'?' || byte == u8'#') {
            uri += '%';
            uri += hexadecimal[byte >> 4U];
            uri += hexadecimal[byte & 0xFU];
        } else {
            uri += static_cast<char>(byte);
        }
    }
    return uri;
}

/** The path without links that `file` leads to, as SQLite must open it. */
std::filesystem::path targetOf(const std::filesystem::path& file)
{
    if (file.empty())
        return file;
    const auto target = TLX::Misc::trustedTarget(file);
    if (!target)
        throw DBEXCEPTION::DatabaseException(nameOf(file) + ": it is a link that belongs to another user");
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::weakly_canonical(target->parent_path(), error);
    return error ? *target : folder / target->filename();
}

int onBusy(void* policy, int)
{
    return static_cast<CBusyPolicy*>(policy)->Wait() ? 1 : 0;
}

std::string columnText(sqlite3_stmt* statement, int column)
{
    if (sqlite3_column_type(statement, column) == SQLITE_NULL)
        return "NULL";
    const void* const text = sqlite3_column_text(statement, column);
    if (text == nullptr)
        throw std::bad_alloc();
    return {static_cast<const char*>(text),
            static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

} // namespace

CSqliteConnection::CSqliteConnection(const std::filesystem::path& file, CBusyPolicy& busyPolicy)
    : CSqliteConnection(file, file.empty() ? ":memory:" : utf8(targetOf(file)),
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, busyPolicy)
{}

CSqliteConnection CSqliteConnection::ToRead(const std::filesystem::path& file, CBusyPolicy& busyPolicy)
{
    // Opening a file in this mode creates "-wal" and "-shm" beside it, even for reading. When they are
    // missing, no process has the file open and it cannot change, so it may be opened as immutable. When they
    // are there, their content counts.
    const std::filesystem::path target = targetOf(file);
    const bool isInUse = hasCompanion(target, "-wal") && hasCompanion(target, "-shm");
    return {file, uriOf(target) + (isInUse ? "" : "?immutable=1"), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI,
            busyPolicy};
}

CSqliteConnection::CSqliteConnection(std::filesystem::path file, const std::string& target, int flags,
                                     CBusyPolicy& busyPolicy)
    : m_File(std::move(file)), m_BusyPolicy(&busyPolicy)
{
    const CPolicyInForce inForce(busyPolicy);
    sqlite3* connection = nullptr;
    const int result = sqlite3_open_v2(target.c_str(), &connection,
                                       flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW, patientVfs());
    m_Connection.reset(connection);
    if (result != SQLITE_OK)
        Fail();
    sqlite3_busy_handler(connection, onBusy, &busyPolicy);
}

std::vector<std::string> CSqliteConnection::Run(std::string_view sql)
{
    // SQLite would take a zero byte for the end of the text and run only a part of it.
    if (sql.find('\0') != std::string_view::npos)
        Fail("the statement holds a zero byte");
    const CPolicyInForce inForce(*m_BusyPolicy);
    std::vector<std::string> values;
    try {
        RunAll(sql, values);
    } catch (...) {
        if (sqlite3_get_autocommit(m_Connection.get()) == 0)
            sqlite3_exec(m_Connection.get(), "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
    return values;
}

bool CSqliteConnection::Attempt(const std::string& sql)
{
    const CPolicyInForce inForce(*m_BusyPolicy);
    const auto done = [this](const std::string& text) {
        return sqlite3_exec(m_Connection.get(), text.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    };
    if (done("SAVEPOINT Attempt; " + sql))
        return done("RELEASE Attempt");
    done("ROLLBACK TO Attempt; RELEASE Attempt");
    return false;
}

bool CSqliteConnection::HasMoved() const
{
    int moved = 0; // stays 0 when SQLite cannot tell
    sqlite3_file_control(m_Connection.get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

void CSqliteConnection::RunAll(std::string_view sql, std::vector<std::string>& values)
{
    if (const auto shape = shapeOf(sql)) {
        if (sqlite3_stmt* const statement = PrepareShape(shape->m_Text)) {
            Bind(statement, shape->m_Values);
            Step(statement, values);
            return;
        }
    }
    while (!sql.empty()) {
        const char* tail = nullptr;
        const CStatement statement = Prepare(sql, &tail);
        sql.remove_prefix(static_cast<std::size_t>(tail - sql.data()));
        if (statement)
            Step(statement.get(), values);
    }
}

CStatement CSqliteConnection::Prepare(std::string_view sql, const char** tail)
{
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(m_Connection.get(), sql.data(), static_cast<int>(sql.size()), &statement, tail) !=
        SQLITE_OK)
        Fail();
    return CStatement(statement);
}

sqlite3_stmt* CSqliteConnection::PrepareShape(const std::string& text)
{
    if (sqlite3_stmt* const kept = m_Kept.Find(text))
        return kept;
    sqlite3_stmt* statement = nullptr;
    // The full text of a statement tells what is wrong with it; a shape lacks its values.
    if (sqlite3_prepare_v2(m_Connection.get(), text.data(), static_cast<int>(text.size()), &statement,
                           nullptr) != SQLITE_OK)
        return nullptr;
    return m_Kept.Keep(text, CStatement(statement));
}

void CSqliteConnection::Bind(sqlite3_stmt* statement, const std::vector<CStatementShape::Value>& values)
{
    int position = 0;
    for (const CStatementShape::Value& value : values) {
        ++position;
        const auto* const text = std::get_if<std::string_view>(&value);
        // The values must live until the statement has run. The next run binds new ones.
        const int result = text == nullptr
                               ? sqlite3_bind_int64(statement, position, std::get<std::int64_t>(value))
                               : sqlite3_bind_text(statement, position, text->data(),
                                                   static_cast<int>(text->size()), SQLITE_STATIC);
        if (result != SQLITE_OK)
            Fail();
    }
}

void CSqliteConnection::Step(sqlite3_stmt* statement, std::vector<std::string>& values)
{
    const CReset reset(statement);
    int result = SQLITE_ROW;
    while ((result = sqlite3_step(statement)) == SQLITE_ROW)
        for (int column = 0; column < sqlite3_column_count(statement); ++column)
            values.push_back(columnText(statement, column));
    if (result != SQLITE_DONE)
        Fail();
}

void CSqliteConnection::Fail() const
{
    // SQLite returns no connection at all only when memory has run out.
    if (!m_Connection)
        throw std::bad_alloc();
    Fail(failureReason(m_Connection.get(), m_File));
}

void CSqliteConnection::Fail(const std::string& reason) const
{
    throw DBEXCEPTION::DatabaseException(nameOf(m_File) + ": " + reason);
}

} // namespace Database
