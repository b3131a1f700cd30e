#pragma once

#include "Commands/Session.h"
#include "Facts/DriveCheck.h"

#include <optional>
#include <string>
#include <vector>

namespace Host::Cli {

/** Prints the verdict on every drive, or on those that the user named, in one line. Throws `Failure`. */
Verdict check(const Session& session);

/** The line of `check`. `fleet` is the file of simulated drives; empty: the drives are real. */
std::string checkLine(const std::vector<DriveCheck>& drives, const std::string& fleet);

/** What `check` prints when there is no verdict, as line or document. */
std::string noVerdict(const std::string& message, bool asJson, bool simulated,
                      const std::optional<RequestResult>& result = std::nullopt);

} // namespace Host::Cli
