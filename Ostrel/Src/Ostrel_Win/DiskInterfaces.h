#pragma once

#include <cstdint>
#include <functional>

namespace NAMESPACE_Ostrel {

/**
 * Calls `found` with the device number of each disk interface of the device `instance`, in the order of their
 * indexes. An interface that cannot be opened, or does not tell its number, is passed over.
 */
void forEachDiskInterface(const char* instance, const std::function<void(std::uint32_t)>& found);

} // namespace NAMESPACE_Ostrel
