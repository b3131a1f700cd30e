#include <TLX/Thread.h>

#include <gtest/gtest.h>

#include <pthread.h>

namespace {

TEST(CancelState, OfThreadsOfOthersStaysAsItIs)
{
    int former = -1;
    ASSERT_EQ(pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &former), 0);
    const int during = TLX::Threading::interruptibly([] {
        int state = -1;
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
        return state;
    });
    pthread_setcancelstate(former, nullptr);
    EXPECT_EQ(during, PTHREAD_CANCEL_DISABLE);
}

} // namespace
