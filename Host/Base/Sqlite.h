#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

// SQLite for the program's own files. No other source of the program knows its interface.
namespace Host::Sqlite {

/** What went wrong, as far as a caller must know it. */
enum class Trouble
{
    Locked,  ///< another process holds a lock on the file
    Full,    ///< the disk is full
    Damaged, ///< the file is no database, or its content is not whole
    Denied,  ///< the system does not allow the access
    Other,
};

/** A failed operation. The message is a part of a sentence that names the reason, without the file. */
class Error : public std::runtime_error
{
public:
    Error(Trouble trouble, const std::string& reason) : std::runtime_error(reason), m_Trouble(trouble) {}

    Trouble trouble() const { return m_Trouble; }

private:
    Trouble m_Trouble;
};

/** A prepared statement. Must not outlive its connection. */
class Statement
{
public:
    /** The values of the statement's parameters, from the first one on. Texts are copied. */
    template<typename... Values>
    Statement& bind(const Values&... values)
    {
        reset();
        int place = 0;
        (put(++place, values), ...);
        return *this;
    }

    /** Goes to the next row and returns whether there is one. Throws `Error`. */
    bool step();

    /** Runs a statement that returns no rows, and makes it ready for the next run. Throws `Error`. */
    void run();

    // Columns of the present row count from 0.
    bool isNull(int column) const;
    /** Numbers above the largest signed one are stored as negative ones and come back unchanged. */
    std::uint64_t number(int column) const;
    std::string text(int column) const;

private:
    friend class Connection;
    struct Finalize
    {
        void operator()(sqlite3_stmt* statement) const;
    };

    explicit Statement(sqlite3_stmt* statement) : m_Statement(statement) {}
    void reset();
    void put(int place, std::uint64_t number);
    void put(int place, std::string_view text);
    void put(int place, const std::optional<std::uint64_t>& number);
    void check(int result) const;

    std::unique_ptr<sqlite3_stmt, Finalize> m_Statement;
};

/** An open database. One thread at a time may use it and its statements. */
class Connection
{
public:
    /** Opens `file` or creates it. A link is followed only when a trusted user owns it. Throws `Error`. */
    static Connection toWrite(const std::filesystem::path& file);

    /**
     * Opens a file that exists, creates nothing beside it, and needs no right to write. When no process has
     * the file open, it is taken as it is: see `isFrozen`. Throws `Error`.
     */
    static Connection toRead(const std::filesystem::path& file);

    /** Runs all statements of `sql`. Throws `Error`. */
    void run(const char* sql);

    Statement prepare(std::string_view sql);

    /** A statement that is prepared at the first call and lives as long as the connection. Throws `Error`. */
    Statement& kept(std::string_view sql);

    /** The number in the only column of the first row of `sql`. Null counts as 0. Throws `Error`. */
    std::uint64_t number(std::string_view sql);

    /** Whether the connection does not see later changes of the file. */
    bool isFrozen() const { return m_IsFrozen; }

    /**
     * Whether its path now leads to another file, or to none. Always false on Windows, where nobody can
     * delete a file that SQLite has open.
     */
    bool hasMoved() const;

private:
    friend class Transaction;
    struct Close
    {
        void operator()(sqlite3* connection) const;
    };

    Connection(const std::string& target, int flags, bool isFrozen);
    bool isInTransaction() const;

    std::unique_ptr<sqlite3, Close> m_Connection;
    std::map<std::string, Statement, std::less<>> m_Kept; ///< by their texts
    bool m_IsFrozen;
};

/** A transaction that writes. Without `commit` nothing of it remains. */
class Transaction
{
public:
    /** Throws `Error`. */
    explicit Transaction(Connection& connection);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /** Everything is on the disk when this returns. Throws `Error`; then nothing of the transaction remains.
     */
    void commit();

private:
    Connection& m_Connection;
};

} // namespace Host::Sqlite
