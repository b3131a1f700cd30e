#include "WorkerFixture.h"

#include <Database/Database.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using testing::Contains;
using testing::HasSubstr;
using TestSupport::CFakeDrive;

/** What a host sees of a plug-in from its start to its end. */
struct CSeen
{
    std::vector<std::uint32_t> m_Events;
    std::vector<std::string> m_Topology; ///< identifiers with their change counters, after each step
    std::vector<std::string> m_Lines;    ///< of the trace
};

class CLife : public TestSupport::CWorkerFixture
{
public:
    /** Drives come, warn and go. Lines at `mask` are captured. */
    CSeen Live(std::uint32_t mask)
    {
        m_Api.m_Database = getDatabasePointer();
        for (const std::uint32_t number : {0U, 1U, 2U})
            m_Drives.Add(CFakeDrive(number));
        const TestSupport::CTraceCapture capture(mask);
        Start();
        Settle();
        Look();
        m_Drives.Change(0, [](CFakeDrive& drive) { drive.Warning(1); });
        Force();
        Look();
        m_Drives.Remove("/dev/nvme1n1");
        m_Drives.Add(CFakeDrive(4));
        Force();
        Look();
        Stop();
        m_Seen.m_Lines = capture.Texts();
        return std::move(m_Seen);
    }

private:
    void TestBody() override {}

    void Look()
    {
        for (const std::uint32_t event : CollectEvents())
            m_Seen.m_Events.push_back(event);
        PI::CRequestData data = std::vector<PI::CObject>();
        EXPECT_EQ(m_Api.Request(PI::REQUEST_GET_TOPOLOGY, 0, data), PI::ERR_SUCCESS);
        for (const PI::CObject& object : std::get<std::vector<PI::CObject>>(data))
            m_Seen.m_Topology.push_back(std::to_string(object.m_ID) + ' ' +
                                        std::to_string(object.m_UpdateCount));
    }

    CSeen m_Seen;
};

CSeen liveWithRows(std::uint32_t mask)
{
    setDatabaseFile({});
    return CLife().Live(mask);
}

CSeen liveWithoutRows(std::uint32_t mask)
{
    keepNoRows();
    CSeen seen = CLife().Live(mask);
    setDatabaseFile({});
    return seen;
}

} // namespace

TEST(NoRows, ChangeNothingThatAHostSees)
{
    constexpr std::uint32_t FLOW_AND_PROGRESS = 2 | 4 | 16;
    const CSeen with = liveWithRows(FLOW_AND_PROGRESS);
    const CSeen without = liveWithoutRows(FLOW_AND_PROGRESS);
    EXPECT_FALSE(with.m_Events.empty());
    EXPECT_EQ(with.m_Events, without.m_Events);
    EXPECT_EQ(with.m_Topology, without.m_Topology);
}

TEST(NoRows, AreInsertedAndRemovedButNeverFoundToUpdate)
{
    constexpr std::uint32_t DATABASE = 128;
    EXPECT_THAT(liveWithRows(DATABASE).m_Lines, Contains(HasSubstr("updated in db.")));
    const CSeen without = liveWithoutRows(DATABASE);
    EXPECT_THAT(without.m_Lines, Contains("Plugin NVMe inserted to db."));
    EXPECT_THAT(without.m_Lines, Contains(HasSubstr("removed from db.")));
    EXPECT_THAT(without.m_Lines, Not(Contains(HasSubstr("updated in db."))));
    EXPECT_THAT(without.m_Lines, Not(Contains(HasSubstr("xception"))));
}
