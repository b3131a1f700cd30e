#include "Exhaustion.h"

#include <cerrno>
#include <stdexcept>

namespace TLXX::Linux {

void throwIfExhausted(int error)
{
    if (error == EMFILE || error == ENFILE || error == ENOMEM)
        throw std::runtime_error("no file descriptor or memory was left to look for NVMe controllers");
}

} // namespace TLXX::Linux
