#include "Plugins/KnownControllers.h"

#include "Support/SilentBackend.h"
#include "Support/VirtualClock.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <vector>

namespace {

using Host::DriveAnswer;
using Host::KnownControllers;

/** A machine with one controller, whose state is the number of looks at it. */
class CountingMachine : public TestSupport::CSilentBackend
{
public:
    std::vector<TLXX::CControllerState> ControllerStates() override
    {
        if (m_Refuses)
            throw std::runtime_error("no descriptor is left");
        TLXX::CControllerState state;
        state.m_State = std::to_string(++m_Looks);
        return {state};
    }

    int m_Looks = 0;
    bool m_Refuses = false;
};

class KnownControllersTest : public testing::Test
{
protected:
    KnownControllersTest() : m_Former(TLXX::setDeviceBackend(m_Machine)) {}
    ~KnownControllersTest() override { TLXX::setDeviceBackend(m_Former); }

    static DriveAnswer answer(const std::string& instance)
    {
        DriveAnswer answer;
        answer.m_Instance = instance;
        answer.m_DeviceName = "/dev/nvme0n1";
        return answer;
    }

    /** How often the machine was looked at for these answers. */
    int looksFor(const std::vector<DriveAnswer>& answers)
    {
        const int before = m_Machine->m_Looks;
        m_Controllers.follow(answers);
        return m_Machine->m_Looks - before;
    }

    TestSupport::CVirtualClock m_Clock;
    const std::shared_ptr<CountingMachine> m_Machine = std::make_shared<CountingMachine>();
    const std::shared_ptr<TLXX::IDeviceBackend> m_Former;
    KnownControllers m_Controllers;
};

TEST_F(KnownControllersTest, AreReadOnceWhileTheDrivesAnswerAsBefore)
{
    DriveAnswer drive = answer("a");
    EXPECT_EQ(looksFor({drive}), 1);
    drive.m_LastAnswer = 1;
    EXPECT_EQ(looksFor({drive}), 0);
    ASSERT_EQ(m_Controllers.states().size(), 1U);
    EXPECT_EQ(m_Controllers.states()[0].m_State, "1");
}

TEST_F(KnownControllersTest, AreReadAgainWhenADriveComesGoesFailsOrRecovers)
{
    const DriveAnswer drive = answer("a");
    DriveAnswer failed = drive;
    failed.m_Status = 5;
    EXPECT_EQ(looksFor({drive}), 1);
    EXPECT_EQ(looksFor({failed}), 1);
    EXPECT_EQ(looksFor({failed}), 0);
    EXPECT_EQ(looksFor({drive}), 1);
    EXPECT_EQ(looksFor({drive, answer("b")}), 1);
    EXPECT_EQ(looksFor({drive, answer("c")}), 1) << "another drive at the same path";
    EXPECT_EQ(looksFor({drive}), 1);
    DriveAnswer renamed = drive;
    renamed.m_DeviceName = "/dev/nvme1n1";
    EXPECT_EQ(looksFor({renamed}), 1);
    EXPECT_EQ(looksFor({}), 1);
}

TEST_F(KnownControllersTest, AreReadAgainAfterSomeMinutes)
{
    const DriveAnswer drive = answer("a");
    EXPECT_EQ(looksFor({drive}), 1);
    m_Clock.Advance(KnownControllers::LONGEST - 1);
    EXPECT_EQ(looksFor({drive}), 0);
    m_Clock.Advance(1);
    EXPECT_EQ(looksFor({drive}), 1);
    EXPECT_EQ(looksFor({drive}), 0);
    m_Clock.Advance(KnownControllers::LONGEST - 1);
    m_Controllers.read();
    m_Clock.Advance(1);
    EXPECT_EQ(looksFor({drive}), 0) << "counted from the last time that they were read";
}

TEST_F(KnownControllersTest, AreNoneUntilTheSystemCanTellAgain)
{
    const DriveAnswer drive = answer("a");
    EXPECT_EQ(looksFor({drive}), 1);
    EXPECT_EQ(m_Controllers.states().size(), 1U);
    m_Machine->m_Refuses = true;
    m_Controllers.read();
    EXPECT_TRUE(m_Controllers.states().empty());
    m_Machine->m_Refuses = false;
    EXPECT_EQ(looksFor({drive}), 1);
    EXPECT_EQ(m_Controllers.states().size(), 1U);
}

} // namespace
