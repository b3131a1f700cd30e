#include "Base/ServiceManager.h"

#include "Base/Text.h"

#include <TLX/Linux/Descriptor.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>

namespace Host::Platform {
namespace {

using TLX::Linux::CDescriptor;

constexpr std::uint64_t MICROSECONDS_A_MILLISECOND = 1000;

/** Removes a variable and returns its value. */
std::string takeVariable(const char* name)
{
    const char* const value = std::getenv(name);
    std::string text = value != nullptr ? value : "";
    (void)unsetenv(name);
    return text;
}

bool isThisProcess(const std::string& identifier)
{
    return parseNumber(identifier, 10) == static_cast<std::uint64_t>(getpid());
}

/** A socket that is connected to the manager. Invalid when there is none. */
CDescriptor connectTo(const std::string& address)
{
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    if (address.empty() || address.size() >= sizeof place.sun_path)
        return {};
    std::copy(address.begin(), address.end(), place.sun_path);
    // A name that is not in the file system begins with a zero byte, which is written as this character.
    if (address.front() == '@')
        place.sun_path[0] = '\0';
    CDescriptor connection(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const timeval patience{0, 500'000};
    (void)setsockopt(connection.Get(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address.size());
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): sockets take every kind of address so
    if (connect(connection.Get(), reinterpret_cast<const sockaddr*>(&place), size) != 0)
        return {};
    return connection;
}

std::optional<std::uint64_t> periodOfLifeSigns()
{
    const std::string process = takeVariable("WATCHDOG_PID");
    const std::uint64_t period = parseNumber(takeVariable("WATCHDOG_USEC"), 10).value_or(0);
    if (period == 0 || (!process.empty() && !isThisProcess(process)))
        return std::nullopt;
    return std::max<std::uint64_t>(period / MICROSECONDS_A_MILLISECOND, 1);
}

} // namespace

struct ServiceManager::Native
{
    void send(const std::string& message) const
    {
        if (m_Connection.Valid())
            (void)::send(m_Connection.Get(), message.data(), message.size(), MSG_NOSIGNAL);
    }

    const CDescriptor m_Connection = connectTo(takeVariable("NOTIFY_SOCKET"));
    const std::optional<std::uint64_t> m_Period = periodOfLifeSigns();
};

ServiceManager::ServiceManager() : m_Native(std::make_unique<Native>()) {}

ServiceManager::~ServiceManager() = default;

void ServiceManager::ready()
{
    m_Native->send("READY=1");
}

void ServiceManager::reloading()
{
    // The manager tells by the time which reload it was.
    timespec now{};
    (void)clock_gettime(CLOCK_MONOTONIC, &now);
    constexpr std::uint64_t microseconds = 1'000'000;
    constexpr std::uint64_t nanoseconds = 1000;
    m_Native->send("RELOADING=1\nMONOTONIC_USEC=" +
                   std::to_string(static_cast<std::uint64_t>(now.tv_sec) * microseconds +
                                  static_cast<std::uint64_t>(now.tv_nsec) / nanoseconds));
}

void ServiceManager::stopping()
{
    m_Native->send("STOPPING=1");
}

void ServiceManager::status(const std::string& line)
{
    m_Native->send("STATUS=" + printable(line));
}

std::optional<std::uint64_t> ServiceManager::lifeSignPeriod() const
{
    return m_Native->m_Period;
}

void ServiceManager::alive()
{
    m_Native->send("WATCHDOG=1");
}

} // namespace Host::Platform
