#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace Host {

/** The exit codes of the program. */
enum class ExitCode : int
{
    Done = 0,
    RequestFailed = 1, ///< also used when something that the program needs is missing or does not fit
    WrongUsage = 2,
    NoHardware = 3,
    NoPermission = 4,
    NoSuchObject = 5,
};

/** A request that a plug-in refused. */
struct RequestResult
{
    std::int32_t m_Request = 0;
    std::uint32_t m_Code = 0;
};

/** Ends a command. The message says in whole sentences what is wrong and what the administrator can do. */
class Failure : public std::runtime_error
{
public:
    Failure(ExitCode exitCode, const std::string& message) : std::runtime_error(message), m_ExitCode(exitCode)
    {}
    Failure(ExitCode exitCode, const std::string& message, RequestResult result)
        : std::runtime_error(message), m_ExitCode(exitCode), m_Result(result)
    {}

    ExitCode exitCode() const { return m_ExitCode; }
    const std::optional<RequestResult>& result() const { return m_Result; }

private:
    ExitCode m_ExitCode;
    std::optional<RequestResult> m_Result;
};

} // namespace Host
