#include "Support/SilentPipe.h"

#include <TLX/Thread.h>

namespace TestSupport {

bool CSilentPipe::ReadInterruptibly() const
{
    return TLX::Threading::interruptibly([this] { return static_cast<int>(ReadByte()); }) != 0;
}

} // namespace TestSupport
