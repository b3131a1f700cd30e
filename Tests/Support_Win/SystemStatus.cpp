#include "Support/SystemStatus.h"

#include <windows.h>

namespace TestSupport::SystemStatus {

const std::uint32_t NO_PERMISSION = ERROR_ACCESS_DENIED;
const std::uint32_t NO_SUCH_FILE = ERROR_FILE_NOT_FOUND;
const std::uint32_t IO_ERROR = ERROR_IO_DEVICE;

} // namespace TestSupport::SystemStatus
