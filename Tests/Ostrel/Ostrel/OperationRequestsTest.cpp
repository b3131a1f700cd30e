#include "Support/RowFixture.h"
#include "Support/TraceCapture.h"
#include "WorkerFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::CFakeDrive;
using TestSupport::CTraceCapture;

PI::COperation operation(std::uint32_t id)
{
    return PI::COperation(PI::COperationTemplate{id, 6, 1, 1, 1, false, 0, 1, 1});
}

/** A plug-in with one adapter and pending events 1, 2 and 3; no worker. */
class OperationRequests : public TestSupport::CWorkerFixture
{
protected:
    OperationRequests()
    {
        m_Drives.Add(CFakeDrive(0));
        Initialize();
        m_Plugin = m_Api.m_Plugin.m_ID;
        m_Adapter = m_Api.m_Adapters.at(0).m_ID;
        m_Drive = m_Api.m_PhysicalDrives.at(0).m_ID;
        m_Api.m_Events.resize(3);
        for (std::uint32_t index = 0; index < 3; ++index)
            m_Api.m_Events[index].m_Id = index + 1;
    }

    /** Request 8, with a list that is not empty before. */
    std::uint32_t Get(std::uint64_t id)
    {
        PI::CRequestData data = std::vector<PI::COperation>(2);
        const std::uint32_t result = m_Api.Request(PI::REQUEST_GET_OPERATIONS, id, data);
        m_Operations = std::get<std::vector<PI::COperation>>(data);
        return result;
    }

    /** Request 9. */
    std::uint32_t Check(std::uint64_t id, std::uint32_t operationId)
    {
        PI::CRequestData data = operation(operationId);
        return m_Api.Request(PI::REQUEST_CHECK_OPERATION, id, data);
    }

    /** Request 10, with an operation that carries an old event. */
    std::uint32_t Execute(std::uint64_t id, std::uint32_t operationId)
    {
        PI::COperation executed = operation(operationId);
        executed.SetEvents(std::vector<PI::CEvent>(1));
        PI::CRequestData data = executed;
        const std::uint32_t result = m_Api.Request(PI::REQUEST_EXECUTE_OPERATION, id, data);
        m_Events.clear();
        for (const PI::CEvent& event : std::get<PI::COperation>(data).Events())
            m_Events.push_back(event.m_Id);
        return result;
    }

    static std::vector<std::string> Lines(const CTraceCapture& capture)
    {
        std::vector<std::string> lines;
        for (const auto& line : capture.Lines())
            lines.push_back(std::to_string(line.m_Level) + ' ' + line.m_Text);
        return lines;
    }

    std::uint64_t m_Plugin = 0;
    std::uint64_t m_Adapter = 0;
    std::uint64_t m_Drive = 0;
    std::vector<PI::COperation> m_Operations;
    std::vector<std::uint32_t> m_Events;
};

const std::string BEFORE = "8 Before m_DataLock.Wait (sg)";
const std::string AFTER = "8 After m_DataLock.Wait (sg)";

} // namespace

TEST_F(OperationRequests, ThePluginOffersTheCollectionOfEvents)
{
    EXPECT_EQ(Get(m_Plugin), PI::ERR_SUCCESS);
    ASSERT_THAT(m_Operations, SizeIs(1));
    EXPECT_EQ(m_Operations[0].Words(),
              (PI::COperationTemplate{PI::OPERATION_GET_EVENTS, 6, 1, 1, 1, false, 0, 1, 1}));
    EXPECT_EQ(m_Operations[0].RequestedId(), PI::OPERATION_GET_EVENTS);
}

TEST_F(OperationRequests, AdaptersAndDrivesOfferNone)
{
    for (const std::uint64_t id : {m_Adapter, m_Drive}) {
        EXPECT_EQ(Get(id), PI::ERR_SUCCESS);
        EXPECT_THAT(m_Operations, IsEmpty());
    }
}

TEST_F(OperationRequests, AnUnknownObjectIsNotFound)
{
    for (const std::uint64_t id : {std::uint64_t{0}, std::uint64_t{5}, m_Plugin | 0xFFFF}) {
        EXPECT_EQ(Get(id), PI::ERR_OBJECT_NOT_FOUND);
        EXPECT_THAT(m_Operations, IsEmpty());
        EXPECT_EQ(Check(id, PI::OPERATION_GET_EVENTS), PI::ERR_OBJECT_NOT_FOUND);
        EXPECT_EQ(Execute(id, PI::OPERATION_GET_EVENTS), PI::ERR_OBJECT_NOT_FOUND);
        EXPECT_THAT(m_Events, ElementsAre(0U)) << "untouched";
    }
    EXPECT_THAT(m_Api.m_Events, SizeIs(3));
}

TEST_F(OperationRequests, AnyOperationOfAKnownObjectChecks)
{
    for (const std::uint64_t id : {m_Plugin, m_Adapter, m_Drive})
        for (const std::uint32_t operationId : {PI::OPERATION_GET_EVENTS, 0U, 1U, 0xFFFFFFFFU})
            EXPECT_EQ(Check(id, operationId), PI::ERR_SUCCESS);
}

TEST_F(OperationRequests, CollectingHandsThePendingEventsOverOnce)
{
    EXPECT_EQ(Execute(m_Plugin, PI::OPERATION_GET_EVENTS), PI::ERR_SUCCESS);
    EXPECT_THAT(m_Events, ElementsAre(1U, 2U, 3U));
    EXPECT_THAT(m_Api.m_Events, IsEmpty());
    EXPECT_EQ(Execute(m_Plugin, PI::OPERATION_GET_EVENTS), PI::ERR_SUCCESS);
    EXPECT_THAT(m_Events, IsEmpty());
}

TEST_F(OperationRequests, AnotherOperationIsNotSupportedAndEventsStayPending)
{
    for (const std::uint64_t id : {m_Adapter, m_Drive})
        EXPECT_EQ(Execute(id, PI::OPERATION_GET_EVENTS), PI::ERR_OPERATION_NOT_SUPPORTED);
    for (const std::uint32_t operationId : {0U, 50001U, 50003U})
        EXPECT_EQ(Execute(m_Plugin, operationId), PI::ERR_OPERATION_NOT_SUPPORTED);
    EXPECT_THAT(m_Api.m_Events, SizeIs(3));
}

TEST_F(OperationRequests, GetTraces)
{
    const CTraceCapture capture(~0U);
    Get(m_Adapter);
    Get(5);
    EXPECT_THAT(Lines(capture),
                ElementsAre("16 ENTER GetOperations object=0x139000000000001", BEFORE, AFTER,
                            "16 ENTER GetOperations ret=0", "16 ENTER GetOperations object=0x5", BEFORE,
                            AFTER, "16 ENTER GetOperations ret=20008"));
}

TEST_F(OperationRequests, CheckTraces)
{
    const CTraceCapture capture(~0U);
    Check(m_Adapter, 7);
    Check(5, PI::OPERATION_GET_EVENTS);
    EXPECT_THAT(Lines(capture),
                ElementsAre("16 ENTER CheckOperation operation=7", BEFORE, AFTER,
                            "16 LEAVE CheckOperation(0)", "16 ENTER CheckOperation operation=50002", BEFORE,
                            AFTER, "16 LEAVE CheckOperation(20008)"));
}

TEST_F(OperationRequests, ExecuteTraces)
{
    {
        const CTraceCapture capture(127);
        Execute(m_Plugin, PI::OPERATION_GET_EVENTS);
        EXPECT_THAT(Lines(capture),
                    ElementsAre(BEFORE, AFTER, "2 ENTER ExecutePluginOperation()", "2 ENTER GetEvents()",
                                "8 Before m_EventsLock.Wait(INFINITE)", "8 After m_EventsLock.Wait(INFINITE)",
                                "8 Before m_EventsLock.Release()", "8 After m_EventsLock.Release()",
                                "2 LEAVE GetEvents() -> 0", "2 LEAVE ExecutePluginOperation() -> 0"));
    }
    const CTraceCapture capture(127);
    Execute(m_Plugin, 50003);
    Execute(m_Drive, PI::OPERATION_GET_EVENTS);
    EXPECT_THAT(Lines(capture), ElementsAre(BEFORE, AFTER, "2 ENTER ExecutePluginOperation()",
                                            "2 LEAVE ExecutePluginOperation() -> 20005", BEFORE, AFTER));
}

// For every operation the plug-in's row is written, and no row is inserted instead.
TEST_F(OperationRequests, ExecuteUpdatesThePluginsRow)
{
    const CTraceCapture capture(128);
    Execute(m_Drive, PI::OPERATION_GET_EVENTS);
    EXPECT_THAT(Lines(capture), IsEmpty());
    Execute(m_Plugin, PI::OPERATION_GET_EVENTS);
    Execute(m_Plugin, 50003);
    EXPECT_THAT(Lines(capture),
                ElementsAre("128 Plugin NVMe updated in db.", "128 Plugin NVMe updated in db."));
}

TEST_F(OperationRequests, WithoutTheEventsLockNothingIsCollected)
{
    TestSupport::CPluginUnderTest fresh;
    fresh.m_Events.resize(2);
    PI::COperation executed = operation(PI::OPERATION_GET_EVENTS);
    executed.SetEvents(std::vector<PI::CEvent>(1));
    const CTraceCapture capture(~0U);
    EXPECT_EQ(fresh.GetEvents(fresh.m_Plugin, executed), PI::ERR_SUCCESS);
    EXPECT_THAT(executed.Events(), IsEmpty());
    EXPECT_THAT(fresh.m_Events, SizeIs(2));
    EXPECT_THAT(Lines(capture), ElementsAre("2 ENTER GetEvents()", "8 Before m_EventsLock.Wait(INFINITE)",
                                            "8 After m_EventsLock.Wait(INFINITE)"));
}

TEST_F(OperationRequests, EventsAreHandedOverWhateverTheUpdateOfTheRowThrows)
{
    // All plug-ins of this process share the database.
    const auto healthy = m_Api.m_Database->m_Access;
    m_Api.m_Database->m_Access =
        std::make_shared<TestSupport::CThrowingDatabase<std::bad_alloc>>(std::bad_alloc());
    EXPECT_EQ(Execute(m_Plugin, PI::OPERATION_GET_EVENTS), PI::ERR_SUCCESS);
    m_Api.m_Database->m_Access = healthy;
    EXPECT_THAT(m_Events, ElementsAre(1, 2, 3));
    EXPECT_THAT(m_Api.m_Events, IsEmpty());
}
