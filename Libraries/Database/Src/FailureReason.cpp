#include "FailureReason.h"

#include <algorithm>
#include <iterator>
#include <system_error>

namespace Database {

namespace {

constexpr int PRIMARY_CODE = 0xFF;

struct CReason
{
    int m_Code; ///< SQLite's extended code
    const char* m_Text;
};

constexpr CReason REASONS[] = {
    {SQLITE_READONLY_DIRECTORY, "no file can be made in its folder"},
    {SQLITE_READONLY_CANTINIT, "the file \"-shm\" beside it cannot be written"},
    {SQLITE_READONLY_CANTLOCK, "the file \"-shm\" beside it cannot be locked"},
    {SQLITE_READONLY_RECOVERY, "its log has to be recovered, which needs the right to write"},
    {SQLITE_READONLY_ROLLBACK, "its journal has to be rolled back, which needs the right to write"},
    {SQLITE_READONLY_DBMOVED, "the file was moved or deleted"},
    {SQLITE_BUSY_RECOVERY, "another process recovers the log"},
    {SQLITE_CANTOPEN_SYMLINK, "it is a link"},
    {SQLITE_IOERR_SHORT_READ, "the file ends too early"},
};

/** Whether SQLite keeps the system's error number for such a failure. */
bool hasSystemError(int code)
{
    return (code & PRIMARY_CODE) == SQLITE_CANTOPEN || (code & PRIMARY_CODE) == SQLITE_IOERR;
}

/**
 * If a file cannot be opened for writing, SQLite tries to open it for reading. The system's error is then
 * from this second attempt. It says only that there is no file.
 */
bool cannotBeMade(int number, const std::filesystem::path& file)
{
    std::error_code error;
    return std::error_code(number, std::system_category()) == std::errc::no_such_file_or_directory &&
           std::filesystem::is_directory(file.parent_path(), error);
}

std::string detailOf(sqlite3* connection, int code, const std::filesystem::path& file)
{
    const auto* const known = std::find_if(std::begin(REASONS), std::end(REASONS),
                                           [code](const CReason& reason) { return reason.m_Code == code; });
    if (known != std::end(REASONS))
        return known->m_Text;
    std::error_code error;
    if ((code & PRIMARY_CODE) == SQLITE_CANTOPEN && std::filesystem::is_directory(file, error))
        return "it is a folder";
    const int number = hasSystemError(code) ? sqlite3_system_errno(connection) : 0;
    if (cannotBeMade(number, file))
        return "no file can be made in its folder";
    if (number != 0)
        return std::system_category().message(number);
    return code == (code & PRIMARY_CODE) ? "" : "extended code " + std::to_string(code);
}

} // namespace

std::string failureReason(sqlite3* connection, const std::filesystem::path& file)
{
    const std::string detail = detailOf(connection, sqlite3_extended_errcode(connection), file);
    return sqlite3_errmsg(connection) + (detail.empty() ? "" : " (" + detail + ")");
}

} // namespace Database
