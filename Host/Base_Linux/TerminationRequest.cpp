#include "Base/Platform.h"

#include <TLX/WaitResult.h>

#include <atomic>
#include <csignal>
#include <system_error>
#include <thread>

#include <pthread.h>

namespace Host::Platform {
namespace {

/**
 * The signals that ask for an end. A signal that is ignored at the start stays ignored, for example under
 * nohup.
 */
sigset_t endingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    struct sigaction hangUp
    {};
    if (sigaction(SIGHUP, nullptr, &hangUp) == 0 && hangUp.sa_handler != SIG_IGN)
        sigaddset(&signals, SIGHUP);
    return signals;
}

} // namespace

/** A separate thread takes the signals, so that they do not interrupt a thread of a plug-in. */
struct TerminationRequest::Native
{
    Native()
    {
        if (m_Asked.Init(false, true) != TLX::Threading::WaitResult::Taken)
            throw std::system_error(errno, std::generic_category(), "event");
        // Threads that are started later inherit this and block the signals, too.
        (void)pthread_sigmask(SIG_BLOCK, &m_Signals, &m_FormerMask);
        m_Thread = std::thread([this] { takeSignals(); });
    }

    ~Native()
    {
        m_Ending = true;
        (void)pthread_kill(m_Thread.native_handle(), SIGINT);
        m_Thread.join();
        (void)pthread_sigmask(SIG_SETMASK, &m_FormerMask, nullptr);
    }

    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    void takeSignals()
    {
        for (bool last = false;; last = true) {
            int signal = 0;
            (void)sigwait(&m_Signals, &signal);
            if (m_Ending)
                return;
            if (last || !m_Deferred)
                endBy(signal);
            m_Asked.Set();
        }
    }

    /** Does what the signal does to a program without a handler. */
    void endBy(int signal) const
    {
        (void)std::signal(signal, SIG_DFL);
        (void)pthread_sigmask(SIG_UNBLOCK, &m_Signals, nullptr);
        (void)raise(signal);
    }

    const sigset_t m_Signals = endingSignals();
    sigset_t m_FormerMask{};
    std::atomic<bool> m_Ending = false;
    std::atomic<bool> m_Deferred = false;
    TLX::Threading::CEvent m_Asked;
    std::thread m_Thread;
};

TerminationRequest::TerminationRequest() : m_Native(std::make_unique<Native>()) {}
TerminationRequest::~TerminationRequest() = default;

void TerminationRequest::defer()
{
    m_Native->m_Deferred = true;
}

TLX::Threading::CEvent& TerminationRequest::asked()
{
    return m_Native->m_Asked;
}

} // namespace Host::Platform
