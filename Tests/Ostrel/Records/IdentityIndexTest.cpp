#include "Records/IdentityIndex.h"

#include "AdapterAt.h"

#include <gtest/gtest.h>

using namespace NAMESPACE_Ostrel;

namespace {

using Identities = std::vector<PI::CAdapterID>;

TEST(IdentityIndex, FindsTheFirstIdentityWithANumber)
{
    const Identities identities = {
        {0, 1, 2, 3, PI::CAdapterID::UNASSIGNED}, {0, 1, 2, 3, 0}, {0, 1, 2, 3, 8}, {1, 1, 2, 3, 9}};
    const CIdentityIndex index(identities);
    EXPECT_EQ(index.Find(adapterAt(0, 1, 2, 3)), &identities[1]);
    EXPECT_EQ(index.Find(adapterAt(1, 1, 2, 3)), &identities[3]);
    EXPECT_EQ(index.Find(adapterAt(0, 1, 2, 4)), nullptr);
    EXPECT_EQ(index.Find(adapterAt(0, 1, 3, 3)), nullptr);
    EXPECT_EQ(index.Find(adapterAt(0, 2, 2, 3)), nullptr);
}

TEST(IdentityIndex, HasNothingForALocationWithoutANumber)
{
    const Identities unassigned = {{0, 1, 2, 3, PI::CAdapterID::UNASSIGNED}};
    EXPECT_EQ(CIdentityIndex(unassigned).Find(adapterAt(0, 1, 2, 3)), nullptr);
    const Identities none;
    EXPECT_EQ(CIdentityIndex(none).Find(adapterAt(0, 0, 0, 0)), nullptr);
}

TEST(IdentityIndex, TellsLocationsApartThatLookAlike)
{
    // Numbers beyond those of PCI Express, whose bits would run into each other.
    const Identities identities = {
        {0, 0, 32, 0, 1}, {0, 1, 0, 0, 2}, {0, 0, 0, 256, 3}, {0xFFFFFFFF, 0, 0, 0, 4}};
    const CIdentityIndex index(identities);
    EXPECT_EQ(index.Find(adapterAt(0, 0, 32, 0)), &identities[0]);
    EXPECT_EQ(index.Find(adapterAt(0, 1, 0, 0)), &identities[1]);
    EXPECT_EQ(index.Find(adapterAt(0, 0, 0, 256)), &identities[2]);
    EXPECT_EQ(index.Find(adapterAt(-1, 0, 0, 0)), &identities[3]);
}

} // namespace
