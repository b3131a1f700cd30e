#pragma once

#include <cstdint>
#include <functional>

namespace NAMESPACE_Ostrel {

/**
 * Calls `found` with the device number of each disk interface of the device `instance`, in the order of their
 * indexes. Skips an interface that cannot be opened or does not tell its number.
 */
void forEachDiskInterface(const char* instance, const std::function<void(std::uint32_t)>& found);

} // namespace NAMESPACE_Ostrel
