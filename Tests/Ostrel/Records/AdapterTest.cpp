#include "Records/Adapter.h"

#include <PI/StateCode.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

using NAMESPACE_Ostrel::CNVMeAdapter;

namespace {

constexpr std::uint64_t ALL_ONES_64 = 0xFFFFFFFFFFFFFFFFULL;

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
    EXPECT_EQ(adapter.m_HealthStatus, PI::HEALTH_HEALTHY);
    EXPECT_TRUE(adapter.m_HealthReasons.empty());
    EXPECT_EQ(adapter.m_UncorrectableErrors, 0U);
    EXPECT_EQ(adapter.m_SpareStatus, PI::WEAR_OK);
    EXPECT_EQ(adapter.m_DataUnitsRead, ALL_ONES_64);
    EXPECT_EQ(adapter.m_DataUnitsWritten, ALL_ONES_64);
    EXPECT_EQ(adapter.m_PowerOnHours, ALL_ONES_64);
    EXPECT_EQ(adapter.m_ReserveSpace, 100U);
    EXPECT_EQ(adapter.m_LifetimeRating, ALL_ONES_64);
    EXPECT_EQ(adapter.m_SpareState, PI::SPARE_SUFFICIENT);
    EXPECT_EQ(adapter.m_WarningThreshold, 10U);
}

TEST(AdapterRecord, CopiesDeeply)
{
    CNVMeAdapter adapter;
    adapter.m_ID = 7;
    adapter.m_Children = {8};
    adapter.m_HealthReasons = {PI::REASON_TEMPERATURE, PI::REASON_SPARE_LOW};
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
        EXPECT_EQ(other->m_HealthReasons,
                  (std::vector<std::uint32_t>{PI::REASON_TEMPERATURE, PI::REASON_SPARE_LOW}));
        EXPECT_EQ(other->m_SerialNumber, "a serial number that no small buffer holds");
    }
}

TEST(AdapterRecord, IsAnObjectWithAVirtualDestructor)
{
    EXPECT_TRUE((std::is_base_of_v<PI::CObject, CNVMeAdapter>));
    EXPECT_TRUE(std::has_virtual_destructor_v<CNVMeAdapter>);
}

TEST(AdapterRecord, DiffersWhenAnyMemberOfItsOwnDoes)
{
    const std::vector<std::function<void(CNVMeAdapter&)>> changes = {
        [](auto& a) { a.m_DeviceIndex++; },
        [](auto& a) { a.m_GlobalAdapterNumber++; },
        [](auto& a) { a.m_SerialNumber = "x"; },
        [](auto& a) { a.m_Vendor = "x"; },
        [](auto& a) { a.m_Model = "x"; },
        [](auto& a) { a.m_Name = "x"; },
        [](auto& a) { a.m_Location = "x"; },
        [](auto& a) { a.m_Driver = "x"; },
        [](auto& a) { a.m_DriverVersion = "x"; },
        [](auto& a) { a.m_FirmwareRevision = "x"; },
        [](auto& a) { a.m_VendorTag = "x"; },
        [](auto& a) { a.m_DeviceName = "x"; },
        [](auto& a) { a.m_Segment++; },
        [](auto& a) { a.m_Bus++; },
        [](auto& a) { a.m_Device++; },
        [](auto& a) { a.m_Function++; },
        [](auto& a) { a.m_WarningFlags++; },
        [](auto& a) { a.m_EANormalized++; },
        [](auto& a) { a.m_ADNormalized++; },
        [](auto& a) { a.m_UnsafeShutdowns++; },
        [](auto& a) { a.m_CorrectableErrors++; },
        [](auto& a) { a.m_Temperature = 7; },
        [](auto& a) { a.m_HealthStatus++; },
        [](auto& a) { a.m_HealthReasons.push_back(1); },
        [](auto& a) { a.m_UncorrectableErrors++; },
        [](auto& a) { a.m_SpareStatus++; },
        [](auto& a) { a.m_DataUnitsRead = 7; },
        [](auto& a) { a.m_DataUnitsWritten = 7; },
        [](auto& a) { a.m_PowerOnHours = 7; },
        [](auto& a) { a.m_ReserveSpace++; },
        [](auto& a) { a.m_LifetimeRating = 7; },
        [](auto& a) { a.m_SpareState++; },
        [](auto& a) { a.m_WarningThreshold++; },
        [](auto& a) { a.m_ModelName = "x"; },
        [](auto& a) { a.m_EndOfLifeDate = "x"; }};
    for (std::size_t index = 0; index < changes.size(); ++index) {
        CNVMeAdapter changed;
        changes[index](changed);
        EXPECT_FALSE(changed == CNVMeAdapter()) << "member " << index;
        EXPECT_TRUE(changed == changed); // NOLINT
    }
}

TEST(AdapterRecord, DoesNotDifferByItsPlaceInTheTopology)
{
    CNVMeAdapter moved;
    moved.m_ID = 7;
    moved.m_Type = 8;
    moved.m_UpdateCount = 9;
    moved.m_Parents = {1};
    moved.m_Children = {2};
    moved.m_Properties.resize(1);
    moved.m_Operations.resize(1);
    EXPECT_TRUE(moved == CNVMeAdapter());
}

} // namespace
