#include "Support/SystemStatus.h"

#include <cerrno>

namespace TestSupport::SystemStatus {

const std::uint32_t NO_PERMISSION = EACCES;
const std::uint32_t NO_SUCH_FILE = ENOENT;
const std::uint32_t IO_ERROR = EIO;

} // namespace TestSupport::SystemStatus
