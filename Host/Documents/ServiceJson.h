#pragma once

#include "Facts/ServiceFigures.h"
#include "Facts/Snapshot.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <string>

// The documents of the service's web interface. `documentText` makes them texts.
namespace Host::Cli {

/** How the service and its drives fare at `now`, in UTC milliseconds. */
nlohmann::ordered_json statusJson(const Snapshot& snapshot, const ServiceFigures& figures, std::uint64_t now);

/** A drive as `list` shows it, after its key. */
nlohmann::ordered_json keyedDriveJson(const std::string& key, const Drive& drive);

/** All drives with their keys. */
nlohmann::ordered_json drivesJson(const Snapshot& snapshot);

} // namespace Host::Cli
