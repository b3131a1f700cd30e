#include "Web/Access.h"

#include "Base/Text.h"
#include "Web/Problem.h"

#include <algorithm>
#include <array>

namespace Host::Web {
namespace {

constexpr std::array<std::string_view, 3> LOOPBACK_NAMES = {"localhost", "127.0.0.1", "[::1]"};

std::string_view headerOf(const Request& request, const char* name)
{
    const auto found = request.m_Headers.find(name);
    return found == request.m_Headers.end() ? std::string_view() : found->second;
}

std::string_view withoutPort(std::string_view host)
{
    const std::size_t colon = host.rfind(':');
    const bool isPort = colon != std::string_view::npos &&
                        host.find_first_not_of("0123456789", colon + 1) == std::string_view::npos;
    return isPort ? host.substr(0, colon) : host;
}

/**
 * A page of a stranger can make a browser call this machine by a name of the stranger's own. Such a page then
 * passes for one of this service. So only known names are let in.
 */
bool isKnownHost(const AccessSettings& settings, std::string_view host)
{
    const auto isSame = [name = withoutPort(host)](std::string_view known) {
        return equalIgnoringCase(known, name);
    };
    return std::any_of(LOOPBACK_NAMES.begin(), LOOPBACK_NAMES.end(), isSame) ||
           std::any_of(settings.m_HostNames.begin(), settings.m_HostNames.end(), isSame);
}

bool isToken(const AccessSettings& settings, std::string_view authorization)
{
    constexpr std::string_view scheme = "Bearer ";
    return !settings.m_Token.empty() && startsWithIgnoringCase(authorization, scheme) &&
           equalInConstantTime(authorization.substr(scheme.size()), settings.m_Token);
}

} // namespace

bool equalInConstantTime(std::string_view a, std::string_view b)
{
    std::size_t difference = a.size() ^ b.size();
    for (std::size_t i = 0; i < a.size(); ++i)
        difference |= static_cast<unsigned char>(a[i] ^ (b.empty() ? '\0' : b[i % b.size()]));
    return difference == 0;
}

std::optional<Response> admit(const AccessSettings& settings, Door door, bool isTrustedPeer, Request& request)
{
    request.m_Local = door == Door::Local;
    request.m_MayChange = request.m_Local && isTrustedPeer;
    if (request.m_Local)
        return std::nullopt;
    const std::string_view host = headerOf(request, "host");
    if (host.empty())
        return problem(400, "The request has no Host field.");
    if (!isKnownHost(settings, host))
        return problem(421, "The service does not have this name. The settings can allow further names.");
    const std::string_view authorization = headerOf(request, "authorization");
    if (isToken(settings, authorization))
        return std::nullopt;
    if (!authorization.empty())
        return problem(401, "The token is wrong.");
    if (door == Door::Network)
        return problem(401, "Whoever asks from another machine needs the token.");
    return std::nullopt;
}

} // namespace Host::Web
