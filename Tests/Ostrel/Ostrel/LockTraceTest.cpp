#include "Support/TryElsewhere.h"
#include "WorkerFixture.h"

#include <TLX/TraceSink.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using TestSupport::CFakeDrive;
using TestSupport::tryElsewhere;
using TLX::Threading::Native_OS::CFastMutex;
using TLX::Threading::WaitResult::Taken;

/** Records with each line about a lock whether any thread holds that lock while the line is written. */
class CLockWitness : public TLX::Trace::ISink
{
public:
    CLockWitness(CFastMutex& dataLock, CFastMutex& eventsLock)
        : m_DataLock(dataLock), m_EventsLock(eventsLock)
    {}

    void Write(const TLX::Trace::CLine& line) noexcept override
    {
        CFastMutex& lock =
            line.m_Text.find("m_EventsLock") == std::string_view::npos ? m_DataLock : m_EventsLock;
        m_Lines.push_back(std::string(line.m_Text) + (tryElsewhere(lock) == Taken ? ": free" : ": taken"));
    }

    std::vector<std::string> m_Lines;

private:
    CFastMutex& m_DataLock;
    CFastMutex& m_EventsLock;
};

class LockTrace : public TestSupport::CWorkerFixture
{
protected:
    LockTrace() { m_Drives.Add(CFakeDrive(0)); }

    /** The lines about locks that `action` writes. */
    template<typename Action>
    std::vector<std::string> Lines(Action action)
    {
        const auto witness = std::make_shared<CLockWitness>(m_Api.m_DataLock, m_Api.m_EventsLock);
        TLX::Trace::setSink(witness);
        TLX::Trace::setMask(313, 8);
        action();
        TLX::Trace::setMask(313, 0);
        TLX::Trace::setSink(nullptr);
        return witness->m_Lines;
    }
};

} // namespace

TEST_F(LockTrace, ACycleTellsOfItsLocksWhenItHasThem)
{
    Start();
    Settle();
    EXPECT_THAT(
        Lines([this] { Force(); }),
        ElementsAre("Before m_DataLock.Wait(INFINITE): free", "After m_DataLock.Wait(INFINITE): taken",
                    "Before m_EventsLock.Wait(INFINITE): free", "After m_EventsLock.Wait(INFINITE): taken",
                    "Before m_EventsLock.Release (): taken", "After m_EventsLock.Release (): free",
                    "Before m_DataLock.Release (): taken", "After m_DataLock.Release (): free"));
}

TEST_F(LockTrace, ARequestTellsOfItsLocksWhenItHasThem)
{
    Initialize();
    EXPECT_THAT(Lines([this] { CollectEvents(); }),
                ElementsAre("Before m_DataLock.Wait (sg): free", "After m_DataLock.Wait (sg): taken",
                            "Before m_EventsLock.Wait(INFINITE): free",
                            "After m_EventsLock.Wait(INFINITE): taken",
                            "Before m_EventsLock.Release(): taken", "After m_EventsLock.Release(): free"));
}
