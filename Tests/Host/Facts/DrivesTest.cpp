#include "Facts/Drives.h"

#include "Host/Catalogue.h"
#include "Host/Objects.h"
#include "Support/FakeDrives.h"

#include <PI/StateCode.h>
#include <TLXX/NvmeQuery.h>

namespace {

using Host::Cli::Drive;
using Host::Cli::joinDrives;
using HostTest::DriveObjects;
using HostTest::property;

class DrivesTest : public testing::Test
{
protected:
    static Drive joined(const DriveObjects& objects)
    {
        const Host::ObjectStore store(HostTest::topologyOf({objects}));
        return joinDrives(store).at(0);
    }

    DriveObjects m_Objects{0x81, "SERIAL", "/dev/nvme0n1"};

private:
    HostTest::Catalogue m_Catalogue;
};

TEST_F(DrivesTest, TakesTheAdaptersValuesAndTheDrivesWhereTheAdapterHasNone)
{
    const Drive drive = joined(m_Objects);
    EXPECT_EQ(drive.m_AdapterId, 0x81U);
    EXPECT_EQ(drive.m_DriveId, 0x82U);
    EXPECT_EQ(drive.m_Device, "/dev/nvme0n1");
    EXPECT_EQ(drive.m_Vendor, "INTEL");
    EXPECT_EQ(drive.m_Model, "MODEL-OF-THE-ADAPTER");
    EXPECT_EQ(drive.m_Serial, "SERIAL");
    EXPECT_EQ(drive.m_Firmware, "FW1");
    EXPECT_EQ(drive.m_Location, "PCI:Bus=129&Device=0&Function=0");
    EXPECT_EQ(drive.m_PciAddress, "0000:81:1f.1");
    EXPECT_EQ(drive.m_Driver, "nvme");
    EXPECT_EQ(drive.m_DriverVersion, "6.1");
    EXPECT_EQ(drive.m_CapacityMiB, 1907729U);
    EXPECT_EQ(drive.m_BlockSize, 4096U);
    EXPECT_EQ(drive.m_Temperature, 36.0F);
    EXPECT_EQ(drive.m_Wear, 120);
    EXPECT_EQ(drive.m_Health->m_Code, PI::HEALTH_CRITICAL);
    EXPECT_EQ(drive.m_Health->m_Text, "Critical");
    ASSERT_EQ(drive.m_Reasons.size(), 2U);
    EXPECT_EQ(drive.m_Reasons[1].m_Code, PI::REASON_READ_ONLY);
    EXPECT_EQ(drive.m_Reasons[1].m_Text, "Media is read-only");
    EXPECT_EQ(drive.m_Spare, 98);
    EXPECT_EQ(drive.m_SpareThreshold, 7);
    EXPECT_EQ(drive.m_DataRead->m_Value, 1.6F);
    EXPECT_EQ(drive.m_DataRead->m_Unit, PI::UNIT_TIB);
    EXPECT_EQ(drive.m_DataWritten->m_Unit, PI::UNIT_GIB);
    EXPECT_EQ(drive.m_PowerOnHours, 11U);
    EXPECT_EQ(drive.m_MediaErrors, 13U);
}

TEST_F(DrivesTest, TakesTheTemperatureFromWhicheverObjectShowsIt)
{
    m_Objects.remove(PI::PROP_DRIVE_TEMPERATURE);
    EXPECT_EQ(joined(m_Objects).m_Temperature, std::nullopt);
    m_Objects.m_Adapter.m_Properties.push_back(property(PI::PROP_TEMPERATURE, PI::UNIT_CELSIUS, 41.0F));
    EXPECT_EQ(joined(m_Objects).m_Temperature, 41.0F);
}

TEST_F(DrivesTest, WhatIsNotReportedStaysEmpty)
{
    for (const std::uint32_t id :
         {PI::PROP_DATA_READ, PI::PROP_DATA_WRITTEN, PI::PROP_ENDURANCE_USED, PI::PROP_POWER_ON_HOURS,
          PI::PROP_STATUS_REASONS, PI::PROP_CAPACITY, PI::PROP_HEALTH_STATUS, PI::PROP_FIRMWARE})
        m_Objects.remove(id);
    const Drive drive = joined(m_Objects);
    EXPECT_FALSE(drive.m_DataRead || drive.m_DataWritten || drive.m_Wear || drive.m_PowerOnHours ||
                 drive.m_CapacityMiB || drive.m_Health);
    EXPECT_TRUE(drive.m_Reasons.empty());
    EXPECT_EQ(drive.m_Firmware, "");
}

TEST_F(DrivesTest, TheHealthOfADriveWithoutAHealthLogIsUnknown)
{
    for (const std::uint32_t id : {PI::PROP_DRIVE_TEMPERATURE, PI::PROP_DATA_READ, PI::PROP_DATA_WRITTEN,
                                   PI::PROP_ENDURANCE_USED, PI::PROP_POWER_ON_HOURS})
        m_Objects.remove(id);
    m_Objects.remove(PI::PROP_STATUS_REASONS);
    // The bad health remains, because another log reported it.
    EXPECT_EQ(joined(m_Objects).m_Health->m_Text, "Critical");
    m_Objects.remove(PI::PROP_HEALTH_STATUS);
    m_Objects.m_Adapter.m_Properties.push_back(
        property(PI::PROP_HEALTH_STATUS, 1, std::uint32_t{PI::HEALTH_HEALTHY}, std::vector<std::uint32_t>{}));
    EXPECT_EQ(joined(m_Objects).m_HealthLogRead, false);
    EXPECT_EQ(joined(m_Objects).m_Health->m_Text, "Unknown");
    EXPECT_EQ(joined(m_Objects).m_Health->m_Code, std::nullopt);
    EXPECT_FALSE(joined(m_Objects).m_Spare || joined(m_Objects).m_SpareThreshold ||
                 joined(m_Objects).m_MediaErrors);
    m_Objects.m_Adapter.m_Properties.push_back(property(PI::PROP_POWER_ON_HOURS, 1, std::uint64_t{0}));
    EXPECT_EQ(joined(m_Objects).m_Health->m_Code, PI::HEALTH_HEALTHY);
    EXPECT_EQ(joined(m_Objects).m_HealthLogRead, true);
}

TEST_F(DrivesTest, AHealthWithoutAnythingFromAHealthLogIsTakenAsItIs)
{
    for (const std::uint32_t id :
         {PI::PROP_DRIVE_TEMPERATURE, PI::PROP_DATA_READ, PI::PROP_DATA_WRITTEN, PI::PROP_POWER_ON_HOURS,
          PI::PROP_AVAILABLE_SPARE, PI::PROP_SPARE_THRESHOLD, PI::PROP_MEDIA_ERRORS, PI::PROP_STATUS_REASONS})
        m_Objects.remove(id);
    EXPECT_EQ(joined(m_Objects).m_HealthLogRead, std::nullopt);
    EXPECT_EQ(joined(m_Objects).m_Health->m_Text, "Critical");
}

TEST_F(DrivesTest, TheAddressIsTheSystemsAndTheLocationThePlugins)
{
    TLXX::CControllerState state;
    state.m_DeviceName = "/dev/nvme0n1";
    state.m_Location = TLXX::CPciLocation{0x10000, 0x81, 0x1f, 1};
    const auto with = [&] {
        return joinDrives(Host::ObjectStore(HostTest::topologyOf({m_Objects}), {state})).at(0);
    };
    EXPECT_EQ(with().m_PciAddress, "10000:81:1f.1");
    EXPECT_EQ(with().m_Location, "PCI:Bus=129&Device=0&Function=0");
    EXPECT_EQ(with().m_Place, Host::Cli::ShownPlace::WithoutSegment);
    state.m_Location->m_Bus = 0x82;
    EXPECT_EQ(with().m_PciAddress, "10000:82:1f.1");
    EXPECT_EQ(with().m_Place, Host::Cli::ShownPlace::Another);
    state.m_Location = TLXX::CPciLocation{0, 0x81, 0x1f, 1};
    EXPECT_EQ(with().m_Place, Host::Cli::ShownPlace::Real);
}

TEST_F(DrivesTest, TheDateCountsWearOnlyWhereThatIsMeasured)
{
    EXPECT_EQ(joined(m_Objects).m_EndOfLifeDate, "");
    m_Objects.m_Adapter.m_Properties.push_back(property(PI::PROP_END_OF_LIFE_DATE, 1, "2030-01-01"));
    m_Objects.m_Adapter.m_Properties.push_back(
        property(PI::PROP_WEAR_STATE, 1, std::uint32_t{PI::WEAR_OK}, std::vector<std::uint32_t>{}));
    EXPECT_EQ(joined(m_Objects).m_EndOfLifeDate, "2030-01-01");
    EXPECT_TRUE(joined(m_Objects).m_DateCountsWear);
    m_Objects.m_Adapter.m_ID |= 0x0139000000000000;
    m_Objects.m_Adapter.m_Children.clear();
    EXPECT_FALSE(joined(m_Objects).m_DateCountsWear) << "the drive has not told its wear";
    TestSupport::CFakeDrives drives;
    drives.Add(TestSupport::CFakeDrive(0)).LegacyLog(10, 100);
    TLXX::VendorLogPage page{};
    (void)TLXX::NVMeStorageQueryPropertyGetVendorSpecificLogPage("/dev/nvme0n1", 0xCA, page);
    EXPECT_TRUE(joined(m_Objects).m_DateCountsWear);
    m_Objects.remove(PI::PROP_VENDOR);
    EXPECT_FALSE(joined(m_Objects).m_DateCountsWear);
}

TEST(BytesOf, CountTheUnitAndRefuseWhatIsNone)
{
    EXPECT_EQ(Host::Cli::bytesOf({2, PI::UNIT_BYTES}), 2.0);
    EXPECT_EQ(Host::Cli::bytesOf({1.5F, PI::UNIT_KIB}), 1536.0);
    EXPECT_EQ(Host::Cli::bytesOf({1, PI::UNIT_EIB}), 0x1p60);
    EXPECT_EQ(Host::Cli::bytesOf({1, PI::UNIT_CELSIUS}), std::nullopt);
}

TEST_F(DrivesTest, AnAddressOfZerosIsNone)
{
    for (const std::uint32_t id : {PI::PROP_PCI_BUS, PI::PROP_PCI_DEVICE, PI::PROP_PCI_FUNCTION}) {
        m_Objects.remove(id);
        m_Objects.m_Adapter.m_Properties.push_back(property(id, 1, std::uint64_t{0}));
    }
    EXPECT_EQ(joined(m_Objects).m_PciAddress, "");
}

TEST_F(DrivesTest, AnAdapterWithoutADriveIsStillALine)
{
    m_Objects.m_Adapter.m_Children.clear();
    const Drive drive = joined(m_Objects);
    EXPECT_EQ(drive.m_Serial, "SERIAL");
    EXPECT_EQ(drive.m_DriveId, std::nullopt);
    EXPECT_EQ(drive.m_CapacityMiB, std::nullopt);
}

TEST_F(DrivesTest, EachAdapterIsJoinedWithItsOwnDrive)
{
    DriveObjects other(0x91, "OTHER", "/dev/nvme1n1");
    other.remove(PI::PROP_CAPACITY);
    other.m_Drive.m_Properties.push_back(property(PI::PROP_CAPACITY, PI::UNIT_MIB, std::uint64_t{5}));
    const Host::ObjectStore store(HostTest::topologyOf({m_Objects, other}));
    const std::vector<Drive> drives = joinDrives(store);
    ASSERT_EQ(drives.size(), 2U);
    EXPECT_EQ(drives[0].m_CapacityMiB, 1907729U);
    EXPECT_EQ(drives[1].m_Serial, "OTHER");
    EXPECT_EQ(drives[1].m_CapacityMiB, 5U);
}

} // namespace
