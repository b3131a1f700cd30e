#include "Platform.h"

#include <utility>

// The headers after it need this one first.
#include <windows.h>
#include <cfgmgr32.h>
#include <winioctl.h>

namespace TLXX {
namespace {

using Register = CONFIGRET(WINAPI*)(PCM_NOTIFY_FILTER, PVOID, PCM_NOTIFY_CALLBACK, PHCMNOTIFICATION);
using Unregister = CONFIGRET(WINAPI*)(HCMNOTIFICATION);

template<typename Function>
Function configurationManagerFunction(const char* name)
{
    const HMODULE library = GetModuleHandleW(L"cfgmgr32.dll");
    if (library == nullptr)
        return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

/** The system calls this when a disk's interface comes or goes. */
class CDiskAnnouncements : public IAnnouncements
{
public:
    CDiskAnnouncements(Unregister unregister, std::function<void()> announce)
        : m_Unregister(unregister), m_Announce(std::move(announce))
    {}

    ~CDiskAnnouncements() override
    {
        // Waits for a running call.
        if (m_Registration != nullptr)
            (void)m_Unregister(m_Registration);
    }

    bool Start(Register start)
    {
        CM_NOTIFY_FILTER filter{};
        filter.cbSize = sizeof filter;
        filter.FilterType = CM_NOTIFY_FILTER_TYPE_DEVICEINTERFACE;
        filter.u.DeviceInterface.ClassGuid = GUID_DEVINTERFACE_DISK;
        return start(&filter, this, &CDiskAnnouncements::Called, &m_Registration) == CR_SUCCESS;
    }

private:
    static DWORD WINAPI Called(HCMNOTIFICATION, PVOID context, CM_NOTIFY_ACTION, PCM_NOTIFY_EVENT_DATA, DWORD)
    {
        static_cast<CDiskAnnouncements*>(context)->m_Announce();
        return ERROR_SUCCESS;
    }

    const Unregister m_Unregister;
    const std::function<void()> m_Announce;
    HCMNOTIFICATION m_Registration = nullptr;
};

} // namespace

std::unique_ptr<IAnnouncements> Platform::subscribe(std::function<void()> announce)
{
    // Older versions of Windows, and replacements of it, lack these functions.
    const auto start = configurationManagerFunction<Register>("CM_Register_Notification");
    const auto end = configurationManagerFunction<Unregister>("CM_Unregister_Notification");
    if (start == nullptr || end == nullptr)
        return nullptr;
    auto announcements = std::make_unique<CDiskAnnouncements>(end, std::move(announce));
    if (!announcements->Start(start))
        return nullptr;
    return announcements;
}

} // namespace TLXX
