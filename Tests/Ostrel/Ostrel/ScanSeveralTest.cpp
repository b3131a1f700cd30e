#include "ScanFixture.h"
#include "Support/SourceTree.h"

#include <PI/AdapterID.h>
#include <PI/LifeTimeData.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using TestSupport::CFakeDrive;
using TLXX::CPciLocation;

/** Machines in which one drive must not be taken for another. */
class ScanSeveral : public TestSupport::CScanFixture
{
protected:
    void AddAt(const CPciLocation& location)
    {
        const auto number = static_cast<std::uint32_t>(m_Count++);
        m_Fakes.Add(CFakeDrive(number)).m_Location = location;
    }

    template<typename Member>
    std::vector<Member> Of(Member NAMESPACE_Ostrel::CNVMeAdapterData::*member) const
    {
        std::vector<Member> values;
        for (const auto& adapter : m_Adapters)
            values.push_back(adapter.*member);
        return values;
    }

private:
    int m_Count = 0;
};

std::int32_t numberOf(const CPciLocation& location)
{
    PI::CGlobalAdapterID identity("localhost");
    identity.SetSegment(location.m_Segment);
    identity.SetBus(location.m_Bus);
    identity.SetDevice(location.m_Device);
    identity.SetFunction(location.m_Function);
    identity.GenerateUniqueAdapterNumber();
    return identity.GetGlobalAdapterNumber();
}

} // namespace

// The segment counts only in the very first slot.
TEST_F(ScanSeveral, EachPartOfTheLocationCountsForTheNumberOfTheAdapter)
{
    const std::vector<CPciLocation> locations = {{0, 0, 0, 0}, {3, 0, 0, 0}, {0, 3, 0, 0},
                                                 {0, 0, 3, 0}, {0, 0, 0, 3}, {0, 3, 3, 3}};
    std::vector<std::int32_t> expected;
    for (const CPciLocation& location : locations) {
        AddAt(location);
        expected.push_back(numberOf(location));
    }
    Scan();
    EXPECT_EQ(Of(&NAMESPACE_Ostrel::CNVMeAdapterData::m_GlobalAdapterNumber), expected);
}

TEST_F(ScanSeveral, EachDriverHasItsOwnVersion)
{
    for (const std::string driver : {"nvme", "vroc", "nvme", "vroc"}) {
        CFakeDrive& drive = m_Fakes.Add(CFakeDrive(static_cast<std::uint32_t>(driver.front())));
        drive.m_Driver = driver;
        drive.m_DriverVersion = driver == "nvme" ? "6.1" : "8.0";
    }
    Scan();
    EXPECT_THAT(Of(&NAMESPACE_Ostrel::CNVMeAdapterData::m_DriverVersion),
                ElementsAre("6.1", "8.0", "6.1", "8.0"));
}

TEST_F(ScanSeveral, EachModelHasItsOwnRating)
{
    PI::SetLifeTimeFolder(TestSupport::sourceTree("Tests/Data/Scan"));
    std::uint32_t number = 0;
    for (const char* model : {"INTEL SSDPF2KX038TZ", "INTEL SSDPF2KX019T", "Another", "INTEL SSDPF2KX019T"})
        m_Fakes.Add(CFakeDrive(++number).Model(model));
    Scan();
    PI::SetLifeTimeFolder({});
    EXPECT_THAT(Of(&NAMESPACE_Ostrel::CNVMeAdapterData::m_LifetimeRating), ElementsAre(100U, 50U, 1U, 50U));
}

TEST_F(ScanSeveral, OnlyOneProductLineHasItsWearInverted)
{
    std::uint32_t number = 0;
    for (const char* model : {"INTEL SSDPED1K375GA", "INTEL SSDPED1D280GA", "INTEL SSDPED1K375A"})
        m_Fakes.Add(CFakeDrive(++number).Vendor(INTEL).Model(model).LegacyLog(3, 100));
    Scan();
    EXPECT_THAT(Of(&NAMESPACE_Ostrel::CNVMeAdapterData::m_ADNormalized), ElementsAre(97U, 3U, 3U));
}

TEST_F(ScanSeveral, AllEightBitsOfTheWarningByteAreKept)
{
    for (unsigned bit = 0; bit < 8; ++bit)
        m_Fakes.Add(CFakeDrive(bit).Warning(static_cast<std::uint8_t>(1U << bit)));
    Scan();
    EXPECT_THAT(Of(&NAMESPACE_Ostrel::CNVMeAdapterData::m_WarningFlags),
                ElementsAre(1U, 2U, 4U, 8U, 16U, 32U, 64U, 128U));
}

TEST_F(ScanSeveral, AFamilyEndsWhereABlankAndTheWordSeriesBegin)
{
    std::uint32_t number = 0;
    for (const char* text : {"TimeSeries Pro Series", "FamilySeries", "Family Series"})
        m_Fakes.Add(CFakeDrive(++number).Vendor(INTEL).Model("INTEL P").MarketingLog(text));
    Scan();
    std::vector<std::string> names;
    for (const auto& drive : m_Drives)
        names.push_back(drive.m_ProductName);
    EXPECT_THAT(names, ElementsAre("TimeSeries Pro P", "FamilySeries P", "Family P"));
}
