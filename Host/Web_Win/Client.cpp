#include "Web/Client.h"

#include "Base/Failure.h"

namespace Host::Web {
namespace {

[[noreturn]] void failWithoutSocket()
{
    throw Failure(ExitCode::RequestFailed, "There is no local socket on Windows. Ask the service over HTTP.");
}

} // namespace

bool Client::isThere() const
{
    return false;
}

std::string Client::get(const std::string&) const
{
    failWithoutSocket();
}

std::string Client::put(const std::string&, const std::string&) const
{
    failWithoutSocket();
}

FollowEnd Client::follow(const std::string&, const std::function<void(const SentEvent&)>&,
                         TLX::Threading::CEvent&) const
{
    failWithoutSocket();
}

std::filesystem::path usualService()
{
    return {};
}

} // namespace Host::Web
