#include "Base/Platform.h"
#include "Commands/DoctorCommand.h"
#include "Plugins/DataFolder.h"

#include <Database/Maintenance.h>
#include <DatabaseORM/DatabaseException.h>

#include <system_error>

namespace Host::Cli {
namespace {

Check badDatabase(const std::string& message, std::error_code error = {})
{
    return problem(error == std::errc::permission_denied ? ExitCode::NoPermission : ExitCode::RequestFailed,
                   "database", message, "Check the file and its folder, or name another folder with --data.");
}

/** Describes what is wrong with `path`: it is not `what` it must be, or its state cannot be read. */
std::string complaint(const std::filesystem::path& path, std::error_code error, const std::string& what)
{
    return path.string() + (error ? ": " + error.message() : " is no " + what);
}

/**
 * Whether the file can be created. Missing folders are created with it, so the nearest existing folder must
 * allow a new entry.
 */
Check checkPlaceOf(const std::filesystem::path& file)
{
    using Platform::Access;
    std::error_code error;
    std::filesystem::path folder = std::filesystem::absolute(file).parent_path();
    Access access = Access::AddFile;
    // A link that leads to nothing prevents a folder of this name.
    while (folder.has_relative_path() &&
           std::filesystem::symlink_status(folder, error).type() == std::filesystem::file_type::not_found) {
        folder = folder.parent_path();
        access = Access::AddFolder;
    }
    const bool isFolder = std::filesystem::is_directory(folder, error);
    if (isFolder)
        error = Platform::accessError(folder, access);
    if (!isFolder || error)
        return badDatabase("there is no " + file.string() +
                               " yet, and it cannot be created: " + complaint(folder, error, "folder"),
                           error);
    return ok("database", "there is no " + file.string() + " yet; \"watch\" creates it");
}

} // namespace

Check checkRows(const Session& session)
{
    const std::filesystem::path file = databaseFile(session.m_Folders.m_Data);
    if (!session.keepsRows())
        return checkKeptRows(file);
    try {
        checkDatabase();
        return ok("database", file.string());
    } catch (const DBEXCEPTION::DatabaseException& exception) {
        return badDatabase(exception.what());
    }
}

Check checkKeptRows(const std::filesystem::path& file)
{
    std::error_code error;
    if (std::filesystem::symlink_status(file, error).type() == std::filesystem::file_type::not_found)
        return checkPlaceOf(file);
    if (std::filesystem::status(file, error).type() == std::filesystem::file_type::not_found)
        return note("database",
                    file.string() +
                        " is a link to a file that does not exist; \"watch\" creates it if it can");
    const bool isFile = std::filesystem::is_regular_file(file, error);
    if (isFile)
        error = Platform::accessError(file, Platform::Access::Read);
    if (!isFile || error)
        return badDatabase(complaint(file, error, "file"), error);
    try {
        const EDatabaseTables tables = inspectDatabase(file);
        if (const std::error_code refusal = Platform::accessError(file, Platform::Access::Write))
            return badDatabase(complaint(file, refusal, "file") + ", so no rows can be kept", refusal);
        switch (tables) {
        case EDatabaseTables::Present:
            return ok("database", file.string() + "; this run does not change it");
        case EDatabaseTables::None:
            return ok("database", file.string() + " is empty; \"watch\" fills it");
        case EDatabaseTables::Newer:
            return badDatabase(file.string() +
                               " contains the tables of a newer release, which this one cannot use");
        case EDatabaseTables::Foreign:
            break;
        }
        return note("database", file.string() + " contains the tables of another release; the next \"watch\" "
                                                "rebuilds them");
    } catch (const DBEXCEPTION::DatabaseException& exception) {
        return badDatabase(exception.what());
    }
}

} // namespace Host::Cli
