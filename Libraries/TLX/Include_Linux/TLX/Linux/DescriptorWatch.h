#pragma once

#include <TLX/Export.h>
#include <TLX/Linux/Descriptor.h>
#include <TLX/Thread.h>

#include <functional>
#include <optional>

namespace TLX::Linux {

/** While it lives, a thread of its own waits for something to read from a descriptor. */
class TLX_EXPORT CDescriptorWatch
{
public:
    /**
     * `read` is called on the thread each time there is something to read, or the other side is gone. It
     * reads all of it without waiting, never throws, and returns false when nothing more will come.
     * `descriptor` must stay open as long as this lives. Throws `std::system_error` when the system refuses
     * what this needs.
     */
    CDescriptorWatch(int descriptor, std::function<bool()> read);
    /** Waits for a call that is under way. */
    ~CDescriptorWatch();
    CDescriptorWatch(const CDescriptorWatch&) = delete;
    CDescriptorWatch& operator=(const CDescriptorWatch&) = delete;

private:
    void Run(int descriptor) const;

    const CDescriptor m_Stop;
    const std::function<bool()> m_Read;
    std::optional<Threading::CThread> m_Thread;
};

} // namespace TLX::Linux
