#pragma once

#include <TLX/ForcedEnd.h>

#include <atomic>

#include <windows.h>

namespace TLX::Threading {

/**
 * An agreement between a thread and the one that ends it by force. A thread may be terminated only within a
 * call that may be broken off. Anywhere else it may hold locks.
 */
class CInterruption
{
public:
    /** Marks the thread for its end, in its present call or the next. */
    void Request() { m_Requested = true; }

    /** Whether it is within a call. */
    bool Inside() const { return m_State == EState::Inside; }

    /** Takes the right to terminate the thread. Returns false when the thread has left its call. */
    bool Doom()
    {
        EState inside = EState::Inside;
        return m_State.compare_exchange_strong(inside, EState::Doomed);
    }

    /** The thread enters a call, or ends here. */
    void Enter()
    {
        m_State = EState::Inside;
        if (m_Requested)
            End();
    }

    /** The thread comes back from a call, or ends here. */
    void Leave()
    {
        if (m_Requested)
            End();
        EState inside = EState::Inside;
        if (!m_State.compare_exchange_strong(inside, EState::Outside))
            End();
    }

private:
    enum class EState
    {
        Outside,
        Inside,
        Doomed, ///< about to be terminated
    };

    [[noreturn]] void End()
    {
        EState inside = EState::Inside;
        if (!m_State.compare_exchange_strong(inside, EState::Outside)) {
            for (;;)
                Sleep(INFINITE); // terminated within the call
        }
        m_Requested = false; // once is enough
        throw CForcedEnd();
    }

    std::atomic<bool> m_Requested = false;
    std::atomic<EState> m_State = EState::Outside;
};

} // namespace TLX::Threading
