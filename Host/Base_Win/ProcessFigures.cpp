#include "Base/Platform.h"

#include <windows.h>
#include <psapi.h>

namespace Host::Platform {
namespace {

std::uint64_t ticksOf(const FILETIME& time)
{
    constexpr unsigned word = 32;
    return std::uint64_t{time.dwHighDateTime} << word | time.dwLowDateTime;
}

} // namespace

ProcessFigures processFigures()
{
    constexpr double tick = 1e-7; // seconds
    ProcessFigures figures;
    FILETIME created{};
    FILETIME ended{};
    FILETIME kernel{};
    FILETIME user{};
    if (GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user) != FALSE)
        figures.m_ProcessorSeconds = static_cast<double>(ticksOf(kernel) + ticksOf(user)) * tick;
    PROCESS_MEMORY_COUNTERS memory{};
    if (GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory) != FALSE)
        figures.m_ResidentBytes = memory.WorkingSetSize;
    DWORD handles = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &handles) != FALSE)
        figures.m_OpenDescriptors = handles;
    return figures;
}

} // namespace Host::Platform
