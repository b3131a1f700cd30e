#include "Facts/NamedObjects.h"

#include "Base/Failure.h"
#include "Facts/Drives.h"
#include "Facts/Silence.h"
#include "Plugins/ControllerNames.h"

#include <TLX/Clock.h>

namespace Host::Cli {

std::vector<const PI::CObject*> namedObjects(const ObjectStore& store, const std::string& name)
{
    const std::string disk = diskOfController(store.controllers(), name);
    for (const Drive& drive : joinDrives(store))
        if (isUnheard(drive, disk))
            throw Failure(ExitCode::RequestFailed,
                          unheardText(drive, TLX::Misc::now()) + " " + SILENCE_REMEDY);
    return store.named(disk);
}

} // namespace Host::Cli
