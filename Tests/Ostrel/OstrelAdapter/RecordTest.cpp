#include "OstrelAdapter/Record.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

using NAMESPACE_Ostrel::CNVMeAdapter;

namespace {

constexpr std::uint64_t ALL_ONES = 0xFFFFFFFFFFFFFFFFULL;

TEST(AdapterRecord, StartsWithDefaults)
{
    const CNVMeAdapter adapter;
    for (const std::string& text :
         {adapter.m_SerialNumber, adapter.m_Vendor, adapter.m_Model, adapter.m_Name, adapter.m_Location,
          adapter.m_Driver, adapter.m_DriverVersion, adapter.m_FirmwareRevision, adapter.m_VendorTag,
          adapter.m_DeviceName, adapter.m_ModelName, adapter.m_EndOfLifeDate})
        EXPECT_EQ(text, "");
    EXPECT_EQ(adapter.m_Segment, 0);
    EXPECT_EQ(adapter.m_Bus, 0);
    EXPECT_EQ(adapter.m_Device, 0);
    EXPECT_EQ(adapter.m_Function, 0);
    EXPECT_EQ(adapter.m_WarningFlags, 0U);
    EXPECT_EQ(adapter.m_EANormalized, 100U);
    EXPECT_EQ(adapter.m_ADNormalized, 0U);
    EXPECT_EQ(adapter.m_UnsafeShutdowns, 0U);
    EXPECT_EQ(adapter.m_CorrectableErrors, 0U);
    EXPECT_EQ(adapter.m_Temperature, -1.0F);
    EXPECT_EQ(adapter.m_HealthStatus, 40024U);
    EXPECT_TRUE(adapter.m_HealthReasons.empty());
    EXPECT_EQ(adapter.m_UncorrectableErrors, 0U);
    EXPECT_EQ(adapter.m_SpareStatus, 40252U);
    EXPECT_EQ(adapter.m_DataUnitsRead, ALL_ONES);
    EXPECT_EQ(adapter.m_DataUnitsWritten, ALL_ONES);
    EXPECT_EQ(adapter.m_PowerOnHours, ALL_ONES);
    EXPECT_EQ(adapter.m_ReserveSpace, 100U);
    EXPECT_EQ(adapter.m_LifetimeRating, ALL_ONES);
    EXPECT_EQ(adapter.m_SpareState, 40473U);
    EXPECT_EQ(adapter.m_WarningThreshold, 10U);
}

TEST(AdapterRecord, CopiesDeeply)
{
    CNVMeAdapter adapter;
    adapter.m_ID = 7;
    adapter.m_Children = {8};
    adapter.m_HealthReasons = {40459, 40460};
    adapter.m_SerialNumber = "a serial number that no small buffer holds";
    const CNVMeAdapter copy = adapter;
    CNVMeAdapter assigned;
    assigned = adapter;

    adapter.m_HealthReasons[0] = 1;
    adapter.m_Children[0] = 1;
    adapter.m_SerialNumber[0] = 'X';
    for (const CNVMeAdapter* other : {&copy, &static_cast<const CNVMeAdapter&>(assigned)}) {
        EXPECT_EQ(other->m_ID, 7U);
        EXPECT_EQ(other->m_Children, std::vector<std::uint64_t>{8});
        EXPECT_EQ(other->m_HealthReasons, (std::vector<std::uint32_t>{40459, 40460}));
        EXPECT_EQ(other->m_SerialNumber, "a serial number that no small buffer holds");
    }
}

TEST(AdapterRecord, IsAnObjectWithAVirtualDestructor)
{
    EXPECT_TRUE((std::is_base_of_v<PI::CObject, CNVMeAdapter>));
    EXPECT_TRUE(std::has_virtual_destructor_v<CNVMeAdapter>);
}

} // namespace
