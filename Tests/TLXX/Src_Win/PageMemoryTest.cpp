#include "Support_Win/ScriptedDevices.h"

#include <TLXX/NvmeQuery.h>
#include <TLXX/Win/DeviceNodes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include <windows.h>

namespace {

using TestSupport::CControlCall;
using TestSupport::CScriptedDevices;

/** A disk whose health log may be unreadable. */
class DeviceMemory : public testing::Test
{
protected:
    DeviceMemory()
    {
        TestSupport::CScriptedDisk disk;
        disk.m_Path = PATH;
        m_Devices.AddController(CScriptedDevices::ROOT, {disk});
        m_Devices.m_Control = [this](const CControlCall& call) -> DWORD {
            if (m_Fails)
                return ERROR_IO_DEVICE;
            std::copy(call.m_Input.begin(), call.m_Input.end(), call.m_Output);
            const std::uint32_t descriptor[] = {48, 48};
            std::memcpy(call.m_Output, descriptor, sizeof descriptor);
            call.m_Output[48] = 4;
            *call.m_Returned = call.m_OutputSize;
            return 0;
        };
    }

    ~DeviceMemory() override { TLXX::Win::rememberEnumeration({}); }

    int Warning()
    {
        TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
        (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(PATH, log);
        return log.Warning;
    }

    static constexpr char PATH[] = R"(\\.\PhysicalDrive3)";
    CScriptedDevices m_Devices{L"TLXX.dll"};
    bool m_Fails = false;
};

TEST_F(DeviceMemory, GoesByTheInstanceThatTheEnumerationFoundAtThePath)
{
    TLXX::Win::rememberEnumeration({{2, PATH, "SCSI\\DISK\\A"}});
    EXPECT_EQ(Warning(), 4);
    m_Fails = true;
    EXPECT_EQ(Warning(), 4);
    TLXX::Win::rememberEnumeration({{2, PATH, "SCSI\\DISK\\A"}});
    EXPECT_EQ(Warning(), 4) << "still the same disk";
    TLXX::Win::rememberEnumeration({{2, PATH, "SCSI\\DISK\\B"}});
    EXPECT_EQ(Warning(), 0) << "another disk at the path";
}

TEST_F(DeviceMemory, KeepsNothingOfADiskThatNoEnumerationHasFound)
{
    EXPECT_EQ(Warning(), 4);
    m_Fails = true;
    EXPECT_EQ(Warning(), 0);
}

} // namespace
