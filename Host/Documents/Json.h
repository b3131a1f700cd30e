#pragma once

#include "Base/Failure.h"
#include "Facts/DriveEvent.h"
#include "Facts/Drives.h"

#include <PI/Object.h>

#include <nlohmann/json_fwd.hpp>

#include <string>

// The documents that `--json` prints; Docs/Schemas describes them. Members that have nothing to say are left
// out.
namespace Host::Cli {

/** What every document begins with. Counts up when a document is no longer what its schema said before. */
inline constexpr int FORMAT = 1;

nlohmann::ordered_json propertyJson(const PI::CProperty& property, Basis basis = Basis::Measured);
nlohmann::ordered_json objectJson(const ObjectStore& store, const PI::CObject& object);
nlohmann::ordered_json driveJson(const Drive& drive);
/** What drives and system themselves tell, for the documents of `show`: of each adapter among `objects`. */
nlohmann::ordered_json ownFactsJson(const ObjectStore& store, const std::vector<const PI::CObject*>& objects);
/** A drive as `list` shows it, with the end of its life. */
nlohmann::ordered_json listedJson(const Drive& drive);
/** All drives. */
nlohmann::ordered_json listJson(const ObjectStore& store);
nlohmann::ordered_json eventJson(const DriveEvent& event);

/** What a drive is known by; how it fares changes too often to be part of what `watch` prints. */
nlohmann::ordered_json identityJson(const DriveIdentity& identity);

nlohmann::ordered_json failureJson(const std::string& message, const std::optional<RequestResult>& result);

/**
 * The whole document as text with a line end: its format and, where nothing of it is real, that it is
 * simulated, then `content`. Bytes that are no UTF-8 are replaced.
 */
std::string documentText(const nlohmann::ordered_json& content, bool simulated = false);

/** The same in one line, for documents that follow one another. */
std::string lineText(const nlohmann::ordered_json& content, bool simulated = false);

} // namespace Host::Cli
