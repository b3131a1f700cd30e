#include "Facts/Observation.h"

#include "Host/Catalogue.h"
#include "Host/Objects.h"
#include "Plugins/ObjectStore.h"
#include "Support/FakeDrives.h"

#include <PI/LifeTimeData.h>
#include <PI/StateCode.h>
#include <TLXX/NvmeQuery.h>

#include <gmock/gmock.h>

#include <limits>

namespace {

using namespace Host::Cli;
using HostTest::DriveObjects;
using HostTest::property;

class ObservationTest : public testing::Test
{
protected:
    ObservationTest() { PI::SetLifeTimeFolder(HostTest::Built::SHARE); }

    ObservedDrive look() const
    {
        const Host::Moment moment{77, 5, "boot"};
        const Observation observation = observe(Host::ObjectStore(HostTest::topologyOf({m_Drive})), moment);
        EXPECT_EQ(observation.m_Moment, moment);
        EXPECT_EQ(observation.m_Drives.size(), 1U);
        return observation.m_Drives.at(0);
    }

    template<typename... Value>
    void setAdapter(std::uint32_t id, Value... value)
    {
        m_Drive.remove(id);
        m_Drive.m_Adapter.m_Properties.push_back(property(id, 1, value...));
    }

    HostTest::Catalogue m_Catalogue;
    DriveObjects m_Drive{0x10, "SERIAL", "/dev/nvme0n1"};
};

TEST_F(ObservationTest, TellsWhatThePluginShows)
{
    const ObservedDrive drive = look();
    EXPECT_EQ(drive.m_Key, "SERIAL");
    EXPECT_EQ(drive.m_Serial, "SERIAL");
    EXPECT_EQ(drive.m_Device, "/dev/nvme0n1");
    EXPECT_EQ(drive.m_PciAddress, "0000:10:1f.1");
    EXPECT_EQ(drive.m_Firmware, "FW1");
    EXPECT_EQ(drive.m_CapacityMiB, 1907729U);
    EXPECT_EQ(drive.m_BlockSize, 4096U);
    EXPECT_EQ(drive.m_Warnings, WARNING_SPARE | WARNING_READ_ONLY);
    EXPECT_EQ(drive.m_Temperature, 36.0F);
    EXPECT_EQ(drive.m_MediaErrors, 13U);
    EXPECT_EQ(drive.m_Spare, 98);
    EXPECT_EQ(drive.m_TemperatureLimit, std::nullopt);
    EXPECT_EQ(drive.m_CriticalTemperatureLimit, std::nullopt);
}

TEST_F(ObservationTest, TakesTemperatureAndLimitsFromTheDrivesOwnPages)
{
    TestSupport::CFakeDrives drives;
    TestSupport::CFakeDrive& asked = drives.Add(TestSupport::CFakeDrive(0));
    asked.Kelvin(330);
    asked.m_Controller.WCTEMP = 343;
    asked.m_Controller.CCTEMP = 358;
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
    (void)TLXX::NVMeStorageQueryPropertyIdentifyController("/dev/nvme0n1", controller);
    (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo("/dev/nvme0n1", log);
    EXPECT_EQ(look().m_Temperature, 57.0F);
    EXPECT_EQ(look().m_TemperatureLimit, 70.0F);
    EXPECT_EQ(look().m_CriticalTemperatureLimit, 85.0F);
    drives.Change(0, [](TestSupport::CFakeDrive& drive) {
        drive.Kelvin(0);
        drive.m_Controller.WCTEMP = 0;
        drive.m_Controller.CCTEMP = 0xFFFF;
    });
    (void)TLXX::NVMeStorageQueryPropertyIdentifyController("/dev/nvme0n1", controller);
    (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo("/dev/nvme0n1", log);
    EXPECT_EQ(look().m_Temperature, std::nullopt);
    EXPECT_EQ(look().m_TemperatureLimit, std::nullopt);
    EXPECT_EQ(look().m_CriticalTemperatureLimit, std::nullopt);
    // The plug-in shows this one as 65262 degrees.
    drives.Change(0, [](TestSupport::CFakeDrive& drive) { drive.Kelvin(0xFFFF); });
    (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo("/dev/nvme0n1", log);
    EXPECT_EQ(look().m_Temperature, std::nullopt);
}

TEST_F(ObservationTest, TakesTheMarginOfTheTemperatureFromItsStatistics)
{
    TestSupport::CFakeDrives drives;
    drives.Add(TestSupport::CFakeDrive(0)).TemperatureLog(100, 20);
    EXPECT_EQ(look().m_TemperatureMargin, std::nullopt) << "nobody has read them";
    TLXX::VendorLogPage page{};
    (void)TLXX::NVMeStorageQueryPropertyGetVendorSpecificLogPage("/dev/nvme0n1", 0xC5, page);
    EXPECT_EQ(look().m_TemperatureMargin, TLXX::ETemperatureMargin::Critical);
}

TEST_F(ObservationTest, EachReasonIsAWarning)
{
    const std::pair<std::uint32_t, int> reasons[] = {{PI::REASON_SPARE_LOW, 0x01},
                                                     {PI::REASON_TEMPERATURE, 0x02},
                                                     {PI::REASON_RELIABILITY_DEGRADED, 0x04},
                                                     {PI::REASON_READ_ONLY, 0x08},
                                                     {PI::REASON_MEMORY_BACKUP_FAILED, 0x10},
                                                     {PI::FORESEEN_REASONS[0], 0}};
    for (const auto& [reason, warning] : reasons) {
        setAdapter(PI::PROP_STATUS_REASONS, std::vector<std::uint32_t>{reason}, std::vector<std::uint32_t>{});
        EXPECT_EQ(look().m_Warnings, warning) << reason;
    }
    m_Drive.remove(PI::PROP_STATUS_REASONS);
    EXPECT_EQ(look().m_Warnings, 0);
}

TEST_F(ObservationTest, AHealthLogThatWasNotReadTellsNothing)
{
    for (const std::uint32_t id : {PI::PROP_DRIVE_TEMPERATURE, PI::PROP_POWER_ON_HOURS, PI::PROP_DATA_READ,
                                   PI::PROP_DATA_WRITTEN, PI::PROP_STATUS_REASONS})
        m_Drive.remove(id);
    const ObservedDrive drive = look();
    EXPECT_EQ(drive.m_Warnings, std::nullopt);
    EXPECT_EQ(drive.m_MediaErrors, std::nullopt);
    EXPECT_EQ(drive.m_Spare, std::nullopt);
    EXPECT_EQ(drive.m_Temperature, std::nullopt);
}

TEST_F(ObservationTest, NoCapacityAndAllOnesAreNotKnown)
{
    m_Drive.remove(PI::PROP_CAPACITY);
    m_Drive.m_Drive.m_Properties.push_back(property(PI::PROP_CAPACITY, 1, std::uint64_t{0}));
    setAdapter(PI::PROP_MEDIA_ERRORS, std::numeric_limits<std::uint64_t>::max());
    const ObservedDrive drive = look();
    EXPECT_EQ(drive.m_CapacityMiB, std::nullopt);
    EXPECT_EQ(drive.m_BlockSize, std::nullopt);
    EXPECT_EQ(drive.m_MediaErrors, std::nullopt);
}

TEST_F(ObservationTest, NeitherSpareNorThresholdIsNoSpareToTell)
{
    setAdapter(PI::PROP_AVAILABLE_SPARE, 0, 0, 100, 1);
    EXPECT_EQ(look().m_Spare, 0);
    setAdapter(PI::PROP_SPARE_THRESHOLD, 0, 1, 100, 1);
    EXPECT_EQ(look().m_Spare, std::nullopt);
    setAdapter(PI::PROP_AVAILABLE_SPARE, 4, 0, 100, 1);
    EXPECT_EQ(look().m_Spare, 4);
}

TEST_F(ObservationTest, TheDrivesOwnWearComesFromItsHealthLog)
{
    TestSupport::CFakeDrives drives;
    drives.Add(TestSupport::CFakeDrive(0)).m_Health.PercentageUsed = 255;
    EXPECT_EQ(look().m_OwnWear, std::nullopt);
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
    (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo("/dev/nvme0n1", log);
    EXPECT_EQ(look().m_OwnWear, 255);
}

TEST_F(ObservationTest, WearIsKnownOfRatedModelsAlone)
{
    EXPECT_EQ(look().m_Wear, std::nullopt);
    setAdapter(PI::PROP_MODEL, "SSDPE2KX020T8");
    EXPECT_EQ(look().m_Wear, 120);
}

TEST_F(ObservationTest, TheWearStateTellsWhetherBlocksAreBelowNew)
{
    EXPECT_EQ(look().m_BelowNew, std::nullopt);
    const std::pair<std::uint32_t, bool> states[] = {
        {PI::WEAR_OK, false}, {PI::WEAR_WARNING, true}, {PI::WEAR_CRITICAL, true}};
    for (const auto& [state, below] : states) {
        setAdapter(PI::PROP_WEAR_STATE, state, std::vector<std::uint32_t>{});
        EXPECT_EQ(look().m_BelowNew, below) << state;
    }
    m_Drive.m_Adapter.m_ID = m_Drive.m_Drive.m_Parents[0] = 0x0139000000000001;
    setAdapter(PI::PROP_WEAR_STATE, PI::WEAR_OK, std::vector<std::uint32_t>{});
    EXPECT_EQ(look().m_BelowNew, std::nullopt) << "the log with the wear was never read";
    TestSupport::CFakeDrives drives;
    drives.Add(TestSupport::CFakeDrive(0)).LegacyLog(10, 100);
    TLXX::VendorLogPage page{};
    (void)TLXX::NVMeStorageQueryPropertyGetVendorSpecificLogPage("/dev/nvme0n1", 0xCA, page);
    EXPECT_EQ(look().m_BelowNew, false);
    setAdapter(PI::PROP_VENDOR, "KIOXIA");
    EXPECT_EQ(look().m_BelowNew, std::nullopt) << "drives of this maker are not asked";
}

} // namespace
