#include "Drives/MachineDrives.h"

#include "Base/Failure.h"

#include <TLXX/DeviceBackend.h>
#include <TLXX/ThreadedSource.h>

namespace Host {

MachineDrives machineDrives(const std::optional<std::filesystem::path>& reader)
{
    if (reader)
        throw Failure(ExitCode::WrongUsage,
                      "On Windows there is no reader: this program asks the drives itself.");
    return {std::make_unique<TLXX::CThreadedSource>(TLXX::platformBackend()), true};
}

} // namespace Host
