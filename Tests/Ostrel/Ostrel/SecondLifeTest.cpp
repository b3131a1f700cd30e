#include "Support/RowFixture.h"
#include "WorkerFixture.h"

#include <PI/EventCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <vector>

namespace {

using testing::ElementsAre;
using TestSupport::CFakeDrive;

/** Requests 1, 2 and 3, and then the same once more. */
class SecondLife : public TestSupport::CWorkerFixture
{};

/** A database that runs out of memory at each statement. */
class RowFaults : public TestSupport::CWorkerFixture
{
protected:
    RowFaults()
    {
        m_Drives.Add(CFakeDrive(0));
        m_Api.m_Database->m_Access =
            std::make_shared<TestSupport::CThrowingDatabase<std::bad_alloc>>(std::bad_alloc());
    }

    ~RowFaults() override { m_Api.m_Database->m_Access = m_Healthy; }
    RowFaults(const RowFaults&) = delete;
    RowFaults& operator=(const RowFaults&) = delete;

    /** All plug-ins of this process share the database. */
    std::shared_ptr<DatabaseWrapper::DatabaseDAO> m_Healthy = m_Api.m_Database->m_Access;
};

} // namespace

TEST_F(SecondLife, BeginsWithTheAdaptersOfItsOwnAlone)
{
    m_Drives.Add(CFakeDrive(0));
    m_Drives.Add(CFakeDrive(1));
    Start();
    Stop();
    Initialize();
    EXPECT_THAT(m_Api.m_Plugin.m_Children,
                ElementsAre(m_Api.m_Adapters.at(0).m_ID, m_Api.m_Adapters.at(1).m_ID));
    EXPECT_THAT(m_Api.m_Adapters.at(0).m_Parents, ElementsAre(m_Api.m_Plugin.m_ID));
}

TEST_F(SecondLife, HasAWorkerThatWatches)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    Stop();
    Initialize();
    StartWorker();
    ASSERT_EQ(m_Api.m_WorkerThread->Wait(0), TLX::Threading::WaitResult::TimedOut)
        << "the worker has ended, or none was started";
    EXPECT_EQ(AwaitWorker(), FIRST_WAIT);
    Settle();
    m_Drives.Add(CFakeDrive(1));
    Force();
    EXPECT_THAT(CollectEvents(), ElementsAre(PI::EVENT_ADAPTER_ADDED));
}

TEST_F(RowFaults, KeepNoRequestFromItsWork)
{
    Start();
    EXPECT_EQ(m_Api.m_Adapters.size(), 1U);
    EXPECT_EQ(m_Api.m_Adapters.at(0).m_Name, "NVMe PCI Adapter (1)");
}
