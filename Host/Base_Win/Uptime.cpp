#include "Base/Platform.h"

#include <windows.h>

namespace Host::Platform {

std::optional<std::uint64_t> uptime()
{
    return GetTickCount64();
}

std::string bootIdentity()
{
    // Windows counts its boots here.
    constexpr wchar_t key[] =
        L"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Memory Management\\PrefetchParameters";
    DWORD boots = 0;
    DWORD size = sizeof boots;
    const LSTATUS result =
        RegGetValueW(HKEY_LOCAL_MACHINE, key, L"BootId", RRF_RT_REG_DWORD, nullptr, &boots, &size);
    return result == ERROR_SUCCESS ? std::to_string(boots) : std::string();
}

} // namespace Host::Platform
