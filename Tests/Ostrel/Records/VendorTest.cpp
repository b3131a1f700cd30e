#include "Records/Vendor.h"

#include <gtest/gtest.h>

using namespace NAMESPACE_Ostrel;

namespace {

TEST(Vendor, IsKnownByItsPciIdentifier)
{
    EXPECT_EQ(vendorName(0x8086), "INTEL");
    EXPECT_EQ(vendorName(0x144D), "SAMSUNG");
    EXPECT_EQ(vendorName(0x1E0F), "KIOXIA");
    EXPECT_EQ(vendorName(0x1344), "MICRON");
    EXPECT_EQ(vendorName(0), "");
    EXPECT_EQ(vendorName(0x8680), "");
}

TEST(Vendor, ChoosesTheDisplayNameWithoutRegardToCase)
{
    EXPECT_EQ(adapterDisplayName("INTEL", "1"), "NVMe Intel PCI Adapter (1)");
    EXPECT_EQ(adapterDisplayName("iNtEl", "1"), "NVMe Intel PCI Adapter (1)");
    EXPECT_EQ(adapterDisplayName("samsung", "2"), "NVMe Samsung PCI Adapter (2)");
    EXPECT_EQ(adapterDisplayName("KIOXIA", "3"), "NVMe Kioxia PCI Adapter (3)");
    EXPECT_EQ(adapterDisplayName("Micron", "4"), "NVMe Micron PCI Adapter (4)");
    EXPECT_EQ(adapterDisplayName("", "5"), "NVMe PCI Adapter (5)");
    EXPECT_EQ(adapterDisplayName("INTEL ", "6"), "NVMe PCI Adapter (6)");
    EXPECT_EQ(adapterDisplayName("INTE", "7"), "NVMe PCI Adapter (7)");
}

} // namespace
