#include "Support/TryElsewhere.h"
#include "WorkerFixture.h"

#include <DatabaseORM/DatabaseDAO.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;
using TestSupport::CFakeDrive;
using TestSupport::tryElsewhere;
using TLX::Threading::WaitResult::TimedOut;

/** The actions of each cycle of the worker, whatever it finds. */
class WorkerCycle : public TestSupport::CWorkerFixture
{
protected:
    /** The identifiers of the adapters, in their order. */
    std::vector<std::uint64_t> Adapters() const
    {
        std::vector<std::uint64_t> ids;
        for (const auto& adapter : m_Api.m_Adapters)
            ids.push_back(adapter.m_ID);
        return ids;
    }

    std::vector<std::uint64_t> Counts() const
    {
        std::vector<std::uint64_t> counts;
        for (const auto& adapter : m_Api.m_Adapters)
            counts.push_back(adapter.m_UpdateCount);
        return counts;
    }
};

/** A database that runs out of memory at every statement. */
class CExhaustedDatabase : public DatabaseWrapper::DatabaseDAO
{
public:
    std::vector<std::string> query(const std::string&) override { throw std::bad_alloc(); }
};

} // namespace

TEST_F(WorkerCycle, GoesOnWithoutANamespaceThatDoesNotAnswer)
{
    m_Drives.Add(CFakeDrive(0));
    m_Drives.Add(CFakeDrive(1));
    Start();
    Settle();
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.m_NamespaceStatuses = {5}; });
    m_Drives.Change(1, [](CFakeDrive& drive) { drive.Kelvin(310); });
    Force();
    EXPECT_EQ(m_Api.m_Adapters.at(0).m_Temperature, 37.0F);
}

TEST_F(WorkerCycle, GoesOnWithoutAHealthLogThatDoesNotAnswer)
{
    m_Drives.Add(CFakeDrive(0));
    m_Drives.Add(CFakeDrive(1));
    Start();
    Settle();
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.m_HealthStatuses = {5}; });
    m_Drives.Change(1, [](CFakeDrive& drive) { drive.Kelvin(310); });
    Force();
    EXPECT_EQ(m_Api.m_Adapters.at(0).m_Temperature, 37.0F);
}

TEST_F(WorkerCycle, LinksAndCountsTheAdaptersAlthoughNothingHasChanged)
{
    m_Drives.Add(CFakeDrive(0));
    m_Drives.Add(CFakeDrive(1));
    Start();
    Settle();
    EXPECT_THAT(Counts(), ElementsAre(1U, 1U));
    m_Api.m_Plugin.m_Children = {1, 2, 3};
    Force();
    EXPECT_EQ(m_Calls, 0) << "nothing has changed";
    EXPECT_THAT(Adapters(), SizeIs(2));
    EXPECT_EQ(m_Api.m_Plugin.m_Children, Adapters());
    for (const auto& adapter : m_Api.m_Adapters)
        EXPECT_THAT(adapter.m_Parents, ElementsAre(m_Api.m_Plugin.m_ID));
    EXPECT_THAT(Counts(), ElementsAre(2U, 2U));
    Force();
    EXPECT_THAT(Counts(), ElementsAre(3U, 3U));
}

TEST_F(WorkerCycle, HoldsBothLocksFromTheEnumerationToTheLastQuery)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    std::vector<std::uint32_t> dataLock;
    std::vector<std::uint32_t> eventsLock;
    m_Drives.OnQuery([&](const std::string&) {
        dataLock.push_back(tryElsewhere(m_Api.m_DataLock));
        eventsLock.push_back(tryElsewhere(m_Api.m_EventsLock));
    });
    Force();
    EXPECT_THAT(dataLock, SizeIs(4)) << "the enumeration and three queries";
    EXPECT_THAT(dataLock, Each(std::uint32_t{TimedOut}));
    EXPECT_THAT(eventsLock, SizeIs(4));
    EXPECT_THAT(eventsLock, Each(std::uint32_t{TimedOut}));
}

// The cycle that makes an event calls the host, even when a failure to write the rows ends the cycle early.
TEST_F(WorkerCycle, TellsOfAnEventInItsOwnCycleAlthoughTheRowsFail)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    Settle();
    auto exhausted = std::make_shared<DatabaseORM::storage_t>(*m_Api.m_Database);
    exhausted->m_Access = std::make_shared<CExhaustedDatabase>();
    m_Api.m_Database = exhausted;
    m_Drives.Add(CFakeDrive(1));
    Force();
    EXPECT_EQ(m_Calls, 1);
    EXPECT_THAT(m_Api.m_Events, SizeIs(1));
}

TEST_F(WorkerCycle, ATimedCyclesOwnTimeDoesNotShortenTheNextInterval)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    Settle();
    m_Drives.OnQuery([this](const std::string&) { m_Clock.Advance(1'000); });
    m_Clock.Advance(INTERVAL);
    EXPECT_EQ(AwaitWorker(), INTERVAL);
}

TEST_F(WorkerCycle, AForcedCyclesOwnTimeDoesNotShortenTheNextInterval)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    Settle();
    m_Drives.OnQuery([this](const std::string&) { m_Clock.Advance(1'000); });
    m_Api.m_ForceWorker.Set();
    EXPECT_EQ(AwaitWorker(), INTERVAL);
}
