#include "Base_Win/ConsoleState.h"

namespace Host::Platform {

ConsoleState::ConsoleState(HANDLE output)
    : m_Output(output),
      m_IsConsole(GetConsoleMode(output, &m_FormerMode) != FALSE),
      m_ShowsColours(m_IsConsole &&
                     SetConsoleMode(output, m_FormerMode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE)
{
    if (!m_IsConsole)
        return;
    m_FormerCodePage = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
}

ConsoleState::~ConsoleState()
{
    if (!m_IsConsole)
        return;
    SetConsoleOutputCP(m_FormerCodePage);
    SetConsoleMode(m_Output, m_FormerMode);
}

} // namespace Host::Platform
