#pragma once

#include "Facts/DriveCheck.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace Host::Cli {

/** The document of `check`: the verdict, and each drive as in `list` with its own verdict. */
nlohmann::ordered_json checkJson(Verdict verdict, const std::string& message,
                                 const std::vector<DriveCheck>& drives);

} // namespace Host::Cli
