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
    Note,    ///< worth knowing, but nothing is broken
    Problem, ///< something cannot be seen
};

/** One thing that was checked. */
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

/**
 * Checks everything from the plug-in's file to the answers of each drive. Reports what it finds and never
 * throws because of it.
 */
std::vector<Check> examine(const Session& session);

/** Whether the settings in `folder` are used. Reports each setting with the value that the file has. */
Check checkSettings(const std::filesystem::path& folder);

/** Whether the rows can be kept. If this run keeps none, whether it could. */
Check checkRows(const Session& session);

/**
 * Whether the database `file` can be read and is sound. If there is none yet, whether it could be created.
 * Changes nothing.
 */
Check checkKeptRows(const std::filesystem::path& file);

/** Whether a service keeps the data folder of these options, and whether all is well with it. */
Check checkService(const Options& options);

/**
 * Whether drives can be asked here. That depends on the system, its NVMe driver and the rights of this user.
 */
std::vector<Check> checkSystem(const Platform::System& system, bool driverIsThere,
                               const std::vector<TLXX::CControllerState>& states);

/** How drives that come and go are found. `available` says that the system announces them. */
Check checkAnnouncements(bool available);

/**
 * Controllers that no enumeration finds, because another driver or none has them. It is no problem if a
 * controller was given to a virtual machine on purpose.
 */
std::vector<Check> checkUnserved(const std::vector<Platform::UnservedFunction>& functions);

/** The release of each plug-in, and whether it is the release of this program. */
std::vector<Check> checkVersions(const ObjectStore& store);

/** What the system tells about its controllers. */
std::vector<Check> checkControllers(const std::vector<TLXX::CControllerState>& states);

/**
 * Why there is no disk to show. Nothing when there is one. `anyUnserved` says that there are controllers that
 * the NVMe driver does not use. `fleet` is the simulated fleet in place of the machine, or null.
 */
std::vector<Check> checkAnyDisk(const std::vector<TLXX::CControllerState>& states, bool anyUnserved,
                                const SimulatedFleet* fleet);

/** The drives that do not answer. */
std::vector<Check> checkSilent(const std::vector<DriveAnswer>& answers);

/**
 * Checks that every disk of the store's controllers became an adapter with the right location. Also reports
 * what a drive did not answer, and drives that cannot be told apart.
 */
std::vector<Check> checkInventory(const ObjectStore& store);

/** The disks that may be the reason why the plug-in refused a request of the inventory. */
std::vector<Check> checkRefusal(const std::vector<TLXX::CControllerState>& states,
                                const RequestResult& result);

/** The exit code of the first problem. */
ExitCode exitCodeOf(const std::vector<Check>& checks);

std::string doctorText(const std::vector<Check>& checks, const Screen& screen);
nlohmann::ordered_json doctorJson(const std::vector<Check>& checks);

} // namespace Host::Cli
