#pragma once

#include <TLXX/Diagnosis.h>

#include <string>
#include <vector>

namespace Host {

/**
 * The disk of the controller among `states` that people call `name`, such as "nvme0" or "/dev/nvme0"; `name`
 * itself when there is no such controller, or it has no disk.
 */
std::string diskOfController(const std::vector<TLXX::CControllerState>& states, const std::string& name);

} // namespace Host
