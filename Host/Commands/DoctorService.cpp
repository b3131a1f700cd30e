#include "Base/Failure.h"
#include "Base/Platform.h"
#include "Commands/DoctorCommand.h"
#include "Commands/RunningService.h"

#include <nlohmann/json.hpp>

namespace Host::Cli {
namespace {

constexpr char LOOK_AT_MESSAGES[] = "Look at the messages of the service.";

Check checkStatus(const nlohmann::json& status, const std::string& where)
{
    const std::string since = "runs at " + where + " since " + status.at("started").get<std::string>();
    const nlohmann::json& journal = status.at("journal");
    if (journal.contains("failure"))
        return problem(ExitCode::RequestFailed, "service",
                       since + ", but cannot write its journal: " + journal["failure"].get<std::string>(),
                       LOOK_AT_MESSAGES);
    if (status.contains("trouble"))
        return problem(ExitCode::RequestFailed, "service",
                       since + ", but cannot watch the drives: " + status["trouble"].get<std::string>(),
                       LOOK_AT_MESSAGES);
    return ok("service", since + "; " + status.at("message").get<std::string>());
}

} // namespace

Check checkService(const Options& options)
{
    const std::optional<RunningService> service = runningService(options);
    if (!service)
        return ok("service", "none runs on this data folder");
    try {
        return checkStatus(nlohmann::json::parse(service->m_Client.get("/api/v1/status")),
                           service->m_Socket.string());
    } catch (const std::exception& error) {
        return problem(ExitCode::RequestFailed, "service",
                       "listens at " + service->m_Socket.string() + ", but does not answer: " + error.what(),
                       "Restart it.");
    }
}

} // namespace Host::Cli
