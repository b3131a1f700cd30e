#include "ScanFixture.h"

#include <PI/StateCode.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

using NAMESPACE_Ostrel::CNVMePhysicalDrive;
using TestSupport::CFakeDrive;

namespace {

class CScanPhysicalDrive : public TestSupport::CScanFixture
{
protected:
    /** Scans the existing drives, whether they have changed or not. */
    const CNVMePhysicalDrive& Again()
    {
        Scan(false);
        return m_Drives.at(0);
    }
};

TEST_F(CScanPhysicalDrive, TakesTheAdaptersDescription)
{
    CFakeDrive fake = CFakeDrive(1).Vendor(KIOXIA).Model("KIOXIA KCD8X").Serial("S1").Kelvin(313);
    fake.m_DeviceName = R"(\\.\PhysicalDrive2)";
    ScanOnly(fake);
    const CNVMePhysicalDrive& drive = m_Drives.at(0);
    EXPECT_EQ(drive.m_DeviceIndex, 0U);
    EXPECT_EQ(drive.m_DeviceName, ".PhysicalDrive2");
    EXPECT_EQ(drive.m_Vendor, "KIOXIA");
    EXPECT_EQ(drive.m_Model, "KIOXIA KCD8X");
    EXPECT_EQ(drive.m_ProductName, "KIOXIA KCD8X");
    EXPECT_EQ(drive.m_SerialNumber, "S1");
    EXPECT_EQ(drive.m_Temperature, 40.0F);
    EXPECT_EQ(drive.m_Location, "PCI:Bus=1&Device=0&Function=0&ID=0");
    EXPECT_EQ(drive.m_Status, PI::DRIVE_OPERATIONAL);
    EXPECT_EQ(drive.m_ReservedMiB, 0U);
    EXPECT_EQ(drive.m_ReservedPercent, 0U);
}

TEST_F(CScanPhysicalDrive, CountsCapacityInWholeMebibytes)
{
    m_Fakes.Add(CFakeDrive(1)).m_Namespace.NSZE = 2 * 2048 + 2047;
    EXPECT_EQ(Again().m_CapacityMiB, 2U);
    EXPECT_EQ(m_Drives.at(0).m_UsableCapacityMiB, 2U);
    EXPECT_EQ(m_Drives.at(0).m_BlockSize, 512U);
    m_Fakes.At(0).m_Namespace.LBAF[0].LBADS = 12;
    EXPECT_EQ(Again().m_CapacityMiB, 23U);
    EXPECT_EQ(m_Drives.at(0).m_BlockSize, 4096U);
}

TEST_F(CScanPhysicalDrive, HasNoCapacityWhenTheNamespaceTellsNone)
{
    m_Fakes.Add(CFakeDrive(1)).m_Namespace.NSZE = 0;
    EXPECT_EQ(Again().m_CapacityMiB, 0U);
    EXPECT_EQ(m_Drives.at(0).m_BlockSize, 512U);
    m_Fakes.At(0).m_Namespace.NSZE = 4096;
    m_Fakes.At(0).m_Namespace.FLBAS = 5; // a format that the namespace lacks
    EXPECT_EQ(Again().m_CapacityMiB, 0U);
    EXPECT_EQ(m_Drives.at(0).m_BlockSize, 0U);
    m_Fakes.At(0).m_NamespaceStatuses = {1};
    EXPECT_EQ(Again().m_CapacityMiB, 0U);
    EXPECT_EQ(m_Drives.at(0).m_BlockSize, 0U);
}

TEST_F(CScanPhysicalDrive, ShowsBlanksForTheUnderscoresOfAMicronModel)
{
    m_Fakes.Add(CFakeDrive(1).Vendor(MICRON).Model("MICRON_7450_MTFDKBA"));
    EXPECT_EQ(Again().m_ProductName, "MICRON 7450 MTFDKBA");
    EXPECT_EQ(m_Drives.at(0).m_Model, "MICRON_7450_MTFDKBA");
    m_Fakes.At(0).Vendor(SAMSUNG);
    EXPECT_EQ(Again().m_ProductName, "MICRON_7450_MTFDKBA");
}

TEST_F(CScanPhysicalDrive, ComposesTheIntelNameOfFamilyAndPartNumber)
{
    m_Fakes.Add(CFakeDrive(1)
                    .Vendor(INTEL)
                    .Model("INTEL SSDPE2KX040T8")
                    .MarketingLog("Intel(R) SSD DC P4510 Series"));
    EXPECT_EQ(Again().m_ProductName, "Intel(R) SSD DC P4510 SSDPE2KX040T8");
    m_Fakes.At(0).MarketingLog("  Family   Series of drives Series");
    EXPECT_EQ(Again().m_ProductName, "Family SSDPE2KX040T8");
    m_Fakes.At(0).MarketingLog("Family series  ");
    EXPECT_EQ(Again().m_ProductName, "Family series SSDPE2KX040T8");
    m_Fakes.At(0).Model("INTEL SSD PE2 KX");
    EXPECT_EQ(Again().m_ProductName, "Family series SSD PE2 KX");
    m_Fakes.At(0).Model("SSDPE2KX040T8");
    EXPECT_EQ(Again().m_ProductName, "Family series SSDPE2KX040T8");
}

TEST_F(CScanPhysicalDrive, TrimsAllWhiteSpaceFromTheFamily)
{
    m_Fakes.Add(CFakeDrive(1).Vendor(INTEL).Model("INTEL P"));
    for (const char* text :
         {" \t\r\n\v\fFamily \t\r\n\v\f", "\tFamily\r\n Series", "Family\v\f Series X\n"}) {
        m_Fakes.At(0).MarketingLog(text);
        EXPECT_EQ(Again().m_ProductName, "Family P");
    }
    for (const char* text : {"\t\r\n", "\n Series", " Series of a family"}) {
        m_Fakes.At(0).MarketingLog(text);
        EXPECT_EQ(Again().m_ProductName, "P");
    }
    m_Fakes.At(0).MarketingLog(std::string("Fami\0ly Series", 14));
    EXPECT_EQ(Again().m_ProductName, "Fami P");
}

TEST_F(CScanPhysicalDrive, IsNamedByThePartNumberAloneWithoutAFamily)
{
    m_Fakes.Add(CFakeDrive(1).Vendor(INTEL).Model("INTEL SSDPE2KX040T8"));
    EXPECT_EQ(Again().m_ProductName, "SSDPE2KX040T8") << "the page cannot be read";
    m_Fakes.At(0).MarketingLog("");
    EXPECT_EQ(Again().m_ProductName, "SSDPE2KX040T8");
    m_Fakes.At(0).MarketingLog("   ");
    EXPECT_EQ(Again().m_ProductName, "SSDPE2KX040T8");
}

TEST_F(CScanPhysicalDrive, MakesAHostileMarketingPageSafe)
{
    m_Fakes.Add(CFakeDrive(1).Vendor(INTEL).Model("INTEL P").MarketingLog(std::string(512, 'A')));
    EXPECT_EQ(Again().m_ProductName, std::string(512, 'A') + " P") << "no terminator";
    m_Fakes.At(0).MarketingLog("Fam\x1B\nily\xFF Series");
    EXPECT_EQ(Again().m_ProductName, "Fam??ily? P");
}

} // namespace
