#include <TLX/Event.h>
#include <TLX/Thread.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>

#include <cxxabi.h>
#include <pthread.h>
#include <unistd.h>

namespace {

using namespace TLX::Threading;

/** A pipe to which nobody writes: who reads from it is stuck, as in a drive that no longer answers. */
class Cancel : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(pipe(m_Ends.data()), 0);
        ASSERT_EQ(m_Reached.Init(false, true), WaitResult::Taken);
        ASSERT_EQ(m_Go.Init(false, true), WaitResult::Taken);
    }
    void TearDown() override
    {
        close(m_Ends[0]);
        close(m_Ends[1]);
    }

    void ReadForever() const
    {
        interruptibly([descriptor = m_Ends[0]] {
            char byte = 0;
            return static_cast<int>(read(descriptor, &byte, 1));
        });
        ADD_FAILURE() << "the call returned";
    }

    std::array<int, 2> m_Ends{};
    CEvent m_Reached;
    CEvent m_Go;
};

// GCC's address sanitizer knows nothing of forced unwinds: it takes the stack of the frames that they leave
// for still in use, and reports the next use of it.
#if !defined(__SANITIZE_ADDRESS__)

/** Says in a flag that it was destroyed. */
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
        } catch (abi::__forced_unwind&) {
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
        (void)m_Go.Wait(); // would be a point of cancellation, were the thread open to it
        char byte = 0;
        ++steps;
        if (read(m_Ends[0], &byte, 1) == 1)
            ++steps;
        ReadForever();
    });
    ASSERT_EQ(m_Reached.Wait(), WaitResult::Taken);
    thread.Cancel();
    EXPECT_EQ(thread.Wait(0), WaitResult::TimedOut);
    m_Go.Set();
    ASSERT_EQ(write(m_Ends[1], "x", 1), 1);
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

TEST_F(Cancel, LeavesThreadsOfOthersAsTheyAre)
{
    int former = -1;
    ASSERT_EQ(pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &former), 0);
    const int during = interruptibly([] {
        int state = -1;
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
        return state;
    });
    pthread_setcancelstate(former, nullptr);
    EXPECT_EQ(during, PTHREAD_CANCEL_DISABLE);
}

} // namespace
