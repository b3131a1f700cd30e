#include "Ostrel/Location.h"

#include "Support/GroupingLocale.h"

#include <gtest/gtest.h>

#include <vector>

using namespace NAMESPACE_Ostrel;

namespace {

CNVMeAdapter at(std::int32_t segment, std::int32_t bus, std::int32_t device, std::int32_t function)
{
    CNVMeAdapter adapter;
    adapter.m_Segment = segment;
    adapter.m_Bus = bus;
    adapter.m_Device = device;
    adapter.m_Function = function;
    return adapter;
}

TEST(Location, NamesTheSegmentUnlessItIsZero)
{
    EXPECT_EQ(adapterLocation(at(0, 10, 20, 3)), "PCI:Bus=10&Device=20&Function=3");
    EXPECT_EQ(driveLocation(at(0, 10, 20, 3)), "PCI:Bus=10&Device=20&Function=3&ID=0");
    EXPECT_EQ(adapterLocation(at(65536, 0, 0, 0)), "PCI:Segment=65536&Bus=0&Device=0&Function=0");
    EXPECT_EQ(driveLocation(at(65536, 0, 0, 0)), "PCI:Segment=65536&Bus=0&Device=0&Function=0&ID=0");
}

TEST(Location, IsTheSameWhateverTheProcessesLocale)
{
    const TestSupport::CGroupingLocale locale;
    EXPECT_EQ(driveLocation(at(65536, 0, 0, 0)), "PCI:Segment=65536&Bus=0&Device=0&Function=0&ID=0");
    EXPECT_EQ(driveLocation(at(0, 1000, 0, 0)), "PCI:Bus=1000&Device=0&Function=0&ID=0");
}

TEST(Location, FindsTheFirstIdentityWithANumber)
{
    const std::vector<PI::CAdapterID> identities = {
        {0, 1, 2, 3, PI::CAdapterID::UNASSIGNED}, {0, 1, 2, 3, 0}, {0, 1, 2, 3, 8}, {1, 1, 2, 3, 9}};
    EXPECT_EQ(findIdentity(identities, at(0, 1, 2, 3)), &identities[1]);
    EXPECT_EQ(findIdentity(identities, at(1, 1, 2, 3)), &identities[3]);
    EXPECT_EQ(findIdentity(identities, at(0, 1, 2, 4)), nullptr);
    EXPECT_EQ(findIdentity(identities, at(0, 1, 3, 3)), nullptr);
    EXPECT_EQ(findIdentity(identities, at(0, 2, 2, 3)), nullptr);
    EXPECT_EQ(findIdentity({identities[0]}, at(0, 1, 2, 3)), nullptr);
    EXPECT_EQ(findIdentity({}, at(0, 1, 2, 3)), nullptr);
}

} // namespace
