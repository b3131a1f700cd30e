#include "SinkSlot.h"

#include <mutex>

namespace TLX::Trace {
namespace {

struct CSinkSlot
{
    std::mutex m_Lock;
    std::shared_ptr<ISink> m_Sink;
};

CSinkSlot& sinkSlot()
{
    // Never destroyed: threads may still trace while the process ends.
    static CSinkSlot& slot = *new CSinkSlot;
    return slot;
}

} // namespace

void setSink(std::shared_ptr<ISink> sink)
{
    // Swapping lets the argument destroy the former sink outside the lock.
    const std::scoped_lock guard(sinkSlot().m_Lock);
    sinkSlot().m_Sink.swap(sink);
}

void write(const CLine& line)
{
    const std::scoped_lock guard(sinkSlot().m_Lock);
    if (sinkSlot().m_Sink)
        sinkSlot().m_Sink->Write(line);
}

} // namespace TLX::Trace
