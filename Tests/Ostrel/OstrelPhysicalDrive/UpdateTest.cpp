#include "Records/PhysicalDrive.h"
#include "Support/VirtualClock.h"

#include <PI/EventCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace {

using NAMESPACE_Ostrel::CNVMeAdapter;
using NAMESPACE_Ostrel::CNVMePhysicalDrive;

class DriveUpdate : public testing::Test
{
protected:
    DriveUpdate()
    {
        m_Live.m_ID = 0x0139000000000008;
        m_Live.m_ProductName = "Fast 1";
        m_Fresh.m_ID = 9;
        m_Fresh.m_ProductName = "Fast 2";
        m_Adapter.m_Name = "NVMe PCI Adapter (A)";
    }

    TestSupport::CVirtualClock m_Clock{5'000};
    CNVMeAdapter m_Adapter;
    CNVMePhysicalDrive m_Live;
    CNVMePhysicalDrive m_Fresh;
    std::vector<PI::CEvent> m_Events;
};

} // namespace

TEST_F(DriveUpdate, CountsAChangeThatMakesNoEvent)
{
    m_Live.m_UpdateCount = 41;
    m_Fresh.m_CapacityMiB = 1;
    m_Fresh.m_ReservedPercent = 1;
    m_Live.Update(m_Fresh, m_Adapter, m_Events);
    EXPECT_THAT(m_Events, testing::IsEmpty());
    EXPECT_EQ(m_Live.m_UpdateCount, 42U);
}

TEST_F(DriveUpdate, AnotherBlockSizeMakesAnEvent)
{
    m_Fresh.m_BlockSize = 4096;
    m_Live.Update(m_Fresh, m_Adapter, m_Events);
    ASSERT_EQ(m_Events.size(), 1U);
    const PI::CEvent& event = m_Events[0];
    EXPECT_EQ(event.m_Id, PI::EVENT_DRIVE_CHANGED);
    EXPECT_EQ(event.m_Severity, PI::EVENT_SEVERITY_INFORMATION);
    EXPECT_EQ(event.m_Source, 0x0139000000000008U);
    EXPECT_EQ(event.m_Time, 5'000U);
    EXPECT_EQ(event.SourceText(), "Fast 1");
    EXPECT_EQ(event.PlaceHolder1(), "NVMe PCI Adapter (A)");
    EXPECT_EQ(event.PlaceHolder2(), "Fast 1");
    EXPECT_EQ(m_Live.m_UpdateCount, 0U);
}

TEST_F(DriveUpdate, AnotherReservedAmountMakesAnEvent)
{
    m_Fresh.m_ReservedMiB = 5;
    m_Live.Update(m_Fresh, m_Adapter, m_Events);
    ASSERT_EQ(m_Events.size(), 1U);
    EXPECT_EQ(m_Events[0].m_Id, PI::EVENT_DRIVE_CHANGED);
    EXPECT_EQ(m_Live.m_UpdateCount, 0U);
}
