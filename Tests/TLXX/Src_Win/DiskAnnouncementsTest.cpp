#include "Support_Win/ImportPatch.h"

#include <TLX/Event.h>
#include <TLXX/DeviceNotification.h>

#include <gtest/gtest.h>

#include <optional>
#include <string_view>

#include <windows.h>
#include <cfgmgr32.h>
#include <winioctl.h>

namespace {

using TestSupport::CImportPatch;
using TLX::Threading::CEvent;
using TLX::Threading::WaitResult::Taken;
using TLXX::CDeviceNotification;

/** The part of the configuration manager that announces, as the test has it. */
struct CAnnouncer
{
    bool m_CanRegister = true;
    bool m_CanUnregister = true;
    CONFIGRET m_Result = CR_SUCCESS;
    int m_Ended = 0;
    PCM_NOTIFY_CALLBACK m_Callback = nullptr;
    PVOID m_Context = nullptr;

    void Announce(CM_NOTIFY_ACTION action) const
    {
        CM_NOTIFY_EVENT_DATA data{};
        data.FilterType = CM_NOTIFY_FILTER_TYPE_DEVICEINTERFACE;
        data.u.DeviceInterface.ClassGuid = GUID_DEVINTERFACE_DISK;
        EXPECT_EQ(m_Callback(registration(), m_Context, action, &data, sizeof data), ERROR_SUCCESS);
    }

    static HCMNOTIFICATION registration() { return reinterpret_cast<HCMNOTIFICATION>(0x1234); }
};

CAnnouncer* g_Announcer = nullptr;

CONFIGRET WINAPI registerNotification(PCM_NOTIFY_FILTER filter, PVOID context, PCM_NOTIFY_CALLBACK callback,
                                      PHCMNOTIFICATION registration)
{
    EXPECT_EQ(filter->cbSize, sizeof *filter);
    EXPECT_EQ(filter->Flags, 0U);
    EXPECT_EQ(filter->FilterType, CM_NOTIFY_FILTER_TYPE_DEVICEINTERFACE);
    EXPECT_TRUE(IsEqualGUID(filter->u.DeviceInterface.ClassGuid, GUID_DEVINTERFACE_DISK));
    if (g_Announcer->m_Result != CR_SUCCESS)
        return g_Announcer->m_Result;
    g_Announcer->m_Context = context;
    g_Announcer->m_Callback = callback;
    *registration = CAnnouncer::registration();
    return CR_SUCCESS;
}

CONFIGRET WINAPI unregisterNotification(HCMNOTIFICATION registration)
{
    EXPECT_EQ(registration, CAnnouncer::registration());
    // The system returns only after a call that is under way, which still needs all that it uses.
    g_Announcer->Announce(CM_NOTIFY_ACTION_DEVICEINTERFACEREMOVAL);
    ++g_Announcer->m_Ended;
    return CR_SUCCESS;
}

FARPROC WINAPI find(HMODULE library, LPCSTR name)
{
    const auto given = [](auto* function, bool there) {
        return there ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function)) : nullptr;
    };
    if (std::string_view(name) == "CM_Register_Notification")
        return given(registerNotification, g_Announcer->m_CanRegister);
    if (std::string_view(name) == "CM_Unregister_Notification")
        return given(unregisterNotification, g_Announcer->m_CanUnregister);
    return GetProcAddress(library, name);
}

/** A system that announces disks, whether the one beneath can or not. */
class DiskAnnouncements : public testing::Test
{
protected:
    DiskAnnouncements()
    {
        EXPECT_EQ(m_Event.Init(false, false), Taken);
        g_Announcer = &m_Announcer;
    }
    ~DiskAnnouncements() override { g_Announcer = nullptr; }

    CAnnouncer m_Announcer;
    const CImportPatch m_Patch{L"TLXX.dll", "GetProcAddress", find};
    CEvent m_Event;
};

TEST_F(DiskAnnouncements, SignalWhenADiskComesAndWhenOneGoes)
{
    const CDeviceNotification notification(m_Event);
    ASSERT_TRUE(notification.Active());
    for (const auto action :
         {CM_NOTIFY_ACTION_DEVICEINTERFACEARRIVAL, CM_NOTIFY_ACTION_DEVICEINTERFACEREMOVAL}) {
        m_Announcer.Announce(action);
        EXPECT_EQ(m_Event.Wait(), Taken);
    }
    EXPECT_EQ(m_Announcer.m_Ended, 0);
}

TEST_F(DiskAnnouncements, EndOnlyAfterACallThatIsUnderWay)
{
    std::optional<CDeviceNotification> notification(std::in_place, m_Event);
    ASSERT_TRUE(notification->Active());
    notification.reset();
    EXPECT_EQ(m_Announcer.m_Ended, 1);
}

TEST_F(DiskAnnouncements, CannotBeHadWhereTheSystemRefusesThem)
{
    m_Announcer.m_Result = CR_FAILURE;
    EXPECT_FALSE(CDeviceNotification(m_Event).Active());
    EXPECT_EQ(m_Announcer.m_Ended, 0) << "nothing was registered";
}

TEST_F(DiskAnnouncements, CannotBeHadFromASystemThatLacksEitherFunction)
{
    m_Announcer.m_CanRegister = false;
    EXPECT_FALSE(CDeviceNotification(m_Event).Active());
    m_Announcer.m_CanRegister = true;
    m_Announcer.m_CanUnregister = false;
    EXPECT_FALSE(CDeviceNotification(m_Event).Active());
    EXPECT_EQ(m_Announcer.m_Callback, nullptr);
}

} // namespace
