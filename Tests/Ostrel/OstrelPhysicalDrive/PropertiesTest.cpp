#include "Support/ExpectedProperty.h"
#include "Support/PluginUnderTest.h"
#include "Support/TraceCapture.h"

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
    drive.m_Status = 40180;
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
        {{30007, 23298, 1, 1, ALL_ONES, 2, 1, 1}, Text("Family SSDPF2KX")},
        {{30122, 23305, 1, 1, 4, 5, 1, 1}, Number{0}},
        {{30125, 23284, 1, 1, ALL_ONES, 5, 1, 1}, Number{0}},
        {{30137, 1, 1, 1, 0, 2, 1, 1}, Text("PCI:Bus=2&Device=3&Function=4&ID=0")},
        {{30003, 23331, 1, 1, ALL_ONES, 2, 1, 1}, Text("INTEL")},
        {{30063, 23308, 1, 1, ALL_ONES, 2, 1, 1}, Text("SSDPF2KX")},
        {{30056, 23329, 1, 1, ALL_ONES, 3, 1, 1}, PI::CCodeValue{40200, {40200}}},
        {{30059, 23304, 1, 1, ALL_ONES, 5, 21002, 1}, Number{3'662'830}},
        {{30060, 23281, 1, 1, ALL_ONES, 5, 21002, 1}, Number{3'662'829}},
        {{30017, 23324, 1, 1, ALL_ONES, 3, 1, 1}, PI::CCodeValue{40180, {40099, 40180, 40095}}, 0, 24189},
        {{30461, 23290, 1, 1, ALL_ONES, 5, 21002, 1}, Number{0x100000001ULL}},
        {{30462, 23289, 1, 1, ALL_ONES, 5, 21010, 1}, Number{6}},
        {{30460, 23278, 1, 1, ALL_ONES, 5, 21025, 1}, Number{4096}},
        {{30069, 23326, 1, 1, ALL_ONES, 9, 21000, 0}, 41.0F, 8},
        {{30022, 23320, 1, 1, ALL_ONES, 2, 1, 0}, Text("BTFU1")},
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
    EXPECT_THAT(Get(driveWithEverything(), 30442), IsEmpty());
    EXPECT_THAT(Get(driveWithEverything(), 0), IsEmpty());
}

TEST_F(CDriveProperties, OmitTheTemperatureAlone)
{
    const auto without = [&](auto change) {
        CNVMePhysicalDrive drive = driveWithEverything();
        change(drive);
        const std::vector<std::uint32_t> ids = TestSupport::propertyIds(Get(drive));
        EXPECT_EQ(ids.size(), 14U);
        EXPECT_THAT(ids, Not(Contains(30069U)));
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
    EXPECT_THAT(Get(drive, 30069), IsEmpty()) << "unknown";
    drive = driveWithEverything();
    drive.m_Model = "INTEL SSDPED1K375GA";
    EXPECT_THAT(Get(drive, 30069), IsEmpty()) << "the adapter shows it";
}

TEST_F(CDriveProperties, CutTheMakerFromTheModel)
{
    CNVMePhysicalDrive drive = driveWithEverything();
    drive.m_Vendor = "MICRON";
    drive.m_Model = "MICRON_7450_ABC";
    EXPECT_EQ(Get(drive, 30063).at(0).GetValue(), PI::CProperty::Value(std::string("ABC")));
    drive.m_Vendor = "KIOXIA";
    EXPECT_EQ(Get(drive, 30063).at(0).GetValue(), PI::CProperty::Value(std::string("MICRON_7450_ABC")));
    drive.m_Vendor = "SAMSUNG";
    drive.m_Model = "SAMSUNG";
    std::vector<PI::CProperty> properties;
    EXPECT_THROW(m_Plugin.GetPhysicalDriveProperties(drive, properties, 1), std::out_of_range);
}

TEST_F(CDriveProperties, CarryTheStatusIcon)
{
    CNVMePhysicalDrive drive = driveWithEverything();
    for (const auto& [status, icon] :
         {std::pair{40099U, 24183U}, {40180U, 24189U}, {40095U, 24177U}, {1U, 24183U}}) {
        drive.m_Status = status;
        EXPECT_EQ(Get(drive, 30017).at(0).IconPathID(), icon) << status;
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
