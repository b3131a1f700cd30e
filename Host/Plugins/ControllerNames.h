#pragma once

#include <TLXX/Diagnosis.h>

#include <string>
#include <vector>

namespace Host {

/**
 * The disk of the controller called `name`, such as "nvme0" or "/dev/nvme0". Returns `name` itself when none
 * of `states` has this name, or when that controller has no disk.
 */
std::string diskOfController(const std::vector<TLXX::CControllerState>& states, const std::string& name);

} // namespace Host
