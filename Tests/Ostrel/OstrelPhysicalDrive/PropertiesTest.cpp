#include "Support/ExpectedProperty.h"
#include "Support/PluginUnderTest.h"
#include "Support/TraceCapture.h"

#include <PI/CaptionId.h>
#include <PI/StateCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

using namespace NAMESPACE_Ostrel;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using TestSupport::CCapturedLine;
using TestSupport::CExpectedProperty;

namespace {

constexpr std::uint32_t ALL_ONES = 0xFFFFFFFF;

CNVMePhysicalDrive driveWithEverything()
{
    CNVMePhysicalDrive drive;
    drive.m_DeviceIndex = 9;
    drive.m_ProductName = "Family SSDPF2KX";
    drive.m_Location = "PCI:Bus=2&Device=3&Function=4&ID=0";
    drive.m_Vendor = "INTEL";
    drive.m_Model = "INTEL SSDPF2KX";
    drive.m_CapacityMiB = 3'662'830;
    drive.m_UsableCapacityMiB = 3'662'829;
    drive.m_Status = PI::DRIVE_WARNING;
    drive.m_ReservedMiB = 0x100000001ULL;
    drive.m_ReservedPercent = 6;
    drive.m_BlockSize = 4096;
    drive.m_Temperature = 41.0F;
    drive.m_SerialNumber = "BTFU1";
    return drive;
}

/** The whole list, written out by hand: id, caption, four attributes, kind and units, value, sub-type, icon.
 */
std::vector<CExpectedProperty> expectedOfFullDrive()
{
    using Text = std::string;
    using Number = std::uint64_t;
    return {
        {{PI::PROP_NAME, PI::DRIVE_CAPTION_NAME, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
         Text("Family SSDPF2KX")},
        {{PI::PROP_DRIVE_CHANNEL, PI::DRIVE_CAPTION_CHANNEL, 1, 1, 4, PI::KIND_NUMBER, PI::UNIT_NONE, 1},
         Number{0}},
        {{PI::PROP_DRIVE_ID, PI::DRIVE_CAPTION_DRIVE_ID, 1, 1, ALL_ONES, PI::KIND_NUMBER, PI::UNIT_NONE, 1},
         Number{0}},
        {{PI::PROP_LOCATION, PI::CAPTION_NONE, 1, 1, 0, PI::KIND_TEXT, PI::UNIT_NONE, 1},
         Text("PCI:Bus=2&Device=3&Function=4&ID=0")},
        {{PI::PROP_VENDOR, PI::DRIVE_CAPTION_VENDOR, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
         Text("INTEL")},
        {{PI::PROP_MODEL, PI::DRIVE_CAPTION_MODEL, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
         Text("SSDPF2KX")},
        {{PI::PROP_DRIVE_TYPE, PI::DRIVE_CAPTION_TYPE, 1, 1, ALL_ONES, PI::KIND_CODE, PI::UNIT_NONE, 1},
         PI::CCodeValue{PI::DRIVE_TYPE_SSD, {PI::DRIVE_TYPE_SSD}}},
        {{PI::PROP_CAPACITY, PI::DRIVE_CAPTION_CAPACITY, 1, 1, ALL_ONES, PI::KIND_NUMBER, PI::UNIT_MIB, 1},
         Number{3'662'830}},
        {{PI::PROP_USABLE_CAPACITY, PI::DRIVE_CAPTION_USABLE_CAPACITY, 1, 1, ALL_ONES, PI::KIND_NUMBER,
          PI::UNIT_MIB, 1},
         Number{3'662'829}},
        {{PI::PROP_HEALTH_STATUS, PI::DRIVE_CAPTION_STATE, 1, 1, ALL_ONES, PI::KIND_CODE, PI::UNIT_NONE, 1},
         PI::CCodeValue{PI::DRIVE_WARNING, {PI::DRIVE_OPERATIONAL, PI::DRIVE_WARNING, PI::HEALTH_CRITICAL}},
         0,
         PI::ICON_DRIVE_WARNING},
        {{PI::PROP_RESERVED_CAPACITY, PI::DRIVE_CAPTION_RESERVED_CAPACITY, 1, 1, ALL_ONES, PI::KIND_NUMBER,
          PI::UNIT_MIB, 1},
         Number{0x100000001ULL}},
        {{PI::PROP_RESERVED_PERCENT, PI::DRIVE_CAPTION_RESERVED_PERCENT, 1, 1, ALL_ONES, PI::KIND_NUMBER,
          PI::UNIT_PERCENT, 1},
         Number{6}},
        {{PI::PROP_BLOCK_SIZE, PI::DRIVE_CAPTION_BLOCK_SIZE, 1, 1, ALL_ONES, PI::KIND_NUMBER, PI::UNIT_BYTES,
          1},
         Number{4096}},
        {{PI::PROP_DRIVE_TEMPERATURE, PI::DRIVE_CAPTION_TEMPERATURE, 1, 1, ALL_ONES, PI::KIND_FLOAT,
          PI::UNIT_CELSIUS, 0},
         41.0F,
         8},
        {{PI::PROP_SERIAL_NUMBER, PI::DRIVE_CAPTION_SERIAL_NUMBER, 1, 1, ALL_ONES, PI::KIND_TEXT,
          PI::UNIT_NONE, 0},
         Text("BTFU1")},
    };
}

class CDriveProperties : public testing::Test
{
protected:
    std::vector<PI::CProperty> Get(const CNVMePhysicalDrive& drive, std::uint32_t propertyId = 1)
    {
        std::vector<PI::CProperty> properties(3);
        EXPECT_EQ(m_Plugin.GetPhysicalDriveProperties(drive, properties, propertyId), 0U);
        return properties;
    }

    TestSupport::CPluginUnderTest m_Plugin;
};

TEST_F(CDriveProperties, ShowEveryRowAsTabled)
{
    TestSupport::expectProperties(Get(driveWithEverything()), expectedOfFullDrive());
}

TEST_F(CDriveProperties, ComeOneByOneToo)
{
    for (const CExpectedProperty& expected : expectedOfFullDrive())
        TestSupport::expectProperties(Get(driveWithEverything(), expected.m_Description.propertyId),
                                      {expected});
}

TEST_F(CDriveProperties, AreNoneForAnUnknownIdentifier)
{
    EXPECT_THAT(Get(driveWithEverything(), PI::PROP_TEMPERATURE), IsEmpty());
    EXPECT_THAT(Get(driveWithEverything(), 0), IsEmpty());
}

TEST_F(CDriveProperties, OmitTheTemperatureAlone)
{
    const auto without = [&](auto change) {
        CNVMePhysicalDrive drive = driveWithEverything();
        change(drive);
        const std::vector<std::uint32_t> ids = TestSupport::propertyIds(Get(drive));
        EXPECT_EQ(ids.size(), 14U);
        EXPECT_THAT(ids, Not(Contains(PI::PROP_DRIVE_TEMPERATURE)));
    };
    without([](CNVMePhysicalDrive& drive) { drive.m_Temperature = -1.0F; });
    without([](CNVMePhysicalDrive& drive) { drive.m_Model = "INTEL SSDPED1K375GA"; });
    without([](CNVMePhysicalDrive& drive) { drive.m_Model = "SAMSUNG MZPLL1T6"; });
    without([](CNVMePhysicalDrive& drive) { drive = CNVMePhysicalDrive(); });
}

TEST_F(CDriveProperties, AreNoneWhenTheTemperatureAskedForIsNotShown)
{
    CNVMePhysicalDrive drive = driveWithEverything();
    drive.m_Temperature = -1.0F;
    EXPECT_THAT(Get(drive, PI::PROP_DRIVE_TEMPERATURE), IsEmpty()) << "unknown";
    drive = driveWithEverything();
    drive.m_Model = "INTEL SSDPED1K375GA";
    EXPECT_THAT(Get(drive, PI::PROP_DRIVE_TEMPERATURE), IsEmpty()) << "the adapter shows it";
}

TEST_F(CDriveProperties, CutTheMakerFromTheModel)
{
    CNVMePhysicalDrive drive = driveWithEverything();
    drive.m_Vendor = "MICRON";
    drive.m_Model = "MICRON_7450_ABC";
    EXPECT_EQ(Get(drive, PI::PROP_MODEL).at(0).GetValue(), PI::CProperty::Value(std::string("ABC")));
    drive.m_Vendor = "KIOXIA";
    EXPECT_EQ(Get(drive, PI::PROP_MODEL).at(0).GetValue(),
              PI::CProperty::Value(std::string("MICRON_7450_ABC")));
    drive.m_Vendor = "SAMSUNG";
    drive.m_Model = "SAMSUNG";
    std::vector<PI::CProperty> properties;
    EXPECT_THROW(m_Plugin.GetPhysicalDriveProperties(drive, properties, 1), std::out_of_range);
}

TEST_F(CDriveProperties, CarryTheStatusIcon)
{
    CNVMePhysicalDrive drive = driveWithEverything();
    using Icon = std::pair<std::uint32_t, std::uint32_t>; // of a status
    for (const auto& [status, icon] : {Icon{PI::DRIVE_OPERATIONAL, PI::ICON_DRIVE_OPERATIONAL},
                                       {PI::DRIVE_WARNING, PI::ICON_DRIVE_WARNING},
                                       {PI::HEALTH_CRITICAL, PI::ICON_DRIVE_CRITICAL},
                                       {1U, PI::ICON_DRIVE_OPERATIONAL}}) {
        drive.m_Status = status;
        EXPECT_EQ(Get(drive, PI::PROP_HEALTH_STATUS).at(0).IconPathID(), icon) << status;
    }
}

TEST_F(CDriveProperties, TraceTheEntryOnly)
{
    const std::vector<CCapturedLine> expected = {
        {2, "Ostrel/Src/OstrelPhysicalDrive", "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::GetPhysicalDriveProperties",
         "ENTER GetPhysicalDriveProperties ()"}};
    for (const std::uint32_t mask : {2U, ALL_ONES}) {
        const TestSupport::CTraceCapture capture(mask);
        (void)Get(driveWithEverything());
        EXPECT_EQ(capture.Lines(), expected) << mask;
    }
    for (const std::uint32_t mask : {0U, 4U, 8U, 16U, 128U}) {
        const TestSupport::CTraceCapture capture(mask);
        (void)Get(driveWithEverything());
        EXPECT_THAT(capture.Lines(), IsEmpty()) << mask;
    }
}

} // namespace
