#pragma once

#include "Base/Failure.h"
#include "Facts/DriveEvent.h"
#include "Facts/Drives.h"

#include <PI/Object.h>

#include <nlohmann/json_fwd.hpp>

#include <string>

// The documents that `--json` prints. Docs/Schemas describes them. Members without a value are left out.
namespace Host::Cli {

/** Every document begins with this number. It is raised when a member changes its meaning or is removed. */
inline constexpr int FORMAT = 1;

nlohmann::ordered_json propertyJson(const PI::CProperty& property, Basis basis = Basis::Measured);
nlohmann::ordered_json objectJson(const ObjectStore& store, const PI::CObject& object);
nlohmann::ordered_json driveJson(const Drive& drive);
/**
 * What the drives and the system tell themselves, for the document of `show`. It has an element for each
 * adapter among `objects`.
 */
nlohmann::ordered_json ownFactsJson(const ObjectStore& store, const std::vector<const PI::CObject*>& objects);
/** A drive as `list` shows it, with the figures of its end of life. */
nlohmann::ordered_json listedJson(const Drive& drive);
/** The drives that no object shows, because they have never answered. */
nlohmann::ordered_json unheardJson(const ObjectStore& store);
/** All drives, as `list` shows them. */
nlohmann::ordered_json listJson(const ObjectStore& store);
nlohmann::ordered_json eventJson(const DriveEvent& event);

/**
 * What identifies a drive. Its state is not in it, because that changes too often for the lines of `watch`.
 */
nlohmann::ordered_json identityJson(const DriveIdentity& identity);

nlohmann::ordered_json failureJson(const std::string& message, const std::optional<RequestResult>& result);

/**
 * The whole document as text with a line end. It begins with the format, and says if the drives are
 * simulated. `content` follows. Bytes that are not UTF-8 are replaced.
 */
std::string documentText(const nlohmann::ordered_json& content, bool simulated = false);

/** The same in one line, for a series of documents. */
std::string lineText(const nlohmann::ordered_json& content, bool simulated = false);

} // namespace Host::Cli
