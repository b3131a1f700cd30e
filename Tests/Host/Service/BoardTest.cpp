#include "Service/Board.h"

#include "Support/TemporaryFolder.h"
#include "Support/VirtualClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Host::Service::Board;
using testing::ElementsAre;

class BoardTest : public testing::Test
{
protected:
    void wish(const std::string& value)
    {
        m_Board.set("plugin", "30005", value,
                    [this](const PI::CProperty* property, std::exception_ptr failure) {
                        m_Done.push_back(property == nullptr && failure ? "refused" : "set");
                    });
    }

    TestSupport::CTemporaryFolder m_Folder;
    Board m_Board{m_Folder.Path() / "Service.db", true};
    std::vector<std::string> m_Done;
};

TEST_F(BoardTest, IsEmptyBeforeTheFirstRound)
{
    ASSERT_NE(m_Board.snapshot(), nullptr);
    EXPECT_EQ(m_Board.snapshot()->m_Round, 0U);
    EXPECT_TRUE(m_Board.snapshot()->m_Drives.empty());
    EXPECT_TRUE(m_Board.figures().m_Simulated);
    EXPECT_GT(m_Board.figures().m_Started, 0U);
    EXPECT_TRUE(m_Board.figures().m_ResidentBytes);
}

TEST_F(BoardTest, ShowsTheLastSnapshotAndFigures)
{
    const auto former = m_Board.snapshot();
    m_Board.show(std::make_shared<Host::Cli::Snapshot>(Host::ObjectStore({}), 7, 8));
    EXPECT_EQ(m_Board.snapshot()->m_Round, 7U);
    EXPECT_EQ(former->m_Round, 0U);
    m_Board.count([](Host::Cli::ServiceFigures& figures) { figures.m_ReadErrors = 3; });
    EXPECT_EQ(m_Board.figures().m_ReadErrors, 3U);
    EXPECT_EQ(m_Board.counted().m_ReadErrors, 3U);
    EXPECT_FALSE(m_Board.counted().m_OpenDescriptors);
    m_Board.timeRequests([] {
        Host::Cli::Histogram durations;
        durations.add(1);
        return durations;
    });
    EXPECT_EQ(m_Board.figures().m_Requests.m_Sum, 1);
    m_Board.timeRequests({});
    EXPECT_EQ(m_Board.figures().m_Requests.m_Sum, 0);
}

TEST_F(BoardTest, HasTroubleWhenNoRoundEndsForALongTime)
{
    TestSupport::CVirtualClock clock;
    const auto show = [&] {
        m_Board.show(std::make_shared<Host::Cli::Snapshot>(Host::ObjectStore({}), 1, 2));
    };
    show();
    clock.Advance(3'600'000);
    EXPECT_EQ(m_Board.figures().m_Trouble, "") << "no plug-in watches yet";
    m_Board.count([](Host::Cli::ServiceFigures& figures) { figures.m_PollInterval = 30'000; });
    show();
    clock.Advance(100'000);
    EXPECT_EQ(m_Board.figures().m_Trouble, "");
    clock.Advance(1);
    const std::string expected = "no round of the drives has ended for more than 100 seconds";
    EXPECT_EQ(m_Board.figures().m_Trouble, expected);
    EXPECT_EQ(m_Board.counted().m_Trouble, expected);
    m_Board.count([](Host::Cli::ServiceFigures& figures) { figures.m_Trouble = "known"; });
    EXPECT_EQ(m_Board.counted().m_Trouble, "known");
    m_Board.count([](Host::Cli::ServiceFigures& figures) { figures.m_Trouble.clear(); });
    show();
    EXPECT_EQ(m_Board.counted().m_Trouble, "");
}

TEST_F(BoardTest, HandsWishesOnInOrderOrRefusesThem)
{
    wish("1");
    wish("2");
    EXPECT_EQ(m_Board.wished().Wait(0), TLX::Threading::WaitResult::Taken);
    std::vector<std::string> values;
    for (const Host::Service::Wish& each : m_Board.takeWishes())
        values.push_back(each.m_Value);
    EXPECT_THAT(values, ElementsAre("1", "2"));
    EXPECT_TRUE(m_Board.takeWishes().empty());
    EXPECT_TRUE(m_Done.empty());
    wish("3");
    m_Board.refuseWishes(Host::Failure(Host::ExitCode::RequestFailed, "no"));
    EXPECT_THAT(m_Done, ElementsAre("refused"));
}

} // namespace
