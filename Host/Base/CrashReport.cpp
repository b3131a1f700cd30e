#include "Base/Platform.h"

namespace Host::Platform {

int CrashReport::print() const noexcept
{
    try {
        m_Output.write(m_Text);
    } catch (...) {
        // The exit code tells it, too.
    }
    return m_ExitCode;
}

} // namespace Host::Platform
