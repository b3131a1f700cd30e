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

/** Creates the folder if it is missing. Throws `Failure` when that is not possible. */
void makeDataFolder(const std::filesystem::path& folder);

/**
 * The right of one process to keep its data in a folder. The folder is created if it is missing. Two
 * processes must not share a folder, because each would delete the other's rows.
 */
class DataFolderClaim
{
public:
    /**
     * Waits up to `patience` milliseconds for another process to give up its right. Throws `Failure` when the
     * folder cannot be created. A lock file that cannot be opened counts as a refusal.
     */
    DataFolderClaim(std::filesystem::path folder, std::uint64_t patience);

    bool granted() const { return m_Granted; }

    /** Why the right was refused: a sentence without its full stop. */
    std::string refusal() const;

    /** The same for a command that needs the right. It also says what to do. */
    Failure failure() const;

private:
    const std::filesystem::path m_Folder;
    std::unique_ptr<Platform::LockFile> m_Lock;
    std::error_code m_Error; ///< why the lock file cannot be opened
    bool m_Granted = false;
};

/** Makes the plug-ins of this process keep their rows in `folder`. */
void keepRows(const std::filesystem::path& folder);

/** Warns when something that is no regular file has the name of the settings file. It is not read. */
void warnOfSettings(const std::filesystem::path& folder, const Warn& warn);

/**
 * Loads the numbers that `folder` has. Warns of damaged content. Also warns of a file that cannot be read,
 * and then this run keeps no numbers.
 */
void restoreNumbers(const std::filesystem::path& folder, const Warn& warn);

/**
 * Deletes the rows of objects that are not in `inventory`, and keeps the numbers of its adapters. Failures
 * are only warned of, because the inventory itself is still valid.
 */
void keepInventory(const std::filesystem::path& folder, const ObjectStore& inventory, const Warn& warn);

/** Keeps the numbers of the adapters so far, unless `folder` is empty. Failures are only warned of. */
void keepAdapterNumbers(const std::filesystem::path& folder, const Warn& warn);

} // namespace Host
