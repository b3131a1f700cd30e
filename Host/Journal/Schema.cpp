#include "Journal/Schema.h"

#include "Base/Text.h"

#include <array>
#include <cstdint>

namespace Host::Journal {
namespace {

// What turns each version of the schema into the next one. Only ever append to this list.
constexpr std::array MIGRATIONS = {
    R"(
CREATE TABLE Journal (Identity TEXT NOT NULL);
INSERT INTO Journal VALUES (lower(hex(randomblob(16))));
CREATE TABLE Entry (
    Number INTEGER PRIMARY KEY,
    Kind TEXT NOT NULL,
    Phase TEXT NOT NULL,
    Severity INTEGER NOT NULL,
    Event INTEGER,
    DriveKey TEXT NOT NULL,
    Name TEXT NOT NULL,
    Device TEXT NOT NULL,
    Vendor TEXT NOT NULL,
    Model TEXT NOT NULL,
    Serial TEXT NOT NULL,
    Location TEXT NOT NULL,
    PciAddress TEXT NOT NULL,
    Place INTEGER NOT NULL,
    Text TEXT NOT NULL,
    BeginTime INTEGER,
    EndTime INTEGER NOT NULL);
CREATE TABLE State (
    Part INTEGER NOT NULL,
    Place INTEGER NOT NULL,
    Text TEXT NOT NULL,
    PRIMARY KEY (Part, Place)) WITHOUT ROWID;
)",
};

constexpr std::uint64_t VERSION = MIGRATIONS.size();
constexpr std::uint64_t APPLICATION = 0x4F73746A; // marks the file as ours

} // namespace

bool hasTables(Sqlite::Connection& connection)
{
    return connection.number("SELECT COUNT(*) FROM sqlite_master") != 0;
}

void refuseForeign(Sqlite::Connection& connection, const std::filesystem::path& file)
{
    if (connection.number("PRAGMA application_id") != APPLICATION)
        throw Failure(ExitCode::RequestFailed,
                      printable(file.string()) + " is no journal of Ostrel. Move it away.");
    if (connection.number("PRAGMA user_version") > VERSION)
        throw Failure(ExitCode::RequestFailed, "A newer release of Ostrel wrote the journal " +
                                                   printable(file.string()) +
                                                   ". Use that release, or move the file away.");
}

void migrate(Sqlite::Connection& connection)
{
    const std::uint64_t version = connection.number("PRAGMA user_version");
    if (version == VERSION)
        return;
    Sqlite::Transaction transaction(connection);
    for (std::uint64_t step = version; step < VERSION; ++step)
        connection.run(MIGRATIONS[step]);
    connection.run(("PRAGMA application_id = " + std::to_string(APPLICATION)).c_str());
    connection.run(("PRAGMA user_version = " + std::to_string(VERSION)).c_str());
    transaction.commit();
}

Failure failureOf(const std::filesystem::path& file, const char* what, const Sqlite::Error& error)
{
    return {error.trouble() == Sqlite::Trouble::Denied ? ExitCode::NoPermission : ExitCode::RequestFailed,
            "The journal " + printable(file.string()) + " cannot be " + what + ": " + error.what() + "."};
}

} // namespace Host::Journal
