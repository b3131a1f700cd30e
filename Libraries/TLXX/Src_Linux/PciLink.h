#pragma once

#include <TLXX/Diagnosis.h>

#include <filesystem>

namespace TLXX::Linux {

/**
 * The link of the PCI function whose folder in sysfs is `device`. Throws `std::runtime_error` when
 * descriptors or memory run out.
 */
CPciLink readLink(const std::filesystem::path& device);

} // namespace TLXX::Linux
