#include "Records/PhysicalDrive.h"

#include <PI/StateCode.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <type_traits>
#include <vector>

using NAMESPACE_Ostrel::CNVMePhysicalDrive;

namespace {

TEST(PhysicalDriveRecord, StartsWithDefaults)
{
    const CNVMePhysicalDrive drive;
    EXPECT_EQ(drive.m_DeviceIndex, 0xFFFFFFFFU);
    EXPECT_EQ(drive.m_SerialNumber, "");
    EXPECT_EQ(drive.m_Vendor, "");
    EXPECT_EQ(drive.m_Model, "");
    EXPECT_EQ(drive.m_ProductName, "");
    EXPECT_EQ(drive.m_Location, "");
    EXPECT_EQ(drive.m_DeviceName, "");
    EXPECT_EQ(drive.m_Status, PI::DRIVE_OPERATIONAL);
    EXPECT_EQ(drive.m_BlockSize, 512U);
    EXPECT_EQ(drive.m_ReservedMiB, 0U);
    EXPECT_EQ(drive.m_ReservedPercent, 100U);
    EXPECT_EQ(drive.m_CapacityMiB, 0U);
    EXPECT_EQ(drive.m_UsableCapacityMiB, 0U);
    EXPECT_EQ(drive.m_Temperature, -1.0F);
}

TEST(PhysicalDriveRecord, CopiesDeeply)
{
    CNVMePhysicalDrive drive;
    drive.m_ID = 8;
    drive.m_Parents = {7};
    drive.m_SerialNumber = "a serial number that no small buffer holds";
    const CNVMePhysicalDrive copy = drive;
    CNVMePhysicalDrive assigned;
    assigned = drive;

    drive.m_Parents[0] = 1;
    drive.m_SerialNumber[0] = 'X';
    for (const CNVMePhysicalDrive* other : {&copy, &static_cast<const CNVMePhysicalDrive&>(assigned)}) {
        EXPECT_EQ(other->m_ID, 8U);
        EXPECT_EQ(other->m_Parents, std::vector<std::uint64_t>{7});
        EXPECT_EQ(other->m_SerialNumber, "a serial number that no small buffer holds");
    }
}

TEST(PhysicalDriveRecord, IsAnObjectWithAVirtualDestructor)
{
    EXPECT_TRUE((std::is_base_of_v<PI::CObject, CNVMePhysicalDrive>));
    EXPECT_TRUE(std::has_virtual_destructor_v<CNVMePhysicalDrive>);
}

TEST(PhysicalDriveRecord, DiffersWhenAnyMemberOfItsOwnDoes)
{
    const std::vector<std::function<void(CNVMePhysicalDrive&)>> changes = {
        [](auto& d) { d.m_DeviceIndex = 7; },     [](auto& d) { d.m_SerialNumber = "x"; },
        [](auto& d) { d.m_Vendor = "x"; },        [](auto& d) { d.m_Model = "x"; },
        [](auto& d) { d.m_ProductName = "x"; },   [](auto& d) { d.m_Location = "x"; },
        [](auto& d) { d.m_DeviceName = "x"; },    [](auto& d) { d.m_Status++; },
        [](auto& d) { d.m_BlockSize++; },         [](auto& d) { d.m_ReservedMiB++; },
        [](auto& d) { d.m_ReservedPercent++; },   [](auto& d) { d.m_CapacityMiB++; },
        [](auto& d) { d.m_UsableCapacityMiB++; }, [](auto& d) { d.m_Temperature = 7; }};
    for (std::size_t index = 0; index < changes.size(); ++index) {
        CNVMePhysicalDrive changed;
        changes[index](changed);
        EXPECT_FALSE(changed == CNVMePhysicalDrive()) << "member " << index;
    }
}

TEST(PhysicalDriveRecord, DoesNotDifferByItsPlaceInTheTopology)
{
    CNVMePhysicalDrive moved;
    moved.m_ID = 7;
    moved.m_Type = 8;
    moved.m_UpdateCount = 9;
    moved.m_Parents = {1};
    moved.m_Children = {2};
    moved.m_Properties.resize(1);
    moved.m_Operations.resize(1);
    EXPECT_TRUE(moved == CNVMePhysicalDrive());
}

} // namespace
