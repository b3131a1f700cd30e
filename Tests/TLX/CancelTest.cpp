#include "Support/SilentPipe.h"

#include <TLX/Event.h>
#include <TLX/ForcedEnd.h>
#include <TLX/Thread.h>

#include <gtest/gtest.h>

#include <atomic>

namespace {

using namespace TLX::Threading;

class Cancel : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(m_Reached.Init(false, true), WaitResult::Taken);
        ASSERT_EQ(m_Go.Init(false, true), WaitResult::Taken);
    }
    void ReadForever() const
    {
        m_Pipe.ReadInterruptibly();
        ADD_FAILURE() << "the call returned";
    }

    TestSupport::CSilentPipe m_Pipe;
    CEvent m_Reached;
    CEvent m_Go;
};

// GCC's address sanitizer does not know forced unwinds. It takes the stack of the unwound frames for used
// memory and reports the next use of it.
#if !defined(__SANITIZE_ADDRESS__)

/** Sets a flag when it is destroyed. */
class CWitness
{
public:
    explicit CWitness(std::atomic<bool>& destroyed) : m_Destroyed(destroyed) {}
    ~CWitness() { m_Destroyed = true; }
    CWitness(const CWitness&) = delete;
    CWitness& operator=(const CWitness&) = delete;

private:
    std::atomic<bool>& m_Destroyed;
};

TEST_F(Cancel, PullsTheThreadOutOfAnInterruptibleCallAndUnwinds)
{
    std::atomic<bool> unwound = false;
    CThread thread([&] {
        const CWitness witness(unwound);
        m_Reached.Set();
        ReadForever();
    });
    ASSERT_EQ(m_Reached.Wait(), WaitResult::Taken);
    EXPECT_EQ(thread.Wait(0), WaitResult::TimedOut);
    thread.Cancel();
    EXPECT_EQ(thread.Wait(), WaitResult::Taken);
    EXPECT_TRUE(unwound);
}

TEST_F(Cancel, PassesACatchAllThatLetsForcedUnwindsThrough)
{
    std::atomic<bool> passed = false;
    CThread thread([&] {
        try {
            m_Reached.Set();
            ReadForever();
        } catch (CForcedEnd&) {
            passed = true;
            throw;
        } catch (...) {
            ADD_FAILURE() << "taken for an ordinary exception";
        }
    });
    ASSERT_EQ(m_Reached.Wait(), WaitResult::Taken);
    thread.Cancel();
    EXPECT_EQ(thread.Wait(), WaitResult::Taken);
    EXPECT_TRUE(passed);
}

TEST_F(Cancel, WaitsForTheNextInterruptibleCall)
{
    std::atomic<int> steps = 0;
    CThread thread([&] {
        m_Reached.Set();
        (void)m_Go.Wait(); // would be a cancellation point, if the thread allowed cancellation
        ++steps;
        if (m_Pipe.ReadByte())
            ++steps;
        ReadForever();
    });
    ASSERT_EQ(m_Reached.Wait(), WaitResult::Taken);
    thread.Cancel();
    EXPECT_EQ(thread.Wait(0), WaitResult::TimedOut);
    m_Go.Set();
    m_Pipe.WriteByte();
    EXPECT_EQ(thread.Wait(), WaitResult::Taken);
    EXPECT_EQ(steps, 2);
}

#endif

TEST_F(Cancel, OfAThreadThatHasEndedDoesNothing)
{
    CThread thread([] {});
    EXPECT_EQ(thread.Wait(), WaitResult::Taken);
    thread.Cancel();
    EXPECT_EQ(thread.Wait(), WaitResult::Taken);
}

} // namespace
