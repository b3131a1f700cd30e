#include "FakeController.h"
#include "Support/VirtualClock.h"

#include <TLXX/Linux/ReaderProtocol.h>
#include <TLXX/NvmeQuery.h>

#include <gtest/gtest.h>

#include <semaphore>

#include <Reader/Drives.h>

namespace {

using Reader::Command;
using Reader::Delivery;
using namespace TLXX::Linux;

Command identification(std::uint32_t controller, std::uint64_t node = 1)
{
    return {{controller, node}, ReaderCommand::identifyController, 0, 0, 4096};
}

class ReaderDrives : public testing::Test
{
protected:
    /** The next answers, as many as asked for. */
    std::vector<Delivery> Take(std::size_t count)
    {
        std::vector<Delivery> all;
        for (;;) {
            for (Delivery& each : m_Drives.take())
                all.push_back(std::move(each));
            if (all.size() >= count)
                return all;
            if (m_Drives.waiting())
                m_Drives.grow();
            (void)m_Ready.try_acquire_for(std::chrono::milliseconds(2));
        }
    }

    std::uint8_t CountIn(const Delivery& delivery) { return delivery.m_Answer.m_Block->at(1); }

    TestSupport::CVirtualClock m_Clock;
    std::counting_semaphore<> m_Ready{0};
    std::shared_ptr<ReaderTest::FakeControllers> m_Fake = std::make_shared<ReaderTest::FakeControllers>();
    Reader::Drives m_Drives{m_Fake->opening(), [this] { m_Ready.release(); }};
};

TEST_F(ReaderDrives, AnswerWhoeverAsked)
{
    m_Drives.ask({identification(3)}, {7, 70});
    m_Drives.ask({{{4, 1}, ReaderCommand::firstLogPage, 0, 8, 16}}, {8, 80});
    auto answers = Take(2);
    ASSERT_EQ(answers.size(), 2U);
    std::sort(answers.begin(), answers.end(),
              [](const Delivery& left, const Delivery& right) { return left.m_Asker < right.m_Asker; });
    EXPECT_EQ(answers[0].m_Asker, (Reader::Asker{7, 70}));
    EXPECT_EQ(answers[0].m_Kind, ReaderCommand::identifyController);
    EXPECT_EQ(answers[0].m_Answer.m_Block->size(), 4096U);
    EXPECT_EQ(answers[0].m_Answer.m_Block->back(), 3);
    EXPECT_EQ(answers[1].m_Asker, (Reader::Asker{8, 80}));
    EXPECT_EQ(answers[1].m_Answer.m_Block->size(), 16U);
    EXPECT_EQ(answers[1].m_Answer.m_Block->at(2), 8);
}

TEST_F(ReaderDrives, TellOnceWhatCameTogether)
{
    m_Fake->hang(3);
    m_Drives.ask({identification(3), {{3, 1}, ReaderCommand::firstLogPage, 0, 0, 16}}, {1, 1});
    m_Fake->answerOnce(3);
    m_Fake->await(3, 2);
    EXPECT_FALSE(m_Ready.try_acquire()) << "the first answer alone is not announced";
    m_Fake->answerAgain();
    EXPECT_EQ(Take(2).size(), 2U);
    EXPECT_FALSE(m_Drives.mayHaveMore());
}

TEST_F(ReaderDrives, TellAnAnswerBeforeAnotherCommandThatHangs)
{
    m_Fake->hang(3);
    m_Drives.ask({identification(3), {{3, 1}, ReaderCommand::firstLogPage, 0, 0, 16}}, {1, 1});
    m_Fake->await(3, 1);
    EXPECT_TRUE(m_Drives.mayHaveMore());
    m_Drives.hurry();
    EXPECT_FALSE(m_Drives.mayHaveMore()) << "the next answer is announced";
    m_Fake->answerOnce(3);
    m_Ready.acquire();
    EXPECT_EQ(m_Drives.take().size(), 1U);
    EXPECT_TRUE(m_Drives.mayHaveMore()) << "the drive is quick again";
    m_Fake->answerAgain();
    EXPECT_EQ(Take(1).size(), 1U);
}

TEST_F(ReaderDrives, AnswerFromMemoryForASecond)
{
    m_Drives.ask({identification(3)}, {1, 1});
    (void)Take(1);
    m_Clock.Advance(999);
    m_Drives.ask({identification(3)}, {2, 2});
    const auto known = m_Drives.take();
    ASSERT_EQ(known.size(), 1U) << "at once";
    EXPECT_EQ(known[0].m_Asker, (Reader::Asker{2, 2}));
    EXPECT_EQ(CountIn(known[0]), 1);
    m_Clock.Advance(1);
    m_Drives.ask({identification(3)}, {3, 3});
    EXPECT_EQ(CountIn(Take(1)[0]), 2) << "a second has passed";
}

TEST_F(ReaderDrives, ForgetAnswersWhenDrivesAreInDoubt)
{
    m_Drives.ask({identification(3)}, {1, 1});
    (void)Take(1);
    m_Drives.doubt();
    m_Drives.ask({identification(3)}, {1, 2});
    EXPECT_EQ(CountIn(Take(1)[0]), 2);
}

TEST_F(ReaderDrives, DoNotUseAnAnswerThatWasAskedForBeforeADoubt)
{
    m_Fake->hang(3);
    m_Drives.ask({identification(3)}, {1, 1});
    m_Fake->await(3, 1);
    m_Drives.doubt();
    m_Drives.ask({identification(3)}, {1, 2});
    m_Fake->answerAgain();
    auto answers = Take(2);
    EXPECT_EQ(CountIn(answers[0]), 1);
    EXPECT_EQ(CountIn(answers[1]), 2) << "it is asked for again";
    m_Drives.ask({identification(3)}, {1, 3});
    EXPECT_EQ(CountIn(m_Drives.take().at(0)), 2) << "and the first answer is not remembered";
}

TEST_F(ReaderDrives, NeverTakeOneDriveForAnother)
{
    m_Drives.ask({identification(3, 100)}, {1, 1});
    (void)Take(1);
    m_Drives.ask({identification(3, 101)}, {1, 2});
    EXPECT_EQ(CountIn(Take(1)[0]), 2) << "another node of the same name";
}

TEST_F(ReaderDrives, SendOneCommandForAllWhoAsk)
{
    m_Fake->hang(3);
    m_Drives.ask({identification(3)}, {1, 1});
    m_Drives.ask({identification(3)}, {2, 2});
    m_Drives.ask({identification(3)}, {3, 3});
    m_Fake->await(3, 1);
    m_Fake->answerAgain();
    EXPECT_EQ(Take(3).size(), 3U);
    EXPECT_EQ(m_Fake->commands(3), 1U);
}

TEST_F(ReaderDrives, SendASilentDriveNothingMore)
{
    m_Fake->hang(3);
    m_Drives.ask({identification(3)}, {1, 1});
    m_Fake->await(3, 1);
    for (std::uint32_t offset = 0; offset < 40; offset += 4)
        m_Drives.ask({{{3, 1}, ReaderCommand::firstLogPage, 0, offset, 16}}, {1, offset});
    m_Drives.ask({identification(4)}, {1, 100});
    EXPECT_EQ(Take(1)[0].m_Asker, (Reader::Asker{1, 100})) << "another drive is not delayed";
    EXPECT_EQ(m_Fake->commands(3), 1U);
    m_Fake->answerAgain();
    EXPECT_EQ(Take(11).size(), 11U);
    EXPECT_EQ(m_Fake->together(), 1U);
}

TEST_F(ReaderDrives, GrowWithTheSilentOnes)
{
    for (std::uint32_t controller = 0; controller < 40; ++controller) {
        m_Fake->hang(controller);
        m_Drives.ask({identification(controller)}, {1, controller});
    }
    m_Drives.ask({identification(99)}, {1, 99});
    EXPECT_EQ(Take(1)[0].m_Asker, (Reader::Asker{1, 99}));
    m_Fake->answerAgain();
    EXPECT_EQ(Take(40).size(), 40U);
}

TEST_F(ReaderDrives, SendNothingForAClientThatHasGone)
{
    m_Fake->hang(3);
    m_Drives.ask({identification(3)}, {1, 1});
    m_Fake->await(3, 1);
    m_Drives.ask({{{3, 1}, ReaderCommand::firstLogPage, 0, 0, 16}}, {1, 2});
    m_Drives.ask({{{3, 1}, ReaderCommand::firstLogPage, 0, 4, 16}}, {2, 3});
    m_Drives.forget(1);
    m_Fake->answerAgain();
    const auto answers = Take(1);
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_EQ(answers[0].m_Asker, (Reader::Asker{2, 3}));
    EXPECT_EQ(m_Fake->commands(3), 2U);
}

TEST_F(ReaderDrives, RememberWhatADriveSaysButNoErrorOfTheSystem)
{
    m_Fake->fail(3, 0x12002);
    m_Drives.ask({identification(3)}, {1, 1});
    EXPECT_EQ(Take(1)[0].m_Answer.m_Status, 0x12002U);
    m_Drives.ask({identification(3)}, {1, 2});
    EXPECT_EQ(Take(1)[0].m_Answer.m_Block, nullptr);
    EXPECT_EQ(m_Fake->commands(3), 1U);
    for (const std::uint32_t status : {13U, TLXX::STATUS_NO_RESOURCES}) {
        m_Fake->fail(4, status);
        const std::size_t before = m_Fake->commands(4);
        for (std::uint64_t sequence = 0; sequence < 2; ++sequence) {
            m_Drives.ask({identification(4)}, {1, sequence});
            EXPECT_EQ(Take(1)[0].m_Answer.m_Status, status);
        }
        EXPECT_EQ(m_Fake->commands(4), before + 2);
    }
}

TEST_F(ReaderDrives, RefuseMoreThanADriveCanEverDo)
{
    m_Fake->hang(3);
    m_Drives.ask({identification(3)}, {1, 0});
    m_Fake->await(3, 1);
    for (std::uint32_t offset = 0; offset < 1025; ++offset)
        m_Drives.ask({{{3, 1}, ReaderCommand::firstLogPage, 0, offset * 4, 16}}, {1, offset});
    const auto refused = m_Drives.take();
    ASSERT_EQ(refused.size(), 1U);
    EXPECT_EQ(refused[0].m_Asker, (Reader::Asker{1, 1024}));
    EXPECT_EQ(refused[0].m_Answer.m_Status, TLXX::STATUS_NO_RESOURCES);
    m_Drives.forget(1);
    m_Fake->answerAgain();
}

TEST_F(ReaderDrives, SendWhatIsAskedTogetherOnOneOpening)
{
    m_Drives.ask({identification(3), {{3, 1}, ReaderCommand::firstLogPage, 0, 0, 16}}, {1, 1});
    EXPECT_EQ(Take(2).size(), 2U);
    EXPECT_EQ(m_Fake->openings(), 1U);
}

} // namespace
