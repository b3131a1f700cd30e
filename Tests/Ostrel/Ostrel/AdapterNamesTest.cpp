#include "WorkerFixture.h"

#include <gtest/gtest.h>

namespace {

using TestSupport::CFakeDrive;

class AdapterNames : public TestSupport::CWorkerFixture
{};

} // namespace

TEST_F(AdapterNames, Request2NamesAnAdapterThatHasANameAlready)
{
    m_Drives.Add(CFakeDrive(1));
    Initialize();
    m_Api.m_Adapters.at(0).m_Name = "as it was";
    EXPECT_EQ(StartWorker(), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Api.m_Adapters.at(0).m_Name, "NVMe PCI Adapter (1)");
}

TEST_F(AdapterNames, ASecondRequest2NamesByNumberAgainWhatAScanNamedBySerialNumber)
{
    m_Drives.Add(CFakeDrive(1));
    Start();
    Settle();
    EXPECT_EQ(m_Api.m_Adapters.at(0).m_Name, "NVMe PCI Adapter (SN1)");
    EXPECT_EQ(StartWorker(), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Api.m_Adapters.at(0).m_Name, "NVMe PCI Adapter (1)");
}
