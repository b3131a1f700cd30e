#include "Base/Platform.h"

#include <TLXX/System.h>

#include <string>

#include <windows.h>

namespace Host::Platform {
namespace {

constexpr char DRIVER[] = "stornvme";

/** Since Windows 10 a program can read data from a drive that is specific to its protocol. */
constexpr DWORD OLDEST_VERSION = 10;

using GetVersionFunction = LONG(WINAPI*)(OSVERSIONINFOW*);

} // namespace

System runningSystem()
{
    // The documented function reports an older Windows to programs without a manifest.
    HMODULE const library = GetModuleHandleW(L"ntdll.dll");
    FARPROC const address = library != nullptr ? GetProcAddress(library, "RtlGetVersion") : nullptr;
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    if (address == nullptr ||
        reinterpret_cast<GetVersionFunction>(reinterpret_cast<void*>(address))(&version) != 0)
        return {"Windows", false};
    return {"Windows " + std::to_string(version.dwMajorVersion) + "." +
                std::to_string(version.dwMinorVersion) + "." + std::to_string(version.dwBuildNumber),
            version.dwMajorVersion >= OLDEST_VERSION};
}

std::string_view systemRemedy()
{
    return "Use Windows 10, Windows Server 2016 or newer.";
}

std::string_view driverName()
{
    return DRIVER;
}

bool isDriverThere()
{
    return !TLXX::CSystem::GetModuleVersion(DRIVER).empty();
}

} // namespace Host::Platform
