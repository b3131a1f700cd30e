#pragma once

#include "Base/Failure.h"
#include "Commands/CommandLine.h"
#include "Commands/RunningService.h"
#include "Facts/Drives.h"
#include "Journal/Entry.h"
#include "Terminal/Terminal.h"

#include <nlohmann/json_fwd.hpp>

// What commands do while a service keeps the data folder: the service does it for them. All throw `Failure`.
namespace Host::Cli {

/** Prints each entry of the service's journal from now on, as `watch` prints news. */
ExitCode watchService(const RunningService& service, const Options& options, Terminal& terminal);

/** What a line of text tells of the entry that a document of the journal describes. */
Journal::Entry entryOfService(const nlohmann::ordered_json& json);

/** Prints the drives as the service last saw them. */
ExitCode listThroughService(const RunningService& service, const Options& options, Terminal& terminal);

/** What `list` shows of the drive that a document describes. */
Drive listedDrive(const nlohmann::ordered_json& json);

/** Lets the service change a property, and prints the new value. */
ExitCode setThroughService(const RunningService& service, const Options& options, Terminal& terminal);

} // namespace Host::Cli
