#include "Plugins/DataFolder.h"

#include "Base/Failure.h"
#include "Base/FileText.h"
#include "Base/Text.h"
#include "Plugins/KeptRows.h"

#include <Database/Database.h>
#include <PI/AdapterNumbers.h>
#include <TLX/Clock.h>

#include <stdexcept>
#include <system_error>
#include <utility>

namespace Host {
namespace {

std::filesystem::path numbersFile(const std::filesystem::path& folder)
{
    return folder / "AdapterNumbers.txt";
}

std::filesystem::path lockFile(const std::filesystem::path& folder)
{
    return folder / "Ostrel.lock";
}

} // namespace

void makeDataFolder(const std::filesystem::path& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!error && !std::filesystem::is_directory(folder, error) && !error)
        error = std::make_error_code(std::errc::not_a_directory);
    const bool isDenied =
        error == std::errc::permission_denied || error == std::errc::operation_not_permitted;
    if (error)
        throw Failure(isDenied ? ExitCode::NoPermission : ExitCode::WrongUsage,
                      "The data folder " + printable(folder.string()) +
                          " cannot be used: " + error.message() + ".");
}

std::filesystem::path databaseFile(const std::filesystem::path& folder)
{
    return folder / "Ostrel.db";
}

DataFolderClaim::DataFolderClaim(std::filesystem::path folder, std::uint64_t patience)
    : m_Folder(std::move(folder))
{
    constexpr std::uint32_t step = 100;
    makeDataFolder(m_Folder);
    m_Lock = std::make_unique<Platform::LockFile>(lockFile(m_Folder));
    try {
        for (const std::uint64_t start = TLX::Misc::monotonic(); !(m_Granted = m_Lock->take());) {
            if (TLX::Misc::monotonic() - start >= patience)
                return;
            TLX::Misc::pause(step);
        }
    } catch (const std::system_error& error) {
        m_Error = error.code();
    }
}

Failure DataFolderClaim::failure() const
{
    if (!m_Error)
        return {ExitCode::RequestFailed, refusal() + ". End it, or name another folder with --data."};
    return {m_Error == std::errc::permission_denied ? ExitCode::NoPermission : ExitCode::RequestFailed,
            refusal() + ". Remove what is there, or name another folder with --data."};
}

std::string DataFolderClaim::refusal() const
{
    if (m_Error)
        return "The lock file " + printable(lockFile(m_Folder).string()) +
               " cannot be opened: " + m_Error.message();
    const std::string text = readFile(lockFile(m_Folder)).value_or("");
    const auto process = parseNumber(text.substr(0, text.find_first_of("\r\n")), 10);
    return "Another ostrel" + (process ? ", process " + std::to_string(*process) + "," : "") +
           " keeps its data in " + printable(m_Folder.string());
}

void keepRows(const std::filesystem::path& folder)
{
    setDatabaseFile(databaseFile(folder));
}

void warnOfSettings(const std::filesystem::path& folder, const Warn& warn)
{
    const std::filesystem::path file = folder / "Ostrel.ini";
    if (TLX::Misc::isSpecialFile(file))
        warn("The settings file " + printable(file.string()) +
             " is no regular file. It is not read, and the defaults are used.");
}

void restoreNumbers(const std::filesystem::path& folder, const Warn& warn)
{
    try {
        if (const auto damage = PI::restoreAdapterNumbers(numbersFile(folder)))
            warn("Some adapters may get new numbers: " + printable(*damage) + ".");
    } catch (const std::runtime_error& wrong) {
        warn(std::string("Adapters may have different numbers in this run, and those are not kept: ") +
             printable(wrong.what()) + ".");
    }
}

void keepInventory(const std::filesystem::path& folder, const ObjectStore& inventory, const Warn& warn)
{
    KeptRows(warn).cleanUp([&inventory] { return inventory; });
    keepAdapterNumbers(folder, warn);
}

void keepAdapterNumbers(const std::filesystem::path& folder, const Warn& warn)
{
    if (folder.empty())
        return;
    try {
        PI::storeAdapterNumbers(numbersFile(folder));
    } catch (const std::runtime_error& wrong) {
        warn(std::string("The numbers of the adapters may differ at the next run: ") +
             printable(wrong.what()) + ".");
    }
}

} // namespace Host
