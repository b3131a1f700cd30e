#include "Web/Status.h"

#include <PI/ErrorCode.h>

#include <algorithm>
#include <array>
#include <utility>

namespace Host::Web {
namespace {

constexpr std::array<std::pair<unsigned, std::string_view>, 18> STATUS_TEXTS = {{
    {200, "OK"},
    {400, "Bad Request"},
    {401, "Unauthorized"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {405, "Method Not Allowed"},
    {406, "Not Acceptable"},
    {408, "Request Timeout"},
    {409, "Conflict"},
    {413, "Content Too Large"},
    {415, "Unsupported Media Type"},
    {417, "Expectation Failed"},
    {421, "Misdirected Request"},
    {422, "Unprocessable Content"},
    {431, "Request Header Fields Too Large"},
    {500, "Internal Server Error"},
    {503, "Service Unavailable"},
    {505, "HTTP Version Not Supported"},
}};

/** One code for each kind of failure, so that a client can tell them apart again. */
constexpr std::array<std::pair<ExitCode, unsigned>, 5> FAILURES = {{
    {ExitCode::WrongUsage, 422},
    {ExitCode::NoPermission, 403},
    {ExitCode::NoSuchObject, 404},
    {ExitCode::NoHardware, 503},
    {ExitCode::RequestFailed, 500},
}};

/** Refusals of a plug-in that are no trouble of the service. */
constexpr std::array<std::pair<std::uint32_t, unsigned>, 2> REFUSALS = {{
    {PI::ERR_PROPERTY_NOT_SETTABLE, 409},
    {PI::ERR_OBJECT_NOT_FOUND, 404},
}};

} // namespace

std::string_view statusText(unsigned status)
{
    const auto* const found = std::find_if(STATUS_TEXTS.begin(), STATUS_TEXTS.end(),
                                           [=](const auto& each) { return each.first == status; });
    return found == STATUS_TEXTS.end() ? std::string_view() : found->second;
}

unsigned statusOf(ExitCode exitCode)
{
    const auto* const found = std::find_if(FAILURES.begin(), FAILURES.end(),
                                           [=](const auto& each) { return each.first == exitCode; });
    return found == FAILURES.end() ? 500 : found->second;
}

unsigned statusOf(const Failure& failure)
{
    const std::uint32_t code = failure.result().value_or(RequestResult{}).m_Code;
    const auto* const found =
        std::find_if(REFUSALS.begin(), REFUSALS.end(), [=](const auto& each) { return each.first == code; });
    return found == REFUSALS.end() ? statusOf(failure.exitCode()) : found->second;
}

ExitCode exitCodeOf(unsigned status)
{
    if (status == 401)
        return ExitCode::NoPermission;
    if (status == 400)
        return ExitCode::WrongUsage;
    const auto* const found = std::find_if(FAILURES.begin(), FAILURES.end(),
                                           [=](const auto& each) { return each.second == status; });
    return found == FAILURES.end() || found->first == ExitCode::NoHardware ? ExitCode::RequestFailed
                                                                           : found->first;
}

} // namespace Host::Web
