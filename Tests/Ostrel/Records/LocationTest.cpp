#include "Records/Location.h"

#include "AdapterAt.h"
#include "Support/GroupingLocale.h"

#include <gtest/gtest.h>

using namespace NAMESPACE_Ostrel;

namespace {

TEST(Location, NamesTheSegmentUnlessItIsZero)
{
    EXPECT_EQ(adapterLocation(adapterAt(0, 10, 20, 3)), "PCI:Bus=10&Device=20&Function=3");
    EXPECT_EQ(driveLocation(adapterLocation(adapterAt(0, 10, 20, 3))),
              "PCI:Bus=10&Device=20&Function=3&ID=0");
    EXPECT_EQ(adapterLocation(adapterAt(65536, 0, 0, 0)), "PCI:Segment=65536&Bus=0&Device=0&Function=0");
    EXPECT_EQ(driveLocation(adapterLocation(adapterAt(65536, 0, 0, 0))),
              "PCI:Segment=65536&Bus=0&Device=0&Function=0&ID=0");
}

TEST(Location, IsTheSamePlaceInARecordAndInItsIdentity)
{
    const TLXX::CPciLocation place{1, 2, 3, 4};
    EXPECT_EQ(pciLocation(adapterAt(1, 2, 3, 4)), place);
    EXPECT_EQ(pciLocation(PI::CAdapterID{1, 2, 3, 4, 5}), place);
    EXPECT_EQ(unassignedIdentity(place), (PI::CAdapterID{1, 2, 3, 4, PI::CAdapterID::UNASSIGNED}));
}

TEST(Location, IsTheSameWhateverTheProcessesLocale)
{
    const TestSupport::CGroupingLocale locale;
    EXPECT_EQ(driveLocation(adapterLocation(adapterAt(65536, 0, 0, 0))),
              "PCI:Segment=65536&Bus=0&Device=0&Function=0&ID=0");
    EXPECT_EQ(driveLocation(adapterLocation(adapterAt(0, 1000, 0, 0))),
              "PCI:Bus=1000&Device=0&Function=0&ID=0");
}

} // namespace
