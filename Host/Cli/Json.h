#pragma once

#include "Cli/Drives.h"
#include "Core/Failure.h"

#include <PI/Object.h>

#include <nlohmann/json_fwd.hpp>

#include <string>

// The documents that `--json` prints. Members that have nothing to say are left out.
namespace Host::Cli {

nlohmann::ordered_json propertyJson(const PI::CProperty& property);
nlohmann::ordered_json objectJson(const PI::CObject& object);
nlohmann::ordered_json driveJson(const Drive& drive);
nlohmann::ordered_json failureJson(const std::string& message, const std::optional<RequestResult>& result);

/** The document as text with a line end; bytes that are no UTF-8 are replaced. */
std::string documentText(const nlohmann::ordered_json& document);

} // namespace Host::Cli
