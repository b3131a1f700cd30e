#pragma once

#include "Base/Warn.h"
#include "Plugins/ObjectStore.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace Host {

/** Keeps the rows of the plug-ins' drives in step with what their host sees. For one thread. */
class KeptRows
{
public:
    explicit KeptRows(Warn warn);

    /**
     * Drops the rows of what `look` does not show, and tells a failure. Plug-ins may write rows meanwhile:
     * none that is newer than what `look` shows is dropped. What `look` throws passes to the caller.
     */
    void cleanUp(const std::function<ObjectStore()>& look);

    /** Tells the database's last failure: once, until an hour has passed without it. */
    void tellFailure();

private:
    Warn m_Warn;
    std::map<std::string, std::uint64_t> m_Told; ///< when each failure was last seen, on the monotonic clock
};

} // namespace Host
