#pragma once

#include "Base/Repetition.h"
#include "Base/Warn.h"
#include "Plugins/ObjectStore.h"

#include <functional>

namespace Host {

/** Deletes rows of drives that the host no longer sees. For one thread. */
class KeptRows
{
public:
    explicit KeptRows(Warn warn);

    /**
     * Deletes the rows of objects that `look` does not show, and warns of a failure. Plug-ins may write rows
     * at the same time. A row that is newer than the look is not deleted. Exceptions of `look` reach the
     * caller.
     */
    void cleanUp(const std::function<ObjectStore()>& look);

    /** Warns of the database's last failure. The same failure is reported again after an hour without it. */
    void tellFailure();

private:
    Warn m_Warn;
    Repetition m_Told;
};

} // namespace Host
