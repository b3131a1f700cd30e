#pragma once

#include <windows.h>

namespace Host::Platform {

/**
 * While it lives, the console of `output` shows UTF-8 and understands escape sequences for colours, if it
 * can. Does nothing when there is no console.
 */
class ConsoleState
{
public:
    explicit ConsoleState(HANDLE output);
    ~ConsoleState();
    ConsoleState(const ConsoleState&) = delete;
    ConsoleState& operator=(const ConsoleState&) = delete;

    bool isConsole() const { return m_IsConsole; }
    bool showsColours() const { return m_ShowsColours; }

private:
    HANDLE m_Output; ///< not owned
    DWORD m_FormerMode = 0;
    UINT m_FormerCodePage = 0;
    bool m_IsConsole;
    bool m_ShowsColours;
};

} // namespace Host::Platform
