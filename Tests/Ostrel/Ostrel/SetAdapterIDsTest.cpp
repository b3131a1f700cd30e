#include "Support/TraceCapture.h"
#include "WorkerFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using TestSupport::CCapturedLine;
using TestSupport::CFakeDrive;
using TestSupport::CTraceCapture;

class SetAdapterIDs : public TestSupport::CWorkerFixture
{
protected:
    static PI::CAdapterID Identity(std::uint32_t bus, std::uint32_t number)
    {
        PI::CAdapterID identity;
        identity.m_Bus = bus;
        identity.m_AdapterNumber = number;
        return identity;
    }

    std::uint32_t Request(std::vector<PI::CAdapterID> identities)
    {
        m_Identities = std::move(identities);
        return StartWorker();
    }

    std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        for (const auto& adapter : m_Api.m_Adapters)
            names.push_back(adapter.m_Name);
        return names;
    }
};

} // namespace

TEST_F(SetAdapterIDs, NamesEachMakersAdaptersByTheHostsNumber)
{
    std::uint32_t bus = 0;
    for (const unsigned vendor : {0x8086U, 0x144DU, 0x1E0FU, 0x1344U, 0x1234U})
        m_Drives.Add(CFakeDrive(++bus).Vendor(static_cast<std::uint16_t>(vendor)));
    Initialize();
    EXPECT_EQ(Request({Identity(5, 50), Identity(4, 40), Identity(3, 30), Identity(2, 20), Identity(1, 0)}),
              PI::ERR_SUCCESS);
    EXPECT_THAT(Names(), ElementsAre("NVMe Intel PCI Adapter (0)", "NVMe Samsung PCI Adapter (20)",
                                     "NVMe Kioxia PCI Adapter (30)", "NVMe Micron PCI Adapter (40)",
                                     "NVMe PCI Adapter (50)"));
}

TEST_F(SetAdapterIDs, AnUnassignedNumberNeverRenames)
{
    m_Drives.Add(CFakeDrive(1));
    Initialize();
    EXPECT_EQ(Request({Identity(1, 0xFFFFFFFF)}), PI::ERR_SUCCESS);
    EXPECT_THAT(Names(), ElementsAre(""));
    EXPECT_EQ(Request({Identity(1, 8)}), PI::ERR_SUCCESS);
    EXPECT_THAT(Names(), ElementsAre("NVMe PCI Adapter (8)"));
}

TEST_F(SetAdapterIDs, TheFirstNumberOfALocationStays)
{
    m_Drives.Add(CFakeDrive(1));
    Initialize();
    EXPECT_EQ(Request({Identity(1, 7)}), PI::ERR_SUCCESS);
    EXPECT_EQ(Request({Identity(1, 9)}), PI::ERR_SUCCESS);
    EXPECT_THAT(Names(), ElementsAre("NVMe PCI Adapter (7)"));
    EXPECT_THAT(m_Api.m_AdapterIDs, ElementsAre(Identity(1, 7), Identity(1, 9)));
}

TEST_F(SetAdapterIDs, AnAdapterThatTheHostDidNotListKeepsItsName)
{
    m_Drives.Add(CFakeDrive(1));
    m_Drives.Add(CFakeDrive(2));
    Initialize();
    m_Api.m_Adapters[0].m_Name = "as it was";
    PI::CAdapterID elsewhere = Identity(1, 3);
    elsewhere.m_Function = 1;
    EXPECT_EQ(Request({elsewhere, Identity(2, 4)}), PI::ERR_SUCCESS);
    EXPECT_THAT(Names(), ElementsAre("as it was", "NVMe PCI Adapter (4)"));
}

TEST_F(SetAdapterIDs, WritesTheNamesOfTheListedAdaptersAlone)
{
    for (std::uint32_t bus = 1; bus < 4; ++bus)
        m_Drives.Add(CFakeDrive(bus));
    Initialize();
    const auto line = [this](std::size_t adapter, const std::string& name) {
        return "Adapter (" + name + ") (" + std::to_string(m_Api.m_Adapters[adapter].m_GlobalAdapterNumber) +
               ") updated in db.";
    };
    const CTraceCapture capture(128);
    EXPECT_EQ(Request({Identity(3, 30), Identity(2, 0xFFFFFFFF), Identity(1, 10)}), PI::ERR_SUCCESS);
    EXPECT_THAT(capture.Texts(),
                ElementsAre(line(0, "NVMe PCI Adapter (10)"), line(2, "NVMe PCI Adapter (30)")));
}

TEST_F(SetAdapterIDs, EachLaterScanNamesAdaptersBySerialNumber)
{
    m_Drives.Add(CFakeDrive(1));
    Start();
    EXPECT_THAT(Names(), ElementsAre("NVMe PCI Adapter (1)"));
    Force();
    EXPECT_THAT(Names(), ElementsAre("NVMe PCI Adapter (SN1)"));
}

TEST_F(SetAdapterIDs, ASecondRequestStartsNoSecondWorker)
{
    m_Drives.Add(CFakeDrive(1));
    Initialize();
    const CTraceCapture capture(2);
    EXPECT_EQ(StartWorker(), PI::ERR_SUCCESS);
    const auto* const worker = m_Api.m_WorkerThread.get();
    EXPECT_EQ(StartWorker(), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Api.m_WorkerThread.get(), worker);
    EXPECT_EQ(m_Api.m_AdapterIDs.size(), 2U);
    EXPECT_EQ(AwaitWorker(), FIRST_WAIT);
    std::size_t starts = 0;
    for (const std::string& text : capture.Texts())
        starts += text == "ENTER Worker()" ? 1 : 0;
    EXPECT_EQ(starts, 1U);
    Stop();
}

TEST_F(SetAdapterIDs, TracesEntryLockAndExit)
{
    const CTraceCapture capture(~0U);
    EXPECT_EQ(Request({}), PI::ERR_SUCCESS);
    std::vector<CCapturedLine> own = capture.Lines();
    const std::string function = "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::SetAdapterIDs";
    std::erase_if(own, [&](const CCapturedLine& line) { return line.m_Function != function; });
    const auto line = [&function](std::uint32_t level, const char* text) {
        return CCapturedLine{level, "Ostrel/Src/Ostrel", function, text};
    };
    EXPECT_THAT(own, ElementsAre(line(2, "ENTER SetAdapterIDs"), line(8, "Before m_DataLock.Wait (sg)"),
                                 line(8, "After m_DataLock.Wait (sg)"), line(2, "LEAVE SetAdapterIDs")));
}
