#pragma once

#include "Base/Failure.h"
#include "Web/Exchange.h"

#include <string>

// Answers that tell of errors: problem documents of RFC 9457.
namespace Host::Web {

/** Says in whole sentences what is wrong. `parameter` names the wrong parameter, if there is one. */
Response problem(unsigned status, const std::string& detail, const std::string& parameter = {});

/** The status fits the failure. The document tells which request a plug-in refused. */
Response problem(const Failure& failure);

} // namespace Host::Web
