#include "Base/Platform.h"

#include <TLX/WaitResult.h>

#include <atomic>
#include <csignal>
#include <system_error>
#include <thread>

#include <pthread.h>

namespace Host::Platform {
namespace {

/** A signal that is ignored at the start stays ignored, for example under nohup. */
bool isHangUpIgnored()
{
    struct sigaction hangUp
    {};
    return sigaction(SIGHUP, nullptr, &hangUp) != 0 || hangUp.sa_handler == SIG_IGN;
}

sigset_t awaitedSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    if (!isHangUpIgnored())
        sigaddset(&signals, SIGHUP);
    return signals;
}

} // namespace

/** A separate thread takes the signals, so that they do not interrupt a thread of a plug-in. */
struct TerminationRequest::Native
{
    explicit Native(HangUp hangUp) : m_HangUp(hangUp)
    {
        if (m_Asked.Init(false, true) != TLX::Threading::WaitResult::Taken ||
            m_Reload.Init(false, false) != TLX::Threading::WaitResult::Taken)
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
        bool asked = false;
        for (;;) {
            int signal = 0;
            (void)sigwait(&m_Signals, &signal);
            if (m_Ending)
                return;
            if (signal == SIGHUP && m_HangUp == HangUp::Reload) {
                m_Reload.Set();
                continue;
            }
            if (asked || !m_Deferred)
                endBy(signal);
            m_Asked.Set();
            asked = true;
        }
    }

    /** Does what the signal does to a program without a handler. */
    void endBy(int signal) const
    {
        (void)std::signal(signal, SIG_DFL);
        (void)pthread_sigmask(SIG_UNBLOCK, &m_Signals, nullptr);
        (void)raise(signal);
    }

    const HangUp m_HangUp;
    const sigset_t m_Signals = awaitedSignals();
    sigset_t m_FormerMask{};
    std::atomic<bool> m_Ending = false;
    std::atomic<bool> m_Deferred = false;
    TLX::Threading::CEvent m_Asked;
    TLX::Threading::CEvent m_Reload;
    std::thread m_Thread;
};

TerminationRequest::TerminationRequest(HangUp hangUp) : m_Native(std::make_unique<Native>(hangUp)) {}
TerminationRequest::~TerminationRequest() = default;

void TerminationRequest::defer()
{
    m_Native->m_Deferred = true;
}

TLX::Threading::CEvent& TerminationRequest::asked()
{
    return m_Native->m_Asked;
}

TLX::Threading::CEvent& TerminationRequest::reload()
{
    return m_Native->m_Reload;
}

} // namespace Host::Platform
