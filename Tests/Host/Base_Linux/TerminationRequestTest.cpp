#include "Base/Platform.h"

#include <TLX/WaitResult.h>

#include <gtest/gtest.h>

#include <csignal>

#include <pthread.h>
#include <unistd.h>

namespace {

using Host::Platform::TerminationRequest;
using TLX::Threading::WaitResult::Taken;
using TLX::Threading::WaitResult::TimedOut;

bool isBlocked(int signal)
{
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    return sigismember(&mask, signal) == 1;
}

TEST(TerminationRequest, FiresForEachSignalThatAsksForAnEnd)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        TerminationRequest request;
        request.defer();
        EXPECT_EQ(request.asked().Wait(0), TimedOut);
        kill(getpid(), signal);
        EXPECT_EQ(request.asked().Wait(), Taken);
        EXPECT_EQ(request.asked().Wait(), Taken) << "and stays so";
    }
}

TEST(TerminationRequest, GivesTheSignalsBack)
{
    {
        const TerminationRequest request;
        EXPECT_TRUE(isBlocked(SIGINT) && isBlocked(SIGTERM) && isBlocked(SIGHUP));
    }
    EXPECT_FALSE(isBlocked(SIGINT) || isBlocked(SIGTERM) || isBlocked(SIGHUP));
}

TEST(TerminationRequest, LeavesAnIgnoredHangUpIgnored)
{
    void (*former)(int) = std::signal(SIGHUP, SIG_IGN);
    {
        TerminationRequest request;
        request.defer();
        kill(getpid(), SIGHUP);
        kill(getpid(), SIGTERM);
        EXPECT_EQ(request.asked().Wait(), Taken);
        EXPECT_FALSE(isBlocked(SIGHUP));
    }
    (void)std::signal(SIGHUP, former);
}

} // namespace
