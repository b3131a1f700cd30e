#include "Terminal/Messages.h"

#include "Base/Text.h"

#include <utility>

namespace Host::Cli {

void Messages::tell(const std::string& message)
{
    const std::scoped_lock guard(m_Lock);
    m_Write(wipe() + "ostrel: " + printableLines(message) + '\n');
}

void Messages::pass(const std::string& line)
{
    if (!m_Terminal)
        return;
    const std::scoped_lock guard(m_Lock);
    const std::size_t width = displayWidth(line);
    const std::size_t former = std::exchange(m_Width, width);
    if (width > 0 || former > 0)
        m_Write(line + std::string(former > width ? former - width : 0, ' ') + '\r');
}

void Messages::passesElsewhere(std::size_t width)
{
    const std::scoped_lock guard(m_Lock);
    m_Width = m_Terminal ? width : 0;
}

std::string Messages::wipe()
{
    const std::size_t width = std::exchange(m_Width, 0);
    return width == 0 ? std::string() : std::string(width, ' ') + '\r';
}

} // namespace Host::Cli
