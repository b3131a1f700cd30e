#pragma once

#include "Base/Failure.h"
#include "Commands/CommandLine.h"
#include "Commands/RunningService.h"
#include "Facts/Drives.h"
#include "Journal/Entry.h"
#include "Terminal/Terminal.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>

// What commands do while a service keeps the data folder: the service does it for them. All throw `Failure`.
namespace Host::Cli {

/** Prints each entry of the service's journal from now on, as `watch` prints news. */
ExitCode watchService(const RunningService& service, const Options& options, Terminal& terminal);

/** The entry that `json` describes, with the members that a printed line needs. */
Journal::Entry entryOfService(const nlohmann::ordered_json& json);

/**
 * Runs `here`. If that fails because this user may not open any drive, and a service sees them, runs
 * `throughService` instead.
 */
ExitCode hereOrThroughService(const Options& options, const std::function<ExitCode()>& here,
                              const std::function<ExitCode(const RunningService&)>& throughService);

/** Prints the drives as the service last saw them. */
ExitCode listThroughService(const RunningService& service, const Options& options, Terminal& terminal);

/** What `list` shows of the drive that a document describes. */
Drive listedDrive(const nlohmann::ordered_json& json);

/** Prints what the service last saw of the objects that the user named, or of one property of them. */
ExitCode showThroughService(const RunningService& service, const Options& options, Terminal& terminal);

/** Lets the service change a property, and prints the new value. */
ExitCode setThroughService(const RunningService& service, const Options& options, Terminal& terminal);

} // namespace Host::Cli
