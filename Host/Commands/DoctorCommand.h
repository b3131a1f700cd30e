#pragma once

#include "Base/Failure.h"
#include "Base/Platform.h"
#include "Commands/Session.h"
#include "Plugins/ObjectStore.h"
#include "Terminal/Screen.h"

#include <TLXX/Diagnosis.h>

#include <nlohmann/json_fwd.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace Host::Cli {

enum class Finding
{
    Ok,
    Note,    ///< worth knowing; nothing is broken
    Problem, ///< something is not to be seen
};

/** One thing that was looked at. */
struct Check
{
    Finding m_Finding = Finding::Ok;
    std::string m_Subject;
    std::string m_Message;
    std::string m_Remedy;                 ///< of a problem
    ExitCode m_ExitCode = ExitCode::Done; ///< of a problem
};

Check ok(std::string subject, std::string message);
Check note(std::string subject, std::string message);
Check problem(ExitCode exitCode, std::string subject, std::string message, std::string remedy);

/** Prints what `examine` finds. */
ExitCode doctor(const Session& session);

/** Looks at everything from the plug-in's file to each drive's answers. Throws nothing for what it finds. */
std::vector<Check> examine(const Session& session);

/** Whether the settings in `folder` are taken into account, each as it stands. */
Check checkSettings(const std::filesystem::path& folder);

/** Whether the rows can be kept, or, where this run keeps none, could be. */
Check checkRows(const Session& session);

/**
 * Whether `file`, where commands that keep rows have them, can be read and is sound, or, where there is none
 * yet, could be made; changes nothing.
 */
Check checkKeptRows(const std::filesystem::path& file);

/** Whether the system, its NVMe driver and this user's rights let drives be asked. */
std::vector<Check> checkSystem(const Platform::System& system, bool driverIsThere,
                               const std::vector<TLXX::CControllerState>& states);

/** What no enumeration finds, for another driver or none has it; no problem when it was given away. */
std::vector<Check> checkUnserved(const std::vector<Platform::UnservedFunction>& functions);

/** The release of each plug-in, and whether it is this program's. */
std::vector<Check> checkVersions(const ObjectStore& store);

/** What the system says of its controllers. */
std::vector<Check> checkControllers(const std::vector<TLXX::CControllerState>& states);

/**
 * Why there is no disk to show at all; nothing when there is one. `anyUnserved`: there are controllers that
 * the NVMe driver does not serve. `fleet`: what stands in the machine's place, or null.
 */
std::vector<Check> checkAnyDisk(const std::vector<TLXX::CControllerState>& states, bool anyUnserved,
                                const SimulatedFleet* fleet);

/**
 * Whether every disk of the store's controllers became an adapter, at its own place, what its drive left
 * unanswered, and which drives are not to be told apart.
 */
std::vector<Check> checkInventory(const ObjectStore& store);

/** Which disks may have made the plug-in refuse a request of the inventory. */
std::vector<Check> checkRefusal(const std::vector<TLXX::CControllerState>& states,
                                const RequestResult& result);

/** The code of the first problem. */
ExitCode exitCodeOf(const std::vector<Check>& checks);

std::string doctorText(const std::vector<Check>& checks, const Screen& screen);
nlohmann::ordered_json doctorJson(const std::vector<Check>& checks);

} // namespace Host::Cli
