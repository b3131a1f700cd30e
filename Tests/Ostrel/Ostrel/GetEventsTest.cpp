#include "WorkerFixture.h"

#include <DatabaseORM/DatabaseDAO.h>
#include <DatabaseORM/DatabaseException.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using testing::Each;
using testing::IsEmpty;
using testing::Not;
using TestSupport::CFakeDrive;

/** A database without rows that calls a function at each statement. */
class CWatchedDatabase : public DatabaseWrapper::DatabaseDAO
{
public:
    explicit CWatchedDatabase(std::function<void()> atStatement) : m_AtStatement(std::move(atStatement)) {}

    std::vector<std::string> query(const std::string&) override
    {
        m_AtStatement();
        return {};
    }

private:
    std::function<void()> m_AtStatement;
};

/**
 * The operations of the plug-in's object with two pending events, and the state of the database meanwhile.
 */
class GetEvents : public TestSupport::CWorkerFixture
{
protected:
    GetEvents()
    {
        m_Drives.Add(CFakeDrive(0));
        Initialize();
        m_Api.m_Events.resize(2);
    }

    void AtStatement(std::function<void()> action)
    {
        auto watched = std::make_shared<DatabaseORM::storage_t>(*m_Api.m_Database);
        watched->m_Access = std::make_shared<CWatchedDatabase>(std::move(action));
        m_Api.m_Database = watched;
    }

    /** Request 10, with an operation that carries three events of its own. */
    std::uint32_t Execute(std::uint32_t operationId)
    {
        PI::COperation operation(PI::COperationTemplate{operationId, 6, 1, 1, 1, false, 0, 1, 1});
        operation.SetEvents(std::vector<PI::CEvent>(3));
        PI::CRequestData data = operation;
        const std::uint32_t result = m_Api.Request(PI::REQUEST_EXECUTE_OPERATION, m_Api.m_Plugin.m_ID, data);
        m_Carried = std::get<PI::COperation>(data).Events().size();
        return result;
    }

    std::size_t m_Carried = 0; ///< events in the operation when request 10 has returned
};

} // namespace

TEST_F(GetEvents, SucceedsAlthoughTheRowCannotBeWritten)
{
    AtStatement([] { throw DBEXCEPTION::DatabaseException("disk full"); });
    EXPECT_EQ(Execute(PI::OPERATION_GET_EVENTS), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Carried, 2U);
}

TEST_F(GetEvents, AnUnknownOperationIsThatAlthoughTheRowCannotBeWritten)
{
    AtStatement([] { throw DBEXCEPTION::DatabaseException("disk full"); });
    EXPECT_EQ(Execute(50003), PI::ERR_OPERATION_NOT_SUPPORTED);
}

TEST_F(GetEvents, TakesTheEventsBeforeTheRowIsWritten)
{
    std::vector<std::size_t> pending;
    AtStatement([&] { pending.push_back(m_Api.m_Events.size()); });
    EXPECT_EQ(Execute(PI::OPERATION_GET_EVENTS), PI::ERR_SUCCESS);
    EXPECT_THAT(pending, Not(IsEmpty()));
    EXPECT_THAT(pending, Each(0U));
}

TEST_F(GetEvents, AnUnknownOperationKeepsTheEventsThatItCarries)
{
    EXPECT_EQ(Execute(50003), PI::ERR_OPERATION_NOT_SUPPORTED);
    EXPECT_EQ(m_Carried, 3U);
    EXPECT_EQ(m_Api.m_Events.size(), 2U);
}
