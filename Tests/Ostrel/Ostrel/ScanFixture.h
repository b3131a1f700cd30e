#pragma once

#include "Support/FakeDrives.h"
#include "Support/PluginUnderTest.h"
#include "Support/VirtualClock.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace TestSupport {

/** Scans scripted drives as initialisation and the worker do. */
class CScanFixture : public testing::Test
{
protected:
    static constexpr std::uint16_t INTEL = 0x8086;
    static constexpr std::uint16_t SAMSUNG = 0x144D;
    static constexpr std::uint16_t KIOXIA = 0x1E0F;
    static constexpr std::uint16_t MICRON = 0x1344;
    static constexpr std::uint64_t FIRST_ID = 0x0139000000000000ULL;

    /** Enumerates and queries the drives anew. Then scans them into `m_Adapters` and `m_Drives`. */
    void Scan(bool initial = true)
    {
        m_Plugin.m_NVMeDevices.scan();
        for (NAMESPACE_Ostrel::NVMeDevice& device : m_Plugin.m_NVMeDevices) {
            device.queryIdentifyController();
            device.queryIdentifyNamespace();
            device.querySmartHealthLog();
        }
        EXPECT_EQ(m_Plugin.ScanSystem(m_Adapters, m_Drives, initial), 0U);
        ASSERT_EQ(m_Adapters.size(), m_Drives.size());
    }

    /** Scans `drive` as the only one of the machine. */
    void ScanOnly(CFakeDrive drive)
    {
        m_Fakes.Add(std::move(drive));
        Scan();
        ASSERT_EQ(m_Adapters.size(), 1U);
    }

    /** Publishes the last scan, so that later scans find it. */
    void Publish()
    {
        m_Plugin.m_Adapters = m_Adapters;
        m_Plugin.m_PhysicalDrives = m_Drives;
    }

    CVirtualClock m_Clock; // 2026-01-01
    CFakeDrives m_Fakes;
    CPluginUnderTest m_Plugin;
    std::vector<NAMESPACE_Ostrel::CNVMeAdapter> m_Adapters;
    std::vector<NAMESPACE_Ostrel::CNVMePhysicalDrive> m_Drives;
};

} // namespace TestSupport
