#pragma once

#include "Base/Failure.h"
#include "Base/Platform.h"
#include "Base/Warn.h"
#include "Plugins/ObjectStore.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

// What is kept from one run to the next in a folder: the database of the plug-ins' rows, and the numbers of
// the adapters.
namespace Host {

std::filesystem::path databaseFile(const std::filesystem::path& folder);

/** Makes the folder where it is missing. Throws `Failure` when that is not possible. */
void makeDataFolder(const std::filesystem::path& folder);

/**
 * A process's right to keep its data in a folder, which is made when it is missing. Two that keep theirs in
 * one folder would take each other's rows for those of drives that are gone.
 */
class DataFolderClaim
{
public:
    /**
     * Waits up to `patience` milliseconds for another process to give its right up. Throws `Failure` when the
     * folder cannot be made. A lock that cannot be opened is a refusal, too.
     */
    DataFolderClaim(std::filesystem::path folder, std::uint64_t patience);

    bool granted() const { return m_Granted; }

    /** Why it is not granted: a sentence without its full stop. */
    std::string refusal() const;

    /** The same with what to do about it, for a command that needs the right. */
    Failure failure() const;

private:
    const std::filesystem::path m_Folder;
    std::unique_ptr<Platform::LockFile> m_Lock;
    std::error_code m_Error; ///< of a lock that cannot be opened
    bool m_Granted = false;
};

/** Has the process's plug-ins keep their rows in `folder`. */
void keepRows(const std::filesystem::path& folder);

/** Tells `warn` when what `folder` has in the place of the settings is no regular file, and so is not read.
 */
void warnOfSettings(const std::filesystem::path& folder, const Warn& warn);

/**
 * Takes up the numbers that `folder` has. What is damaged is told to `warn`; so is a file that cannot be
 * read, and the numbers of this run are not kept then.
 */
void restoreNumbers(const std::filesystem::path& folder, const Warn& warn);

/**
 * Drops the rows of what `inventory` no longer holds, and keeps the numbers that its adapters were given.
 * What fails is told to `warn`: it takes nothing away from the inventory.
 */
void keepInventory(const std::filesystem::path& folder, const ObjectStore& inventory, const Warn& warn);

/** Keeps the numbers that adapters were given so far, unless `folder` is empty; what fails is told to `warn`.
 */
void keepAdapterNumbers(const std::filesystem::path& folder, const Warn& warn);

} // namespace Host
