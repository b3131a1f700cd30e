#include "Drives/ParallelDrives.h"

#include "Host/Drives/ScriptedDrives.h"

#include <gmock/gmock.h>

#include <thread>

namespace {

using Host::DriveAnswer;
using Host::ParallelDrives;
using HostTest::ScriptedDrives;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;
using TLXX::EQuery;

constexpr char FIRST[] = "controller namespace health";

class ParallelDrivesTest : public testing::Test
{
protected:
    std::vector<std::string> round()
    {
        std::vector<std::string> paths;
        for (const TLXX::CDeviceEntry& entry : m_Parallel.Enumerate({}))
            paths.push_back(entry.m_DeviceName);
        return paths;
    }

    /** How long a round takes, in milliseconds. */
    std::uint64_t timeOfRound()
    {
        const std::uint64_t begin = TLX::Misc::monotonic();
        (void)round();
        return TLX::Misc::monotonic() - begin;
    }

    std::uint32_t controller(const std::string& path)
    {
        return m_Parallel.IdentifyController(path, m_Controller);
    }
    std::uint32_t nameSpace(const std::string& path)
    {
        TLXX::NVME_IDENTIFY_NAMESPACE block{};
        return m_Parallel.IdentifyNamespace(path, block);
    }
    std::uint32_t health(const std::string& path)
    {
        TLXX::NVME_SMART_HEALTH_INFORMATION_LOG block{};
        return m_Parallel.SmartHealthLog(path, block);
    }
    std::uint32_t log(const std::string& path, std::uint8_t identifier)
    {
        return m_Parallel.VendorLogPage(path, identifier, m_Page);
    }

    DriveAnswer answerOf(const std::string& path)
    {
        for (const DriveAnswer& answer : m_Parallel.lastRound().m_Answers)
            if (answer.m_DeviceName == path)
                return answer;
        ADD_FAILURE() << "no answer of " << path;
        return {};
    }

    TestSupport::CVirtualClock m_Clock;
    const std::uint64_t m_Begin = TLX::Misc::now();
    std::shared_ptr<ScriptedDrives> m_Drives = std::make_shared<ScriptedDrives>();
    ParallelDrives m_Parallel{m_Drives, m_Drives->source()};
    TLXX::NVME_IDENTIFY_CONTROLLER m_Controller{};
    TLXX::VendorLogPage m_Page{};
};

TEST_F(ParallelDrivesTest, ARoundTakesAsLongAsItsSlowestDrive)
{
    constexpr int count = 64;
    for (int i = 0; i < count; ++i)
        m_Drives->add("drive " + std::to_string(i)).m_Delay = 20;
    EXPECT_EQ(timeOfRound(), 60U) << "three commands of 20 ms";
    EXPECT_EQ(round().size(), 64U);
}

TEST_F(ParallelDrivesTest, AnswersTheQueriesFromTheRound)
{
    m_Drives->add("a").m_Serial = "X";
    EXPECT_THAT(round(), ElementsAre("a"));
    EXPECT_THAT(m_Drives->takeAsked(), ElementsAre(Pair("a", FIRST)));
    EXPECT_EQ(controller("a"), 0U);
    EXPECT_EQ(m_Controller.sSerialNumber(), "X");
    EXPECT_EQ(nameSpace("a"), 0U);
    EXPECT_EQ(health("a"), 0U);
    EXPECT_THAT(m_Drives->takeAsked(), IsEmpty());
}

TEST_F(ParallelDrivesTest, AsksInTheNextRoundForWhatWasAskedForInThis)
{
    m_Drives->add("a");
    m_Drives->add("b");
    (void)round();
    (void)health("a");
    (void)log("a", 5);
    (void)nameSpace("b");
    (void)m_Drives->takeAsked();
    (void)round();
    EXPECT_THAT(m_Drives->takeAsked(),
                ElementsAre(Pair("a", "controller health log5"), Pair("b", "controller namespace")));
}

TEST_F(ParallelDrivesTest, AsksForAMissingPageOfAllDrivesOfTheMaker)
{
    m_Drives->add("a").m_Delay = 100;
    m_Drives->add("b").m_Delay = 100;
    m_Drives->add("c").m_Maker = 0x8086;
    (void)round();
    (void)m_Drives->takeAsked();
    const std::uint64_t begin = TLX::Misc::monotonic();
    EXPECT_EQ(log("a", 7), 0U);
    EXPECT_EQ(m_Page[0], 'S');
    EXPECT_EQ(log("b", 7), 0U);
    EXPECT_EQ(TLX::Misc::monotonic() - begin, 100U);
    EXPECT_THAT(m_Drives->takeAsked(), ElementsAre(Pair("a", "log7"), Pair("b", "log7")));
}

TEST_F(ParallelDrivesTest, ASilentDriveKeepsItsPlaceAndItsIdentity)
{
    m_Drives->add("a");
    m_Drives->add("b");
    (void)round();
    EXPECT_EQ(log("a", 0xDD), 0U);
    m_Clock.Advance(60'000);
    m_Drives->at("a").m_Hangs = true;
    EXPECT_EQ(timeOfRound(), Host::ROUND_DEADLINE);
    EXPECT_EQ(controller("a"), 0U);
    EXPECT_EQ(m_Controller.sSerialNumber(), "S");
    EXPECT_EQ(log("a", 0xDD), 0U) << "or its name would change";
    EXPECT_EQ(nameSpace("a"), TLXX::STATUS_NO_ANSWER);
    EXPECT_EQ(health("a"), TLXX::STATUS_NO_ANSWER);
    EXPECT_EQ(log("a", 0xC5), TLXX::STATUS_NO_ANSWER);
    EXPECT_EQ(health("b"), 0U) << "the other one is read on";

    const DriveAnswer silent = answerOf("a");
    EXPECT_FALSE(silent.m_Answering);
    EXPECT_EQ(silent.m_LastAnswer, m_Begin);
    EXPECT_EQ(silent.m_SilentSince, m_Begin + 60'000);
    EXPECT_EQ(silent.m_SilentRounds, 1U);
    EXPECT_EQ(silent.m_Status, TLXX::STATUS_NO_ANSWER);
    EXPECT_EQ(silent.m_SerialNumber, "S");
    EXPECT_TRUE(answerOf("b").m_Answering);
    EXPECT_EQ(answerOf("b").m_Status, 0U);
}

TEST_F(ParallelDrivesTest, ASilentDriveCostsOneDeadlineOnceAndGetsNoSecondCommand)
{
    m_Drives->add("a");
    m_Drives->add("b");
    (void)round();
    m_Drives->at("a").m_Hangs = true;
    EXPECT_EQ(timeOfRound(), Host::ROUND_DEADLINE);
    (void)m_Drives->takeAsked();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(timeOfRound(), 0U);
        EXPECT_THAT(m_Drives->takeAsked(), ElementsAre(Pair("b", FIRST)));
    }
    EXPECT_EQ(answerOf("a").m_SilentRounds, 4U);
    EXPECT_EQ(answerOf("a").m_SilentSince, m_Begin);
    EXPECT_THAT(round(), ElementsAre("a", "b"));
}

TEST_F(ParallelDrivesTest, ALateAnswerCountsForNothingButTheNextRound)
{
    m_Drives->add("a").m_Serial = "old";
    (void)round();
    m_Drives->at("a").m_Hangs = true;
    (void)round();
    m_Drives->at("a").m_Hangs = false;
    m_Drives->at("a").m_Serial = "new";
    m_Clock.Advance(60'000);
    EXPECT_FALSE(answerOf("a").m_Answering);
    m_Drives->letGo("a");
    (void)m_Drives->takeAsked();
    EXPECT_THAT(round(), ElementsAre("a"));
    EXPECT_THAT(m_Drives->takeAsked(), ElementsAre(Pair("a", FIRST)));
    EXPECT_EQ(controller("a"), 0U);
    EXPECT_EQ(m_Controller.sSerialNumber(), "new");
    EXPECT_EQ(health("a"), 0U);
    const DriveAnswer answer = answerOf("a");
    EXPECT_TRUE(answer.m_Answering);
    EXPECT_EQ(answer.m_LastAnswer, TLX::Misc::now());
    EXPECT_EQ(answer.m_SilentSince, std::nullopt);
    EXPECT_EQ(answer.m_SilentRounds, 0U);
}

TEST_F(ParallelDrivesTest, ADriveThatFailsIsSilentToo)
{
    m_Drives->add("a");
    (void)round();
    m_Drives->at("a").m_Fails[EQuery::IdentifyController] = 0x10006;
    EXPECT_EQ(timeOfRound(), 0U) << "one that has answered is not tried again";
    EXPECT_EQ(controller("a"), 0U);
    EXPECT_EQ(health("a"), 0x10006U);
    EXPECT_EQ(answerOf("a").m_Status, 0x10006U);
    EXPECT_FALSE(answerOf("a").m_Answering);
    m_Drives->at("a").m_Fails.clear();
    (void)round();
    EXPECT_TRUE(answerOf("a").m_Answering);
}

TEST_F(ParallelDrivesTest, AFailedPageDoesNotMakeADriveSilent)
{
    m_Drives->add("a").m_Fails[EQuery::SmartHealthLog] = 0x10006;
    EXPECT_THAT(round(), ElementsAre("a"));
    EXPECT_EQ(health("a"), 0x10006U);
    EXPECT_TRUE(answerOf("a").m_Answering);
}

TEST_F(ParallelDrivesTest, OneCommandThatStaysOutMakesADriveSilent)
{
    m_Drives->add("a");
    (void)round();
    m_Drives->at("a").m_Delay = 2'000; // so the third answer comes too late
    EXPECT_EQ(timeOfRound(), Host::ROUND_DEADLINE);
    EXPECT_FALSE(answerOf("a").m_Answering);
    EXPECT_EQ(nameSpace("a"), TLXX::STATUS_NO_ANSWER) << "it came, but the drive is silent";
}

TEST_F(ParallelDrivesTest, ADriveThatNeverAnsweredIsTriedSixTimesAndLeftOut)
{
    m_Drives->add("a").m_Fails[EQuery::IdentifyController] = 0x10006;
    m_Drives->add("b");
    m_Drives->add("c").m_Fails[EQuery::IdentifyController] = 0x10006;
    const std::uint64_t begin = TLX::Misc::monotonic();
    EXPECT_THAT(round(), ElementsAre("b"));
    EXPECT_EQ(TLX::Misc::monotonic() - begin, 5 * Host::NEWCOMER_PAUSE) << "both at once";
    const std::string tries = std::string(FIRST) + " " + FIRST + " " + FIRST;
    EXPECT_THAT(m_Drives->takeAsked(), ElementsAre(Pair("a", tries + " " + tries), Pair("b", FIRST),
                                                   Pair("c", tries + " " + tries)));
    EXPECT_EQ(answerOf("a").m_SerialNumber, "S of the system");
    EXPECT_EQ(answerOf("a").m_Model, "Model of the system");
    EXPECT_EQ(answerOf("a").m_LastAnswer, std::nullopt);
    EXPECT_EQ(TLXX::lastStatus("a", EQuery::IdentifyController), 0x10006U);
    EXPECT_EQ(answerOf("a").m_Status, 0x10006U);

    EXPECT_EQ(timeOfRound(), 0U) << "later it is tried once in each round";
    EXPECT_THAT(m_Drives->takeAsked(), ElementsAre(Pair("a", FIRST), Pair("b", FIRST), Pair("c", FIRST)));
    m_Drives->at("c").m_Fails.clear();
    EXPECT_THAT(round(), ElementsAre("b", "c"));
    EXPECT_EQ(answerOf("c").m_SerialNumber, "S") << "as it says itself";
}

TEST_F(ParallelDrivesTest, ADriveThatAnswersAtTheThirdTryIsKept)
{
    m_Drives->add("a").m_Fails[EQuery::IdentifyController] = 0x10006;
    m_Drives->m_OnWait = [&] {
        if (TLX::Misc::monotonic() >= 2 * Host::NEWCOMER_PAUSE)
            m_Drives->at("a").m_Fails.clear();
    };
    m_Clock.OnSleep([&] {
        if (TLX::Misc::monotonic() + Host::NEWCOMER_PAUSE >= 2 * Host::NEWCOMER_PAUSE)
            m_Drives->at("a").m_Fails.clear();
    });
    EXPECT_THAT(round(), ElementsAre("a"));
    EXPECT_EQ(health("a"), 0U);
}

TEST_F(ParallelDrivesTest, ADriveThatHangsFromTheStartCostsOneDeadlineAndIsLeftOut)
{
    m_Drives->add("a").m_Hangs = true;
    m_Drives->add("b");
    EXPECT_EQ(timeOfRound(), Host::ROUND_DEADLINE);
    EXPECT_THAT(round(), ElementsAre("b"));
    EXPECT_EQ(timeOfRound(), 0U);
    EXPECT_EQ(answerOf("a").m_SerialNumber, "S of the system");
    EXPECT_EQ(controller("a"), TLXX::STATUS_NO_ANSWER);
}

TEST_F(ParallelDrivesTest, AnExchangedDriveIsAnotherOneAtOnce)
{
    m_Drives->add("a");
    (void)round();
    m_Drives->at("a").m_Hangs = true;
    (void)round();
    m_Drives->at("a").m_Hangs = false;
    m_Drives->at("a").m_Instance = "another";
    m_Drives->at("a").m_Serial = "T";
    (void)m_Drives->takeAsked();
    EXPECT_THAT(round(), ElementsAre("a"));
    EXPECT_THAT(m_Drives->takeAsked(), ElementsAre(Pair("another", FIRST)));
    m_Drives->letGo("a");
    (void)round();
    EXPECT_EQ(controller("a"), 0U);
    EXPECT_EQ(m_Controller.sSerialNumber(), "T");
    EXPECT_EQ(m_Parallel.lastRound().m_Answers.size(), 1U);
    EXPECT_EQ(answerOf("a").m_Instance, "another");
}

TEST_F(ParallelDrivesTest, ADriveThatComesBackOwingAnAnswerIsNotAsked)
{
    m_Drives->add("a");
    (void)round();
    m_Drives->at("a").m_Hangs = true;
    (void)round();
    m_Drives->remove("a");
    EXPECT_THAT(round(), IsEmpty());
    m_Drives->add("a");
    (void)m_Drives->takeAsked();
    EXPECT_THAT(round(), IsEmpty()) << "it has not answered since it appeared";
    EXPECT_THAT(m_Drives->takeAsked(), IsEmpty());
    m_Drives->letGo("a");
    EXPECT_THAT(round(), ElementsAre("a"));
}

TEST_F(ParallelDrivesTest, ALateAnswerToAQueryMakesADriveSilent)
{
    m_Drives->add("a").m_Delay = 1'000;
    (void)round();
    ASSERT_TRUE(m_Parallel.roundEnded().Wait(0) == 1);
    const std::uint64_t begin = TLX::Misc::monotonic();
    m_Drives->at("a").m_Hangs = true;
    EXPECT_EQ(log("a", 9), TLXX::STATUS_NO_ANSWER);
    EXPECT_EQ(TLX::Misc::monotonic() - begin, 2'000U) << "what the round has left of the deadline";
    EXPECT_EQ(health("a"), TLXX::STATUS_NO_ANSWER);
    EXPECT_EQ(TLX::Misc::monotonic() - begin, 2'000U);
    EXPECT_FALSE(answerOf("a").m_Answering);
    EXPECT_EQ(m_Parallel.roundEnded().Wait(0), 1U) << "told at once";
    EXPECT_EQ(m_Parallel.lastRound().m_Number, 1U);
}

TEST_F(ParallelDrivesTest, AnswersThatNobodyCollectedYetAreNotLate)
{
    m_Drives->add("a");
    m_Drives->add("b");
    (void)round();
    m_Drives->at("b").m_Delay = 500;
    EXPECT_EQ(log("a", 9), 0U); // and is asked of b, too
    EXPECT_THAT(round(), ElementsAre("a", "b"));
    EXPECT_TRUE(answerOf("b").m_Answering);
}

TEST_F(ParallelDrivesTest, LocationsCountTheDisksThatItYields)
{
    m_Drives->add("a").m_Hangs = true;
    m_Drives->add("b");
    EXPECT_EQ(m_Parallel.Location(1), std::nullopt) << "before any enumeration";
    EXPECT_THAT(round(), ElementsAre("b"));
    EXPECT_EQ(m_Parallel.Location(1), (TLXX::CPciLocation{0, 2, 0, 0}));
    EXPECT_EQ(m_Parallel.Location(2), std::nullopt);
    EXPECT_EQ(m_Parallel.Location(0), std::nullopt);
    EXPECT_EQ(answerOf("a").m_Location, (TLXX::CPciLocation{0, 1, 0, 0}));
}

TEST_F(ParallelDrivesTest, EachThreadHasTheLocationsOfItsOwnEnumeration)
{
    m_Drives->add("a");
    (void)round();
    m_Drives->add("b");
    std::thread([&] {
        EXPECT_EQ(round().size(), 2U);
        EXPECT_NE(m_Parallel.Location(2), std::nullopt);
    }).join();
    EXPECT_EQ(m_Parallel.Location(2), std::nullopt);
}

TEST_F(ParallelDrivesTest, TellsTheEndOfEachRound)
{
    m_Drives->add("b");
    m_Drives->add("a");
    EXPECT_EQ(m_Parallel.lastRound().m_Number, 0U);
    EXPECT_EQ(m_Parallel.roundEnded().Wait(0), TLX::Threading::WaitResult::TimedOut);
    (void)round();
    EXPECT_EQ(m_Parallel.roundEnded().Wait(0), 1U);
    EXPECT_EQ(m_Parallel.lastRound().m_Number, 1U);
    (void)round();
    const Host::DriveRound last = m_Parallel.lastRound();
    EXPECT_EQ(last.m_Number, 2U);
    ASSERT_EQ(last.m_Answers.size(), 2U);
    EXPECT_EQ(last.m_Answers[0].m_DeviceName, "b");
    EXPECT_EQ(last.m_Answers[1].m_DeviceName, "a");
    EXPECT_EQ(last.m_Answers[1].m_Driver, "nvme");
}

TEST_F(ParallelDrivesTest, ARoundThatIsBrokenOffMarksNoDrive)
{
    m_Drives->add("a");
    (void)round();
    m_Drives->at("a").m_Hangs = true;
    m_Drives->m_OnWait = [&] { m_Parallel.stopWaiting(); };
    EXPECT_EQ(timeOfRound(), 0U);
    EXPECT_TRUE(answerOf("a").m_Answering) << "as the round before found it";
    EXPECT_EQ(m_Parallel.lastRound().m_Number, 1U);
    EXPECT_EQ(controller("a"), 0U);
    EXPECT_EQ(health("a"), TLXX::STATUS_NO_ANSWER);
    EXPECT_EQ(timeOfRound(), 0U);
    EXPECT_THAT(round(), ElementsAre("a"));
}

TEST_F(ParallelDrivesTest, AsksNoDriveAfterTheEnd)
{
    m_Drives->add("a");
    (void)round();
    (void)m_Drives->takeAsked();
    m_Parallel.stopWaiting();
    EXPECT_EQ(log("a", 9), TLXX::STATUS_NO_ANSWER);
    (void)round();
    EXPECT_THAT(m_Drives->takeAsked(), IsEmpty());
}

TEST_F(ParallelDrivesTest, AnswersForADriveThatNoRoundHadYet)
{
    m_Drives->add("a");
    EXPECT_EQ(controller("a"), 0U);
    EXPECT_EQ(controller("none"), TLXX::STATUS_NO_DEVICE);
}

TEST_F(ParallelDrivesTest, AReaderMayOpenWhatThisUserMayNot)
{
    m_Drives->add("a");
    ParallelDrives parallel(m_Drives, m_Drives->source(), Host::Rights::Readers);
    EXPECT_EQ(parallel.ControllerStates().at(0).m_AccessStatus, 0U);
}

TEST_F(ParallelDrivesTest, LeavesTheMachineItself)
{
    m_Drives->add("a");
    const auto states = m_Parallel.ControllerStates();
    ASSERT_EQ(states.size(), 1U);
    EXPECT_EQ(states[0].m_SerialNumber, "S of the system");
    EXPECT_EQ(states[0].m_AccessStatus, 13U);
    EXPECT_EQ(m_Parallel.Instance("a"), "a");
    EXPECT_EQ(m_Parallel.Instance("none"), "");
}

} // namespace
