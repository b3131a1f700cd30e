#include "Commands/RunningService.h"

#include "Base/Platform.h"
#include "Service/Settings.h"

#include <vector>

namespace Host::Cli {

std::optional<RunningService> runningService(const Options& options)
{
    if (options.m_Fleet && !options.m_Data)
        return std::nullopt;
    const std::filesystem::path usual = Platform::defaultDataFolder();
    const std::filesystem::path data = options.m_Data.value_or(usual);
    std::vector<std::filesystem::path> sockets = {Service::usualSocket(data)};
    // The system's service keeps the usual folder and gets its socket from the service manager.
    if (data == usual || !options.m_Data)
        sockets.push_back(Web::usualService());
    for (const std::filesystem::path& socket : sockets)
        if (Web::Client client(socket); client.isThere())
            return RunningService{socket, client};
    return std::nullopt;
}

} // namespace Host::Cli
